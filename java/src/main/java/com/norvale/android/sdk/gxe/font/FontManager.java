package com.norvale.android.sdk.gxe.font;

import android.text.FontConfig;
import com.norvale.android.sdk.gxe.GxText;
import com.norvale.android.sdk.gxe.GxTextException;
import androidx.annotation.AnyThread;
import androidx.annotation.NonNull;
import com.norvale.android.sdk.gxe.util.NativeLibrary;

/**
 * The fonts of the process. Fonts stay loaded until it ends; texts refer to them by name.
 *
 * <p>Threads: any.
 */
@AnyThread
public final class FontManager {
    private static boolean systemFontsSet;

    private FontManager() {}

    /**
     * Adds a font that is given as bytes. Texts choose it by passing the same name to {@link
     * GxText#setFont(String)}. A font of that name that exists already is kept.
     *
     * <p>The name's ending says which style the font has when it holds one of {@code -Thin},
     * {@code -Light}, {@code -Medium}, {@code -Bold}, {@code -Black} or {@code -Italic}, as in
     * {@code Title-Bold.ttf}.
     *
     * @param name name for the font, not empty
     * @param data a whole TrueType, OpenType or collection file; copied
     * @throws IllegalArgumentException when the name is empty
     * @throws GxTextException when the bytes are no font
     */
    public static void insertFontData(@NonNull String name, @NonNull byte[] data) {
        if (name == null || data == null) {
            throw new NullPointerException(name == null ? "name" : "data");
        }
        if (name.isEmpty()) {
            throw new IllegalArgumentException("name is empty");
        }
        NativeLibrary.load();
        if (!GxFontManager_InsertFontData(name, data)) {
            throw new GxTextException(
                    "data (" + data.length + " bytes, name \"" + name + "\") is not a usable font");
        }
    }

    /**
     * Takes the fonts of the system for all that a text's own font lacks. The first configuration
     * of the process holds; later ones are ignored.
     *
     * <p>The class {@code android.text.FontConfig} is not open to ordinary apps and has the needed
     * form on Android 10 and 11 only: this is for apps that are part of the system.
     *
     * @param fontConfig an {@code android.text.FontConfig}
     * @throws IllegalArgumentException when it is no {@code android.text.FontConfig}
     * @throws GxTextException when it lacks a method that is needed, as on other releases
     */
    public static synchronized void setFontConfig(@NonNull Object fontConfig) {
        if (fontConfig == null) {
            throw new NullPointerException("fontConfig");
        }
        if (!(fontConfig instanceof FontConfig)) {
            throw new IllegalArgumentException(
                    "fontConfig is a " + fontConfig.getClass().getName() + ", no android.text.FontConfig");
        }
        NativeLibrary.load();
        if (!GxFontManager_SetFontConfig((FontConfig) fontConfig)) {
            throw new GxTextException("fontConfig does not have the form of Android 10 and 11");
        }
        systemFontsSet = true;
    }

    /**
     * Whether the fonts of the system have been given.
     *
     * @return true after {@link #setFontConfig} has succeeded
     */
    public static synchronized boolean hasSystemFonts() {
        return systemFontsSet;
    }

    /**
     * Reads the fonts of the system for all texts, once for the process: where it has a list of them
     * (API level 29 and later) those of the list, else those in its folder. The first text that is
     * drawn does so by itself; an app calls this earlier to choose moment and thread.
     *
     * @return whether there is one that can be read
     */
    public static boolean loadSystemFonts() {
        return GxText.loadSystemFonts();
    }

    private static native boolean GxFontManager_InsertFontData(String name, byte[] data);

    private static native boolean GxFontManager_SetFontConfig(FontConfig config);
}
