package com.norvale.android.sdk.gxe;

import android.util.JsonWriter;
import java.io.IOException;
import java.io.StringWriter;
import java.util.List;
import java.util.Locale;

/** Writes styles in the form of the style files. */
final class StyleWriter {
    private interface Body {
        void write(JsonWriter writer) throws IOException;
    }

    private StyleWriter() {}

    /** A whole style, indented; only what it says. */
    static String write(TextStyle style) {
        return toText("  ", writer -> {
            writer.beginObject();
            for (TextStyle.Field field : TextStyle.Field.values()) {
                Object value = style.get(field);
                if (value != null) {
                    writeValue(writer.name(field.styleName), field, value);
                }
            }
            if (!style.getEffects().isEmpty()) {
                writeEffects(writer.name("effects"), style.getEffects());
            }
            writer.endObject();
        });
    }

    /** A list of effects on one line. */
    static String write(List<TextEffect> effects) {
        return toText("", writer -> writeEffects(writer, effects));
    }

    /** One effect on one line. */
    static String write(TextEffect effect) {
        return toText("", writer -> writeEffect(writer, effect));
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

    private static void writeValue(JsonWriter writer, TextStyle.Field field, Object value)
            throws IOException {
        switch (field.kind) {
            case COLOR:
                writer.value(color((Integer) value));
                break;
            case NUMBER:
                writer.value(number((Float) value));
                break;
            case PADDING:
                writePadding(writer, (List<?>) value);
                break;
            case CHOICE:
                writer.value(((TextStyle.Named) value).styleName());
                break;
            case BOOLEAN:
                writer.value((Boolean) value);
                break;
            case INTEGER:
                writer.value((Integer) value);
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

    private static void writeEffects(JsonWriter writer, List<TextEffect> effects)
            throws IOException {
        writer.beginArray();
        for (TextEffect effect : effects) {
            writeEffect(writer, effect);
        }
        writer.endArray();
    }

    private static void writeEffect(JsonWriter writer, TextEffect effect) throws IOException {
        writer.beginObject();
        writer.name("type").value(effect.getType());
        effect.writeSettings(writer);
        writer.name("opacity").value(number(effect.getOpacity()));
        writer.endObject();
    }
}
