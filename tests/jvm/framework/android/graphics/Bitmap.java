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

    public int getWidth() { return width; }
    public int getHeight() { return height; }
    public void getPixels(
            int[] target, int offset, int stride, int x, int y, int columns, int rows) {
        System.arraycopy(pixels, 0, target, offset, columns * rows);
    }
}
