package gxtest;

import android.graphics.Paint;
import android.os.LocaleList;
import android.text.FontConfig;
import android.text.Layout;
import android.text.SpannableString;
import android.text.style.BackgroundColorSpan;
import android.widget.TextView;
import java.util.Arrays;

/** Natives that run out of memory fail; nothing crosses into the runtime and nothing is lost. */
final class AllocationTest {
    private AllocationTest() {}

    private interface Call {
        Object run(Object text);
    }

    static void everyFailedAllocationIsAFailureValue() {
        Paint paint = new Paint();
        paint.fontFeatureSettings = "'liga' on, 'smcp' on, 'kern' off";
        paint.textLocales = new LocaleList("ja-JP,zh-Hant-TW,ko-KR");
        TextView view = Widgets.view(40, 30);
        Layout layout = new Layout(new SpannableString("a long enough text \uD83D\uDE00")
                                           .with(new BackgroundColorSpan(-1), 0, 3),
                3);
        FontConfig config = new FontConfig(
                new FontConfig.Family(null, "und-Arab", new FontConfig.Font(FontTest.FONT)));
        int calls = failEach("SetLine", text -> Sdk.call(text, "SetLine", 1))
                + failEach("SetPaint", text -> Sdk.call(text, "SetPaint", paint))
                + failEach("SetView", text -> Sdk.call(text, "SetView", view))
                + failEach("SetLayout", text -> Sdk.call(text, "SetLayout", layout))
                + failEach("SetFont", text -> Sdk.call(text, "SetFont", FontTest.FONT))
                + failEach("SetFont2",
                        text -> Sdk.call(text, "SetFont2", "allocation", new byte[100]))
                + failEach("gradient",
                        text -> Sdk.call(text, "AddLinearGradientTextEffect", 0f, 1f, new int[9],
                                new float[9], new float[9], 1f))
                + failEach("SetFontConfig", text -> {
                      Probe.forgetFontConfig();
                      return Sdk.fonts("SetFontConfig", config);
                  });
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
        Paint paint = new Paint();
        paint.fontFeatureSettings = "'liga' off";
        paint.textLocales = new LocaleList("ja-JP");
        Object text = Sdk.newText();
        for (int which = 1; which <= 2; which++) {
            Probe.failCall("GetStringUTFChars", which);
            Check.equal(false, Sdk.call(text, "SetPaint", paint), "SetPaint, string " + which);
        }
        Probe.failCall("GetStringUTFChars", 1);
        Check.equal(false, Sdk.call(text, "SetLayout", new Layout("a", 1)), "SetLayout");
    }

    // Returns how many allocations the call makes; each of them has failed once.
    private static int failEach(String what, Call call) {
        int n = 0;
        boolean failed = true;
        while (failed) {
            Object text = Sdk.newText();
            Sdk.number(text, "GetEffectLeftOffset");
            n++;
            Probe.failAllocation(n);
            Object result;
            try {
                result = call.run(text);
            } finally {
                failed = Probe.endAllocationFailure();
            }
            Check.isTrue(result != null, what);
            Check.equal(0, Probe.outstanding(), what + ": not given back after allocation " + n);
            Sdk.call(text, "finalize");
        }
        return n - 1;
    }
}
