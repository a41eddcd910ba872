package com.norvale.android.sdk.gxe;

import static org.junit.Assume.assumeFalse;

import android.content.Context;
import android.graphics.Bitmap;
import android.graphics.Canvas;
import android.graphics.Typeface;
import android.util.TypedValue;
import android.view.View;
import android.view.ViewGroup;
import android.widget.TextView;
import com.norvale.android.sdk.gxe.util.NativeLibrary;
import java.io.File;
import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.nio.file.Paths;
import java.util.List;
import org.junit.BeforeClass;
import org.junit.runner.RunWith;
import org.robolectric.RobolectricTestRunner;
import org.robolectric.RuntimeEnvironment;
import org.robolectric.annotation.Config;
import org.robolectric.annotation.GraphicsMode;

/**
 * What the tests with libgxtext.so share: the framework of Android 10 with the platform's own text
 * and graphics code under it, fonts of the distribution, and views that were laid out.
 */
@RunWith(RobolectricTestRunner.class)
@GraphicsMode(GraphicsMode.Mode.NATIVE)
@Config(sdk = 29, manifest = Config.NONE)
public abstract class NativeTest {
    static final String LATIN = font("truetype/noto/NotoSans-Regular.ttf");
    static final String LATIN_BOLD = font("truetype/noto/NotoSans-Bold.ttf");
    static final String ARABIC = font("truetype/noto/NotoNaskhArabic-Regular.ttf");
    static final String DEVANAGARI = font("truetype/noto/NotoSansDevanagari-Regular.ttf");
    static final String THAI = font("truetype/noto/NotoSansThai-Regular.ttf");
    static final String CJK = font("opentype/noto/NotoSansCJK-Regular.ttc");

    @BeforeClass
    public static void loadLibrary() {
        String folder = System.getProperty("gxtext.library.dir", "");
        assumeFalse("no libgxtext.so: set gxtext.library.dir", folder.isEmpty());
        NativeLibrary.load(new File(folder, "libgxtext.so").getAbsolutePath());
    }

    static Context context() {
        return RuntimeEnvironment.getApplication();
    }

    static String font(String path) {
        return new File(System.getProperty("gxtext.font.dir"), path).getPath();
    }

    /** Adds a line to a file of what was measured. */
    static void report(String file, List<String> lines) throws IOException {
        Path folder = Paths.get(System.getProperty("gxtext.report.dir"));
        Files.createDirectories(folder);
        Files.write(folder.resolve(file), lines);
    }

    static TextView textView(CharSequence text, String fontFile, float size) {
        TextView view = new TextView(context());
        view.setTypeface(Typeface.createFromFile(fontFile));
        view.setTextSize(TypedValue.COMPLEX_UNIT_PX, size);
        view.setText(text);
        return view;
    }

    /** Measures and places the view at 0, 0; a width of 0 is as wide as it likes. */
    static <T extends View> T layOut(T view, int width) {
        if (view.getLayoutParams() == null) {
            view.setLayoutParams(new ViewGroup.LayoutParams(
                    ViewGroup.LayoutParams.WRAP_CONTENT, ViewGroup.LayoutParams.WRAP_CONTENT));
        }
        view.measure(width == 0
                        ? View.MeasureSpec.makeMeasureSpec(0, View.MeasureSpec.UNSPECIFIED)
                        : View.MeasureSpec.makeMeasureSpec(width, View.MeasureSpec.EXACTLY),
                View.MeasureSpec.makeMeasureSpec(0, View.MeasureSpec.UNSPECIFIED));
        view.layout(0, 0, view.getMeasuredWidth(), view.getMeasuredHeight());
        return view;
    }

    static Bitmap draw(View view, int margin) {
        Bitmap bitmap = Bitmap.createBitmap(view.getWidth() + 2 * margin,
                view.getHeight() + 2 * margin, Bitmap.Config.ARGB_8888);
        Canvas canvas = new Canvas(bitmap);
        canvas.translate(margin, margin);
        view.draw(canvas);
        return bitmap;
    }

    static int[] pixels(Bitmap bitmap) {
        int[] pixels = new int[bitmap.getWidth() * bitmap.getHeight()];
        bitmap.getPixels(pixels, 0, bitmap.getWidth(), 0, 0, bitmap.getWidth(),
                bitmap.getHeight());
        return pixels;
    }
}
