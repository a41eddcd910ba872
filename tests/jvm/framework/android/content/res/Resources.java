package android.content.res;

import android.graphics.Typeface;
import android.util.DisplayMetrics;
import java.io.InputStream;

/** None: no app is there. */
public class Resources {
    public Typeface getFont(int id) { return null; }
    public DisplayMetrics getDisplayMetrics() { return new DisplayMetrics(); }
    public int getIdentifier(String name, String type, String app) { return 0; }
    public String getResourceName(int id) { return null; }
    public InputStream openRawResource(int id) { return null; }
}
