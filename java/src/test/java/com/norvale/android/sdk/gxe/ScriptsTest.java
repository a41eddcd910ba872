package com.norvale.android.sdk.gxe;

import static org.junit.Assert.assertArrayEquals;
import static org.junit.Assert.assertEquals;
import static org.junit.Assert.assertThrows;
import static org.junit.Assert.assertTrue;

import android.graphics.Bitmap;
import android.graphics.Color;
import android.graphics.Typeface;
import android.os.LocaleList;
import android.text.SpannableString;
import android.text.style.BackgroundColorSpan;
import android.util.TypedValue;
import android.widget.TextView;
import java.io.File;
import java.io.IOException;
import java.util.ArrayList;
import java.util.List;
import java.util.Locale;
import java.util.Map;
import java.util.TreeMap;
import org.junit.Test;

/** Texts without a font, next to what the framework draws of them with the system's fonts. */
public class ScriptsTest extends NativeTest {
    private static final int BOX = 0xFFFF0000;
    private static final float SIZE = 64;

    /** Name, locale, text. */
    private static final String[][] SCRIPTS = {
        {"Latin", "en", "Typography"}, {"Greek", "el", "Τυπογραφία"}, {"Cyrillic", "ru", "Типографика"},
        {"Hebrew", "he", "טיפוגרפיה"}, {"Arabic", "ar", "الخط العربي"}, {"Persian", "fa", "خوشنویسی"},
        {"Devanagari", "hi", "स्वतन्त्रता"}, {"Bengali", "bn", "স্বাধীনতা"}, {"Gurmukhi", "pa", "ਆਜ਼ਾਦੀ"},
        {"Gujarati", "gu", "સ્વતંત્રતા"}, {"Tamil", "ta", "சுதந்திரம்"}, {"Telugu", "te", "స్వేచ్ఛ"},
        {"Kannada", "kn", "ಸ್ವಾತಂತ್ರ್ಯ"}, {"Malayalam", "ml", "സ്വാതന്ത്ര്യം"}, {"Sinhala", "si", "නිදහස"},
        {"Thai", "th", "เกียรติศักดิ์"}, {"Lao", "lo", "ສິດເສລີພາບ"}, {"Myanmar", "my", "လွတ်လပ်ခွင့်"},
        {"Khmer", "km", "សេរីភាព"}, {"Georgian", "ka", "თავისუფლება"}, {"Armenian", "hy", "Ազատություն"},
        {"Ethiopic", "am", "ነጻነት"}, {"Tibetan", "bo", "རང་དབང"}, {"Hangul", "ko", "자유와 평등"},
        {"Japanese", "ja", "自由と平等、直骨"}, {"Simplified Chinese", "zh-Hans", "自由与平等，直骨"},
        {"Traditional Chinese", "zh-Hant", "自由與平等，直骨"}, {"Emoji", "en", "a😀🎬👍🏽b"},
        {"mixed", "ja", "Aあब😀ع"},
    };

    private static TextView view(CharSequence text, String locale) {
        TextView view = new TextView(context());
        view.setTextLocales(LocaleList.forLanguageTags(locale));
        view.setTextSize(TypedValue.COMPLEX_UNIT_PX, SIZE);
        view.setTextColor(Color.BLACK);
        view.setPadding(8, 8, 8, 8);
        view.setText(text);
        return layOut(view, 0);
    }

    private static TextImage draw(TextView view) {
        try (GxText text = new GxText()) {
            return draw(text, view);
        }
    }

    static TextImage draw(GxText text, TextView view) {
        text.setKeepsWholeInk(true);
        text.setSource(view);
        return text.render();
    }

    /** Covered by both over covered by either. */
    static double overlap(Bitmap expected, TextImage drawn) {
        long both = 0;
        long either = 0;
        Bitmap bitmap = drawn.getBitmap();
        for (int y = 0; y < bitmap.getHeight(); y++) {
            for (int x = 0; x < bitmap.getWidth(); x++) {
                int there = Color.alpha(pixel(expected, x - drawn.getLeftMargin() + 100,
                        y - drawn.getTopMargin() + 100));
                int here = Color.alpha(bitmap.getPixel(x, y));
                both += Math.min(here, there);
                either += Math.max(here, there);
            }
        }
        return (double) both / either;
    }

    private static int pixel(Bitmap bitmap, int x, int y) {
        return x < 0 || y < 0 || x >= bitmap.getWidth() || y >= bitmap.getHeight()
                ? 0 : bitmap.getPixel(x, y);
    }

