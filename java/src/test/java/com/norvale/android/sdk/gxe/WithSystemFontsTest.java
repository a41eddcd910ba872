package com.norvale.android.sdk.gxe;

import static org.junit.Assert.assertEquals;
import static org.junit.Assert.assertFalse;
import static org.junit.Assert.assertTrue;

import android.graphics.Color;
import android.graphics.fonts.FontVariationAxis;
import android.text.FontConfig;
import android.widget.TextView;
import com.norvale.android.sdk.gxe.font.FontManager;
import java.util.Arrays;
import org.junit.Test;

/** The framework's own configuration class; it holds for the process, of which this is the last by its name. */
public class WithSystemFontsTest extends NativeTest {
    private static FontConfig.Family family(String name, String languages, String fontFile) {
        FontConfig.Font font = new FontConfig.Font(
                fontFile, 0, new FontVariationAxis[0], 400, false, null);
        return new FontConfig.Family(name, new FontConfig.Font[] {font}, languages,
                FontConfig.Family.VARIANT_DEFAULT);
    }

    /** Opaque pixels of a text that names no font. */
    private static long inkOf(String sample, String fontToMeasureWith) {
        TextView view = layOut(textView(sample, fontToMeasureWith, 48), 0);
        view.setTextColor(Color.BLACK);
        try (GxText text = new GxText()) {
            text.setSystemFont(false);
            text.setFontFamilyName("sans-serif");
            text.setSource(view);
            return Arrays.stream(text.renderPixels()).filter(p -> p == Color.BLACK).count();
        }
    }

    @Test
    public void theConfigurationOfTheSystemServesTextsWithoutAFont() {
        assertFalse(FontManager.hasSystemFonts());
        FontConfig config = new FontConfig(
                new FontConfig.Family[] {family("sans-serif", null, LATIN),
                    family(null, "und-Thai", THAI)},
                new FontConfig.Alias[0]);
        FontManager.setFontConfig(config);
        FontManager.setFontConfig(config); // ignored
        assertTrue(FontManager.hasSystemFonts());
        assertTrue(inkOf("Ag", LATIN) > 100);
        // A family of a script is loaded when a text needs it.
        assertTrue(inkOf("กข", THAI) > 100);

        GxTextView view = new GxTextView(context());
        view.setTextStyle(new TextStyle.Builder().setText("Ag")
                .addEffect(ShadowEffect.outer().build()).build());
        draw(layOut(view, 0), 0);
        assertEquals(1, view.getRenderCount());
    }
}
