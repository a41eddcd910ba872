package android.util;

import java.io.Closeable;
import java.io.Reader;

/** Stand-in that reads nothing: the natives take no style files. */
public class JsonReader implements Closeable {
    public JsonReader(Reader in) {}

    private static UnsupportedOperationException unwanted() {
        return new UnsupportedOperationException("styles are not read here");
    }

    public void beginArray() { throw unwanted(); }
    public void endArray() { throw unwanted(); }
    public void beginObject() { throw unwanted(); }
    public void endObject() { throw unwanted(); }
    public boolean hasNext() { throw unwanted(); }
    public JsonToken peek() { throw unwanted(); }
    public String nextName() { throw unwanted(); }
    public String nextString() { throw unwanted(); }
    public boolean nextBoolean() { throw unwanted(); }
    public void nextNull() { throw unwanted(); }
    @Override
    public void close() {}
}
