package com.norvale.android.sdk.gxe;

import static org.junit.Assert.assertEquals;
import static org.junit.Assert.assertNotEquals;
import static org.junit.Assert.assertNull;
import static org.junit.Assert.assertThrows;
import static org.junit.Assert.assertTrue;

import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.nio.file.Paths;
import java.util.Arrays;
import java.util.HashSet;
import java.util.List;
import java.util.Set;
import java.util.stream.Collectors;
import java.util.stream.Stream;
import org.junit.Test;

/** Styles as values and as files; needs no device and no native library. */
public class TextStyleTest {
    private static TextStyle.Builder style() {
        return new TextStyle.Builder();
    }

    private static TextStyle fullStyle() {
        return style()
                .setText("Grüße \"\\\n😀").setFont("fonts/Title-Bold.ttf").setSize(96.5f)
                .setBold(true).setItalic(false).setLetterSpacing(0.1f).setScaleX(1.25f)
                .setSkewX(-0.25f).setFontFeatures("'smcp' on").setLocale("sr-Cyrl,ja")
                .setColor(0x80123456).setBackground(0xFFABCDEF).setWidth(640)
                .setAlign(TextStyle.Align.CENTER).setPadding(1, 2, 3, 4).setLineSpacing(1.5f)
                .addEffect(new StrokeEffect.Builder().setSize(3).setColor(0xFF00FF00)
                        .setOpacity(0.5f).setCap(2).setPosition(StrokeEffect.Position.INSIDE)
                        .build())
                .addEffect(ShadowEffect.outer().setAngle(-30).setDistance(7).setSize(4)
                        .setColor(0xFF102030).setOpacity(0.25f).build())
                .addEffect(ShadowEffect.inner().setAngle(45.5f).build())
                .addEffect(new OuterGlowEffect.Builder().setSize(20).setColor(0xFF0000FF).build())
                .addEffect(new LinearGradientEffect.Builder().setAngle(0).setScale(0.7f)
                        .addStop(0xFFFF0000, 0).addStop(new ColorStop(0x8000FF00, 0.3f, 0.333f))
                        .addStop(0xFF0000FF, 1).build())
                .build();
    }

    @Test
    public void filesReadBackAsTheSameStyle() {
        TextStyle style = fullStyle();
        TextStyle read = TextStyle.fromJson(style.toJson());
        assertEquals(style, read);
        assertEquals(style.hashCode(), read.hashCode());
        assertEquals(style.toJson(), read.toJson());
        assertEquals(style, style.toBuilder().build());
        assertEquals(TextStyle.EMPTY, TextStyle.fromJson("{}"));
    }

    @Test
    public void everyFieldOfAFileArrives() {
        TextStyle read = TextStyle.fromJson("{\"$schema\": \"style.schema.json\", \"text\": \"a\","
                + "\"font\": \"serif\", \"fontIndex\": 0, \"size\": 12, \"bold\": true,"
                + "\"italic\": true, \"letterSpacing\": -0.5, \"scaleX\": 2, \"skewX\": 1,"
                + "\"fontFeatures\": \"'kern' off\", \"locale\": \"ja\", \"color\": \"#80010203\","
                + "\"opacity\": 1.0, \"background\": \"#aBcDeF\", \"width\": 300,"
                + "\"align\": \"right\", \"padding\": 8, \"lineSpacing\": 1.2, \"effects\": ["
                + "{\"type\": \"stroke\", \"position\": \"center\", \"cap\": 1}]}");
        assertEquals("a", read.getText());
        assertEquals("serif", read.getFont());
        assertEquals(12f, read.getSize(), 0);
        assertTrue(read.getBold() && read.getItalic());
        assertEquals(-0.5f, read.getLetterSpacing(), 0);
        assertEquals(2f, read.getScaleX(), 0);
        assertEquals(1f, read.getSkewX(), 0);
        assertEquals("'kern' off", read.getFontFeatures());
        assertEquals("ja", read.getLocale());
        assertEquals(0x80010203, (int) read.getColor());
        assertEquals(0xFFABCDEF, (int) read.getBackground());
        assertEquals(300, (int) read.getWidth());
        assertEquals(TextStyle.Align.RIGHT, read.getAlign());
        assertEquals(Arrays.asList(8, 8, 8, 8), read.getPadding());
        assertEquals(1.2f, read.getLineSpacing(), 0);
        StrokeEffect stroke = (StrokeEffect) read.getEffects().get(0);
        assertEquals(StrokeEffect.Position.CENTER, stroke.getPosition());
        assertEquals(1, stroke.getCap());
    }

