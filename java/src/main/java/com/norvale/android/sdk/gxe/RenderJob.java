package com.norvale.android.sdk.gxe;

import android.os.Handler;
import android.os.Looper;
import android.util.Log;
import java.lang.ref.WeakReference;
import java.util.concurrent.atomic.AtomicReference;

/**
 * A picture for a view, drawn on any thread and handed over on the main one. It keeps neither the
 * view nor, once it is cancelled, the text.
 */
final class RenderJob implements Runnable {
    private static final String TAG = "GxTextView";

    private final WeakReference<GxTextView> view;
    private final PictureCache.Key key;
    /** Whoever takes it draws or closes it. */
    private final AtomicReference<GxText> text;

    RenderJob(GxTextView view, PictureCache.Key key, GxText text) {
        this.view = new WeakReference<>(view);
        this.key = key;
        text.releasePatternLoader();
        this.text = new AtomicReference<>(text);
    }

    /** What has not begun is not drawn; a picture that is done stays in the cache. */
    void cancel() {
        GxText waiting = text.getAndSet(null);
        if (waiting != null) {
            waiting.close();
        }
    }

    @Override
    public void run() {
        GxText taken = text.getAndSet(null);
        if (taken != null) {
            TextImage image = draw(taken, key);
            new Handler(Looper.getMainLooper()).post(() -> handOver(image));
        }
    }

    /** The picture, which is then in the cache; null when it cannot be drawn. Closes the text. */
    private static TextImage draw(GxText text, PictureCache.Key key) {
        try (GxText drawn = text) {
            TextImage image = drawn.render();
            PictureCache.put(key, image);
            return image;
        } catch (GxTextException | IllegalArgumentException | OutOfMemoryError e) {
            logFailure(e);
            return null;
        }
    }

    private void handOver(TextImage image) {
        GxTextView target = view.get();
        if (target != null) {
            target.take(this, image);
        }
    }

    static void logFailure(Throwable e) {
        // An app had better show a plain text than end while drawing.
        Log.e(TAG, "cannot draw the effects", e);
    }
}
