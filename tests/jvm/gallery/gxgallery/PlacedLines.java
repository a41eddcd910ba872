package gxgallery;

import android.text.Layout;
import com.norvale.android.sdk.gxe.TextStyle;
import java.util.List;
import java.util.Map;

/** Lines where the program placed them. */
final class PlacedLines extends Layout {
    private final List<?> lines;
    private final int left;
    private final int top;

    PlacedLines(CharSequence text, Map<?, ?> measured, TextStyle style) {
        super(text, ((List<?>) measured.get("lines")).size());
        lines = (List<?>) measured.get("lines");
        Map<?, ?> margins = (Map<?, ?>) measured.get("margins");
        List<Integer> padding = style.getPadding();
        left = Gallery.number(margins, "left") + (padding == null ? 0 : padding.get(0));
        top = Gallery.number(margins, "top") + (padding == null ? 0 : padding.get(1));
    }

    private Map<?, ?> line(int i) {
        return (Map<?, ?>) lines.get(i);
    }

    private int box(int i, String side) {
        return Gallery.number((Map<?, ?>) line(i).get("box"), side);
    }

    @Override
    public int getLineBaseline(int line) {
        return Gallery.number(line(line), "baseline") - top;
    }

    @Override
    public int getLineBottom(int line) {
        return box(line, "bottom") - top;
    }

    @Override
    public int getLineAscent(int line) {
        return box(line, "top") - Gallery.number(line(line), "baseline");
    }

    @Override
    public int getLineDescent(int line) {
        return box(line, "bottom") - Gallery.number(line(line), "baseline");
    }

    @Override
    public int getLineStart(int line) {
        return Gallery.number(line(line), "start");
    }

    @Override
    public int getLineVisibleEnd(int line) {
        return Gallery.number(line(line), "end");
    }

    @Override
    public float getLineLeft(int line) {
        return Gallery.number(line(line), "x") - left;
    }

    @Override
    public float getLineWidth(int line) {
        return box(line, "right") - box(line, "left");
    }
}
