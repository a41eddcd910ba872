package com.norvale.android.sdk.gxe;

import android.content.res.AssetManager;
import android.graphics.Bitmap;
import android.graphics.Paint;
import android.text.Layout;
import android.widget.TextView;
import com.norvale.android.sdk.gxe.annotation.IntRange;
import com.norvale.android.sdk.gxe.annotation.NonNull;
import com.norvale.android.sdk.gxe.annotation.Px;
import com.norvale.android.sdk.gxe.font.FontManager;
import com.norvale.android.sdk.gxe.util.NativeLibrary;
import java.io.File;
import java.util.List;
import java.util.Objects;

/**
 * Draws the text of a text view with effects into a picture.
 *
 * <pre>{@code
 * try (GxText text = new GxText()) {
 *     text.setFont("/system/fonts/NotoSerif-Bold.ttf");
 *     text.setEffects(style.getEffects());
 *     text.setSource(textView); // measured and laid out
 *     text.render().draw(canvas, textView.getLeft(), textView.getTop());
 * }
 * }</pre>
 *
 * <p>The object stands for memory outside the Java heap: {@link #close} it. One that is forgotten
 * gives its memory back when it is collected, which may be late. Every method of a closed object
 * but {@link #close} throws {@link IllegalStateException}.
 *
 * <p>Threads: one at a time, any; different objects may draw at the same time.
 */
public final class GxText implements AutoCloseable {
    /** Handle of the native object; negative until the first native call makes one. */
    // Read and written by the native library under this name.
    private int mHandle = -1;

    private boolean closed;

    /**
     * Loads the native library if that has not been done.
     *
     * @throws UnsatisfiedLinkError when there is none for this device
     */
    public GxText() {
        NativeLibrary.load();
    }

    /**
     * Uses a font file for the text.
     *
     * <p>The name's ending says which style the font has when it holds one of {@code -Thin},
     * {@code -Light}, {@code -Medium}, {@code -Bold}, {@code -Black} or {@code -Italic}. Fonts
     * under {@code /system/fonts/Roboto-} are taken from the system's configuration, see {@link
     * FontManager#setFontConfig}.
     *
     * @param file path of a TrueType, OpenType or collection file, or the name of a font that
     *     {@link FontManager#insertFontData} has added
     * @throws GxTextException when there is no such font; a file that fails once fails as long as
     *     the process lives
     */
    public void setFont(@NonNull String file) {
        requireUsable("file", file);
        if (!GxText_SetFont(file)) {
            throw new GxTextException("file \"" + file + "\" " + (new File(file).canRead()
                    ? "is not a usable font"
                    : "is no readable file and no font of that name was added"));
        }
    }

    /**
     * Uses a font that is given as bytes.
     *
     * @param name name under which the font stays known in this process; one of that name that
     *     exists is used instead of the bytes
     * @param data a whole TrueType, OpenType or collection file; copied
     * @throws GxTextException when the bytes are no font
     */
    public void setFont(@NonNull String name, @NonNull byte[] data) {
        requireUsable("name", name);
        Objects.requireNonNull(data, "data");
        if (!GxText_SetFont2(name, data)) {
            throw new GxTextException(
                    "data (" + data.length + " bytes, name \"" + name + "\") is not a usable font");
        }
    }

    /**
     * Uses a font among the app's assets.
     *
     * @param assets the app's assets
     * @param path path among them; also the name under which the font stays known in this process
     * @throws GxTextException when there is no such asset or it is no font
     */
    public void setFont(@NonNull AssetManager assets, @NonNull String path) {
        requireUsable("path", path);
        Objects.requireNonNull(assets, "assets");
        if (!GxText_SetFont3(assets, path)) {
            throw new GxTextException("path \"" + path + "\" is no font among the assets");
        }
    }

    /**
     * Uses the system's own font. When the fonts of the system have been given to {@link
     * FontManager#setFontConfig}, a text has them without this, and nothing is done.
     *
     * @param bold the bold weight instead of the regular one
     * @throws GxTextException when the system has no font that can be read
     */
    // Under its own path the font would be taken for a part of a configuration that ordinary apps
    // cannot give; so it is loaded under another name.
    public void setSystemFont(boolean bold) {
        requireOpen();
        if (FontManager.hasSystemFonts()) {
            return;
        }
        File file = FontSource.systemFile(bold);
        setFont("system:" + file.getName(), FontSource.readAll(file));
    }

