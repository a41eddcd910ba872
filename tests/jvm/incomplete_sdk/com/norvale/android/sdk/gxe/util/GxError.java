package com.norvale.android.sdk.gxe.util;

/** Does not say what build it is. */
public class GxError {
    private static native int Error_GetError();
}
