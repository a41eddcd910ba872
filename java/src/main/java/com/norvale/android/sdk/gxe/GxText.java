package com.norvale.android.sdk.gxe;

import android.content.res.AssetManager;
import android.graphics.Bitmap;
import android.graphics.Paint;
import android.graphics.Rect;
import android.graphics.Typeface;
import android.text.Layout;
import android.widget.TextView;
import androidx.annotation.AnyThread;
import androidx.annotation.IntRange;
import androidx.annotation.NonNull;
import androidx.annotation.Px;
import androidx.annotation.UiThread;
import com.norvale.android.sdk.gxe.font.FontManager;
import com.norvale.android.sdk.gxe.util.NativeLibrary;
import java.io.File;
import java.nio.charset.StandardCharsets;
import java.util.ArrayList;
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
 * <p>Threads: one at a time, any; different objects may draw at the same time. Views and their
 * layouts are read on the thread that they belong to.
 */
public final class GxText implements AutoCloseable {
    /** Handle of the native object; negative until the first native call makes one. */
    // Read and written by the native library under this name.
    private int mHandle = -1;

    private boolean closed;

    private TextStyle style = TextStyle.EMPTY;
    /** Of the last view's screen for a style in dp. */
    private float pixelsPerDp = 1;
    private PatternLoader patternLoader;
    private boolean keepsWholeInk;
    private boolean confinesInside = true;

    /** Family of the font that was set; negative for the system's own. */
    private int ownFamily = -1;
    /** What is wanted of the family; 0 takes the one font that it has. */
    private int ownWeight = FamilyNames.REGULAR;
    /** Whether the weight is that of a family by name, which a bold view makes bolder. */
    private boolean isNamed;
    /** Until a font is set: family and weight are those of the view's typeface. */
    private boolean followsTypeface = true;
    private boolean isViewBold;
    private final List<Integer> fallbackFamilies = new ArrayList<>();
    private boolean hasPaint;
    private boolean hasView;
    private boolean hasLayout;
    private int lineLimit;
    /** Of the view; negative when its height is limited in pixels. */
    private int maxLines;
    /** Of the layout, for which fonts are chosen. */
    private String characters = "";

    /**
     * Loads the native library if that has not been done.
     *
     * @throws UnsatisfiedLinkError when there is none for this device
     */
    public GxText() {
        NativeLibrary.load();
    }

    /**
     * Reads the fonts of the system for all texts, see {@link FontManager#loadSystemFonts}.
     *
     * @return whether there is one that can be read
     */
    @AnyThread
    public static boolean loadSystemFonts() {
        NativeLibrary.load();
        return !SystemFamilies.isEmpty();
    }

    /**
     * Uses a font file for the text.
     *
     * <p>After {@link FontManager#setFontConfig} the name's ending says which style the font has when
     * it holds one of {@code -Thin}, {@code -Light}, {@code -Medium}, {@code -Bold}, {@code -Black}
     * or {@code -Italic}, and fonts under {@code /system/fonts/Roboto-} are taken from that
     * configuration. Otherwise the font itself says what it is.
     *
     * @param file path of a TrueType, OpenType or collection file, or the name of a font that
     *     {@link FontManager#insertFontData} has added
     * @throws GxTextException when there is no such font; a file that fails once fails as long as
     *     the process lives
     */
    public void setFont(@NonNull String file) {
        setFont(file, 0, "");
    }

    /**
     * Uses one font of a file, or a variable font at other places of its axes.
     *
     * @param file as for {@link #setFont(String)}
     * @param index place in a collection file, 0 to 99; 0 in others
     * @param variations axis settings such as {@code 'wght' 650, 'wdth' 80}, or an empty string
     * @throws IllegalArgumentException when the settings are none
     * @throws GxTextException when there is no such font
     */
    public void setFont(@NonNull String file, @IntRange(from = 0, to = 99) int index,
            @NonNull String variations) {
        requireUsable("file", file);
        requireVariations(variations);
        int family = GxText_SetFont(file) ? SystemFamilies.familyOf(file, index, variations, "") : -1;
        if (family < 0) {
            throw new GxTextException("file \"" + file + "\" " + (new File(file).canRead()
                    ? "is not a usable font" + orHasNoneAt(index)
                    : "is no readable file and no font of that name was added"));
        }
        useFamily(family, 0);
    }

    private void useFamily(int family, int weight) {
        ownFamily = family;
        ownWeight = weight;
        isNamed = false;
        followsTypeface = false;
    }