    /** Width of the line's box, as the native library measures it from the layout's lines. */
    private static int boxWidth(String text, String locale) {
        SpannableString marked = new SpannableString(text);
        marked.setSpan(new BackgroundColorSpan(BOX), 0, marked.length(), 0);
        TextView view = view(marked, locale);
        view.setTextColor(Color.TRANSPARENT);
        Bitmap bitmap = draw(view).getBitmap();
        int count = 0;
        for (int x = 0; x < bitmap.getWidth(); x++) {
            count += bitmap.getPixel(x, bitmap.getHeight() / 2) == BOX ? 1 : 0;
        }
        return count;
    }

    @Test
    public void everyScriptIsDrawnWithTheFontsOfTheFramework() throws IOException {
        List<String> lines = new ArrayList<>();
        double least = 1;
        for (String[] script : SCRIPTS) {
            TextView view = view(script[2], script[1]);
            double overlap = overlap(draw(view, 100), draw(view));
            float width = view.getLayout().getLineWidth(0);
            assertEquals(script[0], width, boxWidth(script[2], script[1]), 1);
            least = Math.min(least, overlap);
            lines.add(String.format(Locale.ROOT, "%s: overlap %.3f", script[0], overlap));
        }
        report("scripts.txt", lines);
        assertTrue(String.join("\n", lines), least >= 0.95);
    }

    @Test
    public void aViewWithEffectsHasItsLettersWhereTheyWere() {
        TextStyle unseen = new TextStyle.Builder()
                .addEffect(ShadowEffect.outer().setOpacity(0).build()).build();
        for (String text : new String[] {"自由と平等", "Typography", "الخط"}) {
            GxTextView styled = new GxTextView(context());
            styled.setTextStyle(unseen);
            TextView plain = view(text, "ja");
            for (TextView view : new TextView[] {styled, plain}) {
                view.setTextLocales(plain.getTextLocales());
                view.setTextSize(TypedValue.COMPLEX_UNIT_PX, SIZE);
                view.setTextColor(Color.BLACK);
                view.setText(text);
                layOut(view, 0);
            }
            plain.setPadding(0, 0, 0, 0);
            layOut(plain, 0);
            TextImage drawn = new TextImage(draw(styled, 100), 100, 100, 100, 100);
            assertEquals(text, 1, overlap(draw(plain, 100), drawn), 0.05);
            assertEquals(1, styled.getRenderCount());
        }
    }

    /** What was drawn before chooses no font of what comes after. */
    @Test
    public void theChoiceOfFontsIsTheTextsOwn() {
        String[] texts = {"Ab", "字ع", "Ab ♫ 😀", "\uE000", "字ع"};
        int[][] first = new int[texts.length][];
        for (int i = 0; i < texts.length; i++) {
            first[i] = SystemFamilies.of(texts[i], -1);
        }
        for (int i = texts.length - 1; i >= 0; i--) {
            assertArrayEquals(texts[i], first[i], SystemFamilies.of(texts[i], -1));
        }
        assertEquals(1, first[0].length);
        assertTrue(first[1].length < SystemFamilies.count() / 4);
    }

    @Test
    public void aFolderOfFontsTellsWhatTheListTells() {
        Map<String, String> list = new TreeMap<>();
        for (SystemFaces.Face face : SystemFaces.Api29.faces()) {
            if (face.variations.isEmpty()) {
                list.put(face.file.getName() + face.index, face.weight + " " + face.italic);
            }
        }
        assertTrue(list.size() > 150);
        File folder = SystemFaces.Api29.faces().get(0).file.getParentFile();
        Map<String, String> found = new TreeMap<>();
        for (SystemFaces.Face face : SystemFaces.facesBelow(folder)) {
            found.put(face.file.getName() + face.index, face.weight + " " + face.italic);
        }
        found.keySet().retainAll(list.keySet());
        assertEquals(list, found);
    }

    /** By their names, and as the typefaces of views for texts that name none. */
    @Test
    public void familiesAndWeightsAreThoseOfTheFramework() {
        String[] families = {"sans-serif", "sans-serif-light", "sans-serif-medium",
            "sans-serif-condensed", "sans-serif-smallcaps", "serif", "times"};
        for (String family : families) {
            for (int style = Typeface.NORMAL; style <= Typeface.BOLD_ITALIC; style++) {
                TextView view = view("Hamburgefons", "en");
                view.setTypeface(Typeface.create(family, Typeface.NORMAL), style);
                layOut(view, 0);
                try (GxText named = new GxText()) {
                    named.setFontFamilyName(family);
                    for (TextImage image : new TextImage[] {draw(named, view), draw(view)}) {
                        assertEquals(family + style, 1, overlap(draw(view, 100), image), 0.05);
                    }
                }
            }
        }
        try (GxText text = new GxText()) {
            String message = assertThrows(IllegalArgumentException.class,
                    () -> text.setFontFamilyName("Nowhere Sans")).getMessage();
            assertTrue(message, message.contains("Nowhere Sans") && message.contains("sans-serif"));
        }
    }
}
