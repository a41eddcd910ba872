package gxtest;

import android.text.Layout;
import android.text.SpannableString;
import android.text.style.BackgroundColorSpan;
import android.widget.TextView;
import java.util.Arrays;
import java.util.List;

/** What is taken from an android.text.Layout. */
final class LayoutTest {
    private LayoutTest() {}

    private static Object textWith(int gravity, int limit, int maxLines) {
        TextView view = Widgets.view(300, 200);
        view.paddingLeft = 7;
        view.paddingTop = 10;
        view.paddingBottom = 30;
        view.gravity = gravity;
        view.maxLines = maxLines;
        Object text = Widgets.text(view);
        Check.isTrue(Sdk.flag(text, "SetLine", limit), "SetLine");
        return text;
    }

    private static void setLayout(Object text, Layout layout) {
        Check.isTrue(Sdk.flag(text, "SetLayout", layout), "SetLayout");
    }

    private static String textOf(Object text) {
        int[] codePoints = Probe.text(Sdk.handle(text));
        return codePoints == null ? null : new String(codePoints, 0, codePoints.length);
    }

    static void gravityLimitAndMaximumChooseAndPlaceTheLines() {
        String[][] cases = {
            // gravity, limit, maximum: lines as "y start"
            {"33", "2", "3", "25 0", "45 2"},
            {"53", "9", "0", "85 0", "105 2", "125 4", "145 6", "165 8"},
            {"33", "0", "0"},
        };
        for (String[] c : cases) {
            Object text = textWith(
                    Integer.parseInt(c[0], 16), Integer.parseInt(c[1]), Integer.parseInt(c[2]));
            Layout layout = new Layout("0123456789", 5);
            layout.lineLeft = 2.75f;
            layout.lineWidth = 60.9f;
            setLayout(text, layout);
            String[] expected = Arrays.stream(c, 3, c.length).map(line -> {
                int y = Integer.parseInt(line.split(" ")[0]);
                int start = Integer.parseInt(line.split(" ")[1]);
                return "9," + y + " " + start + "-" + (start + 2) + " [9 " + (y - 13) + " 69 "
                        + (y + 4) + "]";
            }).toArray(String[]::new);
            Check.equal(List.of(expected), List.of(Probe.lines(Sdk.handle(text))),
                    "lines for " + String.join(" ", c));
            Check.equal("0123456789", textOf(text), "text");
        }
    }

    static void textsKeepEveryCharacter() {
        Object text = textWith(0x33, 0, 1);
        String[] texts = {"", "plain", "\u00E9\uD55C\u0623", "\uD83D\uDE00 beyond",
            "a\uD83D", "\uDE00z", "before\0after", "\0", "\uFFFE\uFFFF\uDBFF\uDFFF"};
        for (String string : texts) {
            setLayout(text, new Layout(string, 1));
            Check.equal(string, textOf(text), "text");
        }
        setLayout(text, new Layout("kept", 1));
        setLayout(text, new Layout(null, 1));
        Check.equal("kept", textOf(text), "no text");
    }

    static void theLastBackgroundSpanIsDrawn() {
        Object span = new BackgroundColorSpan(0xFF00FF00);
        Object later = new BackgroundColorSpan(0xFF0000FF);
        Check.equal(0, backgroundOf(new SpannableString("ab")), "none");
        Check.equal(0xFF00FF00, backgroundOf(new SpannableString("ab").with(span, 0, 1)), "one");
        Check.equal(0xFF0000FF,
                backgroundOf(new SpannableString("ab").with(span, 0, 2).with(later, 1, 2)),
                "the later one");
        Check.equal(0xFF00FF00,
                backgroundOf(new SpannableString("ab").with(span, 0, 2).with(null, 1, 2)),
                "past a null");
        Check.equal(0, backgroundOf("ab"), "a plain text");
        for (String missing : new String[] {"android/text/SpannableString", "<init>", "getSpans",
                     "android/text/style/BackgroundColorSpan", "getBackgroundColor"}) {
            Probe.hide(missing);
            Check.equal(0, backgroundOf(new SpannableString("ab").with(span, 0, 2)), missing);
            Probe.reset();
        }
    }

    // Colour of a pixel in the line's box that no ink reaches.
    private static int backgroundOf(CharSequence string) {
        Object text = Widgets.text(Widgets.view(40, 30));
        setLayout(text, new Layout(string, 1));
        return Widgets.render(text)[3 * 40];
    }
}