    @Test
    public void whatAFileLeavesOutHasTheDefaultOfTheFormat() {
        List<TextEffect> read = TextStyle.fromJson("{\"effects\": [{\"type\": \"stroke\"},"
                + "{\"type\": \"outerShadow\"}, {\"type\": \"innerShadow\"},"
                + "{\"type\": \"outerGlow\"}, {\"type\": \"linearGradient\","
                + "\"stops\": [{\"color\": \"#FF0000\", \"position\": 0.5}]}]}").getEffects();
        // The defaults of src/style/style.schema.json.
        assertEquals("{\"type\":\"stroke\",\"size\":2,\"color\":\"#000000\","
                + "\"position\":\"outside\",\"opacity\":1}", read.get(0).toString());
        assertEquals("{\"type\":\"outerShadow\",\"angle\":120,\"distance\":5,\"size\":5,"
                + "\"color\":\"#000000\",\"opacity\":0.75}", read.get(1).toString());
        assertEquals(read.get(1).toString().replace("outer", "inner"), read.get(2).toString());
        assertEquals("{\"type\":\"outerGlow\",\"size\":5,\"color\":\"#FFFFFF\",\"opacity\":0.75}",
                read.get(3).toString());
        assertEquals("{\"type\":\"linearGradient\",\"angle\":90,\"scale\":1,\"stops\":["
                + "{\"color\":\"#FF0000\",\"position\":0.5}],\"opacity\":1}",
                read.get(4).toString());
        assertEquals(new StrokeEffect.Builder().build(), read.get(0));
        assertEquals(ShadowEffect.outer().build(), read.get(1));
        assertEquals(ShadowEffect.inner().build(), read.get(2));
        assertEquals(new OuterGlowEffect.Builder().build(), read.get(3));
        assertEquals(new LinearGradientEffect.Builder().addStop(0xFFFF0000, 0.5f).build(),
                read.get(4));
        assertNull(TextStyle.EMPTY.getSize());
    }

    @Test
    public void theExamplesOfTheToolAreReadOrRefusedForWhatJavaLacks() throws IOException {
        List<Path> files;
        try (Stream<Path> all = Files.list(
                Paths.get(System.getProperty("gxtext.root.dir"), "examples", "styles"))) {
            files = all.filter(f -> f.toString().endsWith(".json")).collect(Collectors.toList());
        }
        int read = 0;
        for (Path file : files) {
            try {
                TextStyle style = TextStyle.fromJson(Files.readString(file));
                assertEquals(file.toString(), style, TextStyle.fromJson(style.toJson()));
                read++;
            } catch (IllegalArgumentException e) {
                assertTrue(file + ": " + e.getMessage(),
                        e.getMessage().contains("available from Java"));
            }
        }
        assertTrue(read + " of " + files.size(), read > 5);
    }

