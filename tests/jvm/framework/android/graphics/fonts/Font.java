package android.graphics.fonts;

import android.os.LocaleList;
import java.io.File;

public class Font {
    public File getFile() { return null; }
    public FontStyle getStyle() { return new FontStyle(); }
    public int getTtcIndex() { return 0; }
    public LocaleList getLocaleList() { return null; }
    public FontVariationAxis[] getAxes() { return null; }
}
