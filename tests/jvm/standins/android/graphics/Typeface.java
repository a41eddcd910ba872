package android.graphics;

public class Typeface {
    public boolean bold;
    public boolean italic;

    public Typeface(boolean bold, boolean italic) {
        this.bold = bold;
        this.italic = italic;
    }

    public boolean isBold() { return bold; }
    public boolean isItalic() { return italic; }
}
