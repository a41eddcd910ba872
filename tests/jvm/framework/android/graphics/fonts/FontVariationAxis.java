package android.graphics.fonts;

public class FontVariationAxis {
    public String getTag() { return null; }
    public float getStyleValue() { return 0; }
}
