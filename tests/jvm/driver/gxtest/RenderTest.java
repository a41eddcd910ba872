package gxtest;

import android.graphics.Paint;
import android.text.Layout;
import java.util.Arrays;

/** Pixels. */
final class RenderTest {
    private static final int WIDTH = 120;
    private static final int HEIGHT = 80;

    private RenderTest() {}

    private static Object text() {
        Object text = Widgets.text(Widgets.view(WIDTH, HEIGHT));
        Paint paint = new Paint();
        paint.textSize = 40f;
        Sdk.flag(text, "SetPaint", paint);
        Sdk.flag(text, "SetLayout", new Layout("MMMMM", 1));
        return text;
    }

    static void theViewAndItsMarginsAreTheImage() {
        Object text = text();
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

    // Neither has a glyph, so each is drawn as U+FFFE is; what follows stands where it belongs.
    static void charactersAfterNulAndNoncharactersAreDrawn() {
        Object text = text();
        int[] expected = drawn(text, "M\uFFFEM\uFFFEM");
        Check.isTrue(Arrays.equals(expected, drawn(text, "M\uFFFFM\uFFFFM")), "U+FFFF");
        int[] cut = drawn(text, "M");
        int[] whole = drawn(text, "M\0MMM");
        int[] background = drawn(text, "M\0");
        Check.isTrue(!Arrays.equals(cut, whole) && !Arrays.equals(background, whole), "NUL");
    }

    private static int[] drawn(Object text, String string) {
        Sdk.flag(text, "SetLayout", new Layout(string, 1));
        return Widgets.render(text);
    }

    static void zeroSizesGiveAnEmptyArray() {
        Object text = Sdk.newText();
        Check.equal(0, Widgets.render(text).length, "a view without a size");
        Check.equal("[0, 0]", Arrays.toString((int[]) Sdk.call(text, "GetDrawingBitmapSize")),
                "size");
    }

    static void sizesThatNoArrayHoldsAreRefused() {
        Object text = text();
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
        Object text = text();
        Probe.failCall("NewIntArray", 1);
        Check.equal(null, Widgets.render(text), "no pixels");
        Probe.failCall("NewIntArray", 1);
        Check.equal(null, Sdk.call(text, "GetDrawingBitmapSize"), "no size");
        Check.equal(WIDTH * HEIGHT, Widgets.render(text).length, "then again");
    }
}
