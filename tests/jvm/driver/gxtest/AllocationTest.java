package gxtest;

import android.text.FontConfig;
import android.text.Layout;
import android.widget.TextView;
import gxtest.Natives.Native;
import java.util.Arrays;
import java.util.Map;

/** Natives that run out of memory fail; nothing crosses into the runtime and nothing is lost. */
final class AllocationTest {
    private AllocationTest() {}

    static void everyFailedAllocationIsAFailureValue() {
        FontConfig config = new FontConfig(
                new FontConfig.Family(null, "und-Arab", new FontConfig.Font(FontTest.FONT)));
        int calls = failEach("SetFontConfig", text -> {
            Probe.forgetFontConfig();
            return Sdk.fonts("SetFontConfig", config);
        });
        Map<String, Native> natives = Natives.all();
        natives.remove("SetFont3");  // frees a name with array delete when it fails
        for (Map.Entry<String, Native> each : natives.entrySet()) {
            calls += failEach(each.getKey(), each.getValue());
        }
        Check.isTrue(calls == 0 || calls > 30, "allocations seen: " + calls);
    }

    static void aFailedRenderIsNotTheFrameBefore() {
        TextView view = Widgets.view(40, 30);
        Object text = Widgets.text(view);
        boolean failed = true;
        for (int n = 1; failed; n++) {
            view.width = 40;
            Sdk.flag(text, "SetView", view);
            Sdk.flag(text, "SetLayout", new Layout("ab", 1));
            int[] before = Widgets.render(text);
            view.width = n % 2 == 0 ? 400 : 40;
            Sdk.flag(text, "SetView", view);
            Sdk.flag(text, "SetLayout", new Layout("cd", 1));
            Probe.setError(0);
            Probe.failAllocation(n);
            int[] pixels = Widgets.render(text);
            failed = Probe.endAllocationFailure();
            String what = "allocation " + n;
            if (pixels == null) {
                Check.equal(7, Sdk.error(), what + ": code");
            } else {
                Check.equal(view.width * 30, pixels.length, what + ": size");
                Check.isTrue(!Arrays.equals(before, pixels), what + ": the frame before");
            }
        }
    }

    static void aRuntimeWithoutRoomForAStringFailsTheNative() {
        Map<String, Native> natives = Natives.all();
        for (String name : new String[] {"SetPaint", "SetLayout"}) {
            for (int which = 1; which <= (name.equals("SetPaint") ? 2 : 1); which++) {
                Probe.failCall("GetStringUTFChars", which);
                Object result = natives.get(name).call(Sdk.newText());
                Check.equal(false, result, name + ", string " + which);
            }
        }
    }

    // Returns how many allocations the call makes; each of them has failed once.
    private static int failEach(String what, Native call) {
        int n = 0;
        boolean failed = true;
        while (failed) {
            Object text = Sdk.newText();
            Sdk.number(text, "GetEffectLeftOffset");
            n++;
            Probe.failAllocation(n);
            try {
                call.call(text);
            } finally {
                failed = Probe.endAllocationFailure();
            }
            Check.equal(0, Probe.outstanding(), what + ": not given back after allocation " + n);
            Sdk.call(text, "finalize");
        }
        return n - 1;
    }
}