    /**
     * Adds a font for what the text's own font and those added before lack; it goes before the
     * system's. Not used after {@link FontManager#setFontConfig}.
     *
     * @param file as for {@link #setFont(String)}
     * @param index place in a collection file, 0 to 99; 0 in others
     * @param locales languages that it is preferred for, BCP 47, comma-separated; may be empty
     * @throws IllegalArgumentException when the languages are none
     * @throws GxTextException when there is no such font
     */
    public void addFallbackFont(@NonNull String file, @IntRange(from = 0, to = 99) int index,
            @NonNull String locales) {
        requireUsable("file", file);
        String problem = TextSettings.checkLocale(locales);
        if (problem != null) {
            throw new IllegalArgumentException("locales: " + problem);
        }
        int family = SystemFamilies.familyOf(file, index, "", locales);
        if (family < 0) {
            throw new GxTextException("file \"" + file + "\" is not a usable font");
        }
        fallbackFamilies.add(family);
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
        useFamily(SystemFamilies.familyOf(name, 0, "", ""), 0);
    }

    /**
     * Uses a font among the app's assets.
     *
     * @param assets the app's assets
     * @param path path among them; also the name under which the font stays known in this process
     * @throws GxTextException when there is no such asset or it is no font
     */
    public void setFont(@NonNull AssetManager assets, @NonNull String path) {
        setFont(assets, path, 0, "");
    }

    /**
     * Uses one font of a collection among the app's assets, or a variable font at other places of its
     * axes.
     *
     * @param assets the app's assets
     * @param path path among them; also the name under which the font stays known in this process
     * @param index place in a collection file, 0 to 99; 0 in others
     * @param variations axis settings such as {@code 'wght' 650, 'wdth' 80}, or an empty string
     * @throws IllegalArgumentException when the settings are none
     * @throws GxTextException when there is no such asset or it has no such font
     */
    public void setFont(@NonNull AssetManager assets, @NonNull String path,
            @IntRange(from = 0, to = 99) int index, @NonNull String variations) {
        requireUsable("path", path);
        Objects.requireNonNull(assets, "assets");
        requireVariations(variations);
        int family = GxText_SetFont3(assets, path)
                ? SystemFamilies.familyOf(path, index, variations, "") : -1;
        if (family < 0) {
            throw new GxTextException("path \"" + path + "\" is no font among the assets"
                    + orHasNoneAt(index));
        }
        useFamily(family, 0);
    }

    private static void requireVariations(String variations) {
        String problem = TextSettings.check("fontVariations",
                Objects.requireNonNull(variations, "variations"));
        if (problem != null) {
            throw new IllegalArgumentException("variations: " + problem);
        }
    }

    private static String orHasNoneAt(int index) {
        return index == 0 ? "" : ", or has none at index " + index;
    }

    /**
     * Uses the fonts of the system and no font of the text's own. They are read once for the process,
     * see {@link FontManager#loadSystemFonts}. A new object does so by itself, in family and weight of
     * the view's typeface when that is one of the system's.
     *
     * @param bold the bold weight instead of the regular one
     * @throws GxTextException when the system has no font that can be read
     */
    public void setSystemFont(boolean bold) {
        requireOpen();
        if (!FontManager.hasSystemFonts() && SystemFamilies.isEmpty()) {
            throw new GxTextException("the system has no readable font; call setFont");
        }
        useFamily(-1, bold ? FamilyNames.BOLD : FamilyNames.REGULAR);
    }

    /**
     * Uses a family of the system, such as {@code serif} or {@code sans-serif-light}, in place of the
     * font that was set; bold when the view's typeface is. After {@link FontManager#setFontConfig}
     * the name chooses between styles of the font that was set only.
     *
     * @param familyName the family's name
     * @throws IllegalArgumentException when the system has no such family; the message names those
     *     that it has
     * @throws GxTextException when the native library refuses it
     */
    public void setFontFamilyName(@NonNull String familyName) {
        requireUsable("familyName", familyName);
        if (!GxText_SetFontFamilyName(familyName)) {
            throw new GxTextException("familyName \"" + familyName + "\" was refused");
        }
        if (!FontManager.hasSystemFonts()) {
            SystemFamilies.Choice choice = SystemFamilies.named(familyName);
            useFamily(choice.family, choice.weight);
            isNamed = true;
        }
    }

    /**
     * Gives the pictures of patterns; wanted before the effects that name them are set.
     *
     * @param loader gives a picture by its name
     */
    public void setPatternLoader(@NonNull PatternLoader loader) {
        requireUsable("loader", loader);
        patternLoader = loader;
    }

