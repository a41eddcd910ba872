package gxtest;

import android.text.FontConfig;
import android.text.FontConfig.Family;
import android.text.FontConfig.Font;
import java.util.List;
import java.util.stream.Collectors;

/** The system's font configuration; the verbose log tells what is made of it. */
final class FontConfigTest {
    private FontConfigTest() {}

    private static Font font() {
        return new Font(FontTest.FONT);
    }

    // The families taken over, as "languages loaded".
    private static List<String> convert(FontConfig config) {
        Probe.forgetFontConfig();
        Probe.logEverything(true);
        Probe.takeLog();
        Check.equal(true, Sdk.fonts("SetFontConfig", config), "SetFontConfig");
        Probe.logEverything(false);
        return Probe.log()
                .stream()
                .filter(line -> line.startsWith("D/Init_GxFontManager_JNI: Family lang("))
                .map(line -> line.replaceAll(".*lang\\((.*)\\) localeListId\\(.*\\) loaded\\((.*)\\)",
                                           "$1 $2")
                                     .trim())
                .collect(Collectors.toList());
    }

    static void familiesAreChosenAndTheirFontsFiltered() {
        Font italic = font();
        italic.italic = true;
        Font helper = font();
        helper.fallbackFor = "serif";
        Font everyone = font();
        everyone.fallbackFor = "";
        Font missing = new Font("/no/such/font.ttf");
        Font nameless = new Font(null);
        Check.equal(List.of("TRUE", "und-Arab FALSE", "und-Zsye TRUE", "und-Zsym TRUE", "ja FALSE",
                            "TRUE"),
                convert(new FontConfig(new Family("sans-serif", null, font()),
                        new Family("serif", null, font()), null,
                        new Family(null, "und-Arab", null, italic, font()),
                        new Family(null, "und-Zsye", font()), new Family(null, "und-Zsym", font()),
                        new Family(null, "ko", italic, helper, missing, nameless),
                        new Family(null, "ja", everyone), new Family(null, "", font()),
                        new Family(null, "zh", (Font[]) null), new Family(null, "zh"))),
                "families");
    }

    static void aDroppedDefaultFamilyIsNotReplaced() {
        Check.equal(List.of(), convert(new FontConfig(new Family("sans-serif", null),
                                       new Family("serif", null, font()))),
                "families");
    }

    static void nothingIsAConfigurationToo() {
        Check.equal(List.of(), convert(new FontConfig()), "no families");
        Check.equal(List.of(), convert(new FontConfig((Family[]) null)), "a null array");
        Check.equal(List.of(), convert(new FontConfig(null, null)), "null families");
    }

    static void theFirstConfigurationStays() {
        Probe.forgetFontConfig();
        Check.equal(false, Sdk.fonts("SetFontConfig", (Object) null), "none");
        Check.logged(Probe.log(), "E/Init_GxFontManager_JNI: GxFontManager_SetFontConfig"
                + " - jFontConfig is NULL");
        convert(new FontConfig());
        Probe.logEverything(true);
        FontConfig unread = new FontConfig() {
            @Override
            public Family[] getFamilies() { throw new AssertionError("read"); }
        };
        Check.equal(true, Sdk.fonts("SetFontConfig", unread), "a later one");
        Check.equal(true, Sdk.fonts("SetFontConfig", (Object) null), "a later null");
        Probe.logEverything(false);
        Check.logged(
                Probe.log(), "D/Init_GxFontManager_JNI: GxFontManager_SetFontConfig - already set");
    }
}
