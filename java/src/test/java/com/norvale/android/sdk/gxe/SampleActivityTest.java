package com.norvale.android.sdk.gxe;

import static org.junit.Assert.assertEquals;
import static org.junit.Assert.assertTrue;

import android.graphics.Bitmap;
import android.graphics.drawable.BitmapDrawable;
import android.view.ViewGroup;
import android.widget.ImageView;
import com.norvale.android.sdk.gxe.sample.SampleActivity;
import java.io.IOException;
import java.io.OutputStream;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.nio.file.Paths;
import java.util.Arrays;
import java.util.regex.Matcher;
import java.util.regex.Pattern;
import org.junit.Test;
import org.robolectric.Robolectric;

/** The example as an app runs it; writes a picture of it beside the reports. */
public class SampleActivityTest extends NativeTest {
    private static String read(String path) throws IOException {
        return new String(
                Files.readAllBytes(Paths.get(System.getProperty("gxtext.root.dir"), path)),
                StandardCharsets.UTF_8);
    }

    @Test
    public void theDocumentationQuotesTheExample() throws IOException {
        String example = read("examples/android/src/main/java/com/norvale/android/sdk/gxe/sample/"
                + "SampleActivity.java");
        Matcher block = Pattern.compile("```java\n(.*?)```", Pattern.DOTALL)
                .matcher(read("docs/java.md"));
        int count = 0;
        for (; block.find(); count++) {
            assertTrue(block.group(1), example.contains(block.group(1)));
        }
        assertEquals(2, count);
    }

    @Test
    public void theExampleStartsAndDrawsItsTexts() throws IOException {
        SampleActivity activity = Robolectric.buildActivity(SampleActivity.class).setup().get();
        ViewGroup content = activity.findViewById(android.R.id.content);
        ViewGroup column = (ViewGroup) content.getChildAt(0);
        layOut(column, 900);
        Bitmap picture = draw(column, 0);
        Path folder = Paths.get(System.getProperty("gxtext.report.dir"));
        Files.createDirectories(folder);
        try (OutputStream out = Files.newOutputStream(folder.resolve("example.png"))) {
            picture.compress(Bitmap.CompressFormat.PNG, 100, out);
        }
        assertEquals(4, column.getChildCount());
        for (int i = 0; i < 3; i++) {
            assertTrue("text " + i,
                    ((GxTextView) column.getChildAt(i)).getRenderCount() > 0);
        }
        Bitmap alone = ((BitmapDrawable) ((ImageView) column.getChildAt(3)).getDrawable())
                .getBitmap();
        assertTrue(Arrays.stream(pixels(alone)).anyMatch(pixel -> pixel == 0xFFFFFFFF));
    }
}
