package gxtest;

import android.text.Layout;
import android.widget.TextView;
import java.nio.charset.StandardCharsets;
import java.util.Arrays;

/** The natives that are found by their names: styles, fonts and pictures with all ink. */
final class ExtensionTest {
    private static final String PATTERN = "{\"effects\": [{\"type\": \"pattern\", \"pattern\": \"p\"}]}";
    private static final String STROKE = "{\"type\": \"stroke\", \"size\": 6, \"color\": \"#FF0000\"}";
    private static final int WHOLE_INK = 1;

    private ExtensionTest() {}

    private static byte[] utf8(String text) {
        return text.getBytes(StandardCharsets.UTF_8);
    }

    /** Lines "path|reason|allowed"; empty for no mistake. */
    private static String mistakes(Object answer) {
        return answer == null ? ""
                : new String((byte[]) answer, StandardCharsets.UTF_8).replace('\0', '|');
    }

    private static String dress(Object text, String json, int switches, String[] names,
            int[] widths, int[]... pictures) {
        return mistakes(Sdk.extension("dress", text, utf8(json), new float[0], switches, names,
                widths, pictures));
    }

    private static String dress(Object text, String json) {
        return dress(text, json, 0, new String[0], new int[0]);
    }

    private static Object laidOut(String characters) {
        Object text = Widgets.text(Widgets.view(120, 40));
        Check.isTrue(Sdk.flag(text, "SetLayout", new Layout(characters, 1)), "SetLayout");
        return text;
    }

    static void mistakesSayPlaceReasonAndRange() {
        Check.equal("", mistakes(Sdk.extension("check", (Object) utf8("{\"effects\": [" + STROKE + "]}"))), "none");
        Check.equal("$.size|0 is out of range 1-4096|1-4096|$.colour|unknown field; did you mean \"color\"?|",
                mistakes(Sdk.extension("check", (Object) utf8("{\"size\": 0, \"colour\": 1}")))
                        .replaceFirst("\\$schema.*$", ""), "two");
        Check.equal("$|an argument is null||", mistakes(Sdk.extension("check", (Object) null)), "null");
    }

    static void aStyleDressesAndAMistakeUndresses() {
        Object text = laidOut("ab");
        Check.equal("", dress(text, "{\"effects\": [" + STROKE + "," + STROKE + "]}"), "twice");
        int[] dressed = Widgets.render(text);
        Check.isTrue(Arrays.stream(dressed).anyMatch(p -> p == 0xFFFF0000), "a red outline");
        Check.equal(6, Sdk.number(text, "GetEffectLeftOffset"), "margin");
        int[] checks = {0xFF00FF00, 0xFF0000FF, 0xFF0000FF, 0xFF00FF00};
        Check.equal("", dress(text, PATTERN, 0, new String[] {"p"}, new int[] {2}, checks), "pattern");
        int[] patterned = Widgets.render(text);
        Check.isTrue(Arrays.stream(patterned).anyMatch(p -> (p >> 8 & 0xFF) > 100)
                        && Arrays.stream(patterned).noneMatch(p -> (p >> 16 & 0xFF) > 100), "green squares");
        for (String[] wrong : new String[][] {{PATTERN, "$.effects[0].pattern|there is no picture \"p\"||"},
                     {"{", "$|"}, {"{\"effects\": 1}", "$.effects|"}}) {
            String said = dress(text, wrong[0]);
            Check.isTrue(said.startsWith(wrong[1]), said);
        }
        Check.isTrue(dress(text, PATTERN, 0, new String[] {"p"}, new int[] {3}, checks)
                .contains("no whole rows"), "ragged");
        Check.isTrue(dress(text, PATTERN, 0, new String[] {"p"}, new int[] {2}, (int[]) null)
                .contains("no picture"), "null picture");
        Check.equal(0, Sdk.number(text, "GetEffectLeftOffset"), "no effects are left");
    }

