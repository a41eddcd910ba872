package com.norvale.android.sdk.gxe;

import android.util.JsonReader;
import android.util.JsonToken;
import android.util.MalformedJsonException;
import java.io.EOFException;
import java.io.IOException;
import java.io.StringReader;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.Collections;
import java.util.HashSet;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.Set;
import java.util.function.Consumer;

/**
 * Reads style files. Every problem is an IllegalArgumentException whose message starts with the
 * place of the value.
 */
final class StyleReader {
    private static final String ROOT = "$";
    /** A style nests four deep; deeper input must not exhaust the stack. */
    private static final int MAX_DEPTH = 16;

    private static final List<String> MISSING_EFFECTS =
            Arrays.asList("innerGlow", "radialGradient", "pattern", "bevel", "emboss");

    private StyleReader() {}

    static TextStyle read(String json) {
        JsonObject style = new JsonObject(ROOT, parse(json));
        TextStyle.Builder builder = new TextStyle.Builder();
        style.take("$schema"); // for editors
        if (style.peek("background") instanceof Map) {
            throw fail(ROOT + ".background",
                    shown(style.peek("background")) + " is not available from Java; only a colour is");
        }
        style.expectOnly("canvas", null);
        style.expectOnly("fontVariations", "");
        for (TextStyle.Field field : TextStyle.Field.values()) {
            builder.set(field, style.value(field));
        }
        style.expectOne("fontIndex", 0);
        style.expectOne("opacity", 1);
        style.expectOne("fillOpacity", 1);
        readEffects(style, builder);
        style.end();
        return builder.build();
    }

    private static void readEffects(JsonObject style, TextStyle.Builder builder) {
        Object list = style.take("effects");
        if (list == null) {
            return;
        }
        String place = ROOT + ".effects";
        List<?> effects = asList(place, list, "a list of effects");
        for (int i = 0; i < effects.size(); i++) {
            String here = place + "[" + i + "]";
            TextEffect effect = readEffect(new JsonObject(here, effects.get(i)));
            try {
                builder.addEffect(effect);
            } catch (IllegalArgumentException e) {
                throw fail(here + ".type",
                        "a second " + effect.getType() + " is not available from Java");
            }
        }
    }

    private static TextEffect readEffect(JsonObject object) {
        String type = object.requireString("type");
        object.expectOnly("enabled", true);
        TextEffect effect;
        switch (type) {
            case "stroke":
                object.expectOnly("fill", null);
                effect = readStroke(object);
                break;
            case "outerShadow":
                expectPlainCast(object);
                effect = readShadow(object, ShadowEffect.outer());
                break;
            case "innerShadow":
                object.expectOne("choke", 0);
                effect = readShadow(object, ShadowEffect.inner());
                break;
            case "outerGlow":
                expectPlainCast(object);
                effect = readOuterGlow(object);
                break;
            case "linearGradient":
                object.expectOnly("span", "text");
                effect = readLinearGradient(object);
                break;
            default:
                throw fail(object.place + ".type", MISSING_EFFECTS.contains(type)
                        ? "\"" + type + "\" is not available from Java"
                        : "no effect is called \"" + type + "\"");
        }
        object.end();
        return effect;
    }

    private static void expectPlainCast(JsonObject object) {
        object.expectOne("spread", 0);
        object.expectOnly("castFrom", "letters");
    }

    private static void readColored(JsonObject object, ColoredEffect.Builder<?> builder) {
        object.number("size", Range.PERCENT, builder::setSize);
        object.color("color", builder::setColor);
        object.number("opacity", Range.UNIT, builder::setOpacity);
    }

    private static TextEffect readStroke(JsonObject object) {
        StrokeEffect.Builder builder = new StrokeEffect.Builder();
        readColored(object, builder);
        for (StrokeEffect.Position position : StrokeEffect.Position.values()) {
            if (position.styleName.equals(object.peek("position"))) {
                builder.setPosition(position);
                object.take("position");
            }
        }
        if (object.peek("position") != null) {
            throw fail(object.place + ".position", shown(object.peek("position"))
                    + " is not one of \"center\", \"outside\", \"inside\"");
        }
        return builder.build();
    }

    private static TextEffect readShadow(JsonObject object, ShadowEffect.Builder builder) {
        object.number("angle", Range.ANGLE, builder::setAngle);
        object.number("distance", Range.PERCENT, builder::setDistance);
        readColored(object, builder);
        return builder.build();
    }

    private static TextEffect readOuterGlow(JsonObject object) {
        OuterGlowEffect.Builder builder = new OuterGlowEffect.Builder();
        readColored(object, builder);
        if (object.peek("stops") != null) {
            throw fail(object.place + ".stops", "the colour stops of a glow are not available from Java");
        }
        return builder.build();
    }

