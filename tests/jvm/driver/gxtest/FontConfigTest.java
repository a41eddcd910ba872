package gxtest;

import android.text.FontConfig;
import android.text.FontConfig.Family;
import android.text.FontConfig.Font;
import java.util.List;
import java.util.stream.Collectors;
import java.util.stream.IntStream;

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

    private static void refuses(FontConfig config, String... lines) {
        Probe.forgetFontConfig();
        Probe.takeLog();
        Check.equal(false, Sdk.fonts("SetFontConfig", config), "SetFontConfig");
        List<String> log = Probe.log();
        for (String line : lines) {
            Check.logged(log, "E/Init_GxFontManager_JNI: " + line);
        }
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

    static void everyMethodMustBeThere() {
        refuses(null, "GxFontManager_SetFontConfig - jFontConfig is NULL");
        FontConfig config = new FontConfig(new Family(null, null, font()));
        String failed = "GxFontManager_SetFontConfig - cannot convert to native families";
        Probe.hide("getFamilies");
        refuses(config, "Java Function getFamilies not found", failed);
        for (String method : new String[] {"getName", "getFonts", "getLanguages", "getVariant",
                     "getFontName", "getTtcIndex", "getWeight", "isItalic", "getFallbackFor"}) {
            Probe.reset();
            Probe.hide(method);
            refuses(config, "Java function " + method + " not found", failed);
        }
        Probe.reset();
        Check.equal(List.of("TRUE"), convert(config), "and then with all of them");
    }

    static void whatAMethodThrowsIsAFailure() {
        Font font = new Font("") {
            @Override
            public String getFontName() { throw new IllegalStateException("from a font"); }
        };
        Family family = new Family(null, null, font()) {
            @Override
            public String getLanguages() { throw new IllegalStateException("from a family"); }
        };
        FontConfig config = new FontConfig() {
            @Override
            public Family[] getFamilies() { throw new IllegalStateException("from the config"); }
        };
        String failed = "GxFontManager_SetFontConfig - cannot convert to native families";
        refuses(new FontConfig(new Family(null, "ja", font(), font)), failed);
        refuses(new FontConfig(new Family(null, "ja", font()), family), failed);
        refuses(config, failed);
        Check.equal(0, Sdk.error(), "no code is recorded");
    }

    static void aThousandFamilies() {
        Family[] families = IntStream.range(0, 1000)
                                    .mapToObj(i -> new Family(null, "und-Arab", font(), font()))
                                    .toArray(Family[]::new);
        Check.equal(1000, convert(new FontConfig(families)).size(), "families");
    }
}
