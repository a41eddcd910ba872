package android.graphics;

public class Canvas {
    public void drawBitmap(Bitmap bitmap, float left, float top, Paint paint) {}
}
