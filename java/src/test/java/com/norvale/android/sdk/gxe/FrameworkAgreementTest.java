package com.norvale.android.sdk.gxe;

import static org.junit.Assert.assertEquals;
import static org.junit.Assert.assertTrue;

import android.text.Layout;
import android.text.SpannableString;
import android.text.style.BackgroundColorSpan;
import android.view.Gravity;
import android.widget.TextView;
import java.io.IOException;
import java.util.ArrayList;
import java.util.List;
import java.util.Locale;
import org.junit.Test;

/** Lines, widths and ink next to what the framework itself lays out and draws with one font. */
public class FrameworkAgreementTest extends NativeTest {
    private static final int BOX = 0xFFFF0000;

    private static final class Sample {
        final String name;
        final String fontFile;
        final String text;
        final String title;

        Sample(String name, String fontFile, String text, String title) {
            this.name = name;
            this.fontFile = fontFile;
            this.text = text;
            this.title = title;
        }
    }

    private static final Sample[] SAMPLES = {
        new Sample("Latin", LATIN, "Sphinx of black quartz, judge my vow. AVATAR Tyrol finest",
                "Typography"),
        new Sample("Arabic", ARABIC, "الخط العربي هو فن وتصميم الكتابة في مختلف اللغات",
                "الخط العربي"),
        new Sample("Devanagari", DEVANAGARI, "सभी मनुष्यों को गौरव और अधिकारों के विषय में जन्मजात स्वतन्त्रता",
                "स्वतन्त्रता"),
        new Sample("Thai", THAI, "มนุษย์ทั้งหลายเกิดมามีอิสระและเสมอภาคกันในเกียรติศักดิ์", "เกียรติศักดิ์"),
        new Sample("CJK", CJK, "人人生而自由，在尊严和权利上一律平等。すべての人間は生まれながら", "自由平等の文字"),
    };

    private static final float[] SIZES = {14, 24, 37.5f, 48, 96};

    private static int[] drawText(Sample sample, TextView view) {
        try (GxText text = new GxText()) {
            text.setFont(sample.fontFile);
            text.setSource(view);
            return text.renderPixels();
        }
    }

    /** First and one past the last pixel of the box's colour in a row, or null. */
    private static int[] boxInRow(int[] pixels, int width, int row) {
        int left = width;
        int right = -1;
        for (int x = 0; x < width; x++) {
            if (pixels[row * width + x] == BOX) {
                left = Math.min(left, x);
                right = x + 1;
            }
        }
        return right < 0 ? null : new int[] {left, right};
    }

    /** Greatest difference between a box's width and the framework's, over all lines, in pixels. */
    private static float widthError(Sample sample, float size) {
        SpannableString marked = new SpannableString(sample.text);
        marked.setSpan(new BackgroundColorSpan(BOX), 0, marked.length(), 0);
        // About three lines, whatever the size.
        TextView view = layOut(textView(marked, sample.fontFile, size), (int) (size * 12));
        Layout layout = view.getLayout();
        assertTrue(sample.name, layout.getLineCount() > 1);
        view.setTextColor(0x00000000); // the boxes alone
        int[] pixels = drawText(sample, view);
        float worst = 0;
        for (int i = 0; i < layout.getLineCount(); i++) {
            int baseline = view.getTotalPaddingTop() + layout.getLineBaseline(i);
            int[] box = boxInRow(pixels, view.getWidth(), baseline - 1);
            assertTrue(sample.name + " line " + i + " at " + size, box != null);
            assertEquals(sample.name + " line " + i + " at " + size,
                    (int) layout.getLineLeft(i), box[0]);
            int width = box[1] - box[0];
            int start = layout.getLineStart(i);
            int end = layout.getLineVisibleEnd(i);
            float advance = view.getPaint().getRunAdvance(sample.text, start, end, start, end,
                    layout.getParagraphDirection(i) < 0, end);
            // A box at the right side is cut there.
            float room = view.getWidth() - box[0];
            worst = Math.max(worst, Math.abs(width - Math.min(room, advance)));
            worst = Math.max(worst, Math.abs(width - Math.min(room, layout.getLineMax(i))));
        }
        return worst;
    }

    @Test
    public void linesAreWhereAndAsWideAsTheFrameworkLaysThemOut() throws IOException {
        List<String> lines = new ArrayList<>();
        float worst = 0;
        for (Sample sample : SAMPLES) {
            StringBuilder line = new StringBuilder(sample.name + ":");
            for (float size : SIZES) {
                float error = widthError(sample, size);
                worst = Math.max(worst, error);
                line.append(String.format(Locale.ROOT, " %.1f px %.2f,", size, error));
            }
            lines.add(line.toString());
        }
        report("width-errors.txt", lines);
        // Widths are cut to whole pixels.
        assertTrue(String.join("\n", lines), worst <= 1);
    }

    /** First and last row with ink among the rows of a line. */
    private static int[] inkRows(int[] pixels, int width, int top, int bottom) {
        int first = -1;
        int last = -1;
        for (int i = top * width; i < bottom * width; i++) {
            if (pixels[i] >>> 24 >= 128) {
                first = first < 0 ? i / width : first;
                last = i / width;
            }
        }
        return new int[] {first, last};
    }

    @Test
    public void everyLineStandsOnTheBaselineOfTheFramework() {
        int[] gravities = {Gravity.TOP, Gravity.CENTER, Gravity.BOTTOM | Gravity.RIGHT};
        for (Sample sample : SAMPLES) {
            for (int gravity : gravities) {
                TextView view = textView(sample.text, sample.fontFile, 48);
                view.setTextColor(0xFF000000);
                view.setGravity(gravity);
                view.setPadding(5, 7, 11, 13);
                view.setMinHeight(400);
                layOut(view, 500);
                int[] expected = pixels(draw(view, 0));
                int[] drawn = drawText(sample, view);
                Layout layout = view.getLayout();
                int top = view.getTotalPaddingTop();
                for (int i = 0; i < layout.getLineCount(); i++) {
                    int[] there = inkRows(expected, 500, top + layout.getLineTop(i),
                            top + layout.getLineBottom(i));
                    int[] here = inkRows(drawn, 500, top + layout.getLineTop(i),
                            top + layout.getLineBottom(i));
                    String what = sample.name + " line " + i + " gravity " + gravity;
                    assertEquals(what, there[0], here[0], 1);
                    assertEquals(what, there[1], here[1], 1);
                }
            }
        }
    }

    @Test
    public void inkCoversWhatTheFrameworkDraws() throws IOException {
        List<String> lines = new ArrayList<>();
        double least = 1;
        for (Sample sample : SAMPLES) {
            TextView view = layOut(textView(sample.title, sample.fontFile, 96), 0);
            view.setTextColor(0xFF000000);
            try (GxText text = new GxText()) {
                text.setFont(sample.fontFile);
                double overlap = ScriptsTest.overlap(draw(view, 100), ScriptsTest.draw(text, view));
                least = Math.min(least, overlap);
                lines.add(String.format(Locale.ROOT, "%s: overlap %.3f", sample.name, overlap));
            }
        }
        report("overlap.txt", lines);
        assertTrue(String.join("\n", lines), least >= 0.95);
    }
}
