package android.graphics;

/** Stand-in that is its pixels. */
public class Bitmap {
    public enum Config { ARGB_8888 }

    public final int[] pixels;
    public final int width;
    public final int height;

    private Bitmap(int[] pixels, int width, int height) {
        this.pixels = pixels;
        this.width = width;
        this.height = height;
    }

    public static Bitmap createBitmap(int[] pixels, int width, int height, Config config) {
        return new Bitmap(pixels, width, height);
    }
}
