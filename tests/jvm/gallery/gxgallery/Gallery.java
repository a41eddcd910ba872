package gxgallery;

import android.graphics.Bitmap;
import android.graphics.Paint;
import android.os.LocaleList;
import android.text.SpannableString;
import android.text.style.BackgroundColorSpan;
import android.widget.TextView;
import com.norvale.android.sdk.gxe.GxText;
import com.norvale.android.sdk.gxe.TextStyle;
import java.awt.image.BufferedImage;
import java.io.File;
import java.io.IOException;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.Arrays;
import javax.imageio.ImageIO;
import org.json.JSONArray;
import org.json.JSONException;
import org.json.JSONObject;

/**
 * {@code Gallery PROGRAM FOLDER SCALE,... STYLE_FILE...}: each style through the SDK and through the
 * program, at each scale. Where the program lays the text out and with which font files, the SDK draws it:
 * the pictures are the same bytes or the exit code is 1.
 */
public final class Gallery {
    private static final int FAKE_BOLD = 0x20;

    private Gallery() {}

    public static void main(String[] arguments) throws Exception {
        int wrong = 0;
        int count = 0;
        for (String file : Arrays.asList(arguments).subList(3, arguments.length)) {
            for (String factor : arguments[2].split(",")) {
                count++;
                float scale = Float.parseFloat(factor);
                TextStyle style = TextStyle.fromJson(Files.readString(Path.of(file)));
                String difference =
                        compare(arguments[0], Path.of(arguments[1]), Path.of(file), style, scale);
                if (difference != null) {
                    wrong++;
                    System.out.println("FAILED  " + file + " x" + scale + ": " + difference);
                }
            }
        }
        System.out.println(count + " pictures, " + wrong + " differ");
        System.exit(count == 0 || wrong > 0 ? 1 : 0);
    }

    /** What differs between the style's picture and the program's of the file, or null. */
    static String compare(String program, Path folder, Path file, TextStyle style, float scale)
            throws IOException, JSONException, InterruptedException {
        String factor = Float.toString(scale);
        Path png = folder.resolve("program.png");
        run(program, "render", file.toString(), "--scale", factor, "-o", png.toString());
        BufferedImage expected = ImageIO.read(png.toFile());
        JSONObject measured = new JSONObject(
                run(program, "measure", file.toString(), "--scale", factor, "--json"));
        JSONArray fonts = new JSONArray(
                run(program, "fonts", file.toString(), "--scale", factor, "--json"));
        Bitmap drawn = draw(style.scaled(scale), file.getParent(), measured, fonts);
        int width = expected.getWidth();
        int height = expected.getHeight();
        if (drawn.getWidth() != width || drawn.getHeight() != height) {
            return drawn.getWidth() + " x " + drawn.getHeight() + " is not " + width + " x " + height;
        }
        int[] pixels = new int[width * height];
        drawn.getPixels(pixels, 0, width, 0, 0, width, height);
        int[] wanted = expected.getRGB(0, 0, width, height, null, 0, width);
        int different = 0;
        for (int i = 0; i < pixels.length; i++) {
            different += pixels[i] == wanted[i] ? 0 : 1;
        }
        return different == 0 ? null : different + " of " + pixels.length + " pixels";
    }

    private static Bitmap draw(TextStyle style, Path folder, JSONObject measured, JSONArray fonts)
            throws JSONException {
        PlacedLines layout = new PlacedLines(textOf(style), measured, style);
        try (GxText text = new GxText()) {
            text.setPatternLoader(name -> bitmap(folder.resolve(name).toFile()));
            text.setKeepsWholeInk(true);
            text.setStyle(style);
            putFonts(text, fonts);
            text.setPaint(paint(style, fonts));
            text.setView(view(style, measured));
            text.setLineLimit(layout.getLineCount());
            text.setLayout(layout);
            return text.render().getBitmap();
        }
    }

    private static void putFonts(GxText text, JSONArray fonts)
            throws JSONException {
        for (int i = 0; i < fonts.length(); i++) {
            JSONObject face = fonts.getJSONObject(i);
            String file = face.getString("file");
            if (i == 0) {
                text.setFont(file, face.getInt("index"), face.optString("variations"));
            } else {
                text.addFallbackFont(file, face.getInt("index"), face.optString("locales", null));
            }
        }
    }

    /** As a view would hold it: the box is a span. */
    private static CharSequence textOf(TextStyle style) {
        String text = style.getText().replace('\t', ' ');
        if (style.getBackground() == null) {
            return text;
        }
        return new SpannableString(text)
                .with(new BackgroundColorSpan(style.getBackground()), 0, text.length());
    }

    private static Paint paint(TextStyle style, JSONArray fonts)
            throws JSONException {
        Paint paint = new Paint();
        paint.textSize = or(style.getSize(), 64f);
        paint.textScaleX = or(style.getScaleX(), 1f);
        paint.textSkewX = or(style.getSkewX(), 0f);
        paint.letterSpacing = or(style.getLetterSpacing(), 0f);
        paint.fontFeatureSettings = style.getFontFeatures();
        paint.textLocales = style.getLocale() == null ? null : new LocaleList(style.getLocale());
        int weight = fonts.getJSONObject(0).getInt("weight");
        String variations = style.getFontVariations();
        boolean setsWeight = variations != null && variations.contains("wght");
        if (or(style.getBold(), false) && weight < 600 && !setsWeight) {
            paint.flags |= FAKE_BOLD;
            paint.fakeBoldText = true;
        }
        return paint;
    }

    private static TextView view(TextStyle style, JSONObject measured)
            throws JSONException {
        JSONObject image = measured.getJSONObject("image");
        JSONObject margins = measured.getJSONObject("margins");
        TextView view = new TextView();
        view.width = image.getInt("width") - margins.getInt("left") - margins.getInt("right");
        view.height = image.getInt("height") - margins.getInt("top") - margins.getInt("bottom");
        if (style.getPadding() != null) {
            view.paddingLeft = style.getPadding().get(0);
            view.paddingTop = style.getPadding().get(1);
            view.paddingRight = style.getPadding().get(2);
            view.paddingBottom = style.getPadding().get(3);
        }
        view.currentTextColor = or(style.getColor(), 0xFF000000);
        view.typeface = new android.graphics.Typeface(
                or(style.getBold(), false), or(style.getItalic(), false));
        return view;
    }

    private static Bitmap bitmap(File file) throws IOException {
        BufferedImage image = ImageIO.read(file);
        int width = image.getWidth();
        return Bitmap.createBitmap(image.getRGB(0, 0, width, image.getHeight(), null, 0, width),
                width, image.getHeight(), Bitmap.Config.ARGB_8888);
    }

    static <T> T or(T value, T other) {
        return value == null ? other : value;
    }

    private static String run(String... command) throws IOException, InterruptedException {
        Process process = new ProcessBuilder(command)
                .redirectError(ProcessBuilder.Redirect.INHERIT).start();
        String answer =
                new String(process.getInputStream().readAllBytes(), StandardCharsets.UTF_8);
        if (process.waitFor() != 0) {
            throw new IOException(String.join(" ", command));
        }
        return answer;
    }
}