    @Test
    public void wrongFilesAreRefusedAtTheirPlace() {
        String gradient = "{\"effects\": [{\"type\": \"linearGradient\", \"stops\": ";
        String[][] cases = {
            {"", "$: the text ends"},
            {"[]", "$: [] is not an object"},
            {"{} {}", "$: "},
            {"{\"size\": 5", "$: the text ends"},
            {"{'size': 5}", "$: "},
            {"{\"size\": NaN}", "$: "},
            {"{\"size\": 0.5}", "$.size: 0.5 is out of range 1-4096"},
            {"{\"size\": 1e999}", "$.size: Infinity is out of range 1-4096"},
            {"{\"size\": \"5\"}", "$.size: \"5\" is not a number (1-4096)"},
            {"{\"size\": null}", "$.size: null is not a number"},
            {"{\"size\": 5, \"size\": 6}", "$: the field \"size\" is given twice"},
            {"{\"skewX\": 3}", "$.skewX: 3 is out of range -2 to 2"},
            {"{\"width\": 10.0}", "$.width: 10.0 is not an integer (1-65535)"},
            {"{\"bold\": 1}", "$.bold: 1 is not true or false"},
            {"{\"text\": \"a\\u0000b\"}", "$.text: the string contains U+0000"},
            {"{\"color\": \"red\"}", "$.color: \"red\" is not a colour"},
            {"{\"align\": \"justify\"}", "$.align: \"justify\" is not one of \"start\""},
            {"{\"padding\": [1, 2, 3]}", "$.padding: a list of padding has 4 entries"},
            {"{\"padding\": [1, 2, 3, -4]}", "$.padding[3]: -4 is out of range 0-4096"},
            {"{\"opacity\": 0.5}", "$.opacity: 0.5 is not available from Java"},
            {"{\"fontIndex\": 1}", "$.fontIndex: 1 is not available from Java"},
            {"{\"colour\": \"#000000\"}", "$.colour: unknown field; allowed: $schema, align"},
            {"{\"effects\": {}}", "$.effects: {} is not a list"},
            {"{\"effects\": [7]}", "$.effects[0]: 7 is not an object"},
            {"{\"effects\": [{}]}", "$.effects[0]: \"type\" is missing"},
            {"{\"effects\": [{\"type\": \"blur\"}]}",
                "$.effects[0].type: no effect is called \"blur\""},
            {"{\"effects\": [{\"type\": \"innerGlow\"}]}",
                "$.effects[0].type: \"innerGlow\" is not available from Java"},
            {"{\"effects\": [{\"type\": \"outerGlow\", \"stops\": []}]}",
                "$.effects[0].stops: the colour stops of a glow are not available"},
            {"{\"effects\": [{\"type\": \"stroke\"}, {\"type\": \"stroke\"}]}",
                "$.effects[1].type: a second stroke"},
            {"{\"effects\": [{\"type\": \"stroke\", \"size\": 140}]}",
                "$.effects[0].size: 140 is out of range 0-100"},
            {"{\"effects\": [{\"type\": \"stroke\", \"position\": \"over\"}]}",
                "$.effects[0].position: \"over\" is not one of"},
            {"{\"effects\": [{\"type\": \"stroke\", \"angle\": 0}]}",
                "$.effects[0].angle: unknown field; allowed: cap, color"},
            {"{\"effects\": [{\"type\": \"linearGradient\"}]}",
                "$.effects[0]: \"stops\" is missing"},
            {gradient + "[]}]}", "$.effects[0].stops: 0 stops; 1-256"},
            {gradient + "[{\"color\": \"#000000\"}]}]}",
                "$.effects[0].stops[0]: \"position\" is missing"},
            {gradient + "[{\"color\": \"#000000\", \"position\": 1},"
                + "{\"color\": \"#000000\", \"position\": 0.5}]}]}",
                "$.effects[0].stops[1].position: stops must be in order"},
            {"{\"a\":" + "[".repeat(100000), "$.a"},
        };
        for (String[] c : cases) {
            IllegalArgumentException e = assertThrows(c[0],
                    IllegalArgumentException.class, () -> TextStyle.fromJson(c[0]));
            assertTrue(c[0] + " gave " + e.getMessage(), e.getMessage().startsWith(c[1]));
        }
    }

