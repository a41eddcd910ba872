package gxtest;

import android.graphics.Paint;
import android.text.Layout;
import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;
import java.util.concurrent.ExecutionException;
import java.util.concurrent.ExecutorService;
import java.util.concurrent.Executors;
import java.util.concurrent.Future;

/**
 * Text objects per thread, all at once over the fonts and caches that they share. Goes on for
 * {@code GXTEXT_TEST_SECONDS} from the environment, without them for some rounds.
 */
final class ThreadTest {
    private static final int THREADS = 8;
    private static final int ROUNDS = 10;
    private static final String[] STRINGS = {"Hello, threads", "\u0645\u0631\u062d\u0628\u0627",
            "\u041f\u0440\u0438\u0432\u0435\u0442", "A\u0301\u00df\ufb01 1/2"};

    private ThreadTest() {}

    static void threadsWithObjectsOfTheirOwnDoNotDisturbEachOther()
            throws InterruptedException, ExecutionException, IOException {
        byte[] font = Files.readAllBytes(Path.of(FontTest.FONT));
        List<int[]> expected = new ArrayList<>();
        for (int i = 0; i < STRINGS.length; i++) {
            expected.addAll(styled("threads", font, i));
        }
        String given = System.getenv("GXTEXT_TEST_SECONDS");
        long nanos = given == null ? 0 : Long.parseLong(given) * 1_000_000_000;
        long start = System.nanoTime();
        ExecutorService executor = Executors.newFixedThreadPool(THREADS);
        List<Future<Integer>> results = new ArrayList<>();
        for (int i = 0; i < THREADS; i++) {
            int thread = i;
            results.add(executor.submit(() -> {
                int round = 0;
                for (; nanos == 0 ? round < ROUNDS : System.nanoTime() - start < nanos; round++) {
                    int which = (thread + round) % STRINGS.length;
                    List<int[]> pictures = styled("thread " + thread, font, which);
                    for (int n = 0; n < 2; n++) {
                        Check.isTrue(Arrays.equals(expected.get(2 * which + n), pictures.get(n)),
                                "the same picture as alone");
                    }
                }
                Check.equal(0, Sdk.error(), "error of the thread");
                return 2 * round;
            }));
        }
        int renders = 0;
        for (Future<Integer> result : results) {
            renders += result.get();
        }
        executor.shutdown();
        System.out.printf("%d threads, %d renders in %.1f s%n", THREADS, renders,
                (System.nanoTime() - start) / 1e9);
    }

    // The pixels of two strings from one new text object, which is released again.
    private static List<int[]> styled(String fontName, byte[] font, int which) {
        Object text = Widgets.text(Widgets.view(200, 60));
        if (which % 2 == 1) {
            Check.isTrue(Sdk.flag(text, "SetFont2", fontName, font), "SetFont2");
        }
        Paint paint = new Paint();
        paint.textSize = 24f + which;
        Check.isTrue(Sdk.flag(text, "SetPaint", paint), "SetPaint");
        Sdk.number(text, "AddStrokeTextEffect", 3f, 0xFFFF0000, 1f, 0, 1);
        Sdk.number(text, "AddOuterShadowTextEffect", 120f, 5f, 4f, 0xFF000000, 0.7f);
        Sdk.number(text, "AddInnerShadowTextEffect", 120f, 3f, 3f, 0xFF000000, 0.5f);
        Sdk.number(text, "AddOuterGlowTextEffect", 6f, 0xFF80D8FF, 0.8f);
        Sdk.number(text, "AddLinearGradientTextEffect", 90f, 1f,
                new int[] {0xFFFFD54F, 0xFFE53935}, new float[] {1f, 1f}, new float[] {0f, 1f}, 1f);
        List<int[]> pictures = new ArrayList<>();
        for (String string : List.of(STRINGS[which], STRINGS[(which + 1) % STRINGS.length])) {
            Check.isTrue(Sdk.flag(text, "SetLayout", new Layout(string, 1)), "SetLayout");
            pictures.add(Widgets.render(text));
        }
        Sdk.call(text, "finalize");
        return pictures;
    }
}