    /**
     * Names the family that the text is set in. It chooses between styles of a font that was set;
     * it does not look for a font.
     *
     * @param familyName the family's name
     * @throws GxTextException when the native library refuses it
     */
    public void setFontFamilyName(@NonNull String familyName) {
        requireUsable("familyName", familyName);
        if (!GxText_SetFontFamilyName(familyName)) {
            throw new GxTextException("familyName \"" + familyName + "\" was refused");
        }
    }

    /**
     * Replaces the effects.
     *
     * @param effects in order of addition, at most one of each type
     * @throws GxTextException when the native library refuses one; those before it stay
     */
    public void setEffects(@NonNull List<? extends TextEffect> effects) {
        requireUsable("effects", effects);
        GxText_ClearAllTextEffect();
        for (int i = 0; i < effects.size(); i++) {
            TextEffect effect = effects.get(i);
            requireUsable("effects[" + i + "]", effect); // the list may have closed this object
            if (effect.addTo(this) < 0) {
                throw new GxTextException("effects[" + i + "] " + effect + " was refused");
            }
        }
    }

    /**
     * Takes everything from a text view: paint, colours, gravity, padding and lines. In place of
     * {@link #setPaint}, {@link #setView}, {@link #setLineLimit} and {@link #setLayout}; call it
     * before each {@link #render}.
     *
     * @param view a view that has been laid out
     * @throws IllegalArgumentException when it has no size or no lines yet
     * @throws GxTextException when the native library refuses it
     */
    public void setSource(@NonNull TextView view) {
        requireUsable("view", view);
        Layout layout = view.getLayout();
        if (layout == null) {
            throw new IllegalArgumentException("view has not been laid out");
        }
        setPaint(view.getPaint());
        setView(view);
        // A view whose height is limited in pixels has no limit of lines: show them all.
        setLineLimit(view.getMaxLines() > 0 ? 0 : layout.getLineCount());
        setLayout(layout);
    }

    /**
     * Takes size, stretch, spacing, features, locales and flags from a paint. Its colour is not
     * used, see {@link #setView}.
     *
     * @param paint the paint of the text
     * @throws GxTextException when the native library refuses it
     */
    public void setPaint(@NonNull Paint paint) {
        requireUsable("paint", paint);
        require(GxText_SetPaint(paint), "paint");
    }

    /**
     * Takes size, padding, gravity, line count, text colour and style from a text view.
     *
     * @param view a view that has been laid out
     * @throws IllegalArgumentException when it has no size yet
     * @throws GxTextException when the native library refuses it
     */
    public void setView(@NonNull TextView view) {
        requireUsable("view", view);
        if (view.getWidth() <= 0 || view.getHeight() <= 0) {
            throw new IllegalArgumentException("view has no size yet: " + view.getWidth() + " x "
                    + view.getHeight() + " pixels");
        }
        require(GxText_SetView(view), "view");
    }

    /**
     * Limits the lines that are drawn.
     *
     * @param lines the most lines to draw, or 0 for the view's own limit
     * @throws IllegalArgumentException when negative
     * @throws GxTextException when the native library refuses it
     */
    public void setLineLimit(@IntRange(from = 0) int lines) {
        requireOpen();
        if (lines < 0) {
            throw new IllegalArgumentException("lines: " + lines + " is negative");
        }
        require(GxText_SetLine(lines), "lines");
    }

    /**
     * Takes text and lines from a layout. Needs the view and the line limit, so it comes after
     * {@link #setView} and {@link #setLineLimit}; call it before each {@link #render}, which moves
     * the boxes behind the lines.
     *
     * @param layout the lines
     * @throws GxTextException when the native library refuses it
     */
    public void setLayout(@NonNull Layout layout) {
        requireUsable("layout", layout);
        require(GxText_SetLayout(layout), "layout");
    }

    /**
     * Room that the effects need left of the view.
     *
     * @return pixels, at least 0
     */
    @Px
    public int getLeftMargin() {
        requireOpen();
        return GxText_GetEffectLeftOffset();
    }

    /**
     * Room that the effects need above the view.
     *
     * @return pixels, at least 0
     */
    @Px
    public int getTopMargin() {
        requireOpen();
        return GxText_GetEffectTopOffset();
    }

    /**
     * Room that the effects need right of the view.
     *
     * @return pixels, at least 0
     */
    @Px
    public int getRightMargin() {
        requireOpen();
        return GxText_GetEffectRightOffset();
    }

    /**
     * Room that the effects need below the view.
     *
     * @return pixels, at least 0
     */
    @Px
    public int getBottomMargin() {
        requireOpen();
        return GxText_GetEffectBottomOffset();
    }

