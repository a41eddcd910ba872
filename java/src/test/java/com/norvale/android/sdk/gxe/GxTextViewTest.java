package com.norvale.android.sdk.gxe;

import static org.junit.Assert.assertArrayEquals;
import static org.junit.Assert.assertEquals;
import static org.junit.Assert.assertFalse;
import static org.junit.Assert.assertNotEquals;
import static org.junit.Assert.assertThrows;
import static org.junit.Assert.assertTrue;

import android.graphics.Bitmap;
import android.graphics.Canvas;
import android.graphics.Color;
import android.graphics.drawable.ColorDrawable;
import android.text.Spanned;
import android.text.style.BackgroundColorSpan;
import android.view.Gravity;
import android.widget.FrameLayout;
import android.widget.TextView;
import java.util.Arrays;
import org.junit.Before;
import org.junit.Test;

/** The view: what it draws, when it draws anew, and when it leaves the drawing to its parent. */
public class GxTextViewTest extends NativeTest {
    private static final int GLOW = 20;

    @Before
    public void forgetPictures() {
        PictureCache.clear();
    }

    private static TextStyle glowing() {
        return new TextStyle.Builder().setText("Glow").setFont(LATIN).setSize(64)
                .setColor(Color.BLACK)
                .addEffect(new OuterGlowEffect.Builder().setSize(GLOW).setOpacity(1)
                        .setColor(Color.CYAN).build())
                .build();
    }

    private static GxTextView viewWith(TextStyle style) {
        GxTextView view = new GxTextView(context());
        view.setTextStyle(style);
        return layOut(view, 0);
    }

    /** The view in the middle of a parent that is wider by `room` on each side. */
    private static FrameLayout parentOf(GxTextView view, int room) {
        FrameLayout parent = new FrameLayout(context());
        FrameLayout.LayoutParams params = new FrameLayout.LayoutParams(
                FrameLayout.LayoutParams.WRAP_CONTENT, FrameLayout.LayoutParams.WRAP_CONTENT);
        params.setMargins(room, room, room, room);
        parent.addView(view, params);
        view.setTextStyle(view.getTextStyle()); // as when it is attached to a window
        return layOut(parent, 0);
    }

    private static int alphaSum(int[] pixels, int width, int left, int top, int right,
            int bottom) {
        int sum = 0;
        for (int y = top; y < bottom; y++) {
            for (int x = left; x < right; x++) {
                sum += pixels[y * width + x] >>> 24;
            }
        }
        return sum;
    }

    @Test
    public void aGlowReachesBeyondTheBoundsUncut() {
        GxTextView view = viewWith(glowing());
        int room = 2 * GLOW;
        FrameLayout parent = parentOf(view, room);
        int[] inParent = pixels(draw(parent, 0));

        TextImage image;
        try (GxText text = new GxText()) {
            text.setFont(LATIN);
            text.setKeepsWholeInk(true);
            text.setEffects(view.getTextStyle().getEffects());
            text.setSource(view);
            image = text.render();
        }
        assertTrue(image.getLeftMargin() >= GLOW && image.getLeftMargin() <= room);
        Bitmap expected = Bitmap.createBitmap(
                parent.getWidth(), parent.getHeight(), Bitmap.Config.ARGB_8888);
        image.draw(new Canvas(expected), room, room);
        assertArrayEquals(pixels(expected), inParent);

        int width = parent.getWidth();
        int height = parent.getHeight();
        assertTrue("left of the view", alphaSum(inParent, width, 0, 0, room, height) > 0);
        // What the picture holds at its own edge is next to nothing: the glow has ended there.
        int[] own = pixels(image.getBitmap());
        int ownWidth = image.getBitmap().getWidth();
        int ownHeight = image.getBitmap().getHeight();
        assertEquals(0, alphaSum(own, ownWidth, 0, 0, 1, ownHeight), ownHeight);
        assertEquals(0, alphaSum(own, ownWidth, 0, 0, ownWidth, 1), ownWidth);
    }

    @Test
    public void theParentIsLeftAloneWhenTheViewMayNotGrow() {
        GxTextView view = viewWith(glowing());
        view.setGrowsBeyondBounds(false);
        FrameLayout parent = parentOf(view, GLOW);
        assertTrue(parent.getClipChildren());
        int[] pixels = pixels(draw(parent, 0));
        assertEquals(0, alphaSum(pixels, parent.getWidth(), 0, 0, GLOW, parent.getHeight()));
        view.setGrowsBeyondBounds(true);
        assertFalse(parent.getClipChildren());
        assertFalse(parent.getClipToPadding());
    }

    @Test
    public void thePictureIsDrawnAnewOnlyWhenSomethingChanged() {
        GxTextView view = layOut(viewWith(glowing()), 400);
        draw(view, GLOW);
        draw(view, GLOW);
        assertEquals(1, view.getRenderCount());
        Runnable[] changes = {
            () -> view.setText("Other"), () -> view.setTextColor(Color.RED),
            () -> view.setTextSize(30), () -> view.setPadding(3, 3, 3, 3),
            () -> view.setGravity(Gravity.RIGHT), () -> view.setLetterSpacing(0.2f),
            () -> view.setTextScaleX(1.5f), () -> view.getPaint().setTextSkewX(-0.25f),
            () -> view.getPaint().setFakeBoldText(true),
            () -> view.setTextStyle(new TextStyle.Builder().setBackground(Color.RED)
                    .setFont(LATIN).addEffect(ShadowEffect.outer().build()).build()),
        };
        int[] before = pixels(draw(view, GLOW));
        for (int i = 0; i < changes.length; i++) {
            changes[i].run();
            layOut(view, 400);
            int[] after = pixels(draw(view, GLOW));
            draw(view, GLOW);
            assertEquals("change " + i, i + 2, view.getRenderCount());
            assertNotEquals("change " + i, Arrays.hashCode(before),
                    Arrays.hashCode(after));
            before = after;
        }
        // The same again is no change.
        view.setTextColor(view.getCurrentTextColor());
        draw(view, GLOW);
        assertEquals(changes.length + 1, view.getRenderCount());
    }

