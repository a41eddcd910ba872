package com.norvale.android.sdk.gxe;

import android.content.res.Resources;
import java.io.ByteArrayOutputStream;
import java.io.IOException;
import java.io.InputStream;

/** A file of the app's resources as it is. */
final class RawResource {
    private RawResource() {}

    /** Throws IllegalArgumentException with its name when it cannot be read. */
    static byte[] read(Resources resources, int number) {
        try (InputStream in = resources.openRawResource(number)) {
            ByteArrayOutputStream bytes = new ByteArrayOutputStream();
            byte[] buffer = new byte[16384];
            for (int count = in.read(buffer); count >= 0; count = in.read(buffer)) {
                bytes.write(buffer, 0, count);
            }
            return bytes.toByteArray();
        } catch (IOException e) {
            throw new IllegalArgumentException(
                    resources.getResourceName(number) + " cannot be read", e);
        }
    }
}
