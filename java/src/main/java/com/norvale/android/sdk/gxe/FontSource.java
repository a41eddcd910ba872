package com.norvale.android.sdk.gxe;

import android.content.res.AssetManager;
import android.graphics.Typeface;
import android.graphics.fonts.Font;
import android.graphics.fonts.SystemFonts;
import android.os.Build;
import java.io.ByteArrayOutputStream;
import java.io.File;
import java.io.FileInputStream;
import java.io.IOException;
import java.io.InputStream;
import java.util.Locale;

/**
 * Where a font comes from, so that the view's measuring and the native drawing use the same one.
 * Equal when it is the same font.
 */
final class FontSource {
    private enum Kind { FILE, ASSET, FAMILY, SYSTEM }

    private final Kind kind;
    private final String name;
    private final AssetManager assets;

    private FontSource(Kind kind, String name, AssetManager assets) {
        this.kind = kind;
        this.name = name;
        this.assets = assets;
    }

    /**
     * What a style's font means: an absolute path is a file, another path or a name with a font's
     * ending is an asset, the rest is the name of a family.
     */
    static FontSource of(String font, AssetManager assets) {
        if (new File(font).isAbsolute()) {
            return new FontSource(Kind.FILE, font, null);
        }
        String lower = font.toLowerCase(Locale.ROOT);
        boolean isFile = lower.contains("/") || lower.endsWith(".ttf") || lower.endsWith(".otf")
                || lower.endsWith(".ttc") || lower.endsWith(".otc");
        return isFile
                ? new FontSource(Kind.ASSET, font, assets)
                : new FontSource(Kind.FAMILY, font, null);
    }

    /** The system's own font, for texts without one. */
    static FontSource system(boolean bold) {
        return new FontSource(Kind.SYSTEM, systemFileName(bold), null);
    }

    private static String systemFileName(boolean bold) {
        return bold ? "Roboto-Bold.ttf" : "Roboto-Regular.ttf";
    }

    Typeface toTypeface() {
        switch (kind) {
            case FILE:
                if (!new File(name).canRead()) {
                    throw new IllegalArgumentException("font: no readable file \"" + name + "\"");
                }
                return Typeface.createFromFile(name);
            case ASSET:
                requireAsset();
                return Typeface.createFromAsset(assets, name);
            default:
                return Typeface.create(name, Typeface.NORMAL);
        }
    }

    /** Not every release refuses an asset that does not exist. */
    private void requireAsset() {
        try {
            assets.open(name).close();
        } catch (IOException e) {
            throw new IllegalArgumentException("font: no asset \"" + name + "\"", e);
        }
    }

    /** Sets the font; throws GxTextException when there is none. */
    void putOn(GxText text) {
        switch (kind) {
            case FILE:
                text.setFont(name);
                break;
            case ASSET:
                text.setFont(assets, name);
                break;
            case FAMILY:
                text.setFontFamilyName(name);
                text.setSystemFont(false);
                break;
            default:
                text.setSystemFont(name.equals(systemFileName(true)));
                break;
        }
    }

    /** The system's own font; throws GxTextException when it has none that can be read. */
    static File systemFile(boolean bold) {
        String fileName = systemFileName(bold);
        File file = Build.VERSION.SDK_INT >= 29
                ? Api29.find(fileName)
                : new File("/system/fonts/" + fileName);
        if (file == null || !file.canRead()) {
            throw new GxTextException("the system has no readable font; set one");
        }
        return file;
    }

    static byte[] readAll(File file) {
        try (InputStream in = new FileInputStream(file)) {
            ByteArrayOutputStream out = new ByteArrayOutputStream((int) file.length());
            byte[] buffer = new byte[1 << 16];
            for (int count = in.read(buffer); count >= 0; count = in.read(buffer)) {
                out.write(buffer, 0, count);
            }
            return out.toByteArray();
        } catch (IOException e) {
            throw new GxTextException("the system's font " + file + " could not be read: " + e);
        }
    }

    @Override
    public boolean equals(Object other) {
        return other instanceof FontSource
                && kind == ((FontSource) other).kind
                && name.equals(((FontSource) other).name);
    }

    @Override
    public int hashCode() {
        return 31 * kind.hashCode() + name.hashCode();
    }

    /** Apart, so that older systems do not meet the class SystemFonts. */
    private static final class Api29 {
        private Api29() {}

        /** The system font of that name, or else an upright one of ordinary weight; may be null. */
        static File find(String fileName) {
            File other = null;
            for (Font font : SystemFonts.getAvailableFonts()) {
                File file = font.getFile();
                if (file != null && file.getName().equals(fileName)) {
                    return file;
                }
                if (other == null && file != null && font.getStyle().getWeight() == 400
                        && font.getStyle().getSlant() == 0) {
                    other = file;
                }
            }
            return other;
        }
    }
}
