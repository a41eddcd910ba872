package com.norvale.android.sdk.gxe;

import static org.junit.Assert.assertArrayEquals;
import static org.junit.Assert.assertEquals;
import static org.junit.Assert.assertFalse;
import static org.junit.Assert.assertThrows;
import static org.junit.Assert.assertTrue;

import android.graphics.Bitmap;
import android.graphics.Color;
import android.graphics.Paint;
import android.graphics.Typeface;
import android.widget.TextView;
import com.norvale.android.sdk.gxe.font.FontManager;
import com.norvale.android.sdk.gxe.util.GxError;
import java.io.IOException;
import java.lang.reflect.Field;
import java.nio.file.Files;
import java.nio.file.Paths;
import java.util.AbstractList;
import java.util.Arrays;
import java.util.Collections;
import java.util.List;
import org.junit.Test;

/** The object itself: its life, its arguments, its fonts and effects. */
public class GxTextTest extends NativeTest {
    private static final TextEffect STROKE = new StrokeEffect.Builder().setSize(6).build();

    private static int inkCount(int[] pixels) {
        int count = 0;
        for (int pixel : pixels) {
            count += pixel >>> 24 != 0 ? 1 : 0;
        }
        return count;
    }

    /** Pixels of "Ag" in a font that was put on the text before. */
    private static int inkOf(GxText text) {
        text.setSource(layOut(textView("Ag", LATIN, 48), 0));
        return inkCount(text.renderPixels());
    }

    private static int handleOf(GxText text) throws ReflectiveOperationException {
        Field handle = GxText.class.getDeclaredField("mHandle");
        handle.setAccessible(true);
        return handle.getInt(text);
    }

    private static void setHandle(GxText text, int value) throws ReflectiveOperationException {
        Field handle = GxText.class.getDeclaredField("mHandle");
        handle.setAccessible(true);
        handle.setInt(text, value);
    }

    @Test
    public void pictureIsTheViewPlusTheMarginsOfTheEffects() {
        TextView view = layOut(textView("Ag", LATIN, 48), 0);
        view.setTextColor(0xFF336699);
        try (GxText text = new GxText()) {
            text.setFont(LATIN);
            text.setSource(view);
            TextImage plain = text.render();
            assertEquals(view.getWidth(), plain.getBitmap().getWidth());
            assertEquals(0, plain.getLeftMargin());
            assertTrue(Arrays.stream(pixels(plain.getBitmap())).anyMatch(p -> p == 0xFF336699));

            text.setEffects(Collections.singletonList(STROKE));
            text.setSource(view);
            TextImage stroked = text.render();
            Bitmap bitmap = stroked.getBitmap();
            assertTrue(stroked.getLeftMargin() >= 6 && stroked.getBottomMargin() >= 6);
            assertEquals(view.getWidth() + stroked.getLeftMargin() + stroked.getRightMargin(),
                    bitmap.getWidth());
            assertEquals(view.getHeight() + stroked.getTopMargin() + stroked.getBottomMargin(),
                    bitmap.getHeight());
            assertTrue(inkCount(pixels(bitmap)) > inkCount(pixels(plain.getBitmap())));

            text.setEffects(Collections.emptyList());
            text.setSource(view);
            assertEquals(0, text.getLeftMargin());
            assertEquals(inkCount(pixels(plain.getBitmap())), inkCount(text.renderPixels()));
        }
    }

    private static int[] drawWith(TextEffect effect) {
        try (GxText text = new GxText()) {
            text.setFont(LATIN);
            text.setEffects(Collections.singletonList(effect));
            text.setSource(layOut(textView("Ag", LATIN, 48), 0));
            return text.renderPixels();
        }
    }

    @Test
    public void theAlphaOfAColourFadesItsEffect() {
        int alpha = 0x80;
        assertArrayEquals(
                drawWith(ShadowEffect.outer().setColor(0xFFFF0000).setOpacity(alpha / 255f)
                        .build()),
                drawWith(ShadowEffect.outer().setColor(0x80FF0000).setOpacity(1).build()));
        assertArrayEquals(
                drawWith(new LinearGradientEffect.Builder()
                        .addStop(new ColorStop(Color.RED, alpha / 255f, 0)).build()),
                drawWith(new LinearGradientEffect.Builder().addStop(0x80FF0000, 0).build()));
    }

