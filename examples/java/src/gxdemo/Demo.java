package gxdemo;

import android.graphics.Bitmap;
import android.graphics.Paint;
import android.widget.TextView;
import com.norvale.android.sdk.gxe.GxText;
import com.norvale.android.sdk.gxe.LinearGradientEffect;
import com.norvale.android.sdk.gxe.ShadowEffect;
import com.norvale.android.sdk.gxe.StrokeEffect;
import com.norvale.android.sdk.gxe.TextStyle;
import java.awt.Font;
import java.awt.FontFormatException;
import java.awt.image.BufferedImage;
import java.io.File;
import java.io.IOException;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.Arrays;
import javax.imageio.ImageIO;

/**
 * Pictures from the SDK in an ordinary Java runtime: {@code Demo FOLDER STYLE_FILE...} draws one
 * style made in code and each style file into the folder.
 */
public final class Demo {
    private Demo() {}

    public static void main(String[] arguments)
            throws IOException, InterruptedException, FontFormatException {
        Path folder = Files.createDirectories(Path.of(arguments[0]));
        write(draw(goldenHour()), folder.resolve("golden-hour.png"));
        for (int i = 1; i < arguments.length; i++) {
            Path file = Path.of(arguments[i]);
            TextStyle style = TextStyle.fromJson(Files.readString(file));
            String name = file.getFileName().toString().replaceFirst("[.]json$", ".png");
            write(draw(style), folder.resolve(name));
        }
        System.out.println("demo-java: " + arguments.length + " pictures in " + arguments[0]);
    }

    private static TextStyle goldenHour() {
        return new TextStyle.Builder()
                .setText("Golden hour\nin two lines")
                .setFont("DejaVu Sans")
                .setBold(true)
                .setSize(96)
                .setPadding(24)
                .addEffect(new LinearGradientEffect.Builder()
                        .setAngle(90)
                        .addStop(0xFF8A5A00, 0)
                        .addStop(0xFFFFD75E, 0.5f)
                        .addStop(0xFFFFF7D0, 1)
                        .build())
                .addEffect(new StrokeEffect.Builder().setSize(3).setColor(0xFF4A2E00).build())
                .addEffect(ShadowEffect.outer().setAngle(120).setDistance(8).setSize(10).build())
                .build();
    }

    private static Bitmap draw(TextStyle style)
            throws IOException, InterruptedException, FontFormatException {
        File fontFile = findFont(style);
        Font font = Font.createFont(Font.TRUETYPE_FONT, fontFile).deriveFont(style.getSize());
        MeasuredLayout layout = new MeasuredLayout(style.getText(), font);
        Paint paint = new Paint();
        paint.textSize = style.getSize();
        try (GxText text = new GxText()) {
            text.setFont(fontFile.getPath());
            text.setEffects(style.getEffects());
            text.setPaint(paint);
            text.setView(viewAround(layout, style));
            text.setLineLimit(layout.getLineCount());
            text.setLayout(layout);
            return text.render().getBitmap();
        }
    }

    private static TextView viewAround(MeasuredLayout layout, TextStyle style) {
        TextView view = new TextView();
        if (style.getPadding() != null) {
            view.paddingLeft = style.getPadding().get(0);
            view.paddingTop = style.getPadding().get(1);
            view.paddingRight = style.getPadding().get(2);
            view.paddingBottom = style.getPadding().get(3);
        }
        view.width = layout.pixelWidth() + view.paddingLeft + view.paddingRight;
        view.height = layout.pixelHeight() + view.paddingTop + view.paddingBottom;
        if (style.getColor() != null) {
            view.currentTextColor = style.getColor();
        }
        return view;
    }

    /** The file of the style's family, as the system's font configuration chooses it. */
    private static File findFont(TextStyle style) throws IOException, InterruptedException {
        String weight = Boolean.TRUE.equals(style.getBold()) ? ":bold" : ":regular";
        Process match = new ProcessBuilder("fc-match", "-f", "%{file}", style.getFont() + weight)
                .redirectError(ProcessBuilder.Redirect.INHERIT)
                .start();
        String file = new String(match.getInputStream().readAllBytes(), StandardCharsets.UTF_8);
        if (match.waitFor() != 0 || file.isEmpty()) {
            throw new IOException("no font file for " + style.getFont());
        }
        return new File(file);
    }

    private static void write(Bitmap bitmap, Path file) throws IOException {
        int width = bitmap.getWidth();
        int height = bitmap.getHeight();
        int[] pixels = new int[width * height];
        bitmap.getPixels(pixels, 0, width, 0, 0, width, height);
        if (Arrays.stream(pixels).allMatch(pixel -> pixel >>> 24 == 0)) {
            throw new IOException("nothing was drawn into " + file);
        }
        BufferedImage image = new BufferedImage(width, height, BufferedImage.TYPE_INT_ARGB);
        image.setRGB(0, 0, width, height, pixels, 0, width);
        if (!ImageIO.write(image, "png", file.toFile())) {
            throw new IOException("no writer for PNG files");
        }
    }
}
