package com.norvale.android.sdk.gxe;

/** Has the first natives only: those that are registered before one is missing work. */
public class GxText {
    private int mHandle = -1;

    private native void GxText_finalize();
    private native int GxText_AddInnerShadowTextEffect(
            float angle, float distance, float size, int color, float opacity);
}