    static void fontsAreFamiliesInOrder() {
        Object text = laidOut("ab");
        int[] alone = Widgets.render(text);
        int family = family(FontTest.FONT, "");
        Check.isTrue(family >= 0, "family");
        Check.equal(-1, family("/nowhere.ttf", ""), "no font");
        Check.isTrue(!(Boolean) Sdk.extension("setFamilies", text, new int[] {family, 99}, 0), "number");
        Check.isTrue(!(Boolean) Sdk.extension("setFamilies", text, new int[0], 0), "none");
        Check.isTrue((Boolean) Sdk.extension("setFamilies", text, new int[] {family}, 0), "set");
        Check.isTrue(Arrays.equals(alone, Widgets.render(text)), "the same picture");
    }

    private static int family(String file, String variations) {
        return (Integer) Sdk.extension("addFamily", new String[] {file}, new int[1], new int[1],
                new boolean[1], new String[] {variations}, "", 0);
    }

    static void wholeInkMakesRoom() {
        Object text = Widgets.text(new TextView());
        TextView narrow = Widgets.view(10, 8);
        Sdk.flag(text, "SetView", narrow);
        Sdk.flag(text, "SetLayout", new Layout("WW", 1));
        Check.equal("", dress(text, "{}", WHOLE_INK, new String[0], new int[0]), "dress");
        int[] frame = new int[6];
        Check.isTrue((Boolean) Sdk.extension("measure", text, frame), "measure");
        int[] drawn = new int[6];
        int[] pixels = (int[]) Sdk.extension("render", text, drawn);
        Check.isTrue(Arrays.equals(frame, drawn), "frames");
        Check.equal(frame[0] * frame[1], pixels.length, "pixels");
        Check.equal(frame[0], 10 + frame[2] + frame[4], "width");
        Check.isTrue(frame[4] > 0, "room for the second letter");
        Check.isTrue(Sdk.extension("render", text, new int[2]) == null, "a short frame");
        Check.isTrue(Sdk.extension("render", text, null) == null, "no frame");
    }

    static void fadingMultipliesTheAlpha() {
        Object text = laidOut("ab");
        Sdk.extension("fade", text, 0.5f);
        int most = Arrays.stream(Widgets.render(text)).map(p -> p >>> 24).max().getAsInt();
        Check.isTrue(most == 127 || most == 128, "alpha " + most);
        Sdk.extension("fade", text, Float.NaN);
        Check.isTrue(Arrays.stream(Widgets.render(text)).allMatch(p -> p >>> 24 == 0), "nothing");
    }

    /** Every failed allocation, in C++ or in the runtime, is an answer. */
    static void nothingIsThrown() {
        String full = "{\"fillOpacity\": 0.5, \"effects\": [" + STROKE
                + ", {\"type\": \"pattern\", \"pattern\": \"p\"}]}";
        boolean reached = true;
        int failures = 0;
        for (int n = 1; reached; n += 7) {
            Object text = laidOut("ab");
            Probe.failAllocation(n);
            String said = dress(text, full, 0, new String[] {"p"}, new int[] {1}, new int[] {-1});
            Object pixels = Sdk.extension("render", text, new int[6]);
            reached = Probe.endAllocationFailure();
            failures += said.isEmpty() && pixels != null ? 0 : 1;
        }
        for (String function : new String[] {"GetByteArrayElements", "GetIntArrayElements",
                     "GetFloatArrayElements", "NewByteArray", "NewIntArray"}) {
            Object text = laidOut("ab");
            Probe.failCall(function, 1);
            dress(text, "{\"effects\": 1}", 0, new String[] {"p"}, new int[] {1}, new int[] {-1});
            dress(text, full, 0, new String[] {"p"}, new int[] {1}, new int[] {-1});
            Sdk.extension("render", text, new int[6]);
            Probe.reset();
            Check.equal(0, Probe.outstanding(), function);
        }
        Check.isTrue(failures == 0 || failures > 5, "failures: " + failures);
    }
}
