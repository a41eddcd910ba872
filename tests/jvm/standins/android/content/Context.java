package android.content;

import android.content.res.AssetManager;

public class Context {
    public AssetManager getAssets() { return null; }
}
