package gxdemo;

import android.text.Layout;
import java.awt.Font;
import java.awt.font.FontRenderContext;
import java.awt.font.LineMetrics;

/** Centred lines, one per line of the text, measured with the runtime's own text classes. */
final class MeasuredLayout extends Layout {
    private final String[] lines;
    private final int[] starts;
    private final float[] widths;
    private final int ascent;
    private final int descent;
    private final float width;

    MeasuredLayout(String text, Font font) {
        super(text, text.split("\n", -1).length);
        lines = text.split("\n", -1);
        starts = new int[lines.length];
        widths = new float[lines.length];
        FontRenderContext context = new FontRenderContext(null, true, true);
        LineMetrics metrics = font.getLineMetrics(text, context);
        ascent = (int) Math.ceil(metrics.getAscent());
        descent = (int) Math.ceil(metrics.getDescent());
        float widest = 0;
        int start = 0;
        for (int i = 0; i < lines.length; i++) {
            starts[i] = start;
            start += lines[i].length() + 1;
            widths[i] = (float) font.getStringBounds(lines[i], context).getWidth();
            widest = Math.max(widest, widths[i]);
        }
        width = widest;
    }

    int pixelWidth() {
        return (int) Math.ceil(width);
    }

    int pixelHeight() {
        return lines.length * (ascent + descent);
    }

    @Override
    public int getLineBaseline(int line) {
        return line * (ascent + descent) + ascent;
    }

    @Override
    public int getLineBottom(int line) {
        return (line + 1) * (ascent + descent);
    }

    @Override
    public int getLineAscent(int line) {
        return -ascent;
    }

    @Override
    public int getLineDescent(int line) {
        return descent;
    }

    @Override
    public int getLineStart(int line) {
        return starts[line];
    }

    @Override
    public int getLineVisibleEnd(int line) {
        return starts[line] + lines[line].length();
    }

    @Override
    public float getLineLeft(int line) {
        return (width - widths[line]) / 2;
    }

    @Override
    public float getLineWidth(int line) {
        return widths[line];
    }
}
