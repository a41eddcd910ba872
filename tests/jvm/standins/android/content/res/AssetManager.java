package android.content.res;

import java.io.ByteArrayInputStream;
import java.io.FileNotFoundException;
import java.io.IOException;
import java.io.InputStream;
import java.util.HashMap;
import java.util.Map;

/** Stand-in over a map; counts how often an asset was asked for. */
public class AssetManager {
    public final Map<String, byte[]> assets = new HashMap<>();
    public int opened;

    public InputStream open(String fileName) throws IOException {
        opened++;
        byte[] bytes = assets.get(fileName);
        if (bytes == null) {
            throw new FileNotFoundException(fileName);
        }
        return new ByteArrayInputStream(bytes);
    }
}
