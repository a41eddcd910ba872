package com.norvale.android.sdk.gxe;

import android.graphics.Bitmap;
import androidx.annotation.NonNull;
import java.io.IOException;

/** Gives the pictures of patterns. */
@FunctionalInterface
public interface PatternLoader {
    /**
     * Gives one picture. Its pixels are read by {@link Bitmap#getPixels}, straight; so that
     * translucent ones keep their colours, decode it with {@link
     * android.graphics.BitmapFactory.Options#inPremultiplied} switched off.
     *
     * @param pattern what {@link PatternEffect#getPattern} says
     * @return the picture, which is only read
     * @throws IOException when there is none
     */
    @NonNull
    Bitmap load(@NonNull String pattern) throws IOException;
}
