package com.norvale.android.sdk.gxe;

import static org.junit.Assert.assertEquals;
import static org.junit.Assert.assertTrue;

import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.nio.file.Paths;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.Collection;
import java.util.LinkedHashMap;
import java.util.LinkedHashSet;
import java.util.List;
import java.util.Map;
import java.util.Set;
import java.util.stream.Collectors;
import java.util.stream.Stream;
import org.junit.Test;

/**
 * The SDK's style files are the program's: its tables are held against the schema, and it reads
 * every style that is shipped and refuses the same wrong ones in the same words.
 */
public class StyleFormatTest extends NativeTest {
    private static final Path ROOT = Paths.get(System.getProperty("gxtext.root.dir"));

    @Test
    public void fieldsRangesAndDefaultsAreTheSchemas() throws IOException {
        Map<?, ?> schema = (Map<?, ?>) StyleReader.parse(
                Files.readString(ROOT.resolve("src/style/style.schema.json")));
        Set<Object> fields = new LinkedHashSet<>(members(schema, "properties").keySet());
        fields.removeAll(Arrays.asList("$schema", "effects"));
        check("style", fields, TextStyle.PROPERTIES, members(schema, "properties"));
        for (EffectType type : EffectType.values()) {
            Map<?, ?> properties =
                    members(members(members(schema, "$defs"), type.styleName), "properties");
            fields = new LinkedHashSet<>(properties.keySet());
            fields.remove("type");
            check(type.styleName, fields, type.properties.values(), properties);
        }
        Map<?, ?> stop = members(members(members(schema, "$defs"), "stop"), "properties");
        checkRange("opacity", Range.UNIT, members(stop, "opacity"));
        checkRange("position", Range.UNIT, members(stop, "position"));
        assertTrue(schema.toString().contains("maxItems=" + TextEffect.MAX_STOPS));
    }

    private static Map<?, ?> members(Map<?, ?> object, String name) {
        return (Map<?, ?>) object.get(name);
    }

    private static void check(String owner, Set<Object> names, Collection<Property> properties,
            Map<?, ?> schema) {
        assertEquals(owner, names, properties.stream().map(property -> property.name)
                .collect(Collectors.toSet()));
        for (Property property : properties) {
            Map<?, ?> field = members(schema, property.name);
            String where = owner + "." + property.name;
            if (property.range != null && property.kind != Property.Kind.PADDING) {
                checkRange(where, property.range, field);
            }
            if (property.choices != null) {
                assertEquals(where, field.get("enum"), Arrays.stream(property.choices)
                        .map(Property.Named::styleName).collect(Collectors.toList()));
            }
            Object initial = field.get("default");
            if (initial != null && property.kind != Property.Kind.STRING
                    && property.kind != Property.Kind.PADDING) {
                assertEquals(where, initial.toString(), shown(property));
            }
        }
    }

    private static void checkRange(String where, Range range, Map<?, ?> field) {
        assertEquals(where, Double.parseDouble(field.get("minimum").toString()), range.min, 0);
        assertEquals(where, Double.parseDouble(field.get("maximum").toString()), range.max, 0);
    }

    private static String shown(Property property) {
        switch (property.kind) {
            case NUMBER:
                return StyleWriter.number((Float) property.initial).toString();
            case COLOR:
                return StyleWriter.color((Integer) property.initial);
            case CHOICE:
                return ((Property.Named) property.initial).styleName();
            default:
                return String.valueOf(property.initial);
        }
    }

    /** What the reader says, a line for each mistake; nothing for a style. */
    private static String errorOf(String json) {
        try {
            TextStyle style = TextStyle.fromJson(json);
            assertEquals(style, TextStyle.fromJson(style.toJson()));
            return "";
        } catch (StyleException e) {
            return e.getMessage();
        }
    }

    @Test
    public void everyShippedStyleIsReadAndWrittenAsItWas() throws IOException {
        List<Path> files;
        try (Stream<Path> all = Files.walk(ROOT.resolve("examples"))) {
            files = all.filter(f -> f.toString().matches(".*/styles/.*[.]json"))
                    .collect(Collectors.toList());
        }
        assertTrue(files.size() > 50);
        for (Path file : files) {
            assertEquals(file.toString(), "", errorOf(Files.readString(file)));
        }
    }

    /** The file says how it is read. */
    @Test
    public void wrongStylesAreRefusedForTheSameReasons() throws IOException {
        Map<String, List<String>> cases = new LinkedHashMap<>();
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
        cases.forEach((json, mistakes) -> assertEquals(json,
                mistakes.isEmpty(), errorOf(json).isEmpty()));
        cases.forEach((json, mistakes) -> assertEquals(json,
                String.join("\n", mistakes), errorOf(json)));
    }

    @Test
    public void aMistakeHasPlaceReasonAndWhatIsAllowed() {
        try {
            TextStyle.fromJson("{\"effects\": [{\"type\": \"stroke\", \"size\": 140}]}");
        } catch (StyleException e) {
            StyleMistake mistake = e.getMistakes().get(0);
            assertEquals("$.effects[0].size", mistake.getPath());
            assertEquals("140 is out of range 0-100", mistake.getReason());
            assertEquals("0-100", mistake.getAllowed());
            return;
        }
        throw new AssertionError("not refused");
    }
}
