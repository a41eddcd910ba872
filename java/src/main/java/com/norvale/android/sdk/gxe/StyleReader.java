package com.norvale.android.sdk.gxe;

import android.util.JsonReader;
import com.norvale.android.sdk.gxe.util.NativeLibrary;
import java.io.IOException;
import java.io.StringReader;
import java.nio.charset.StandardCharsets;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.Collections;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;

/** Reads style files: the native library checks them, so that what is left here is to take them. */
final class StyleReader {
    private StyleReader() {}

    static TextStyle read(String json) {
        NativeLibrary.load();
        byte[] mistakes = TextExtension.check(json.getBytes(StandardCharsets.UTF_8));
        if (mistakes != null) {
            throw StyleException.of(mistakes);
        }
        return readChecked(json);
    }

    /** Without the native library: of a file that is a style. */
    static TextStyle readChecked(String json) {
        Map<?, ?> object = (Map<?, ?>) parse(json);
        TextStyle.Builder builder = new TextStyle.Builder();
        for (Property property : TextStyle.PROPERTIES) {
            if (object.containsKey(property.name)) {
                builder.set(property.name, valueOf(property, object.get(property.name)));
            }
        }
        if (object.containsKey("effects")) {
            for (Object effect : (List<?>) object.get("effects")) {
                builder.addEffect(effectOf((Map<?, ?>) effect));
            }
        }
        return builder.build();
    }

    private static TextEffect effectOf(Map<?, ?> object) {
        TextEffect.Builder<?> builder = EffectType.of((String) object.get("type")).newBuilder();
        for (Property property : builder.type.properties.values()) {
            Object value = object.get(property.name);
            if (value != null) {
                builder.set(property.name, valueOf(property, value));
            }
        }
        return builder.build();
    }

    private static Object valueOf(Property property, Object value) {
        switch (property.kind) {
            case NUMBER:
                return (float) Double.parseDouble(value.toString());
            case INTEGER:
                return Integer.parseInt(value.toString());
            case COLOR:
                return colorOf(value);
            case CHOICE:
                return choiceOf(property.choices, value);
            case PADDING:
                return paddingOf(value);
            case STOPS:
                return stopsOf((List<?>) value);
            case FILL:
                return value instanceof Map ? effectOf((Map<?, ?>) value) : colorOf(value);
            case BACKGROUND:
                return value instanceof Map
                        ? backgroundOf((Map<?, ?>) value)
                        : new TextBackground((Integer) colorOf(value));
            default:
                return value;
        }
    }

    private static Object colorOf(Object value) {
        String digits = ((String) value).substring(1);
        return Integer.parseUnsignedInt(digits.length() == 6 ? "FF" + digits : digits, 16);
    }

    private static Property.Named choiceOf(Property.Named[] choices, Object value) {
        return Arrays.stream(choices).filter(choice -> choice.styleName().equals(value))
                .findFirst().orElseThrow(() -> new IllegalArgumentException(String.valueOf(value)));
    }

    private static List<Integer> paddingOf(Object value) {
        if (!(value instanceof List)) {
            return Collections.nCopies(4, Integer.valueOf(value.toString()));
        }
        List<Integer> sides = new ArrayList<>();
        for (Object side : (List<?>) value) {
            sides.add(Integer.valueOf(side.toString()));
        }
        return Collections.unmodifiableList(sides);
    }

    private static List<ColorStop> stopsOf(List<?> list) {
        List<ColorStop> stops = new ArrayList<>();
        for (Object element : list) {
            Map<?, ?> stop = (Map<?, ?>) element;
            Object opacity = stop.get("opacity");
            stops.add(new ColorStop((Integer) colorOf(stop.get("color")),
                    opacity == null ? 1 : (float) Double.parseDouble(opacity.toString()),
                    (float) Double.parseDouble(stop.get("position").toString())));
        }
        return stops;
    }

    private static TextBackground backgroundOf(Map<?, ?> object) {
        Object radius = object.get("radius");
        Object padding = object.get("padding");
        Object span = object.get("span");
        return new TextBackground((Integer) colorOf(object.get("color")),
                radius == null ? 0 : Integer.parseInt(radius.toString()),
                padding == null ? 0 : Integer.parseInt(padding.toString()),
                span == null
                        ? TextBackground.Span.LINE
                        : (TextBackground.Span) choiceOf(TextBackground.Span.values(), span));
    }

    /** A number as it was written. */
    private static final class JsonNumber {
        private final String text;

        JsonNumber(String text) {
            this.text = text;
        }

        @Override
        public String toString() {
            return text;
        }
    }

    /** Maps, lists, strings, booleans and JsonNumber. */
    static Object parse(String json) {
        try (JsonReader reader = new JsonReader(new StringReader(json))) {
            return parseValue(reader);
        } catch (IOException e) {
            // The platform's reader is as strict as ours; should one be stricter, it says so.
            throw new StyleException(
                    Collections.singletonList(new StyleMistake("$", "" + e.getMessage(), "")), e);
        }
    }

    private static Object parseValue(JsonReader reader) throws IOException {
        switch (reader.peek()) {
            case BEGIN_OBJECT:
                Map<String, Object> object = new LinkedHashMap<>();
                reader.beginObject();
                while (reader.hasNext()) {
                    String name = reader.nextName();
                    object.put(name, parseValue(reader));
                }
                reader.endObject();
                return object;
            case BEGIN_ARRAY:
                List<Object> list = new ArrayList<>();
                reader.beginArray();
                while (reader.hasNext()) {
                    list.add(parseValue(reader));
                }
                reader.endArray();
                return list;
            case NUMBER:
                return new JsonNumber(reader.nextString());
            case BOOLEAN:
                return reader.nextBoolean();
            default:
                return reader.nextString();
        }
    }
}
