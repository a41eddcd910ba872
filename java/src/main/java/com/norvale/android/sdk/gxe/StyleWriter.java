package com.norvale.android.sdk.gxe;

import android.util.JsonWriter;
import java.io.IOException;
import java.io.StringWriter;
import java.util.Arrays;
import java.util.List;
import java.util.Locale;

/** Writes styles in the form of the style files. */
final class StyleWriter {
    private interface Body {
        void write(JsonWriter writer) throws IOException;
    }

    /** The fields that show in a picture beside the effects and that views know nothing of. */
    private static final List<String> LOOK =
            Arrays.asList("opacity", "fillOpacity", "emoji", "background", "canvas");

    private StyleWriter() {}

    /** A whole style, indented; only what it says. */
    static String write(TextStyle style) {
        return toText("  ", writer -> {
            writer.beginObject();
            writeFields(writer, style);
            if (!style.getEffects().isEmpty()) {
                writeEffects(writer.name("effects"), style.getEffects(), false);
            }
            writer.endObject();
        });
    }

    /** What the native object takes of a style, in the order of the stack, on one line. */
    static String writeLook(TextStyle style) {
        return writeLook(style, true);
    }

    /** The same with lengths as they are, also those that no file may hold. */
    static String key(TextStyle style) {
        return writeLook(style, false);
    }

    private static String writeLook(TextStyle style, boolean fitting) {
        return toText("", writer -> {
            writer.beginObject();
            for (Property property : TextStyle.PROPERTIES) {
                Object value = style.get(property.name);
                if (value != null && LOOK.contains(property.name)) {
                    writeValue(writer.name(property.name), property, value, fitting);
                }
            }
            writer.name("order").value("listed");
            writeEffects(writer.name("effects"), style.getEffects(), fitting);
            writer.endObject();
        });
    }

    /** One effect on one line. */
    static String write(TextEffect effect) {
        return toText("", writer -> writeEffect(writer, effect, false));
    }

    /** "#RRGGBB" when opaque, otherwise "#AARRGGBB". */
    static String color(int color) {
        return color >>> 24 == 0xFF
                ? String.format(Locale.ROOT, "#%06X", color & 0xFFFFFF)
                : String.format(Locale.ROOT, "#%08X", color);
    }

    /** The shortest form that reads back as the same float. */
    static Number number(float value) {
        if (value == (int) value) {
            return (int) value;
        }
        return value;
    }

    private static String toText(String indent, Body body) {
        StringWriter text = new StringWriter();
        JsonWriter writer = new JsonWriter(text);
        writer.setIndent(indent);
        try {
            body.write(writer);
        } catch (IOException e) {
            throw new IllegalStateException("writing to memory failed", e);
        }
        return text.toString();
    }

    private static void writeFields(JsonWriter writer, TextStyle style) throws IOException {
        for (Property property : TextStyle.PROPERTIES) {
            Object value = style.get(property.name);
            if (value != null) {
                writeValue(writer.name(property.name), property, value, false);
            }
        }
    }

    private static void writeValue(JsonWriter writer, Property property, Object value,
            boolean fitting) throws IOException {
        switch (property.kind) {
            case COLOR:
                writer.value(color((Integer) value));
                break;
            case NUMBER:
                float number = (Float) value;
                writer.value(number(fitting ? property.range.clamp(number) : number));
                break;
            case CHOICE:
                writer.value(((Property.Named) value).styleName());
                break;
            case BOOLEAN:
                writer.value((Boolean) value);
                break;
            case INTEGER:
                writer.value((Integer) value);
                break;
            case PADDING:
                writePadding(writer, (List<?>) value);
                break;
            case STOPS:
                writeStops(writer, (List<?>) value);
                break;
            case FILL:
                writeFill(writer, value, fitting);
                break;
            case BACKGROUND:
                writeBackground(writer, (TextBackground) value);
                break;
            default:
                writer.value((String) value);
                break;
        }
    }

    private static void writePadding(JsonWriter writer, List<?> sides) throws IOException {
        writer.beginArray();
        for (Object side : sides) {
            writer.value((Integer) side);
        }
        writer.endArray();
    }

    private static void writeStops(JsonWriter writer, List<?> stops) throws IOException {
        writer.beginArray();
        for (Object element : stops) {
            ColorStop stop = (ColorStop) element;
            writer.beginObject();
            writer.name("color").value(color(stop.getColor()));
            if (stop.getOpacity() != 1) {
                writer.name("opacity").value(number(stop.getOpacity()));
            }
            writer.name("position").value(number(stop.getPosition()));
            writer.endObject();
        }
        writer.endArray();
    }

    private static void writeFill(JsonWriter writer, Object fill, boolean fitting)
            throws IOException {
        if (fill instanceof TextEffect) {
            writeEffect(writer, (TextEffect) fill, fitting);
        } else {
            writer.value(color((Integer) fill));
        }
    }

    private static void writeBackground(JsonWriter writer, TextBackground box)
            throws IOException {
        if (box.isPlain()) {
            writer.value(color(box.getColor()));
            return;
        }
        writer.beginObject();
        writer.name("color").value(color(box.getColor()));
        writer.name("radius").value(box.getRadius());
        writer.name("padding").value(box.getPadding());
        writer.name("span").value(box.getSpan().styleName());
        writer.endObject();
    }

    private static void writeEffects(JsonWriter writer, List<TextEffect> effects, boolean fitting)
            throws IOException {
        writer.beginArray();
        for (TextEffect effect : effects) {
            writeEffect(writer, effect, fitting);
        }
        writer.endArray();
    }

    private static void writeEffect(JsonWriter writer, TextEffect effect, boolean fitting)
            throws IOException {
        writer.beginObject();
        writer.name("type").value(effect.getType());
        for (Property property : effect.type.properties.values()) {
            Object value = effect.get(property.name);
            if (value != null) {
                writeValue(writer.name(property.name), property, value, fitting);
            }
        }
        writer.endObject();
    }
}