    @Test
    public void aClosedObjectRefusesAllButClosing() throws Exception {
        GxText text = new GxText();
        text.setFont(LATIN);
        assertTrue(handleOf(text) >= 0);
        text.close();
        text.close();
        assertTrue(text.isClosed());
        Runnable[] calls = {
            () -> text.setFont(LATIN), () -> text.setEffects(Collections.singletonList(STROKE)),
            () -> text.setLineLimit(1), text::render, text::renderPixels, text::getLeftMargin,
            () -> text.setSource(new TextView(context())),
        };
        for (int i = 0; i < calls.length; i++) {
            assertThrows("call " + i, IllegalStateException.class, calls[i]::run);
        }
        new GxText().close(); // never bound
    }

    @Test
    public void anObjectThatIsClosedWhileItsArgumentsAreReadStaysClosed() throws Exception {
        GxText text = new GxText();
        List<TextEffect> effects = new AbstractList<>() {
            @Override
            public TextEffect get(int index) {
                text.close();
                return STROKE;
            }

            @Override
            public int size() {
                return 1;
            }
        };
        assertThrows(IllegalStateException.class, () -> text.setEffects(effects));
        assertEquals("no native object that nobody releases", -1, handleOf(text));
    }

    @Test
    public void aPictureThatCannotBeDrawnIsNotTheOneBefore() {
        TextView view = layOut(textView("Ag", LATIN, 48), 0);
        try (GxText text = new GxText()) {
            text.setFont(LATIN);
            text.setSource(view);
            int[] before = text.renderPixels();
            int width = view.getWidth();
            int height = view.getHeight();
            view.layout(0, 0, 100_000, 100_000);
            text.setView(view);
            assertThrows(GxTextException.class, text::render);
            view.layout(0, 0, width, height);
            text.setSource(view);
            assertArrayEquals(before, text.renderPixels());
        }
    }

    @Test
    public void aReleasedHandleIsReportedWithItsMeaning() throws Exception {
        GxText gone = new GxText();
        gone.setFont(LATIN);
        int handle = handleOf(gone);
        gone.close();
        GxText stale = new GxText();
        setHandle(stale, handle);
        GxTextException e = assertThrows(GxTextException.class, () -> stale.setFont(LATIN));
        assertEquals(GxError.NOT_BOUND, e.getErrorCode());
        assertTrue(e.getMessage(), e.getMessage().contains("19, no native text object"));
        stale.close();
    }

    @Test
    public void aForgottenObjectIsReleasedWhenCollected() throws Exception {
        int handle = bindAndForget();
        for (int i = 0; i < 100 && isBound(handle); i++) {
            System.gc();
            System.runFinalization();
            Thread.sleep(10);
        }
        assertFalse(isBound(handle));
    }

    private static int bindAndForget() throws ReflectiveOperationException {
        GxText text = new GxText();
        text.setPaint(new Paint());
        return handleOf(text);
    }

    private static boolean isBound(int handle) throws ReflectiveOperationException {
        GxText probe = new GxText();
        setHandle(probe, handle);
        try {
            probe.setPaint(new Paint());
            return true;
        } catch (GxTextException e) {
            return false;
        } finally {
            setHandle(probe, -1);
        }
    }

    @Test
    public void wrongArgumentsAreNamed() {
        try (GxText text = new GxText()) {
            assertEquals("view", assertThrows(NullPointerException.class,
                    () -> text.setSource(null)).getMessage());
            assertEquals("file", assertThrows(NullPointerException.class,
                    () -> text.setFont(null)).getMessage());
            assertTrue(assertThrows(IllegalArgumentException.class,
                    () -> text.setLineLimit(-1)).getMessage().startsWith("lines: -1"));
            assertTrue(assertThrows(IllegalArgumentException.class,
                    () -> text.setSource(new TextView(context()))).getMessage()
                    .contains("has not been laid out"));
            assertTrue(assertThrows(IllegalArgumentException.class,
                    () -> text.setView(new TextView(context()))).getMessage()
                    .contains("no size yet: 0 x 0"));
            assertTrue(assertThrows(GxTextException.class,
                    () -> text.setFont("no-such-file.ttf")).getMessage()
                    .contains("is no readable file"));
            assertTrue(assertThrows(GxTextException.class,
                    () -> text.setFont("garbage", new byte[] {1, 2, 3})).getMessage()
                    .startsWith("data (3 bytes, name \"garbage\") is not a usable font"));
            assertThrows(GxTextException.class,
                    () -> text.setFont(context().getAssets(), "no-such-asset.ttf"));
        }
        assertThrows(IllegalArgumentException.class,
                () -> FontManager.insertFontData("", new byte[1]));
        assertThrows(GxTextException.class,
                () -> FontManager.insertFontData("garbage2", new byte[1]));
        assertThrows(IllegalArgumentException.class, () -> FontManager.setFontConfig("fonts"));
    }

