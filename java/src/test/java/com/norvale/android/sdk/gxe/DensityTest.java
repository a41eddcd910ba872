package com.norvale.android.sdk.gxe;

import static org.junit.Assert.assertEquals;
import static org.junit.Assert.assertFalse;
import static org.junit.Assert.assertTrue;

import android.graphics.Bitmap;
import android.graphics.Color;
import android.graphics.Rect;
import android.util.TypedValue;
import android.widget.FrameLayout;
import android.widget.LinearLayout;
import android.widget.TextView;
import java.io.IOException;
import java.lang.management.ManagementFactory;
import java.lang.management.ThreadMXBean;
import java.util.ArrayList;
import java.util.Collections;
import java.util.List;
import java.util.Locale;
import java.util.concurrent.ExecutorService;
import java.util.concurrent.Executors;
import java.util.concurrent.Future;
import java.util.concurrent.TimeUnit;
import org.junit.Before;
import org.junit.Test;
import org.robolectric.RuntimeEnvironment;

/** Screens of every density, lists of titles, room for effects, and texts on other threads. */
public class DensityTest extends NativeTest {
    @Before
    public void forgetPictures() {
        PictureCache.clear();
    }

    private static TextStyle title() {
        return new TextStyle.Builder().setText("Title").setUnit(TextStyle.Unit.DP).setSize(20)
                .setPadding(6).setColor(Color.BLACK)
                .addEffect(new StrokeEffect.Builder().setSize(2).setColor(Color.RED).build())
                .addEffect(ShadowEffect.outer().build()).build();
    }

    @Test
    public void lengthsFollowDensity() {
        String[] screens = {"mdpi", "xhdpi", "xxxhdpi"};
        float[] densities = {1, 2, 4};
        for (int i = 0; i < screens.length; i++) {
            RuntimeEnvironment.setQualifiers(screens[i]);
            GxTextView view = new GxTextView(context());
            view.setTextStyle(title());
            TextView plain = new TextView(context());
            plain.setText("Title");
            plain.setTextSize(TypedValue.COMPLEX_UNIT_SP, 20);
            int padding = (int) (6 * densities[i]);
            plain.setPadding(padding, padding, padding, padding);
            layOut(view, 0);
            layOut(plain, 0);
            assertEquals(screens[i], plain.getTextSize(), view.getTextSize(), 0);
            assertEquals(screens[i], plain.getWidth(), view.getWidth());
            assertEquals(screens[i], plain.getHeight(), view.getHeight());
            assertTrue(screens[i], view.getEffectMargins().left >= 2 * densities[i]);
            try (GxText text = new GxText()) {
                text.setStyle(title());
                text.setSource(view);
                assertEquals(screens[i], view.getEffectMargins().left, text.getLeftMargin());
            }
        }
        RuntimeEnvironment.setQualifiers("mdpi");
    }

    private static LinearLayout listOfTitles(int count) {
        LinearLayout list = new LinearLayout(context());
        list.setOrientation(LinearLayout.VERTICAL);
        for (int i = 0; i < count; i++) {
            GxTextView view = new GxTextView(context());
            view.setTextStyle(title());
            view.setText("Title " + i);
            list.addView(view);
        }
        return layOut(list, 600);
    }

    @Test
    public void twoHundredTitlesAreDrawnOnceAndKept() throws IOException {
        draw(listOfTitles(1), 0); // what the process does once
        PictureCache.clear();
        ThreadMXBean processor = ManagementFactory.getThreadMXBean();
        long start = System.nanoTime();
        long work = processor.getCurrentThreadCpuTime();
        LinearLayout list = listOfTitles(200);
        draw(list, 0);
        report("titles.txt", Collections.singletonList(String.format(Locale.ROOT,
                "200 titles: %.2f s, %.2f s of the processor", (System.nanoTime() - start) / 1e9,
                (processor.getCurrentThreadCpuTime() - work) / 1e9)));
        assertTrue(PictureCache.size() > 0 && PictureCache.size() <= PictureCache.CAPACITY);
        // Detached and attached again, and in another list: out of the cache.
        GxTextView first = (GxTextView) list.getChildAt(0);
        first.onDetachedFromWindow();
        first.onAttachedToWindow();
        draw(list, 0);
        assertEquals(1, first.getRenderCount());
        LinearLayout other = listOfTitles(200);
        draw(other, 0);
        int rendered = 0;
        for (int i = 0; i < 200; i++) {
            rendered += ((GxTextView) other.getChildAt(i)).getRenderCount();
        }
        assertEquals(0, rendered);
    }

