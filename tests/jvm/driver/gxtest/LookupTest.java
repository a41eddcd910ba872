package gxtest;

import android.graphics.Paint;
import android.text.FontConfig;
import android.text.Layout;
import gxtest.Natives.Native;
import java.util.Arrays;
import java.util.List;
import java.util.Map;

/** The methods of Android's classes that natives look up and call: missing ones, throwing ones. */
final class LookupTest {
    /** Asked for when the rest of a view is stored. */
    private static final List<String> LATE = List.of("getCurrentTextColor", "getTypeface");

    private LookupTest() {}

    /** A native that asks objects of a class for all they have, by so many of their methods. */
    private static final class Asked {
        final String type;
        final Native asks;
        final int calls;
        final String missing;

        Asked(String type, Native asks, int calls, String missing) {
            this.type = type;
            this.asks = asks;
            this.calls = calls;
            this.missing = missing;
        }
    }

    private static List<Asked> all() {
        Map<String, Native> natives = Natives.all();
        FontConfig config = new FontConfig(
                new FontConfig.Family(null, null, new FontConfig.Font(FontTest.FONT)));
        Native setConfig = text -> {
            Probe.forgetFontConfig();
            return Sdk.fonts("SetFontConfig", config);
        };
        String text = "E/GxText_JNI: ";
        String fonts = "E/Init_GxFontManager_JNI: Java ";
        return List.of(
                new Asked("android/graphics/Paint", natives.get("SetPaint"), 10,
                        text + "Java function %s not found"),
                new Asked("android/widget/TextView", natives.get("SetView"), 10,
                        text + "GxText_SetView - Function %s not found"),
                new Asked("android/text/Layout", natives.get("SetLayout"), 9,
                        text + "GxText_SetLayout - Function %s not found"),
                new Asked("android/text/FontConfig", setConfig, 1, fonts + "Function %s not found"),
                new Asked("android/text/FontConfig$Family", setConfig, 4,
                        fonts + "function %s not found"),
                new Asked("android/text/FontConfig$Font", setConfig, 5,
                        fonts + "function %s not found"));
    }

    private static Object text() {
        Object text = Widgets.text(Widgets.view(10, 10));
        Sdk.flag(text, "SetLine", 5);
        Sdk.flag(text, "SetLayout", new Layout("ab", 2));
        Sdk.flag(text, "SetPaint", new Paint());
        return text;
    }

    private static String stateOf(Object text) {
        int handle = Sdk.handle(text);
        return Probe.paint(handle) + Probe.view(handle) + Arrays.toString(Probe.lines(handle));
    }

    static void everyMethodMustBeThere() {
        for (Asked each : all()) {
            Object text = text();
            String before = stateOf(text);
            for (String method : AndroidMethods.of(each.type)) {
                Probe.hide(method);
                Probe.takeLog();
                Check.equal(false, each.asks.call(text), method);
                Check.logged(Probe.log(), String.format(each.missing, method));
                Probe.reset();
            }
            Check.equal(before, stateOf(text), "nothing was stored");
            Check.equal(true, each.asks.call(text), "and then with all of them");
            Check.isTrue(each.type.contains("FontConfig") || !before.equals(stateOf(text)), "all");
        }
        Object text = text();
        for (String name : new String[] {"SetPaint", "SetView", "SetLayout"}) {
            Check.isTrue(!Sdk.flag(text, name, (Object) null), name);
        }
    }

    /** To the caller; but a configuration is only refused. */
    static void whatAMethodThrowsGoesOn() {
        RuntimeException thrown = new RuntimeException("from a method");
        for (Asked each : all()) {
            int calls = 0;
            for (String method : AndroidMethods.of(each.type)) {
                Probe.reset();
                Object text = text();
                String before = stateOf(text);
                Probe.throwFrom(method, thrown);
                try {
                    if (each.asks.call(text).equals(true)) {
                        continue;
                    }
                } catch (RuntimeException e) {
                    Check.equal(thrown, e, method);
                }
                calls++;
                if (!LATE.contains(method)) {
                    Check.equal(before, stateOf(text), method + ": nothing was stored");
                }
            }
            Check.equal(each.calls, calls, each.type);
        }
        Check.equal(0, Sdk.error(), "no code is recorded");
    }

    /** Methods of the objects that the getters give: one that is missing is done without. */
    static void methodsOfValuesMayBeMissing() {
        String[][] cases = {{"name", "SetPaint", "Paint.Align cannot find"},
                {"toLanguageTags", "SetPaint", "LocaleList cannot find"},
                {"isBold", "SetView", "getTypeFace cannot find"},
                {"isItalic", "SetView", "getTypeFace cannot find"},
                {"toString", "SetLayout", "getText cannot find"}};
        Map<String, Native> natives = Natives.all();
        RuntimeException thrown = new RuntimeException("from a value");
        Object text = text();
        for (String[] each : cases) {
            Native asks = natives.get(each[1]);
            Probe.throwFrom(each[0], thrown);
            Check.passesOn(thrown, () -> asks.call(text), each[0]);
            Probe.hide(each[0]);
            Check.equal(true, asks.call(text), each[0]);
            Check.logged(Probe.log(), "D/GxText_JNI: " + each[2] + " '" + each[0] + "' method id");
        }
        String state = stateOf(text);
        Check.isTrue(state.contains("locales 0, align 0"), state);
        Check.isTrue(state.contains("bold 0, italic 0"), state);
    }
}