    /** A picture is either of the text, or there is a reason why there is none. */
    @Test
    public void whatIsMissingOrNoNumberIsNamedAndNoBlankPicture() {
        TextView view = layOut(textView("Ag", LATIN, 48), 0);
        try (GxText text = new GxText()) {
            assertNamed("no paint", text::render);
            text.setPaint(view.getPaint());
            assertNamed("call setLayout or setSource", text::render);
            assertNamed("call setView or setSource", () -> text.setLayout(view.getLayout()));
            text.setView(view);
            assertNamed("no layout", text::render);
        }
        for (float wrong : new float[] {Float.NaN, Float.POSITIVE_INFINITY}) {
            Paint paint = new Paint(view.getPaint());
            paint.setTextScaleX(wrong);
            try (GxText text = new GxText()) {
                assertTrue(assertThrows(IllegalArgumentException.class,
                        () -> text.setPaint(paint)).getMessage().contains("textScaleX: " + wrong));
            }
        }
    }

    private static void assertNamed(String part, Runnable call) {
        String message = assertThrows(IllegalStateException.class, call::run).getMessage();
        assertTrue(message, message.contains(part));
    }

    @Test
    public void fontsComeFromFilesBytesAndTheFontManager() throws IOException {
        byte[] bytes = Files.readAllBytes(Paths.get(LATIN));
        FontManager.insertFontData("inserted.ttf", bytes);
        try (GxText file = new GxText(); GxText data = new GxText(); GxText name = new GxText()) {
            file.setFont(LATIN);
            data.setFont("given.ttf", bytes);
            name.setFont("inserted.ttf");
            int ink = inkOf(file);
            assertTrue(ink > 100);
            assertEquals(ink, inkOf(data));
            assertEquals(ink, inkOf(name));
        }
    }

    /** By index, in a file, among the assets and as bytes under a name. */
    @Test
    public void fontsOfACollectionAreTold() throws IOException {
        int japanese = 0;
        int chinese = 2;
        String asset = "fonts/NotoSansCJK-Regular.ttc";
        FontManager.insertFontData("collection.ttc", Files.readAllBytes(Paths.get(CJK)));
        int[][] drawn = new int[3][];
        for (int index : new int[] {japanese, chinese}) {
            TextView view = textView("直骨", CJK, 48);
            view.setTypeface(new Typeface.Builder(CJK).setTtcIndex(index).build());
            layOut(view, 0);
            try (GxText file = new GxText(); GxText among = new GxText(); GxText name = new GxText()) {
                file.setFont(CJK, index, "");
                among.setFont(context().getAssets(), asset, index, "");
                name.setFont("collection.ttc", index, "");
                file.setSource(view);
                drawn[index] = file.renderPixels();
                for (GxText other : new GxText[] {among, name}) {
                    other.setSource(view);
                    assertArrayEquals(drawn[index], other.renderPixels());
                }
                assertThrows(GxTextException.class,
                        () -> among.setFont(context().getAssets(), asset, 99, ""));
                assertThrows(GxTextException.class, () -> name.setFont("collection.ttc", 99, ""));
            }
        }
        assertFalse(Arrays.equals(drawn[japanese], drawn[chinese]));

        // A view measures with the same one.
        int[] hashes = new int[2];
        for (int i = 0; i < 2; i++) {
            GxTextView view = new GxTextView(context());
            view.setTextStyle(TextStyle.fromJson("{\"text\": \"直骨\", \"size\": 48, \"font\": \""
                    + (i == 0 ? CJK : asset) + "\", \"fontIndex\": 2, \"color\": \"#000000\","
                    + "\"effects\": [{\"type\": \"stroke\", \"size\": 1}]}"));
            hashes[i] = Arrays.hashCode(pixels(draw(layOut(view, 0), 0)));
            assertEquals(1, view.getRenderCount());
        }
        assertEquals(hashes[0], hashes[1]);
    }

    @Test
    public void lineLimitsAndLimitsInPixelsDecideWhatIsDrawn() {
        TextView view = layOut(textView("H\nH\nH", LATIN, 40), 0);
        view.setMaxHeight(10000); // the view then answers -1 for its lines
        assertEquals(-1, view.getMaxLines());
        layOut(view, 0);
        try (GxText text = new GxText()) {
            text.setFont(LATIN);
            text.setSource(view);
            int three = inkCount(text.renderPixels());
            view.setMaxLines(1);
            text.setSource(view); // three lines are laid out still, one is shown
            int one = inkCount(text.renderPixels());
            assertEquals(three, 3 * one);
            view.setMaxHeight(10000);
            text.setView(view); // by its parts as by itself
            text.setLayout(view.getLayout());
            assertEquals(three, inkCount(text.renderPixels()));
        }
    }
}
