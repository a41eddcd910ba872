package com.norvale.android.sdk.gxe;

import static org.junit.Assert.assertEquals;
import static org.junit.Assert.assertNotNull;
import static org.junit.Assert.assertTrue;

import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.nio.file.Paths;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.HashMap;
import java.util.HashSet;
import java.util.List;
import java.util.Map;
import java.util.Set;
import java.util.stream.Collectors;
import java.util.stream.Stream;
import org.junit.Test;

/**
 * The SDK's style files are the program's: held against its schema, against every style that is
 * shipped, and against the same wrong styles.
 */
public class StyleFormatTest {
    private static final Path ROOT = Paths.get(System.getProperty("gxtext.root.dir"));

    /** What the native library does not offer to Java, by type and field. */
    private static final Set<String> LACKING = new HashSet<>(Arrays.asList("fontIndex", "opacity", "fillOpacity", "canvas",
            "fontVariations",
            "outerGlow.stops", "innerGlow", "radialGradient", "pattern", "bevel", "emboss",
            "*.enabled", "*.castFrom", "*.spread", "*.choke",
            "*.fill", "*.span"));

    private static final String STOPS = "[{\"color\": \"#000000\", \"position\": 0}]";

    @Test
    public void rangesAndDefaultsAreTheSchemas() throws IOException {
        Map<?, ?> schema = (Map<?, ?>) StyleReader.parse(
                Files.readString(ROOT.resolve("src/style/style.schema.json")));
        for (Map.Entry<?, ?> property : members(schema, "properties").entrySet()) {
            String name = (String) property.getKey();
            if (!name.equals("effects") && !name.equals("$schema")) {
                checkField(name, (Map<?, ?>) property.getValue(), name,
                        value -> "{\"" + name + "\": " + value + "}");
            }
        }
        for (Map.Entry<?, ?> definition : members(schema, "$defs").entrySet()) {
            Map<?, ?> properties = members((Map<?, ?>) definition.getValue(), "properties");
            if (properties != null && properties.containsKey("type")) {
                checkEffect((String) definition.getKey(), properties);
            }
        }
    }

    private static void checkEffect(String type, Map<?, ?> properties) {
        String stops = type.endsWith("Gradient") ? ", \"stops\": " + STOPS : "";
        String start = "{\"effects\": [{\"type\": \"" + type + "\"" + stops;
        if (LACKING.contains(type)) {
            assertTrue(type, errorOf(start + "}]}").contains("available from Java"));
            return;
        }
        Map<?, ?> written = (Map<?, ?>) StyleReader.parse(
                TextStyle.fromJson(start + "}]}").getEffects().get(0).toString());
        for (Map.Entry<?, ?> property : properties.entrySet()) {
            String name = (String) property.getKey();
            Map<?, ?> field = (Map<?, ?>) property.getValue();
            if (name.equals("type") || name.equals("stops") && !stops.isEmpty()) {
                continue;
            }
            checkField(name, field, type + "." + name,
                    value -> start + ", \"" + name + "\": " + value + "}]}");
            if (isLacking(type + "." + name)) {
                continue;
            }
            if (field.containsKey("default")) {
                assertNotNull(type + "." + name + " is not there in Java", written.get(name));
                assertEquals(type + "." + name, String.valueOf(field.get("default")),
                        String.valueOf(written.get(name)));
            }
        }
    }

    /** By the field of a type, or of all types. */
    private static boolean isLacking(String key) {
        return LACKING.contains(key) || LACKING.contains(key.replaceFirst("^.*\\.", "*."));
    }

    private interface Document {
        String with(String value);
    }

