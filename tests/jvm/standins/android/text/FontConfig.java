package android.text;

/** Settable stand-in: every value is a field. */
public class FontConfig {
    public Family[] families;

    public FontConfig(Family... families) { this.families = families; }

    public Family[] getFamilies() { return families; }

    public static class Family {
        public String name;
        public Font[] fonts;
        public String languages;
        public int variant;

        public Family(String name, String languages, Font... fonts) {
            this.name = name;
            this.languages = languages;
            this.fonts = fonts;
        }

        public String getName() { return name; }
        public Font[] getFonts() { return fonts; }
        public String getLanguages() { return languages; }
        public int getVariant() { return variant; }
    }

    public static class Font {
        public String fontName;
        public int ttcIndex;
        public int weight = 400;
        public boolean italic;
        public String fallbackFor;

        public Font(String fontName) { this.fontName = fontName; }

        public String getFontName() { return fontName; }
        public int getTtcIndex() { return ttcIndex; }
        public int getWeight() { return weight; }
        public boolean isItalic() { return italic; }
        public String getFallbackFor() { return fallbackFor; }
    }
}