    /** For a text that gets no other style: what the app gave may hold on to a whole activity. */
    void releasePatternLoader() {
        patternLoader = null;
    }

    /**
     * Replaces the effects.
     *
     * @param effects at most 256, of two outside effects, and of two inside ones, the later on top
     * @throws StyleException when a pattern has no picture, with its place; the object then has no
     *     effects
     */
    public void setEffects(@NonNull List<? extends TextEffect> effects) {
        requireUsable("effects", effects);
        TextStyle.Builder builder = style.toBuilder().clearEffects().setOrder(
                TextStyle.Order.LISTED);
        for (int i = 0; i < effects.size(); i++) {
            TextEffect effect = effects.get(i);
            requireUsable("effects[" + i + "]", effect); // the list may have closed this object
            builder.addEffect(effect);
        }
        setStyle(builder.build());
    }

    /**
     * Takes what a picture has of a style beside its text: effects, opacity, opacity of the letters'
     * fill, canvas and the shape of background boxes. Text, font, colours and layout are the
     * view's: see {@link TextStyle#applyTo}. Lengths in dp are those of the view's screen once there
     * is one, its font scale included.
     *
     * @param style the style
     * @throws StyleException when a pattern has no picture, with its place; the object then has no
     *     effects
     */
    public void setStyle(@NonNull TextStyle style) {
        requireUsable("style", style);
        Pictures pictures = new Pictures(style, patternLoader);
        this.style = TextStyle.EMPTY;
        TextStyle inPixels = style.getUnit() == TextStyle.Unit.DP && pixelsPerDp != 1
                ? style.scaled(pixelsPerDp) : style;
        byte[] mistakes = TextExtension.dress(this,
                StyleWriter.writeLook(inPixels).getBytes(StandardCharsets.UTF_8),
                lengths(inPixels),
                (keepsWholeInk ? TextExtension.WHOLE_INK : 0)
                        | (confinesInside ? 0 : TextExtension.LET_INSIDE_OUT),
                pictures.names(), pictures.widths(), pictures.pixels());
        if (mistakes != null) {
            throw StyleException.of(mistakes);
        }
        this.style = style;
    }

    /** For a style in dp. */
    private void scaleTo(TextView view) {
        float wanted = style.getUnit() == TextStyle.Unit.DP
                ? view.getResources().getDisplayMetrics().scaledDensity : pixelsPerDp;
        if (wanted != pixelsPerDp) {
            pixelsPerDp = wanted;
            setStyle(style);
        }
    }

    /** Size and distance of each effect. */
    private static float[] lengths(TextStyle style) {
        List<TextEffect> effects = style.getEffects();
        float[] lengths = new float[2 * effects.size()];
        for (int i = 0; i < effects.size(); i++) {
            Object size = effects.get(i).get("size");
            Object distance = effects.get(i).get("distance");
            lengths[2 * i] = size == null ? 0 : (Float) size;
            lengths[2 * i + 1] = distance == null ? 0 : (Float) distance;
        }
        return lengths;
    }

    /**
     * Whether lines show all of their ink: the first letter keeps its bearing, what overhangs a
     * line's end is not cut, and padding does not cut either. The picture is larger by what reaches
     * beyond the view, and so are the margins.
     *
     * @param keeps true for all ink; false, as at first, begins the ink of a line at its left end
     *     and ends it at its advance
     */
    public void setKeepsWholeInk(boolean keeps) {
        requireOpen();
        if (keepsWholeInk != keeps) {
            keepsWholeInk = keeps;
            setStyle(style);
        }
    }

