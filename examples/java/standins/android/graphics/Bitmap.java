package android.graphics;

/** Stand-in: a picture of 32 bits a pixel on the Java heap, colours not multiplied by alpha. */
public final class Bitmap {
    public enum Config { ARGB_8888 }

    private final int[] pixels;
    private final int width;

    private Bitmap(int[] pixels, int width) {
        this.pixels = pixels;
        this.width = width;
    }

    public static Bitmap createBitmap(int[] colors, int width, int height, Config config) {
        if (colors.length < width * height) {
            throw new ArrayIndexOutOfBoundsException(
                    colors.length + " pixels are less than " + width + " x " + height);
        }
        return new Bitmap(java.util.Arrays.copyOf(colors, width * height), width);
    }

    public int getWidth() {
        return width;
    }

    public int getHeight() {
        return pixels.length / width;
    }

    public void getPixels(
            int[] target, int offset, int stride, int x, int y, int columns, int rows) {
        for (int row = 0; row < rows; row++) {
            System.arraycopy(
                    pixels, (y + row) * width + x, target, offset + row * stride, columns);
        }
    }
}
