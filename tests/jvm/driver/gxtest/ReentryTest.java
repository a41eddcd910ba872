package gxtest;

import android.content.res.AssetManager;
import android.graphics.Paint;
import android.graphics.Typeface;
import android.os.LocaleList;
import android.text.Layout;
import android.text.SpannableString;
import android.text.style.BackgroundColorSpan;
import android.widget.TextView;
import java.util.List;
import java.util.Map;
import java.util.TreeMap;

/**
 * The application's objects use the very text object whose native is asking them. Every native is
 * interrupted once at each place where Java code may run, by every native and by the closing of the
 * object: it goes on with an object that is there, and a closed one goes when the native returns.
 */
final class ReentryTest {
    private static final int ROUNDS = 20;
    private static final String DELETED = "D/GxTextObject: Delete GxTextObject by InstanceManager";

    private static int fonts;

    private ReentryTest() {}

    private interface Native {
        Object call(Object text);
    }

    private static Map<String, Native> natives() {
        Paint paint = new Paint();
        paint.fontFeatureSettings = "'liga' off";
        paint.textLocales = new LocaleList("ja-JP");
        paint.textAlign = Paint.Align.CENTER;
        TextView view = view();
        view.gravity = 0x50;
        view.typeface = new Typeface(true, true);
        Layout layout = layout("other text");
        AssetManager assets = new AssetManager();
        Map<String, Native> natives = new TreeMap<>();
        natives.put("SetPaint", text -> Sdk.call(text, "SetPaint", paint));
        natives.put("SetView", text -> Sdk.call(text, "SetView", view));
        natives.put("SetLine", text -> Sdk.call(text, "SetLine", 2));
        natives.put("SetLayout", text -> Sdk.call(text, "SetLayout", layout));
        natives.put("SetFont", text -> Sdk.call(text, "SetFont", FontTest.FONT));
        natives.put("SetFont2", text -> Sdk.call(text, "SetFont2", "reentry", new byte[9]));
        natives.put("SetFont3", text -> {
            String name = "reentry " + fonts++;  // a name that is known is not opened
            assets.assets.put(name, new byte[9]);
            return Sdk.call(text, "SetFont3", assets, name);
        });
        natives.put("SetFontFamilyName", text -> Sdk.call(text, "SetFontFamilyName", "serif"));
        natives.put("AddInnerShadow",
                text -> Sdk.call(text, "AddInnerShadowTextEffect", 0f, 1f, 2f, -1, 1f));
        natives.put("AddOuterShadow",
                text -> Sdk.call(text, "AddOuterShadowTextEffect", 0f, 1f, 2f, -1, 1f));
        natives.put("AddOuterGlow", text -> Sdk.call(text, "AddOuterGlowTextEffect", 2f, -1, 1f));
        natives.put("AddStroke", text -> Sdk.call(text, "AddStrokeTextEffect", 2f, -1, 1f, 0, 1));
        natives.put("AddLinearGradient",
                text -> Sdk.call(text, "AddLinearGradientTextEffect", 0f, 1f, new int[2],
                        new float[2], new float[2], 1f));
        natives.put("ClearAllTextEffect", text -> Sdk.call(text, "ClearAllTextEffect"));
        natives.put("RenderTextEffect", text -> Sdk.call(text, "RenderTextEffect"));
        natives.put("GetDrawingBitmapSize", text -> Sdk.call(text, "GetDrawingBitmapSize"));
        for (String side : new String[] {"Left", "Top", "Right", "Bottom"}) {
            String name = "GetEffect" + side + "Offset";
            natives.put(name, text -> Sdk.call(text, name));
        }
        Check.equal(Sdk.textNatives().length, natives.size() + 1, "all but finalize");
        return natives;
    }

    private static TextView view() {
        TextView view = Widgets.view(30, 20);
        view.maxLines = 3;
        return view;
    }

    private static Layout layout(String text) {
        return new Layout(new SpannableString(text).with(new BackgroundColorSpan(-1), 0, 3), 3);
    }

    // With everything that a native may find there.
    private static Object text() {
        Object text = Widgets.text(view());
        Sdk.number(text, "AddStrokeTextEffect", 2f, -1, 1f, 0, 1);
        Sdk.flag(text, "SetLayout", layout("some text"));
        Widgets.render(text);
        Probe.takeLog();
        Probe.setError(0);
        return text;
    }

    static void theClosedObjectGoesWhenTheNativeReturns() {
        Map<String, Native> natives = natives();
        Native close = text -> Sdk.call(text, "finalize");
        Native closeAndGoOn = text -> {
            close.call(text);
            natives.values().forEach(each -> each.call(text));
            return close.call(text);
        };
        int places = 0;
        for (int round = 0; round < ROUNDS; round++) {
            Native action = round % 2 == 0 ? close : closeAndGoOn;
            for (Map.Entry<String, Native> each : natives.entrySet()) {
                for (int which = 1; closeAt(which, each.getKey(), each.getValue(), action); which++) {
                    places++;
                }
            }
        }
        Check.isTrue(places > 100 * ROUNDS, "places where Java may run: " + places);
    }

    private static boolean closeAt(int which, String name, Native outer, Native close) {
        String what = name + ", closed at place " + which;
        Object text = text();
        boolean[] deletedInside = {false};
        Probe.interrupt(which, () -> {
            close.call(text);
            deletedInside[0] = deletions(Probe.log()) > 0;
            Probe.setError(0);
        });
        outer.call(text);
        boolean reached = Probe.endInterruption();
        if (!reached) {
            Sdk.call(text, "finalize");
        }
        if (deletedInside[0]) {
            Check.equal(19, Sdk.error(), what + ": deleted before the native had found it");
        } else {
            Check.equal(1, deletions(Probe.log()), what + ": deletions");
        }
        Check.equal(0, Sdk.number(text, "GetEffectLeftOffset"), what + ": afterwards");
        Check.equal(19, Sdk.error(), what + ": afterwards");
        return reached;
    }

    private static int deletions(List<String> log) {
        return (int) log.stream().filter(line -> line.startsWith(DELETED)).count();
    }

    static void anyNativeMayRunInsideAnyOther() {
        Map<String, Native> natives = natives();
        for (Map.Entry<String, Native> outer : natives.entrySet()) {
            for (Map.Entry<String, Native> inner : natives.entrySet()) {
                String what = inner.getKey() + " inside " + outer.getKey() + " at place ";
                boolean reached = true;
                for (int which = 1; reached; which++) {
                    Object text = text();
                    Object expected = outer.getValue().call(text);
                    Probe.interrupt(which, () -> inner.getValue().call(text));
                    Object result = outer.getValue().call(text);
                    reached = Probe.endInterruption();
                    if (expected instanceof Boolean) {
                        Check.equal(expected, result, what + which);
                    }
                    Check.isTrue(Widgets.render(text) != null, what + which + ": then drawn");
                    Sdk.call(text, "finalize");
                    Check.equal(1, deletions(Probe.log()), what + which + ": deletions");
                }
            }
        }
    }
}