    /** Values at the ends of what the schema allows are read, those beyond refused. */
    private static void checkField(String name, Map<?, ?> field, String key, Document document) {
        List<String> good = new ArrayList<>();
        List<String> bad = new ArrayList<>();
        if (isLacking(key)) {
            bad.add(name.equals("stops") ? STOPS : "0.5");
        } else if (field.containsKey("minimum")) {
            double low = Double.parseDouble(field.get("minimum").toString());
            double high = Double.parseDouble(field.get("maximum").toString());
            good.addAll(Arrays.asList(field.get("minimum").toString(), field.get("maximum").toString()));
            bad.addAll(Arrays.asList(String.valueOf(low - 1), String.valueOf(high + 1), "\"1\""));
            (field.get("type").equals("integer") ? bad : good).add(String.valueOf((low + high) / 2));
        } else if (field.containsKey("enum")) {
            ((List<?>) field.get("enum")).forEach(choice -> good.add("\"" + choice + "\""));
            bad.addAll(Arrays.asList("\"nonsense\"", "0"));
        } else if ("#/$defs/color".equals(field.get("$ref")) || name.equals("background")) {
            good.addAll(Arrays.asList("\"#12abEF\"", "\"#8012abEF\""));
            bad.addAll(Arrays.asList("\"#12abE\"", "\"red\"", "1"));
        } else if ("boolean".equals(field.get("type"))) {
            good.add("true");
            bad.add("1");
        } else if ("string".equals(field.get("type"))) {
            good.add("\"ja\""); // a language and a feature too
            bad.add("1");
        } else {
            assertEquals("no probe for " + key, "padding", name);
            good.addAll(Arrays.asList("4096", "[1, 2, 3, 4]"));
            bad.addAll(Arrays.asList("4097", "[1, 2, 3]", "[0, 0, 0, -1]"));
        }
        good.forEach(value -> assertEquals(key + ": " + value, "", errorOf(document.with(value))));
        bad.forEach(value -> assertTrue(key + ": " + value, !errorOf(document.with(value)).isEmpty()));
    }

    private static Map<?, ?> members(Map<?, ?> object, String name) {
        return (Map<?, ?>) object.get(name);
    }

    /** What the reader says; nothing for a style that is one, and reads back as it is written. */
    private static String errorOf(String json) {
        try {
            TextStyle style = TextStyle.fromJson(json);
            assertEquals(style, TextStyle.fromJson(style.toJson()));
            return "";
        } catch (IllegalArgumentException e) {
            return e.getMessage();
        }
    }

    @Test
    public void shippedStylesAreReadOrRefusedForWhatJavaLacks() throws IOException {
        List<Path> files;
        try (Stream<Path> all = Files.walk(ROOT.resolve("examples/styles"))) {
            files = all.filter(f -> f.toString().endsWith(".json")).collect(Collectors.toList());
        }
        int read = 0;
        for (Path file : files) {
            String error = errorOf(Files.readString(file));
            assertTrue(file + ": " + error, error.isEmpty() || error.contains("available from Java"));
            read += error.isEmpty() ? 1 : 0;
        }
        assertTrue(read + " of " + files.size(), read > 15);
    }

    /** The file says how it is read. */
    @Test
    public void wrongStylesAreRefusedForTheSameReasons() throws IOException {
        Map<String, List<String>> cases = new HashMap<>();
        String style = null;
        for (String line : Files.readAllLines(ROOT.resolve("tests/style/wrong-styles.txt"))) {
            if (line.startsWith("  ")) {
                cases.get(style).add(line.substring(2));
            } else if (!line.isEmpty() && !line.startsWith("#")) {
                style = line;
                cases.put(style, new ArrayList<>());
            }
        }
        assertTrue(cases.size() > 40);
        cases.forEach((json, mistakes) -> {
            List<String> own = mistakes.stream().filter(m -> m.startsWith("java: "))
                    .map(m -> m.substring(6)).collect(Collectors.toList());
            List<String> expected = (own.isEmpty() ? mistakes : own).stream()
                    .map(m -> m.split("; ")[0]).collect(Collectors.toList());
            assertTrue(json + " gave " + errorOf(json) + " for " + expected,
                    expected.contains(errorOf(json).split("; ")[0]));
        });
    }
}
