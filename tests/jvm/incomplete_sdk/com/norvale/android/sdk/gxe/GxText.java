package com.norvale.android.sdk.gxe;

import android.content.res.AssetManager;
import android.graphics.Paint;
import android.text.Layout;
import android.widget.TextView;

/** Lacks the last native. */
public class GxText {
    private int mHandle = -1;

    private native void GxText_finalize();
    private native int GxText_AddInnerShadowTextEffect(
            float angle, float distance, float size, int color, float opacity);
    private native int GxText_AddLinearGradientTextEffect(float angle, float scale, int[] colors,
            float[] opacities, float[] positions, float opacity);
    private native int GxText_AddOuterGlowTextEffect(float size, int color, float opacity);
    private native int GxText_AddOuterShadowTextEffect(
            float angle, float distance, float size, int color, float opacity);
    private native int GxText_AddStrokeTextEffect(
            float size, int color, float opacity, int cap, int position);
    private native void GxText_ClearAllTextEffect();
    private native int[] GxText_RenderTextEffect();
    private native boolean GxText_SetFont(String path);
    private native boolean GxText_SetFont2(String name, byte[] data);
    private native boolean GxText_SetFont3(AssetManager assets, String name);
    private native boolean GxText_SetPaint(Paint paint);
    private native boolean GxText_SetLayout(Layout layout);
    private native boolean GxText_SetLine(int lines);
    private native boolean GxText_SetView(TextView view);
    private native int[] GxText_GetDrawingBitmapSize();
    private native int GxText_GetEffectLeftOffset();
    private native int GxText_GetEffectTopOffset();
    private native int GxText_GetEffectRightOffset();
    private native int GxText_GetEffectBottomOffset();
}
