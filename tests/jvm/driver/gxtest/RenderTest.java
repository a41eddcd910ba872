package gxtest;

import android.graphics.Paint;
import android.text.Layout;
import android.widget.TextView;
import java.util.Arrays;

/** Pixels. */
final class RenderTest {
    private static final int WIDTH = 120;
    private static final int HEIGHT = 80;
    private static final int PADDING = 15;

    private RenderTest() {}

    // Three lines of capitals that fill more than the view.
    private static Object text(int gravity) {
        TextView view = Widgets.view(WIDTH, HEIGHT);
        view.paddingLeft = PADDING;
        view.paddingTop = PADDING;
        view.paddingRight = PADDING;
        view.paddingBottom = PADDING;
        view.gravity = gravity;
        Object text = Widgets.text(view);
        Paint paint = new Paint();
        paint.textSize = 40f;
        Sdk.flag(text, "SetPaint", paint);
        Layout layout = new Layout("MMMMMMMMMMMMMMM", 3);
        layout.lineLeft = -PADDING;
        layout.lineHeight = 30;
        Sdk.flag(text, "SetLayout", layout);
        return text;
    }

    static void theViewAndItsMarginsAreTheImage() {
        Object text = text(0x33);
        int[] plain = Widgets.render(text);
        Check.equal(WIDTH * HEIGHT, plain.length, "pixels without effects");
        Check.isTrue(Arrays.stream(plain).anyMatch(pixel -> pixel == 0xFF000000), "ink");
        Sdk.number(text, "AddStrokeTextEffect", 4f, 0xFFFF0000, 1f, 0, 1);
        Check.equal("[" + WIDTH + ", " + HEIGHT + "]",
                Arrays.toString((int[]) Sdk.call(text, "GetDrawingBitmapSize")),
                "size of the last render, before the next");
        int[] stroked = Widgets.render(text);
        int width = WIDTH + Sdk.number(text, "GetEffectLeftOffset")
                + Sdk.number(text, "GetEffectRightOffset");
        int height = HEIGHT + Sdk.number(text, "GetEffectTopOffset")
                + Sdk.number(text, "GetEffectBottomOffset");
        Check.isTrue(width > WIDTH && height > HEIGHT, "margins");
        Check.equal(width * height, stroked.length, "pixels with a stroke");
        Check.equal("[" + width + ", " + height + "]",
                Arrays.toString((int[]) Sdk.call(text, "GetDrawingBitmapSize")), "size");
    }

    static void paddingCutsWhereGravityDoesNotPush() {
        int[][] cases = {
            // gravity: first column and row, end of columns and rows
            {0x11, PADDING, PADDING, WIDTH - PADDING, HEIGHT - PADDING},
            {0x33, 0, 0, WIDTH - PADDING, HEIGHT - PADDING},
            {0x35, PADDING, 0, WIDTH, HEIGHT - PADDING},
            {0x53, 0, PADDING, WIDTH - PADDING, HEIGHT},
        };
        for (int[] c : cases) {
            Object text = text(c[0]);
            int[] pixels = Widgets.render(text);
            int left = WIDTH, right = 0;
            int top = HEIGHT, bottom = 0;
            for (int i = 0; i < pixels.length; i++) {
                if (pixels[i] == 0) {
                    continue;
                }
                left = Math.min(left, i % WIDTH);
                right = Math.max(right, i % WIDTH + 1);
                top = Math.min(top, i / WIDTH);
                bottom = Math.max(bottom, i / WIDTH + 1);
            }
            String what = "gravity " + Integer.toHexString(c[0]) + ": ink in " + left + " " + top
                    + " " + right + " " + bottom;
            // The line reaches past both clips, so ink ends at them or at a gap between letters.
            Check.isTrue(left >= c[1] && left < c[1] + 9, "left, " + what);
            Check.isTrue(right <= c[3] && right > c[3] - 9, "right, " + what);
            Check.isTrue(top >= c[2], "top, " + what);
            Check.isTrue(bottom <= c[4], "bottom, " + what);
        }
    }

    static void zeroSizesGiveAnEmptyArray() {
        Object text = Sdk.newText();
        Check.equal(0, Widgets.render(text).length, "a view without a size");
        Check.equal("[0, 0]", Arrays.toString((int[]) Sdk.call(text, "GetDrawingBitmapSize")),
                "size");
    }

    static void sizesThatNoArrayHoldsAreRefused() {
        Object text = text(0x33);
        Widgets.render(text);
        int[][] sizes = {{46341, 46341}, {Integer.MAX_VALUE, 2}, {2, Integer.MAX_VALUE}};
        for (int[] size : sizes) {
            Check.isTrue(Sdk.flag(text, "SetView", Widgets.view(size[0], size[1])), "SetView");
            Check.equal(null, Widgets.render(text), Arrays.toString(size));
        }
        Sdk.number(text, "AddStrokeTextEffect", 4f, 0xFFFF0000, 1f, 0, 1);
        Sdk.flag(text, "SetView", Widgets.view(Integer.MAX_VALUE, 0));
        Check.equal(null, Widgets.render(text), "the margins pass 32 bits");
    }

    static void aRuntimeWithoutRoomGivesNull() {
        Object text = text(0x33);
        Probe.failCall("NewIntArray", 1);
        Check.equal(null, Widgets.render(text), "no pixels");
        Probe.failCall("NewIntArray", 1);
        Check.equal(null, Sdk.call(text, "GetDrawingBitmapSize"), "no size");
        Check.equal(WIDTH * HEIGHT, Widgets.render(text).length, "then again");
    }
}
