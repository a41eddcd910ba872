package gxtest;

import android.graphics.Paint;
import android.text.FontConfig;
import android.text.Layout;
import android.text.SpannableString;
import android.text.style.BackgroundColorSpan;

/** What natives take they give back. */
final class MemoryTest {
    private static final int ROUNDS = 1000;
    private static final int BATCHES = 8;
    private static final long NOISE = 64 * 1024;

    private MemoryTest() {}

    static void aThousandTextsLeaveNativeMemoryAsItWas() {
        byte[] garbage = new byte[10_000];
        Layout layout = new Layout(new SpannableString("Hello, memory")
                                           .with(new BackgroundColorSpan(-1), 0, 3), 1);
        expectFlat(() -> {
            Object text = Widgets.text(Widgets.view(200, 60));
            Sdk.number(text, "AddStrokeTextEffect", 3f, 0xFFFF0000, 1f, 0, 1);
            Sdk.flag(text, "SetFont2", "garbage", garbage);
            Sdk.flag(text, "SetPaint", new Paint());
            Sdk.flag(text, "SetLayout", layout);
            Widgets.render(text);
            Widgets.render(text);
            Sdk.call(text, "finalize");
        });
    }

    static void configurationsThatFailLeaveNativeMemoryAsItWas() {
        FontConfig.Font font = new FontConfig.Font(FontTest.FONT);
        FontConfig.Family good = new FontConfig.Family(null, "und-Arab", font, font);
        FontConfig.Family bad = new FontConfig.Family(null, "und-Arab", font) {
            @Override
            public int getVariant() { throw new IllegalStateException("from a family"); }
        };
        FontConfig config = new FontConfig(good, good, bad);
        Probe.forgetFontConfig();
        expectFlat(() -> Sdk.fonts("SetFontConfig", config));
    }

    // A leak grows in every batch. The runtime's own memory, its compiler's above all, comes to rest
    // after some; what it frees at once can hide a leak, but hardly in two batches in a row.
    private static void expectFlat(Runnable round) {
        run(round, ROUNDS / 10);
        StringBuilder growths = new StringBuilder();
        int flat = 0;
        for (int batch = 0; batch < BATCHES && flat < 2; batch++) {
            long before = Probe.nativeBytes();
            run(round, ROUNDS);
            long growth = Probe.nativeBytes() - before;
            growths.append(' ').append(growth);
            flat = growth < NOISE ? flat + 1 : 0;
        }
        Check.isTrue(flat == 2, "grown in each " + ROUNDS + " rounds by bytes:" + growths);
    }

    private static void run(Runnable round, int count) {
        for (int i = 0; i < count; i++) {
            round.run();
            Probe.takeLog();
        }
    }
}