    /**
     * Whether inside effects (inner shadow, inner glow, inside stroke) stay within the letters.
     *
     * @param confines true, as at first; false lets them colour pixels beside the letters
     */
    public void setConfinesInside(boolean confines) {
        requireOpen();
        if (confinesInside != confines) {
            confinesInside = confines;
            setStyle(style);
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
    @UiThread
    public void setSource(@NonNull TextView view) {
        requireUsable("view", view);
        Layout layout = view.getLayout();
        if (layout == null) {
            throw new IllegalArgumentException("view has not been laid out");
        }
        setPaint(view.getPaint());
        setView(view);
        setLineLimit(0);
        setLayout(layout);
    }

    /**
     * Takes size, stretch, spacing, features, locales and flags from a paint. Its colour is not
     * used, see {@link #setView}.
     *
     * @param paint the paint of the text
     * @throws IllegalArgumentException when one of its lengths is not finite
     * @throws GxTextException when the native library refuses it
     */
    public void setPaint(@NonNull Paint paint) {
        requireUsable("paint", paint);
        requireFinite("paint.textSize", paint.getTextSize());
        requireFinite("paint.textScaleX", paint.getTextScaleX());
        requireFinite("paint.textSkewX", paint.getTextSkewX());
        requireFinite("paint.letterSpacing", paint.getLetterSpacing());
        require(GxText_SetPaint(paint), "paint");
        hasPaint = true;
    }

    private static void requireFinite(String name, float value) {
        if (Float.isNaN(value) || Float.isInfinite(value)) {
            throw new IllegalArgumentException(name + ": " + value + " is not finite");
        }
    }

    /**
     * Takes size, padding, gravity, line count, text colour and style from a text view.
     *
     * @param view a view that has been laid out
     * @throws IllegalArgumentException when it has no size yet
     * @throws GxTextException when the native library refuses it
     */
    @UiThread
    public void setView(@NonNull TextView view) {
        requireUsable("view", view);
        if (view.getWidth() <= 0 || view.getHeight() <= 0) {
            throw new IllegalArgumentException("view has no size yet: " + view.getWidth() + " x "
                    + view.getHeight() + " pixels");
        }
        scaleTo(view);
        require(GxText_SetView(view), "view");
        hasView = true;
        maxLines = view.getMaxLines();
        Typeface typeface = view.getTypeface();
        isViewBold = typeface != null && typeface.isBold();
        if (followsTypeface && !FontManager.hasSystemFonts()) {
            SystemFamilies.Choice choice = SystemFamilies.of(typeface);
            ownFamily = choice.family;
            ownWeight = choice.weight;
        }
        if (style.number("opacity") != 1) {
            TextExtension.fade(this, style.number("opacity"));
        }
    }

    /**
     * Limits the lines that are drawn.
     *
     * @param lines the most lines to draw, or 0, as at first, for the view's own limit
     * @throws IllegalArgumentException when negative
     */
    public void setLineLimit(@IntRange(from = 0) int lines) {
        requireOpen();
        if (lines < 0) {
            throw new IllegalArgumentException("lines: " + lines + " is negative");
        }
        lineLimit = lines;
    }

    /**
     * Takes text and lines from a layout. Needs the view and the line limit, so it comes after
     * {@link #setView} and {@link #setLineLimit}; call it before each {@link #render}, which moves
     * the boxes behind the lines.
     *
     * @param layout the lines
     * @throws IllegalStateException when no view has been given
     * @throws GxTextException when the native library refuses it
     */
    public void setLayout(@NonNull Layout layout) {
        requireUsable("layout", layout);
        requireGiven(hasView, "view", "setView");
        // A view whose height is limited in pixels has no limit of lines: show them all.
        boolean isLimited = lineLimit > 0 || maxLines > 0;
        require(GxText_SetLine(isLimited ? lineLimit : layout.getLineCount()), "lines");
        require(GxText_SetLayout(layout), "layout");
        hasLayout = true;
        characters = String.valueOf(layout.getText());
    }

    /**
     * Room that the effects need left of the view.
     *
     * @return pixels, at least 0
     */
    @Px
    public int getLeftMargin() {
        requireOpen();
        return keepsWholeInk ? measure()[TextExtension.LEFT] : GxText_GetEffectLeftOffset();
    }

    /**
     * Room that the effects need above the view.
     *
     * @return pixels, at least 0
     */
    @Px
    public int getTopMargin() {
        requireOpen();
        return keepsWholeInk ? measure()[TextExtension.TOP] : GxText_GetEffectTopOffset();
    }

    /**
     * Room that the effects need right of the view.
     *
     * @return pixels, at least 0
     */
    @Px
    public int getRightMargin() {
        requireOpen();
        return keepsWholeInk ? measure()[TextExtension.RIGHT] : GxText_GetEffectRightOffset();
    }

    /**
     * Room that the effects need below the view.
     *
     * @return pixels, at least 0
     */
    @Px
    public int getBottomMargin() {
        requireOpen();
        return keepsWholeInk ? measure()[TextExtension.BOTTOM] : GxText_GetEffectBottomOffset();
    }

    /**
     * Draws the text into a picture of the view's size plus the margins. The library gives straight
     * colours; {@link Bitmap#createBitmap(int[], int, int, Bitmap.Config)}, which this calls,
     * multiplies them by their alpha as bitmaps want them. Takes milliseconds: where frames count,
     * call it off the main thread.
     *
     * @return the picture, the caller's own
     * @throws IllegalStateException when paint, view or lines have not been given
     * @throws GxTextException when the native library cannot draw, for want of memory for example
     */
    @NonNull
    @AnyThread
    public TextImage render() {
        int[] frame = new int[TextExtension.FRAME_SIZE];
        int[] pixels = renderPixels(frame);
        return new TextImage(
                Bitmap.createBitmap(pixels, frame[TextExtension.WIDTH],
                        frame[TextExtension.HEIGHT], Bitmap.Config.ARGB_8888),
                frame[TextExtension.LEFT], frame[TextExtension.TOP], frame[TextExtension.RIGHT],
                frame[TextExtension.BOTTOM]);
    }

    /**
     * Draws the text like {@link #render}, without a bitmap.
     *
     * @return rows of pixels {@code 0xAARRGGBB} without gaps, colours not multiplied by alpha. The
     *     width is that of the view plus {@link #getLeftMargin} and {@link #getRightMargin}
     * @throws IllegalStateException when paint, view or lines have not been given
     * @throws GxTextException when the native library cannot draw, for want of memory for example
     */
    @NonNull
    @AnyThread
    public int[] renderPixels() {
        return renderPixels(new int[TextExtension.FRAME_SIZE]);
    }

    private int[] renderPixels(int[] frame) {
        requireOpen();
        requireGiven(hasPaint, "paint", "setPaint");
        requireGiven(hasLayout, "layout", "setLayout");
        useFonts();
        int[] pixels = keepsWholeInk
                ? TextExtension.render(this, frame)
                : renderView(frame);
        if (pixels == null) {
            throw new GxTextException("the text could not be drawn");
        }
        return pixels;
    }

    /** With the margins of the effects alone. */
    private int[] renderView(int[] frame) {
        int[] pixels = GxText_RenderTextEffect();
        int[] size = GxText_GetDrawingBitmapSize();
        if (pixels == null || size == null) {
            return null;
        }
        frame[TextExtension.WIDTH] = size[0];
        frame[TextExtension.HEIGHT] = size[1];
        frame[TextExtension.LEFT] = GxText_GetEffectLeftOffset();
        frame[TextExtension.TOP] = GxText_GetEffectTopOffset();
        frame[TextExtension.RIGHT] = GxText_GetEffectRightOffset();
        frame[TextExtension.BOTTOM] = GxText_GetEffectBottomOffset();
        return pixels;
    }

    private int[] measure() {
        useFonts();
        int[] frame = new int[TextExtension.FRAME_SIZE];
        if (!TextExtension.measure(this, frame)) {
            throw new GxTextException("the text could not be measured");
        }
        return frame;
    }

    /** Of the effects alone. */
    Rect effectMargins() {
        requireOpen();
        return new Rect(GxText_GetEffectLeftOffset(), GxText_GetEffectTopOffset(),
                GxText_GetEffectRightOffset(), GxText_GetEffectBottomOffset());
    }

    /** The text's own font first, those of the system for what it lacks. */
    private void useFonts() {
        if (FontManager.hasSystemFonts()) {
            return; // the configuration serves by itself
        }
        List<Integer> order = new ArrayList<>();
        if (ownFamily >= 0) {
            order.add(ownFamily);
        }
        order.addAll(fallbackFamilies);
        for (int family : SystemFamilies.of(characters, ownFamily)) {
            if (family != ownFamily) {
                order.add(family);
            }
        }
        if (order.isEmpty()) {
            throw new GxTextException("the text has no font and the system none that can be read; "
                    + "call setFont or set the style's font");
        }
        int[] families = new int[order.size()];
        for (int i = 0; i < families.length; i++) {
            families[i] = order.get(i);
        }
        int weight = isNamed && isViewBold ? FamilyNames.bolder(ownWeight) : ownWeight;
        if (!TextExtension.setFamilies(this, families, weight)) {
            throw new GxTextException("the fonts were refused");
        }
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

    private void requireOpen() {
        if (closed) {
            throw new IllegalStateException("this GxText is closed");
        }
    }

    private static void requireGiven(boolean given, String what, String setter) {
        if (!given) {
            throw new IllegalStateException(
                    "no " + what + " was given; call " + setter + " or setSource first");
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

    // The effects go in as a style; these stay for the table that registers them all.
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
