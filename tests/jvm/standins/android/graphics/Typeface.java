package android.graphics;

import android.content.res.AssetManager;

public class Typeface {
    public static final int NORMAL = 0;
    public static final int BOLD = 1;
    public static final int ITALIC = 2;
    public static final Typeface DEFAULT = new Typeface(false, false);

    public boolean bold;
    public boolean italic;

    public Typeface(boolean bold, boolean italic) {
        this.bold = bold;
        this.italic = italic;
    }

    public static Typeface create(String family, int style) { return new Typeface(false, false); }
    public static Typeface createFromFile(String path) { return create(path, NORMAL); }
    public static Typeface createFromAsset(AssetManager assets, String path) {
        return create(path, NORMAL);
    }

    public int getWeight() { return bold ? 700 : 400; }
    public int getStyle() { return (bold ? BOLD : NORMAL) | (italic ? ITALIC : NORMAL); }
    public boolean isBold() { return bold; }
    public boolean isItalic() { return italic; }

    public static final class Builder {
        private final String path;

        public Builder(String path) { this.path = path; }
        public Builder(AssetManager assets, String path) { this(path); }

        public Builder setTtcIndex(int index) { return this; }
        public Typeface build() { return createFromFile(path); }
    }
}
