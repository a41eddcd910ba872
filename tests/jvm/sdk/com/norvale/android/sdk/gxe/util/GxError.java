package com.norvale.android.sdk.gxe.util;

/** The native and the question that the library asks while it is loaded. */
public class GxError {
    private static int asked;

    private static boolean isBuildTypeEngMode() {
        asked++;
        return true;
    }

    private static native int Error_GetError();
}