    @Test
    public void withoutEffectsItIsAPlainTextView() {
        TextStyle plain = glowing().toBuilder().clearEffects().build();
        GxTextView view = viewWith(plain);
        TextView expected = new TextView(context());
        plain.applyTo(expected);
        layOut(expected, 0);
        assertArrayEquals(pixels(draw(expected, 0)), pixels(draw(view, 0)));

        GxTextView glowing = viewWith(glowing());
        glowing.setText("");
        glowing.setHint("Hint");
        layOut(glowing, 0);
        expected.setText("");
        expected.setHint("Hint");
        layOut(expected, 0);
        assertArrayEquals(pixels(draw(expected, 0)), pixels(draw(glowing, 0)));

        glowing.setText("Icon");
        glowing.setCompoundDrawables(new ColorDrawable(Color.RED), null, null, null);
        layOut(glowing, 0);
        draw(glowing, 0);
        assertEquals(0, glowing.getRenderCount());
    }

    @Test
    public void theFontOfTheSystemServesStylesWithoutOne() {
        GxTextView view = new GxTextView(context());
        view.setTextStyle(new TextStyle.Builder().setText("Text").setColor(Color.BLACK)
                .addEffect(ShadowEffect.outer().build()).build());
        layOut(view, 0);
        int[] regular = pixels(draw(view, 0));
        view.setTextStyle(new TextStyle.Builder().setBold(true)
                .addEffect(ShadowEffect.outer().build()).build());
        layOut(view, 0);
        draw(view, 0);
        assertEquals(2, view.getRenderCount());
        assertTrue(Arrays.stream(regular).anyMatch(pixel -> pixel >>> 24 == 255));
    }

    @Test
    public void aStyleSetsWhatItSaysAndNothingElse() {
        GxTextView view = new GxTextView(context());
        view.setText("kept");
        view.setTextScaleX(1.25f);
        view.setGravity(Gravity.BOTTOM);
        view.setTextStyle(TextStyle.fromJson("{\"size\": 31, \"letterSpacing\": 0.5,"
                + "\"fontFeatures\": \"'smcp' on\", \"locale\": \"sr-Cyrl,ja\","
                + "\"color\": \"#80102030\", \"align\": \"center\", \"padding\": [1, 2, 3, 4],"
                + "\"lineSpacing\": 1.5, \"skewX\": -0.5, \"bold\": true,"
                + "\"background\": \"#FF00FF\", \"width\": 321}"));
        layOut(view, 0);
        assertEquals("kept", view.getText().toString());
        assertEquals(1.25f, view.getTextScaleX(), 0);
        assertEquals(31f, view.getTextSize(), 0);
        assertEquals(0.5f, view.getLetterSpacing(), 0);
        assertEquals("'smcp' on", view.getFontFeatureSettings());
        assertEquals("sr-Cyrl,ja", view.getTextLocales().toLanguageTags());
        assertEquals(0x80102030, view.getCurrentTextColor());
        assertEquals(Gravity.BOTTOM, view.getGravity() & Gravity.VERTICAL_GRAVITY_MASK);
        assertEquals(Gravity.CENTER_HORIZONTAL,
                view.getGravity() & Gravity.HORIZONTAL_GRAVITY_MASK);
        assertEquals(4, view.getPaddingBottom());
        assertEquals(1.5f, view.getLineSpacingMultiplier(), 0);
        assertEquals(-0.5f, view.getPaint().getTextSkewX(), 0);
        assertEquals(321, view.getWidth());
        // A second background replaces the first.
        view.setTextStyle(new TextStyle.Builder().setBackground(Color.GREEN).build());
        Spanned text = (Spanned) view.getText();
        BackgroundColorSpan[] spans =
                text.getSpans(0, text.length(), BackgroundColorSpan.class);
        assertEquals(1, spans.length);
        assertEquals(Color.GREEN, spans[0].getBackgroundColor());
    }

    @Test
    public void aFontThatDoesNotExistIsRefusedWhenItIsSet() {
        GxTextView view = viewWith(glowing());
        for (String font : new String[] {
            "/no/such/font.ttf", "no-such-asset.ttf", "Nowhere Sans"}) {
            for (TextStyle style : new TextStyle[] {
                glowing().toBuilder().setFont(font).build(),
                new TextStyle.Builder().setFont(font).build()}) {
                String message = assertThrows(RuntimeException.class,
                        () -> view.setTextStyle(style)).getMessage();
                assertTrue(message, message.contains('"' + font + '"'));
            }
        }
        assertEquals(glowing(), view.getTextStyle());
        assertEquals("Glow", view.getText().toString());
        draw(view, GLOW);
        assertEquals(1, view.getRenderCount());
    }

    @Test
    public void detachingGivesThePictureBackAndDrawingHasItAgain() {
        GxTextView view = viewWith(glowing());
        int[] before = pixels(draw(view, GLOW));
        int drawn = view.getRenderCount();
        view.onDetachedFromWindow();
        assertArrayEquals(before, pixels(draw(view, GLOW)));
        assertEquals(drawn, view.getRenderCount());
        view.onDetachedFromWindow();
        PictureCache.clear();
        assertArrayEquals(before, pixels(draw(view, GLOW)));
        assertEquals(drawn + 1, view.getRenderCount());
    }
}
