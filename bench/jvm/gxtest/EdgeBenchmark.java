package gxtest;

import android.graphics.Paint;
import android.text.Layout;
import android.widget.TextView;
import java.lang.reflect.Method;

/**
 * What the way from Java to the pixels and back costs beside the render itself: the runtime's new
 * array for the pixels, and the natives' own share, which is mostly the copy into it. Prints one line.
 */
public final class EdgeBenchmark {
    private static final int WIDTH = 1080;
    private static final int HEIGHT = 320;
    private static final int ROUNDS = 500;

    private static int[] sink;

    private EdgeBenchmark() {}

    public static void main(String[] arguments) throws ReflectiveOperationException {
        System.loadLibrary("gxtext_jvm_probe");
        Probe.install();
        System.loadLibrary("gxtext");
        TextView view = Widgets.view(WIDTH, HEIGHT);
        Object text = Widgets.text(view);
        Paint paint = new Paint();
        paint.textSize = 180f;
        Sdk.flag(text, "SetPaint", paint);
        Sdk.number(text, "AddStrokeTextEffect", 6f, 0xFFFFFFFF, 1f, 0, 1);
        Sdk.number(text, "AddOuterShadowTextEffect", 120f, 10f, 12f, 0xFF000000, 0.6f);
        Sdk.number(text, "AddLinearGradientTextEffect", 90f, 1f,
                new int[] {0xFFFFD54F, 0xFFE53935}, new float[] {1f, 1f}, new float[] {0f, 1f}, 1f);
        Layout layout = new Layout("Summer Sale", 1);
        layout.lineHeight = 200;
        Sdk.flag(text, "SetLayout", layout);

        Method render = Sdk.textNative("RenderTextEffect");
        // One at a time and the least of many: what else runs on the machine disturbs few of them.
        double through = Double.MAX_VALUE;
        double inside = Double.MAX_VALUE;
        double array = Double.MAX_VALUE;
        for (int round = 0; round < ROUNDS; round++) {
            long start = System.nanoTime();
            sink = (int[]) render.invoke(text);
            through = Math.min(through, (System.nanoTime() - start) / 1e6);
            inside = Math.min(inside, Probe.renderNanos(Sdk.handle(text), 1) / 1e6);
            start = System.nanoTime();
            sink = new int[sink.length];
            array = Math.min(array, (System.nanoTime() - start) / 1e6);
            Probe.takeLog();
        }
        double own = Math.max(0, through - inside - array);
        System.out.printf("%d x %d: %.3f ms through Java, %.3f ms inside, %.3f ms the array; own share "
                        + "%.3f ms, %.1f %%%n",
                WIDTH, HEIGHT, through, inside, array, own, 100 * own / through);
    }
}
