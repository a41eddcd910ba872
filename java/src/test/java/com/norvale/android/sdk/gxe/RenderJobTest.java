package com.norvale.android.sdk.gxe;

import static org.junit.Assert.assertArrayEquals;
import static org.junit.Assert.assertEquals;
import static org.junit.Assert.assertNull;
import static org.junit.Assert.assertTrue;

import android.graphics.Bitmap;
import android.graphics.Color;
import java.lang.ref.WeakReference;
import java.util.ArrayDeque;
import java.util.ArrayList;
import java.util.List;
import java.util.Queue;
import java.util.concurrent.Executor;
import java.util.concurrent.ExecutorService;
import java.util.concurrent.Executors;
import java.util.concurrent.RejectedExecutionException;
import java.util.concurrent.TimeUnit;
import org.junit.Before;
import org.junit.Test;
import org.robolectric.shadows.ShadowLooper;

/** Views whose pictures an executor draws, and pictures that come too late. */
public class RenderJobTest extends NativeTest {
    /** What the executor has been given. */
    private final Queue<Runnable> waiting = new ArrayDeque<>();

    @Before
    public void forgetPictures() {
        PictureCache.clear();
    }

    private static TextStyle style() {
        return new TextStyle.Builder().setFont(LATIN).setSize(40).setColor(Color.BLACK)
                .addEffect(new StrokeEffect.Builder().setColor(Color.RED).setSize(2).build())
                .build();
    }

    private static GxTextView view(String text) {
        GxTextView view = new GxTextView(context());
        view.setTextStyle(style());
        view.setText(text);
        return layOut(view, 400);
    }

    private GxTextView waitingView(String text) {
        GxTextView view = view(text);
        view.setRenderExecutor(waiting::add);
        return view;
    }

    private static int[] shown(GxTextView view) {
        return pixels(draw(layOut(view, 400), 10));
    }

    /** What a view of that text shows with effects. */
    private static int[] styled(String text) {
        return shown(view(text));
    }

    private static int[] plain(String text) {
        GxTextView view = view(text);
        view.setTextStyle(style().toBuilder().clearEffects().build());
        return shown(view);
    }

    private void runAll() {
        for (Runnable job = waiting.poll(); job != null; job = waiting.poll()) {
            job.run();
        }
    }

    private static void deliver() {
        ShadowLooper.idleMainLooper();
    }

    @Test
    public void aViewIsPlainUntilItsPictureIsThere() {
        GxTextView view = waitingView("Title");
        assertArrayEquals(plain("Title"), shown(view));
        shown(view);
        assertEquals("asked for once", 1, waiting.size());
        runAll();
        deliver();
        int[] drawn = shown(view);
        assertEquals(1, view.getRenderCount());
        PictureCache.clear();
        assertArrayEquals(styled("Title"), drawn);

        // Out of the cache there is nothing to wait for, and without an executor neither.
        assertArrayEquals(drawn, shown(waitingView("Title")));
        view.setText("Other");
        view.setRenderExecutor(null);
        assertArrayEquals(styled("Other"), shown(view));
        assertTrue(waiting.isEmpty());
    }

    @Test
    public void aPictureThatComesTooLateIsNotShown() {
        GxTextView view = waitingView("First");
        shown(view);
        view.setText("Second"); // before the first has begun
        shown(view);
        assertEquals(2, waiting.size());
        waiting.remove().run();
        deliver();
        assertArrayEquals(plain("Second"), shown(view));
        assertEquals(0, view.getRenderCount());

        waiting.remove().run(); // drawn, and not handed over yet
        view.setTextStyle(style().toBuilder().setText("Third").build());
        shown(view);
        deliver();
        assertArrayEquals(plain("Third"), shown(view));
        runAll();
        deliver();
        int[] third = shown(view);
        PictureCache.clear();
        assertArrayEquals(styled("Third"), third);
    }

    @Test
    public void aDetachedViewTakesNothingAndAsksAgainWhenItIsBack() {
        GxTextView view = waitingView("Title");
        shown(view);
        view.onDetachedFromWindow();
        runAll();
        deliver();
        assertEquals(0, PictureCache.size());
        view.onAttachedToWindow();
        shown(view);
        runAll(); // drawn this time
        view.onDetachedFromWindow();
        deliver();
        assertEquals(0, view.getRenderCount());
        view.onAttachedToWindow();
        int[] back = shown(view);
        PictureCache.clear();
        assertArrayEquals("out of the cache", styled("Title"), back);
        assertTrue(waiting.isEmpty());
    }

    /** With a loader of patterns that knows the view, as those of apps do. */
    private static GxTextView patternedView(Executor executor) {
        GxTextView view = new GxTextView(context());
        view.setPatternLoader(name -> Bitmap.createBitmap(
                view.getContext() == null ? 1 : 4, 4, Bitmap.Config.ARGB_8888));
        view.setTextStyle(style().toBuilder().setText("Title")
                .addEffect(new PatternEffect.Builder().setPattern("squares").build()).build());
        view.setRenderExecutor(executor);
        return layOut(view, 400);
    }

    @Test
    public void neitherJobsNorTheCacheKeepAView() throws InterruptedException {
        for (Executor executor : new Executor[] {waiting::add, null}) {
            WeakReference<GxTextView> view = new WeakReference<>(patternedView(executor));
            shown(view.get());
            for (int i = 0; i < 100 && view.get() != null; i++) {
                System.gc();
                Thread.sleep(10);
            }
            assertNull(view.get());
        }
        assertEquals(1, waiting.size());
        assertTrue(PictureCache.size() > 0);
        runAll();
        deliver();
    }

    @Test
    public void anExecutorThatRefusesLeavesTheTextPlain() {
        GxTextView view = view("Title");
        view.setRenderExecutor(job -> {
            throw new RejectedExecutionException("shut down");
        });
        assertArrayEquals(plain("Title"), shown(view));
    }

    /** Rows of a list that are bound to other titles while their pictures are drawn. */
    @Test
    public void reboundRowsShowTheirLastTitles() throws InterruptedException {
        ExecutorService executor = Executors.newFixedThreadPool(3);
        List<GxTextView> rows = new ArrayList<>();
        for (int title = 0; title < 60; title++) {
            GxTextView row = title < 10 ? view("") : rows.get(title % 10);
            if (title < 10) {
                row.setRenderExecutor(executor);
                rows.add(row);
            }
            row.setText("Title " + title);
            shown(row);
            deliver();
        }
        executor.shutdown();
        assertTrue(executor.awaitTermination(60, TimeUnit.SECONDS));
        deliver();
        for (int i = 0; i < rows.size(); i++) {
            int[] shown = shown(rows.get(i));
            PictureCache.clear();
            assertArrayEquals(styled("Title " + (50 + i)), shown);
        }
    }
}
