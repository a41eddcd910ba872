package gxtest;

import android.text.Layout;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;
import java.util.concurrent.ExecutionException;
import java.util.concurrent.ExecutorService;
import java.util.concurrent.Executors;
import java.util.concurrent.Future;

/** One text object per thread, all at once. */
final class ThreadTest {
    private static final int THREADS = 8;
    private static final int RENDERS = 20;

    private ThreadTest() {}

    static void threadsWithObjectsOfTheirOwnDoNotDisturbEachOther()
            throws InterruptedException, ExecutionException {
        int[] expected = styled();
        ExecutorService executor = Executors.newFixedThreadPool(THREADS);
        List<Future<Boolean>> results = new ArrayList<>();
        for (int i = 0; i < THREADS; i++) {
            results.add(executor.submit(() -> {
                for (int n = 0; n < RENDERS; n++) {
                    if (!Arrays.equals(expected, styled())) {
                        return false;
                    }
                }
                return Sdk.error() == 0;
            }));
        }
        for (Future<Boolean> result : results) {
            Check.isTrue(result.get(), "the same picture, no error");
        }
        executor.shutdown();
    }

    // The pixels of a new text object, which is released again.
    private static int[] styled() {
        Object text = Widgets.text(Widgets.view(200, 60));
        Sdk.number(text, "AddStrokeTextEffect", 3f, 0xFFFF0000, 1f, 0, 1);
        Sdk.number(text, "AddOuterShadowTextEffect", 120f, 5f, 4f, 0xFF000000, 0.7f);
        Check.isTrue(Sdk.flag(text, "SetLayout", new Layout("Hello, threads", 1)), "SetLayout");
        int[] pixels = Widgets.render(text);
        Sdk.call(text, "finalize");
        return pixels;
    }
}
