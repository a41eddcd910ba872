package com.norvale.android.sdk.gxe;

/**
 * Natives that are looked up by their names when they are first called. {@code libgxtext.so} must
 * be loaded.
 */
final class TextExtension {
    /** Sum of these in {@link #dress}. */
    static final int WHOLE_INK = 1;
    static final int LET_INSIDE_OUT = 2;

    /** Elements of a frame. */
    static final int WIDTH = 0;
    static final int HEIGHT = 1;
    static final int LEFT = 2;
    static final int TOP = 3;
    static final int RIGHT = 4;
    static final int BOTTOM = 5;
    static final int FRAME_SIZE = 6;

    private TextExtension() {}

    /** The mistakes of a style file, for {@link StyleException#of}, or null. */
    static native byte[] check(byte[] json);

    /** Gives the object a style's look; the mistakes, or null. */
    static native byte[] dress(GxText text, byte[] json, float[] lengths, int switches,
            String[] names, int[] widths, int[][] pictures);

    /** Multiplies the alpha of the text colour until the next view. */
    static native void fade(GxText text, float opacity);

    /** Size and margins of the next picture into the frame. */
    static native boolean measure(GxText text, int[] frame);

    /** The picture, 0xAARRGGBB, straight, or null; its size and margins into the frame. */
    static native int[] render(GxText text, int[] frame);

    /** The number of a new family, or -1. */
    static native int addFamily(String[] files, int[] indices, int[] weights, boolean[] italics,
            String[] variations, String locales, int variant);

    /** Whether one of the families, negative numbers aside, has each visible character. */
    static native boolean covers(int[] families, String text);

    /** Draws with these families alone; false for a number that is none. */
    static native boolean setFamilies(GxText text, int[] families, int weight);
}
