package gxtest;

import android.text.Layout;
import android.text.SpannableString;
import android.text.style.BackgroundColorSpan;
import android.widget.TextView;
import java.util.Arrays;
import java.util.List;

/** What is taken from an android.text.Layout. */
final class LayoutTest {
    private static final String[] METHODS = AndroidMethods.of("android/text/Layout");

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
            {"33", "0", "3", "25 0", "45 2", "65 4"},
            {"33", "2", "3", "25 0", "45 2"},
            {"33", "0", "0"},
            {"33", "-1", "-1"},
            {"13", "0", "2", "85 0", "105 2"},
            {"70", "0", "1", "95 0"},
            {"53", "0", "3", "125 4", "145 6", "165 8"},
            {"53", "9", "0", "85 0", "105 2", "125 4", "145 6", "165 8"},
            {"0", "1", "0", "25 0"},
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

    static void aFinishedLayoutReplacesTheOneBefore() {
        Object text = textWith(0x33, 0, 5);
        setLayout(text, new Layout("0123456789", 5));
        setLayout(text, new Layout("ab", 1));
        Check.equal(1, Probe.lines(Sdk.handle(text)).length, "lines");
        setLayout(text, new Layout("", 0));
        Check.equal(0, Probe.lines(Sdk.handle(text)).length, "no lines");
    }

    static void tenThousandLines() {
        Object text = textWith(0x33, 0, 10_000);
        setLayout(text, new Layout("0123456789".repeat(1000), 10_000));
        String[] lines = Probe.lines(Sdk.handle(text));
        Check.equal(10_000, lines.length, "lines");
        Check.isTrue(lines[9_999].contains(" 9999-10000 "), lines[9_999]);
    }

    static void everyMethodMustBeThere() {
        Object text = textWith(0x33, 0, 1);
        for (String method : METHODS) {
            Probe.reset();
            Probe.hide(method);
            Check.isTrue(!Sdk.flag(text, "SetLayout", new Layout("a", 1)), method);
            Check.logged(Probe.log(),
                    "E/GxText_JNI: GxText_SetLayout - Function " + method + " not found");
        }
        Probe.reset();
        Check.isTrue(!Sdk.flag(text, "SetLayout", (Object) null), "no layout");
        Check.logged(Probe.log(), "D/GxText_JNI: GxText_SetLayout - RH(" + Sdk.handle(text) + ") null");
        Probe.hide("toString");
        setLayout(text, new Layout("a", 1));
        Check.logged(Probe.log(), "D/GxText_JNI: getText cannot find 'toString' method id");
        Check.equal(null, textOf(text), "text");
    }

    static void whatAMethodThrowsGoesOn() {
        RuntimeException thrown = new RuntimeException("from a method");
        Object text = textWith(0x33, 0, 5);
        setLayout(text, new Layout("0123456789", 5));
        Layout width = new Layout("0123456789", 5) {
            @Override
            public float getLineWidth(int line) {
                if (line == 3) {
                    throw thrown;
                }
                return 1f;
            }
        };
        Layout string = new Layout(new SpannableString("x") {
            @Override
            public String toString() { throw thrown; }
        }, 1);
        Layout spans = new Layout(new SpannableString("x") {
            @Override
            public int length() { throw thrown; }
        }, 0) {
            @Override
            public int getLineCount() { throw thrown; }
        };
        for (Layout layout : new Layout[] {width, string, spans}) {
            Check.passesOn(thrown, () -> Sdk.call(text, "SetLayout", layout), "SetLayout");
        }
        Check.equal(5, Probe.lines(Sdk.handle(text)).length, "the lines before");
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
