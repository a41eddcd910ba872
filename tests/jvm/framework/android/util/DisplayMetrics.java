package android.util;

/** Of a screen of one pixel a dp. */
public class DisplayMetrics {
    public float scaledDensity = 1;
}
