package android.graphics;

import android.os.LocaleList;

/** Settable stand-in: every value is a field. */
public class Paint {
    public enum Align { LEFT, CENTER, RIGHT }

    public float textScaleX = 1f;
    public float textSkewX;
    public float letterSpacing;
    public boolean elegantTextHeight;
    public int flags = 0x1 | 0x100 | 0x400;
    public String fontFeatureSettings;
    public LocaleList textLocales;
    public Align textAlign;
    public float textSize = 12f;
    public boolean fakeBoldText;

    public float getTextScaleX() { return textScaleX; }
    public float getTextSkewX() { return textSkewX; }
    public float getLetterSpacing() { return letterSpacing; }
    public boolean isElegantTextHeight() { return elegantTextHeight; }
    public int getFlags() { return flags; }
    public String getFontFeatureSettings() { return fontFeatureSettings; }
    public LocaleList getTextLocales() { return textLocales; }
    public Align getTextAlign() { return textAlign; }
    public void setTextSkewX(float textSkewX) { this.textSkewX = textSkewX; }
    public int getColor() { throw new AssertionError("getColor is not to be called"); }
    public float getTextSize() { return textSize; }
    public boolean isFakeBoldText() { return fakeBoldText; }
}
