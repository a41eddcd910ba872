package android.graphics.fonts;

public class FontStyle {
    public int getWeight() { return 400; }
    public int getSlant() { return 0; }
}
