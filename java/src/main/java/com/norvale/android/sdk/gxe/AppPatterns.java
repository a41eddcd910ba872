package com.norvale.android.sdk.gxe;

import android.content.Context;
import android.content.res.AssetManager;
import android.graphics.Bitmap;
import android.graphics.BitmapFactory;
import java.io.File;
import java.io.FileInputStream;
import java.io.IOException;
import java.io.InputStream;

/** Pictures of patterns where a view looks by itself: an absolute path is a file, all else an asset. */
// Knows the app and not the view, which what waits for an executor must not keep.
final class AppPatterns implements PatternLoader {
    final String packageName;
    private final AssetManager assets;

    AppPatterns(Context context) {
        packageName = context.getPackageName();
        assets = context.getAssets();
    }

    @Override
    public Bitmap load(String pattern) throws IOException {
        BitmapFactory.Options options = new BitmapFactory.Options();
        options.inPremultiplied = false;
        try (InputStream in = new File(pattern).isAbsolute()
                        ? new FileInputStream(pattern) : assets.open(pattern)) {
            Bitmap picture = BitmapFactory.decodeStream(in, null, options);
            if (picture == null) {
                throw new IOException("not a picture");
            }
            return picture;
        }
    }
}
