package android.graphics.fonts;

import java.io.File;

public class Font {
    public File getFile() { return null; }
    public FontStyle getStyle() { return new FontStyle(); }
}
