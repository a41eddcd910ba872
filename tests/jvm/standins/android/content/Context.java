package android.content;

import android.content.res.AssetManager;
import android.content.res.Resources;

public class Context {
    public AssetManager getAssets() { return null; }
    public Resources getResources() { return null; }
    public String getPackageName() { return null; }
}
