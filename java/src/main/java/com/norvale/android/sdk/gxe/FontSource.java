package com.norvale.android.sdk.gxe;

import android.content.Context;
import android.content.res.AssetManager;
import android.content.res.Resources;
import android.graphics.Typeface;
import android.os.Build;
import android.util.LruCache;
import com.norvale.android.sdk.gxe.font.FontManager;
import java.io.File;
import java.io.IOException;
import java.util.HashSet;
import java.util.Locale;
import java.util.Set;

/**
 * Where a font comes from, so that the view's measuring and the native drawing use the same one.
 * Equal when it is the same font.
 */
final class FontSource {
    private enum Kind { FILE, ASSET, RESOURCE, FAMILY }

    private static final String RESOURCE_PREFIX = "@font/";

    /** Fonts of the resources that the native library has, by their full names. */
    private static final Set<String> INSERTED = new HashSet<>();

    /** Views of one font measure with one typeface, by which their pictures are known as the same. */
    private static final LruCache<FontSource, Typeface> TYPEFACES = new LruCache<>(16);

    private final Kind kind;
    private final String name;
    private final int index;
    private final String variations;
    /** Null in a key of the cache. */
    private final Context context;

    private FontSource(Kind kind, String name, int index, String variations, Context context) {
        this.kind = kind;
        this.name = name;
        this.index = index;
        this.variations = variations;
        this.context = context;
    }

    /** The font of a style, or null when it names none. */
    static FontSource of(TextStyle style, Context context) {
        return of(style, style.getFont(), context);
    }

    /** A font in the place of the style's, or null. */
    static FontSource of(TextStyle style, String font, Context context) {
        return font == null ? null : new FontSource(kindOf(font), font,
                style.getFontIndex() == null ? 0 : style.getFontIndex(),
                style.getFontVariations() == null ? "" : style.getFontVariations(), context);
    }

    /**
     * What a style's font means: an absolute path is a file, {@code @font/title} a resource, another
     * path or a name with a font's ending an asset, the rest is the name of a family.
     */
    private static Kind kindOf(String font) {
        if (font.startsWith(RESOURCE_PREFIX)) {
            return Kind.RESOURCE;
        }
        if (new File(font).isAbsolute()) {
            return Kind.FILE;
        }
        String lower = font.toLowerCase(Locale.ROOT);
        boolean isFile = lower.contains("/") || lower.endsWith(".ttf") || lower.endsWith(".otf")
                || lower.endsWith(".ttc") || lower.endsWith(".otc");
        return isFile ? Kind.ASSET : Kind.FAMILY;
    }

    /** Throws IllegalArgumentException when there is none. */
    Typeface toTypeface() {
        if (kind == Kind.FAMILY) {
            return family(); // the platform keeps these
        }
        Typeface typeface = TYPEFACES.get(this);
        if (typeface == null) {
            typeface = open();
            TYPEFACES.put(new FontSource(kind, name, index, variations, null), typeface);
        }
        return typeface;
    }

    private Typeface open() {
        switch (kind) {
            case FILE:
                return openFile();
            case ASSET:
                return openAsset();
            default:
                return openResource();
        }
    }

    private Typeface family() {
        Typeface typeface = Typeface.create(name, Typeface.NORMAL);
        if (typeface.equals(Typeface.DEFAULT) && !FamilyNames.isDefault(name)) {
            throw SystemFamilies.unknown(name); // the platform takes its default in silence
        }
        return typeface;
    }

    private Typeface openFile() {
        if (!new File(name).canRead()) {
            throw new IllegalArgumentException("font: no readable file \"" + name + "\"");
        }
        return takesFirst() ? Typeface.createFromFile(name)
                : requireFont(Api26.ofFile(name, index));
    }

    private Typeface openAsset() {
        try {
            context.getAssets().open(name).close(); // not every release refuses one that does not exist
        } catch (IOException e) {
            throw new IllegalArgumentException("font: no asset \"" + name + "\"", e);
        }
        return takesFirst() ? Typeface.createFromAsset(context.getAssets(), name)
                : requireFont(Api26.ofAsset(context.getAssets(), name, index));
    }

    private Typeface openResource() {
        if (Build.VERSION.SDK_INT < 26) {
            throw new IllegalArgumentException("font: \"" + name
                    + "\" needs API level 26; name an asset or a file before");
        }
        if (index != 0) {
            throw new IllegalArgumentException("fontIndex: of \"" + name
                    + "\" a view takes the first font; name an asset or a file");
        }
        return Api26.ofResource(context.getResources(), resource());
    }

    private int resource() {
        int number = context.getResources().getIdentifier(
                name.substring(RESOURCE_PREFIX.length()), "font", context.getPackageName());
        if (number == 0) {
            throw new IllegalArgumentException("font: no resource \"" + name + "\"");
        }
        return number;
    }

    /** The name by which the native library knows the resource, which it is given once. */
    private String insertResource() {
        int number = resource();
        String fullName = context.getResources().getResourceName(number);
        synchronized (INSERTED) {
            if (!INSERTED.contains(fullName)) {
                FontManager.insertFontData(fullName,
                        RawResource.read(context.getResources(), number));
                INSERTED.add(fullName);
            }
        }
        return fullName;
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

    /** Sets the font; throws GxTextException when there is none. */
    void putOn(GxText text) {
        switch (kind) {
            case FILE:
                text.setFont(name, index, variations);
                break;
            case ASSET:
                text.setFont(context.getAssets(), name, index, variations);
                break;
            case RESOURCE:
                text.setFont(insertResource(), index, variations);
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

        static Typeface ofResource(Resources resources, int number) {
            return resources.getFont(number);
        }

        static Typeface ofAsset(AssetManager assets, String name, int index) {
            return new Typeface.Builder(assets, name).setTtcIndex(index).build();
        }
    }
}