    @Test
    public void buildersRefuseWhatIsOutOfRange() {
        StrokeEffect.Builder stroke = new StrokeEffect.Builder();
        LinearGradientEffect.Builder gradient = new LinearGradientEffect.Builder();
        Runnable[] calls = {
            () -> stroke.setSize(100.5f), () -> stroke.setSize(Float.NaN),
            () -> stroke.setOpacity(-0.1f), () -> stroke.setCap(128),
            () -> ShadowEffect.outer().setAngle(361), () -> ShadowEffect.inner().setDistance(-1),
            () -> new OuterGlowEffect.Builder().setSize(Float.POSITIVE_INFINITY),
            () -> gradient.setScale(2.1f), () -> gradient.addStop(0, 1.5f),
            () -> new LinearGradientEffect.Builder().addStop(0, 0.5f).addStop(0, 0.4f),
            () -> style().setSize(0), () -> style().setLetterSpacing(Float.NaN),
            () -> style().setWidth(65536), () -> style().setPadding(0, 0, -1, 0),
            () -> style().addEffect(stroke.build()).addEffect(stroke.build()),
        };
        for (int i = 0; i < calls.length; i++) {
            assertThrows("call " + i, IllegalArgumentException.class, calls[i]::run);
        }
        assertThrows(IllegalStateException.class, gradient::build);
        for (int i = 0; i < LinearGradientEffect.MAX_STOPS; i++) {
            gradient.addStop(i, 0.5f);
        }
        assertThrows(IllegalArgumentException.class, () -> gradient.addStop(0, 1));
    }

    @Test
    public void theEffectKeyTellsEffectsApartAndNothingElse() {
        TextEffect[] effects = {
            new StrokeEffect.Builder().build(),
            new StrokeEffect.Builder().setSize(3).build(),
            new StrokeEffect.Builder().setColor(0x00000000).build(),
            new StrokeEffect.Builder().setOpacity(0.99f).build(),
            new StrokeEffect.Builder().setCap(1).build(),
            new StrokeEffect.Builder().setPosition(StrokeEffect.Position.CENTER).build(),
            ShadowEffect.outer().build(),
            ShadowEffect.inner().build(),
            ShadowEffect.inner().setAngle(0).build(),
            ShadowEffect.inner().setDistance(0).build(),
            new OuterGlowEffect.Builder().build(),
            new LinearGradientEffect.Builder().addStop(0xFF000000, 0).build(),
            new LinearGradientEffect.Builder().addStop(new ColorStop(0xFF000000, 0.5f, 0)).build(),
            new LinearGradientEffect.Builder().addStop(0xFF000000, 1).build(),
        };
        Set<String> keys = new HashSet<>();
        Set<TextEffect> distinct = new HashSet<>(Arrays.asList(effects));
        for (TextEffect effect : effects) {
            keys.add(style().addEffect(effect).build().getEffectKey());
        }
        assertEquals(effects.length, keys.size());
        assertEquals(effects.length, distinct.size());
        assertEquals(fullStyle().getEffectKey(),
                fullStyle().toBuilder().setText("other").setSize(5).build().getEffectKey());
        assertNotEquals(fullStyle(), fullStyle().toBuilder().setSize(5).build());
        // The order of addition is the order of drawing.
        assertNotEquals(style().addEffect(effects[0]).addEffect(effects[6]).build(),
                style().addEffect(effects[6]).addEffect(effects[0]).build());
    }

    @Test
    public void aBuiltStyleDoesNotFollowItsBuilder() {
        TextStyle.Builder builder = style().setSize(5).addEffect(ShadowEffect.outer().build());
        TextStyle built = builder.build();
        builder.setSize(6).setText("more").clearEffects();
        assertEquals(5f, built.getSize(), 0);
        assertNull(built.getText());
        assertEquals(1, built.getEffects().size());
        assertThrows(UnsupportedOperationException.class, () -> built.getEffects().clear());
    }
}