    @Test
    public void aViewWithMarginsHoldsItsEffects() {
        GxTextView bare = new GxTextView(context());
        bare.setTextStyle(title());
        layOut(bare, 0);
        GxTextView view = new GxTextView(context());
        view.setTextStyle(title());
        view.setIncludesEffectMargins(true);
        layOut(view, 0);
        Rect margins = view.getEffectMargins();
        assertTrue(margins.left > 0 && margins.bottom > 0);
        assertEquals(bare.getWidth() + margins.left + margins.right, view.getWidth());
        assertEquals(bare.getHeight() + margins.top + margins.bottom, view.getHeight());
        // Nothing falls outside, and the edges are clear.
        Bitmap around = draw(view, 30);
        for (int y = 0; y < around.getHeight(); y++) {
            for (int x = 0; x < around.getWidth(); x++) {
                if (x < 30 || y < 30 || x >= 30 + view.getWidth() || y >= 30 + view.getHeight()) {
                    assertEquals(0, around.getPixel(x, y));
                }
            }
        }
        view.setIncludesEffectMargins(false);
        layOut(view, 0);
        assertEquals(bare.getWidth(), view.getWidth());
    }

    @Test
    public void parentAndGrandparentWithRoomDoNotCut() {
        FrameLayout inner = new FrameLayout(context());
        FrameLayout outer = new FrameLayout(context());
        GxTextView view = new GxTextView(context());
        inner.addView(view, new FrameLayout.LayoutParams(
                FrameLayout.LayoutParams.WRAP_CONTENT, FrameLayout.LayoutParams.WRAP_CONTENT));
        FrameLayout.LayoutParams room = new FrameLayout.LayoutParams(
                FrameLayout.LayoutParams.WRAP_CONTENT, FrameLayout.LayoutParams.WRAP_CONTENT);
        room.setMargins(40, 40, 40, 40);
        outer.addView(inner, room);
        view.setTextStyle(title().toBuilder().addEffect(
                new OuterGlowEffect.Builder().setSize(20).build()).build());
        assertFalse(inner.getClipChildren() || outer.getClipChildren());
        layOut(outer, 0);
        Bitmap drawn = draw(outer, 0);
        boolean beyond = false;
        for (int y = 0; y < drawn.getHeight(); y++) {
            beyond |= Color.alpha(drawn.getPixel(40 + view.getWidth() + 1, y)) != 0;
        }
        assertTrue(beyond);
    }

    /** Pictures that belong to no view: the main thread measures, an executor draws. */
    @Test
    public void executorsDrawTexts() throws Exception {
        ExecutorService executor = Executors.newFixedThreadPool(2);
        List<Future<TextImage>> images = new ArrayList<>();
        for (int i = 0; i < 8; i++) {
            GxText text = new GxText();
            text.setFont(LATIN);
            text.setStyle(title().scaled(2));
            text.setSource(layOut(textView("Title " + i, LATIN, 40), 0));
            images.add(executor.submit(() -> {
                try (GxText drawn = text) {
                    return drawn.render();
                }
            }));
        }
        for (Future<TextImage> image : images) {
            assertTrue(image.get(60, TimeUnit.SECONDS).getBitmap().getWidth() > 40);
        }
        executor.shutdown();
    }
}