    /**
     * Draws the text into a picture of the view's size plus the margins.
     *
     * @return the picture, the caller's own
     * @throws IllegalStateException when no view has been given
     * @throws GxTextException when the native library cannot draw, for want of memory for example
     */
    @NonNull
    public TextImage render() {
        int[] pixels = renderPixels();
        int[] size = GxText_GetDrawingBitmapSize();
        if (size == null) {
            throw new GxTextException("the size of the picture could not be read");
        }
        return new TextImage(
                Bitmap.createBitmap(pixels, size[0], size[1], Bitmap.Config.ARGB_8888),
                getLeftMargin(), getTopMargin(), getRightMargin(), getBottomMargin());
    }

    /**
     * Draws the text like {@link #render}, without a bitmap.
     *
     * @return rows of pixels {@code 0xAARRGGBB} without gaps, colours not multiplied by alpha. The
     *     width is that of the view plus {@link #getLeftMargin} and {@link #getRightMargin}
     * @throws IllegalStateException when no view has been given
     * @throws GxTextException when the native library cannot draw, for want of memory for example
     */
    @NonNull
    public int[] renderPixels() {
        requireOpen();
        int[] pixels = GxText_RenderTextEffect();
        if (pixels == null) {
            throw new GxTextException("the text could not be drawn");
        }
        if (pixels.length == 0) {
            throw new IllegalStateException("there is no view to draw for; call setSource first");
        }
        return pixels;
    }

    /** Gives the native memory back. Does nothing when that has been done. */
    @Override
    public void close() {
        if (closed) {
            return;
        }
        closed = true;
        if (mHandle >= 0) {
            GxText_finalize();
        }
    }

    /**
     * Whether the object has been closed.
     *
     * @return true after {@link #close}
     */
    public boolean isClosed() {
        return closed;
    }

    // Android has no other safety net that works before API level 33, and the native side releases
    // by the object itself, which a reference queue no longer has.
    @SuppressWarnings({"deprecation", "removal"})
    @Override
    protected void finalize() throws Throwable {
        try {
            close();
        } finally {
            super.finalize();
        }
    }

    int addInnerShadow(float angle, float distance, float size, int color, float opacity) {
        return GxText_AddInnerShadowTextEffect(angle, distance, size, color, opacity);
    }

    int addOuterShadow(float angle, float distance, float size, int color, float opacity) {
        return GxText_AddOuterShadowTextEffect(angle, distance, size, color, opacity);
    }

    int addOuterGlow(float size, int color, float opacity) {
        return GxText_AddOuterGlowTextEffect(size, color, opacity);
    }

    int addStroke(float size, int color, float opacity, int cap, int position) {
        return GxText_AddStrokeTextEffect(size, color, opacity, cap, position);
    }

    int addLinearGradient(float angle, float scale, int[] colors, float[] opacities,
            float[] positions, float opacity) {
        return GxText_AddLinearGradientTextEffect(
                angle, scale, colors, opacities, positions, opacity);
    }

    private void requireOpen() {
        if (closed) {
            throw new IllegalStateException("this GxText is closed");
        }
    }

    private void requireUsable(String name, Object argument) {
        requireOpen();
        Objects.requireNonNull(argument, name);
    }

    private static void require(boolean succeeded, String argument) {
        if (!succeeded) {
            throw new GxTextException(argument + " was refused");
        }
    }

    private native void GxText_finalize();

    private native int GxText_AddInnerShadowTextEffect(
            float angle, float distance, float size, int color, float opacity);

    private native int GxText_AddLinearGradientTextEffect(float angle, float scale, int[] colors,
            float[] opacities, float[] positions, float opacity);

    private native int GxText_AddOuterGlowTextEffect(float size, int color, float opacity);

    private native int GxText_AddOuterShadowTextEffect(
            float angle, float distance, float size, int color, float opacity);

    private native int GxText_AddStrokeTextEffect(
            float size, int color, float opacity, int cap, int position);

    private native void GxText_ClearAllTextEffect();

    private native int[] GxText_RenderTextEffect();

    private native boolean GxText_SetFont(String path);

    private native boolean GxText_SetFont2(String name, byte[] data);

    private native boolean GxText_SetFont3(AssetManager assets, String name);

    private native boolean GxText_SetPaint(Paint paint);

    private native boolean GxText_SetLayout(Layout layout);

    private native boolean GxText_SetLine(int lines);

    private native boolean GxText_SetView(TextView view);

    private native int[] GxText_GetDrawingBitmapSize();

    private native int GxText_GetEffectLeftOffset();

    private native int GxText_GetEffectTopOffset();

    private native int GxText_GetEffectRightOffset();

    private native int GxText_GetEffectBottomOffset();

    private native boolean GxText_SetFontFamilyName(String name);
}