    private static TextEffect readLinearGradient(JsonObject object) {
        LinearGradientEffect.Builder builder = new LinearGradientEffect.Builder();
        object.number("angle", Range.ANGLE, builder::setAngle);
        object.number("scale", Range.GRADIENT_SCALE, builder::setScale);
        object.number("opacity", Range.UNIT, builder::setOpacity);
        String place = object.place + ".stops";
        List<?> stops = asList(place, object.require("stops"), "a list of stops");
        if (stops.isEmpty()) {
            throw fail(place, "the list of stops is empty; 1-256 are allowed");
        }
        if (stops.size() > LinearGradientEffect.MAX_STOPS) {
            throw fail(place, stops.size() + " stops; at most " + LinearGradientEffect.MAX_STOPS);
        }
        float last = 0;
        for (int i = 0; i < stops.size(); i++) {
            ColorStop stop = readStop(new JsonObject(place + "[" + i + "]", stops.get(i)));
            if (stop.getPosition() < last) {
                throw fail(place + "[" + i + "].position", "stops must be in order of position");
            }
            last = stop.getPosition();
            builder.addStop(stop);
        }
        return builder.build();
    }

    private static ColorStop readStop(JsonObject object) {
        object.require("color", "position");
        int[] color = new int[1];
        float[] opacity = {1};
        float[] position = new float[1];
        object.color("color", value -> color[0] = value);
        object.number("opacity", Range.UNIT, value -> opacity[0] = value);
        object.number("position", Range.UNIT, value -> position[0] = value);
        object.end();
        return new ColorStop(color[0], opacity[0], position[0]);
    }

    /** The members of one object; each is taken once, and none may be left. */
    private static final class JsonObject {
        final String place;
        private final Map<String, Object> members;
        private final Set<String> known = new HashSet<>();

        @SuppressWarnings("unchecked") // what parse() made
        JsonObject(String place, Object value) {
            if (!(value instanceof Map)) {
                throw fail(place, shown(value) + " is not an object");
            }
            this.place = place;
            this.members = (Map<String, Object>) value;
        }

        Object peek(String name) {
            known.add(name);
            return members.get(name);
        }

        Object take(String name) {
            known.add(name);
            return members.remove(name);
        }

        void require(String... names) {
            for (String name : names) {
                if (!members.containsKey(name)) {
                    throw fail(place, "\"" + name + "\" is missing");
                }
            }
        }

        Object require(String name) {
            require(new String[] {name});
            return take(name);
        }

        String requireString(String name) {
            return asString(place + "." + name, require(name));
        }

        void number(String name, Range range, Consumer<Float> setter) {
            if (peek(name) != null) {
                setter.accept((float) asNumber(place + "." + name, take(name), range));
            }
        }

        void color(String name, Consumer<Integer> setter) {
            if (peek(name) != null) {
                setter.accept(asColor(place + "." + name, take(name)));
            }
        }

        /** The one value of a number that Java can carry out. */
        void expectOne(String name, double only) {
            Object value = take(name);
            if (value != null && asNumber(place + "." + name, value, new Range(0, 99)) != only) {
                throw fail(place + "." + name,
                        shown(value) + " is not available from Java; only " + (int) only + " is");
            }
        }

        /** The same of a switch or a name; with null the field as a whole is lacking. */
        void expectOnly(String name, Object only) {
            Object value = take(name);
            if (value != null && !value.equals(only)) {
                throw fail(place + "." + name, shown(value) + " is not available from Java"
                        + (only != null ? "; only " + shown(only) + " is" : ""));
            }
        }

        Object value(TextStyle.Field field) {
            Object value = take(field.styleName);
            String here = place + "." + field.styleName;
            if (value == null) {
                return null;
            }
            switch (field.kind) {
                case NUMBER:
                    return (float) asNumber(here, value, field.range);
                case INTEGER:
                    return asInteger(here, value, field.range);
                case COLOR:
                    return asColor(here, value);
                case CHOICE:
                    return asChoice(here, value, field.choices);
                case PADDING:
                    return asPadding(here, value, field.range);
                case BOOLEAN:
                    if (!(value instanceof Boolean)) {
                        throw fail(here, shown(value) + " is not true or false");
                    }
                    return value;
                default:
                    String text = asString(here, value);
                    if (field.problemOf(text) != null) {
                        throw fail(here, field.problemOf(text));
                    }
                    return text;
            }
        }

        void end() {
            for (String name : members.keySet()) {
                List<String> allowed = new ArrayList<>(known);
                Collections.sort(allowed);
                throw fail(place + step(name),
                        "unknown field; allowed: " + String.join(", ", allowed));
            }
        }
    }

    private static List<?> asList(String place, Object value, String wanted) {
        if (!(value instanceof List)) {
            throw fail(place, shown(value) + " is not " + wanted);
        }
        return (List<?>) value;
    }

    private static String asString(String place, Object value) {
        if (!(value instanceof String)) {
            throw fail(place, shown(value) + " is not a string");
        }
        if (((String) value).indexOf('\0') >= 0) {
            throw fail(place, "the string contains U+0000");
        }
        return (String) value;
    }

    private static double asNumber(String place, Object value, Range range) {
        if (!(value instanceof JsonNumber)) {
            throw fail(place, shown(value) + " is not a number (" + range + ")");
        }
        double number = Double.parseDouble(((JsonNumber) value).text);
        if (Double.isInfinite(number)) {
            throw fail(place, value + " is too large for a number");
        }
        if (!(number >= range.min && number <= range.max)) {
            throw fail(place, value + " is out of range " + range);
        }
        return number;
    }

