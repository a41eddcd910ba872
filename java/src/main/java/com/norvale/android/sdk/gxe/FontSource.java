package com.norvale.android.sdk.gxe;

import android.content.Context;
import android.content.res.AssetManager;
import android.graphics.Typeface;
import android.os.Build;
import java.io.File;
import java.io.IOException;
import java.util.Locale;

/**
 * Where a font comes from, so that the view's measuring and the native drawing use the same one.
 * Equal when it is the same font.
 */
final class FontSource {
    private enum Kind { FILE, ASSET, FAMILY }

    private final Kind kind;
    private final String name;
    private final AssetManager assets;
    private int index;
    private String variations = "";

    private FontSource(Kind kind, String name, AssetManager assets) {
        this.kind = kind;
        this.name = name;
        this.assets = assets;
    }

    /** The font of a style, or null when it names none. */
    static FontSource of(TextStyle style, Context context) {
        if (style.getFont() == null) {
            return null;
        }
        FontSource source = of(style.getFont(), context.getAssets());
        source.index = style.getFontIndex() == null ? 0 : style.getFontIndex();
        source.variations = style.getFontVariations() == null ? "" : style.getFontVariations();
        return source;
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

    Typeface toTypeface() {
        switch (kind) {
            case FILE:
                if (!new File(name).canRead()) {
                    throw new IllegalArgumentException("font: no readable file \"" + name + "\"");
                }
                return takesFirst()
                        ? Typeface.createFromFile(name)
                        : requireFont(Api26.ofFile(name, index));
            case ASSET:
                requireAsset();
                return takesFirst()
                        ? Typeface.createFromAsset(assets, name)
                        : requireFont(Api26.ofAsset(assets, name, index));
            default:
                Typeface typeface = Typeface.create(name, Typeface.NORMAL);
                if (typeface.equals(Typeface.DEFAULT) && !FamilyNames.isDefault(name)) {
                    throw SystemFamilies.unknown(name); // the platform takes its default in silence
                }
                return typeface;
        }
    }

    /** Before API level 26 a view measures with the first font of a collection. */
    private boolean takesFirst() {
        return index == 0 || Build.VERSION.SDK_INT < 26;
    }

    private Typeface requireFont(Typeface typeface) {
        if (typeface == null) {
            throw new IllegalArgumentException("fontIndex: \"" + name + "\" has no font " + index);
        }
        return typeface;
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
                text.setFont(name, index, variations);
                break;
            case ASSET:
                text.setFont(assets, name, index, variations);
                break;
            default:
                text.setFontFamilyName(name);
                break;
        }
    }

    @Override
    public boolean equals(Object other) {
        return other instanceof FontSource
                && kind == ((FontSource) other).kind
                && name.equals(((FontSource) other).name)
                && index == ((FontSource) other).index
                && variations.equals(((FontSource) other).variations);
    }

    @Override
    public int hashCode() {
        return 31 * (31 * (31 * kind.hashCode() + name.hashCode()) + index) + variations.hashCode();
    }

    /** Apart, so that older systems do not meet the class Typeface.Builder. */
    private static final class Api26 {
        private Api26() {}

        static Typeface ofFile(String name, int index) {
            return new Typeface.Builder(name).setTtcIndex(index).build();
        }

        static Typeface ofAsset(AssetManager assets, String name, int index) {
            return new Typeface.Builder(assets, name).setTtcIndex(index).build();
        }
    }
}
