package android.widget;

import android.content.Context;
import android.content.res.Resources;
import android.graphics.Paint;
import android.graphics.Typeface;
import android.os.LocaleList;
import android.text.Layout;

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

    public float getTextSize() { throw unwanted(); }
    public int getCurrentTextColor() { return currentTextColor; }
    public Typeface getTypeface() { return typeface; }
    public int getTextDirection() { throw unwanted(); }
    public int getLayoutDirection() { throw unwanted(); }
    public int getWidth() { return width; }
    public int getHeight() { return height; }
    public int getPaddingLeft() { return paddingLeft; }
    public int getPaddingRight() { return paddingRight; }
    public int getPaddingTop() { return paddingTop; }
    public int getPaddingBottom() { return paddingBottom; }
    public int getGravity() { return gravity; }
    public int getMaxLines() { return maxLines; }

    public Context getContext() { throw unwanted(); }
    public Layout getLayout() { throw unwanted(); }
    public Resources getResources() { throw unwanted(); }
    public float getLineSpacingExtra() { throw unwanted(); }
    public int getMaxWidth() { throw unwanted(); }
    public Paint getPaint() { throw unwanted(); }
    public CharSequence getText() { throw unwanted(); }
    public void invalidate() { throw unwanted(); }
    public void setFontFeatureSettings(String settings) { throw unwanted(); }
    public boolean setFontVariationSettings(String settings) { throw unwanted(); }
    public void setGravity(int gravity) { throw unwanted(); }
    public void setLetterSpacing(float spacing) { throw unwanted(); }
    public void setLineSpacing(float extra, float factor) { throw unwanted(); }
    public void setPadding(int left, int top, int right, int bottom) { throw unwanted(); }
    public void setText(CharSequence text) { throw unwanted(); }
    public void setTextColor(int color) { throw unwanted(); }
    public void setTextLocales(LocaleList locales) { throw unwanted(); }
    public void setTextScaleX(float scale) { throw unwanted(); }
    public void setTextSize(int unit, float size) { throw unwanted(); }
    public void setTypeface(Typeface typeface, int style) { throw unwanted(); }
    public void setWidth(int width) { throw unwanted(); }

    private static AssertionError unwanted() {
        return new AssertionError("this method is not to be called");
    }
}
