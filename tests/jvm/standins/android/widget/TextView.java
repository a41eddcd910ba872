package android.widget;

import android.graphics.Typeface;

/** Settable stand-in: every value is a field. */
public class TextView {
    public int currentTextColor = 0xFF000000;
    public Typeface typeface;
    public int width;
    public int height;
    public int paddingLeft;
    public int paddingRight;
    public int paddingTop;
    public int paddingBottom;
    public int gravity = 0x33;
    public int maxLines = Integer.MAX_VALUE;

    public float getTextSize() { throw new AssertionError("getTextSize is not to be called"); }
    public int getCurrentTextColor() { return currentTextColor; }
    public Typeface getTypeface() { return typeface; }
    public int getTextDirection() { throw new AssertionError("getTextDirection is not to be called"); }
    public int getLayoutDirection() {
        throw new AssertionError("getLayoutDirection is not to be called");
    }
    public int getWidth() { return width; }
    public int getHeight() { return height; }
    public int getPaddingLeft() { return paddingLeft; }
    public int getPaddingRight() { return paddingRight; }
    public int getPaddingTop() { return paddingTop; }
    public int getPaddingBottom() { return paddingBottom; }
    public int getGravity() { return gravity; }
    public int getMaxLines() { return maxLines; }
}
