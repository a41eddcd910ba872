package com.norvale.android.sdk.gxe;

import android.graphics.Bitmap;
import android.graphics.Canvas;
import androidx.annotation.NonNull;
import androidx.annotation.Px;

/** A drawn text: the picture, and how far it reaches beyond the view it was drawn for. */
public final class TextImage {
    private final Bitmap bitmap;
    private final int leftMargin;
    private final int topMargin;
    private final int rightMargin;
    private final int bottomMargin;

    TextImage(Bitmap bitmap, int leftMargin, int topMargin, int rightMargin, int bottomMargin) {
        this.bitmap = bitmap;
        this.leftMargin = leftMargin;
        this.topMargin = topMargin;
        this.rightMargin = rightMargin;
        this.bottomMargin = bottomMargin;
    }

    /**
     * The picture, view and margins together.
     *
     * @return an immutable bitmap of 32 bits a pixel
     */
    @NonNull
    public Bitmap getBitmap() {
        return bitmap;
    }

    /**
     * How far the picture reaches beyond the left side of the view.
     *
     * @return pixels; the picture's origin in the view is at minus this
     */
    @Px
    public int getLeftMargin() {
        return leftMargin;
    }

    /**
     * How far the picture reaches above the view.
     *
     * @return pixels; the picture's origin in the view is at minus this
     */
    @Px
    public int getTopMargin() {
        return topMargin;
    }

    /**
     * How far the picture reaches beyond the right side of the view.
     *
     * @return pixels
     */
    @Px
    public int getRightMargin() {
        return rightMargin;
    }

    /**
     * How far the picture reaches below the view.
     *
     * @return pixels
     */
    @Px
    public int getBottomMargin() {
        return bottomMargin;
    }

    /**
     * Draws the picture so that its text falls on that of a view.
     *
     * @param canvas where to draw
     * @param viewLeft left side of the view on the canvas, in pixels
     * @param viewTop upper side of the view on the canvas, in pixels
     */
    public void draw(@NonNull Canvas canvas, @Px float viewLeft, @Px float viewTop) {
        canvas.drawBitmap(bitmap, viewLeft - leftMargin, viewTop - topMargin, null);
    }
}
