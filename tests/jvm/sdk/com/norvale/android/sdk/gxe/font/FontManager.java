package com.norvale.android.sdk.gxe.font;

import android.text.FontConfig;

/** The natives, nothing else. */
public class FontManager {
    private static native boolean GxFontManager_InsertFontData(String name, byte[] data);
    private static native boolean GxFontManager_SetFontConfig(FontConfig config);
}
