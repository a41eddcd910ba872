package android.util;

import java.io.Writer;

/** Stand-in that writes nothing. */
public class JsonWriter {
    public JsonWriter(Writer out) {}

    public void setIndent(String indent) {}
    public JsonWriter beginArray() { return this; }
    public JsonWriter endArray() { return this; }
    public JsonWriter beginObject() { return this; }
    public JsonWriter endObject() { return this; }
    public JsonWriter name(String name) { return this; }
    public JsonWriter value(String value) { return this; }
    public JsonWriter value(Boolean value) { return this; }
    public JsonWriter value(boolean value) { return this; }
    public JsonWriter value(Number value) { return this; }
    public JsonWriter value(double value) { return this; }
    public JsonWriter value(long value) { return this; }
}