    private static int asInteger(String place, Object value, Range range) {
        if (!(value instanceof JsonNumber) || !((JsonNumber) value).text.matches("-?[0-9]+")) {
            throw fail(place, shown(value) + " is not an integer (" + range + ")");
        }
        return (int) asNumber(place, value, range);
    }

    private static int asColor(String place, Object value) {
        if (!(value instanceof String)
                || !((String) value).matches("#([0-9A-Fa-f]{6}|[0-9A-Fa-f]{8})")) {
            throw fail(place, shown(value) + " is not a colour (\"#RRGGBB\" or \"#AARRGGBB\")");
        }
        String digits = ((String) value).substring(1);
        return Integer.parseUnsignedInt(digits.length() == 6 ? "FF" + digits : digits, 16);
    }

    private static TextStyle.Named asChoice(
            String place, Object value, TextStyle.Named[] choices) {
        List<String> names = new ArrayList<>();
        for (TextStyle.Named choice : choices) {
            if (choice.styleName().equals(value)) {
                return choice;
            }
            names.add("\"" + choice.styleName() + "\"");
        }
        throw fail(place, shown(value) + " is not one of " + String.join(", ", names));
    }

    private static List<Integer> asPadding(String place, Object value, Range range) {
        if (!(value instanceof List)) {
            return Collections.nCopies(4, asInteger(place, value, range));
        }
        List<?> given = (List<?>) value;
        if (given.size() != 4) {
            throw fail(place, "a list of padding has 4 entries: left, top, right, bottom");
        }
        List<Integer> sides = new ArrayList<>();
        for (int i = 0; i < 4; i++) {
            sides.add(asInteger(place + "[" + i + "]", given.get(i), range));
        }
        return Collections.unmodifiableList(sides);
    }

    /** A number as it was written, so that 1.0 and 1 can be told apart. */
    static final class JsonNumber {
        final String text;

        JsonNumber(String text) {
            this.text = text;
        }

        @Override
        public String toString() {
            return text;
        }
    }

    /** Stands for null in a file, which is no value that a style takes. */
    private static final Object JSON_NULL = new Object() {
        @Override
        public String toString() {
            return "null";
        }
    };

    /** Maps, lists, strings, booleans, JsonNumber and JSON_NULL. */
    static Object parse(String json) {
        try (JsonReader reader = new JsonReader(new StringReader(json))) {
            Object value = parseValue(reader, ROOT, 0);
            if (reader.peek() != JsonToken.END_DOCUMENT) {
                throw fail(ROOT, "more text after the style");
            }
            return value;
        } catch (EOFException e) {
            throw new IllegalArgumentException(ROOT + ": the text ends before the style does", e);
        } catch (MalformedJsonException e) {
            throw new IllegalArgumentException(ROOT + ": " + e.getMessage(), e);
        } catch (IOException e) {
            throw new IllegalArgumentException(ROOT + ": not JSON: " + e.getMessage(), e);
        }
    }

    private static Object parseValue(JsonReader reader, String place, int depth)
            throws IOException {
        if (depth > MAX_DEPTH) {
            throw fail(place, "nested too deeply");
        }
        switch (reader.peek()) {
            case BEGIN_OBJECT:
                return parseObject(reader, place, depth);
            case BEGIN_ARRAY:
                List<Object> list = new ArrayList<>();
                reader.beginArray();
                while (reader.hasNext()) {
                    list.add(parseValue(reader, place + "[" + list.size() + "]", depth + 1));
                }
                reader.endArray();
                return list;
            case STRING:
                return reader.nextString();
            case NUMBER:
                return new JsonNumber(reader.nextString());
            case BOOLEAN:
                return reader.nextBoolean();
            default:
                reader.nextNull();
                return JSON_NULL;
        }
    }

    private static Object parseObject(JsonReader reader, String place, int depth)
            throws IOException {
        Map<String, Object> object = new LinkedHashMap<>();
        reader.beginObject();
        while (reader.hasNext()) {
            String name = reader.nextName();
            Object value = parseValue(reader, place + step(name), depth + 1);
            if (object.put(name, value) != null) {
                throw fail(place + step(name), "the field is given twice");
            }
        }
        reader.endObject();
        return object;
    }

    /** The value as the file has it, shortened for a message. */
    private static String shown(Object value) {
        if (value instanceof List) {
            return ((List<?>) value).isEmpty() ? "[]" : "[...]";
        }
        if (value instanceof Map) {
            return ((Map<?, ?>) value).isEmpty() ? "{}" : "{...}";
        }
        String text = value instanceof String ? "\"" + value + "\"" : value.toString();
        return text.length() > 40 ? text.substring(0, 40) + "..." : text;
    }

    /** A member's step in a JSON path: ".size", or {@code ["a b"]} for a name that is not a word. */
    private static String step(String name) {
        return name.matches("[\\w$]{1,40}") ? "." + name : "[" + shown(name) + "]";
    }

    private static IllegalArgumentException fail(String place, String reason) {
        return new IllegalArgumentException(place + ": " + reason);
    }
}
