package com.norvale.android.sdk.gxe;

import android.content.Context;
import android.content.res.Configuration;
import android.graphics.Canvas;
import android.graphics.Paint;
import android.graphics.Rect;
import android.graphics.Typeface;
import android.graphics.drawable.Drawable;
import android.text.Layout;
import android.text.Spanned;
import android.text.style.BackgroundColorSpan;
import android.util.AttributeSet;
import android.util.TypedValue;
import android.view.ViewGroup;
import android.view.ViewParent;
import android.widget.TextView;
import androidx.annotation.NonNull;
import androidx.annotation.Nullable;
import androidx.annotation.UiThread;
import com.norvale.android.sdk.gxe.font.FontManager;
import java.util.Objects;
import java.util.concurrent.Executor;
import java.util.concurrent.RejectedExecutionException;

/**
 * A text view that draws its text with effects.
 *
 * <pre>{@code
 * view.setTextStyle(new TextStyle.Builder()
 *         .setFont("fonts/Title-Bold.ttf")
 *         .setUnit(TextStyle.Unit.DP)
 *         .addEffect(new OuterGlowEffect.Builder().setColor(Color.CYAN).setSize(20).build())
 *         .build());
 * }</pre>
 *
 * <p>It measures and lays out as any text view does. Its picture is drawn when something that
 * shows has changed and kept otherwise. Effects reach beyond the view's bounds, for which it asks
 * its parent not to clip; see {@link #setGrowsBeyondBounds}.
 *
 * <p>Without effects, and where the effects cannot follow, it draws as a plain text view: an empty
 * text (which shows the hint), a scrolled text, compound drawables, the layout editor. Selection
 * and cursor are not drawn over effects; links and other spans do not show but the background.
 *
 * <p>The system's fonts serve when the style names none, and for what its font lacks.
 *
 * <p>Threads: the main one, as with all views; {@link #setRenderExecutor} draws pictures on others.
 */
// The platform's class, not a compatibility library's: the SDK depends on nothing else.
@UiThread
public class GxTextView extends TextView {
    private TextStyle style = TextStyle.EMPTY;
    /** The style in pixels. */
    private TextStyle drawn = TextStyle.EMPTY;
    private PatternLoader patternLoader;
    private boolean growsBeyondBounds = true;
    private boolean includesEffectMargins;
    /** Part of the padding that is room for the effects; null while the super class constructs. */
    private Rect addedPadding = new Rect();
    /** What the style's lengths are multiplied by; 0 before there is a style. */
    private float scale;

    /** {@code app:gxSize}, and the pixels that it was last; null when not set. */
    private TypedValue sizeAttribute;
    private float sizeInPixels;

    /** {@code android:fontFamily} when it is a font file, and the typeface that came of it. */
    private String fontAttribute;
    private Typeface attributeTypeface;

    /** Native object; null until something is drawn, while detached, and when a job has taken it. */
    private GxText text;
    /** Draws pictures; null for the main thread. */
    private Executor executor;
    /** Draws what {@link #imageKey} says; null when nothing is being drawn. */
    private RenderJob job;

    private TextImage image;
    /** All that the picture depends on; also kept for one that could not be drawn. */
    private PictureCache.Key imageKey;
    private int renderCount;

    /**
     * A view without effects.
     *
     * @param context where the view runs
     */
    public GxTextView(@NonNull Context context) {
        this(context, null);
    }

    /**
     * A view from a layout file.
     *
     * @param context where the view runs
     * @param attrs the attributes of a text view
     */
    public GxTextView(@NonNull Context context, @Nullable AttributeSet attrs) {
        super(context, attrs);
        readAttributes(attrs, 0);
    }

    /**
     * A view from a layout file with a default style from the theme.
     *
     * @param context where the view runs
     * @param attrs the attributes of a text view
     * @param defStyleAttr attribute of the theme that names the default style, or 0
     */
    public GxTextView(@NonNull Context context, @Nullable AttributeSet attrs, int defStyleAttr) {
        super(context, attrs, defStyleAttr);
        readAttributes(attrs, defStyleAttr);
    }

    private void readAttributes(AttributeSet attrs, int defStyleAttr) {
        patternLoader = new AppPatterns(getContext());
        if (attrs == null) {
            return;
        }
        ViewAttributes set = new ViewAttributes(getContext(), attrs, defStyleAttr, isInEditMode());
        fontAttribute = set.font;
        attributeTypeface = getTypeface();
        if (set.style != null) {
            setTextStyle(set.style);
        }
        sizeAttribute = set.size;
        applySizeAttribute();
        if (set.color != null) {
            setTextColor(set.color);
        }
    }

    private void applySizeAttribute() {
        if (sizeAttribute != null) {
            sizeInPixels = ViewAttributes.pixels(sizeAttribute, getResources());
            setTextSize(TypedValue.COMPLEX_UNIT_PX, sizeInPixels);
        }
    }

    /**
     * Sets the effects and whatever else the style sets. Like {@link TextView#setTypeface} and the
     * other setters of a view, a later call of one of these holds. A style that is refused leaves the
     * view as it is.
     *
     * @param style the style; {@link TextStyle#EMPTY} for a text without effects
     * @throws IllegalArgumentException when the style's font does not exist
     * @throws StyleException when a pattern has no picture, with its place
     * @throws GxTextException when the native library refuses font or effects
     */
    public void setTextStyle(@NonNull TextStyle style) {
        Objects.requireNonNull(style, "style");
        float wanted = scaleOf(style);
        TextStyle scaled = wanted == 1 ? style : style.scaled(wanted);
        boolean keepsFont = scaled.getFont() == null && fontName(scaled) != null;
        GxText opened = hasLook(scaled) && !isInEditMode() ? openText(scaled) : null;
        try {
            scaled.applyTo(this);
        } catch (RuntimeException e) {
            close(opened);
            throw e;
        }
        if (keepsFont) {
            attributeTypeface = getTypeface(); // the style may have made it bold
        }
        releaseText();
        text = opened;
        this.style = style;
        scale = wanted;
        drawn = scaled;
        letEffectsOut();
        addMargins();
        invalidate();
    }

    /** The style's font, or that of the layout file as long as the app has set no other; or null. */
    private String fontName(TextStyle style) {
        boolean isAttributes = fontAttribute != null && getTypeface() != null
                && getTypeface().equals(attributeTypeface);
        return style.getFont() == null && isAttributes ? fontAttribute : style.getFont();
    }

    /** Whether there is more to draw than a text view does. */
    private static boolean hasLook(TextStyle style) {
        return !style.getEffects().isEmpty() || style.number("fillOpacity") != 1
                || style.number("opacity") != 1 || style.getCanvas() != null
                || (style.getBackgroundBox() != null && !style.getBackgroundBox().isPlain());
    }

    /** Pixels to a length of the style. */
    private float scaleOf(TextStyle style) {
        return style.getUnit() == TextStyle.Unit.DP
                ? getResources().getDisplayMetrics().scaledDensity : 1;
    }

    @Override
    protected void onConfigurationChanged(Configuration configuration) {
        super.onConfigurationChanged(configuration);
        boolean hasOwnSize = sizeAttribute != null && getTextSize() == sizeInPixels;
        if (scale != 0 && scale != scaleOf(style)) {
            rescale();
        }
        if (hasOwnSize) {
            applySizeAttribute();
        }
    }

    /** All but lengths stays as it is, and lengths that the app has set since do. */
    private void rescale() {
        TextStyle before = drawn;
        scale = scaleOf(style);
        drawn = scale == 1 ? style : style.scaled(scale);
        releaseText();
        addPadding(new Rect());
        ViewStyler.rescale(before, drawn, this);
        addMargins();
        invalidate();
    }

    /**
     * The style that was set.
     *
     * @return the style; {@link TextStyle#EMPTY} at first
     */
    @NonNull
    public TextStyle getTextStyle() {
        return style;
    }

    /**
     * Gives the pictures of patterns from now on. Without one, an absolute path is a file and all
     * else an asset.
     *
     * @param loader gives a picture by its name
     */
    public void setPatternLoader(@NonNull PatternLoader loader) {
        patternLoader = Objects.requireNonNull(loader, "loader");
    }

    /**
     * Lets an executor draw the pictures. The view is measured and laid out on the main thread as
     * ever; until its picture is there it draws as a plain text view, and then draws itself again. A
     * picture that comes too late, for a view that shows something else by then or was detached, is
     * not shown. What waits for the executor does not keep the view.
     *
     * @param executor runs the drawing, several at a time if it likes; null, as at first, draws on
     *     the main thread
     */
    public void setRenderExecutor(@Nullable Executor executor) {
        this.executor = executor;
        forgetImage();
        invalidate();
    }

    /**
     * Whether the effects may show outside the view's bounds. While they may, a view with effects
     * switches off {@link ViewGroup#setClipChildren} and {@link ViewGroup#setClipToPadding} of its
     * parent and that one's parent when it is attached, and leaves them off. Their own bounds may
     * still cut, so leave room, or see {@link #setIncludesEffectMargins}.
     *
     * @param grows true, as at first, to let them out; false leaves the parent alone
     */
    public void setGrowsBeyondBounds(boolean grows) {
        growsBeyondBounds = grows;
        letEffectsOut();
    }

    /**
     * Whether the effects may show outside the view's bounds.
     *
     * @return the setting of {@link #setGrowsBeyondBounds}
     */
    public boolean getGrowsBeyondBounds() {
        return growsBeyondBounds;
    }

    /**
     * Whether the view is as much larger as its effects reach, so that they stay within its bounds. Its
     * padding then has that much more on each side.
     *
     * @param includes true to make room; false, as at first, lets them reach beyond
     */
    public void setIncludesEffectMargins(boolean includes) {
        if (includesEffectMargins != includes) {
            includesEffectMargins = includes;
            addMargins();
            invalidate();
        }
    }

    /**
     * Whether the view makes room for its effects.
     *
     * @return the setting of {@link #setIncludesEffectMargins}
     */
    public boolean getIncludesEffectMargins() {
        return includesEffectMargins;
    }

    /**
     * How far the effects reach beyond the text's own view.
     *
     * @return pixels on each side, at least 0
     */
    @NonNull
    public Rect getEffectMargins() {
        if (!hasLook(drawn) || isInEditMode()) {
            return new Rect();
        }
        open();
        return text.effectMargins();
    }

    private void addMargins() {
        addPadding(includesEffectMargins ? getEffectMargins() : new Rect());
    }

    /** In place of what was added before. */
    private void addPadding(Rect wanted) {
        Rect before = addedPadding;
        if (wanted.equals(before)) {
            return; // setting padding would settle which side is its start
        }
        int left = getPaddingLeft() - before.left;
        int top = getPaddingTop() - before.top;
        int right = getPaddingRight() - before.right;
        int bottom = getPaddingBottom() - before.bottom;
        addedPadding = wanted;
        setPadding(left, top, right, bottom);
    }

    /**
     * Sets the padding; what {@link #setIncludesEffectMargins} makes room for comes on top.
     *
     * @param left pixels
     * @param top pixels
     * @param right pixels
     * @param bottom pixels
     */
    @Override
    public void setPadding(int left, int top, int right, int bottom) {
        Rect more = addedPadding == null ? new Rect() : addedPadding;
        super.setPadding(left + more.left, top + more.top, right + more.right,
                bottom + more.bottom);
    }

    @Override
    protected void onAttachedToWindow() {
        super.onAttachedToWindow();
        letEffectsOut();
    }

    @Override
    protected void onDetachedFromWindow() {
        super.onDetachedFromWindow();
        releaseText();
    }

    @Override
    protected void onDraw(@NonNull Canvas canvas) {
        TextImage current = canDrawEffects() ? currentImage() : null;
        if (current == null) {
            super.onDraw(canvas);
        } else {
            current.draw(canvas, 0, 0);
        }
    }

    /** How often a picture was drawn, for tests. */
    int getRenderCount() {
        return renderCount;
    }

    private boolean canDrawEffects() {
        return hasLook(drawn) && !isInEditMode() && length() > 0
                && getLayout() != null && getWidth() > 0 && getHeight() > 0
                && getScrollX() == 0 && getScrollY() == 0 && !hasCompoundDrawables();
    }

    private boolean hasCompoundDrawables() {
        for (Drawable drawable : getCompoundDrawables()) {
            if (drawable != null) {
                return true;
            }
        }
        return false;
    }

    /** The picture for what the view is now; null when it cannot be drawn or is not there yet. */
    private TextImage currentImage() {
        PictureCache.Key key = makeKey(getLayout());
        if (!key.equals(imageKey)) {
            forgetImage();
            imageKey = key;
            image = PictureCache.get(key);
            if (image == null) {
                drawImage(key);
            }
        }
        return image;
    }

    private void drawImage(PictureCache.Key key) {
        try {
            open();
            text.setSource(this);
            if (executor == null) {
                image = text.render();
                renderCount++;
                PictureCache.put(key, image);
            } else {
                job = new RenderJob(this, key, text);
                text = null;
                executor.execute(job);
            }
        } catch (GxTextException | IllegalArgumentException | RejectedExecutionException
                | OutOfMemoryError e) {
            RenderJob.logFailure(e);
        }
    }

    /** What a job has drawn; null when it could not. */
    void take(RenderJob finished, TextImage result) {
        if (finished == job) {
            job = null;
            image = result;
            renderCount++;
            invalidate();
        }
    }

    private void forgetImage() {
        if (job != null) {
            job.cancel();
        }
        job = null;
        image = null;
        imageKey = null;
    }

    private void open() {
        if (text == null) {
            text = openText(drawn);
        }
    }

    private GxText openText(TextStyle style) {
        GxText opened = new GxText();
        try {
            opened.setPatternLoader(patternLoader);
            opened.setKeepsWholeInk(true); // and letters stand where a text view has them
            opened.setStyle(style);
            FontSource font = FontSource.of(style, fontName(style), getContext());
            if (font != null) {
                font.putOn(opened);
            }
        } catch (RuntimeException e) {
            opened.close();
            throw e;
        }
        return opened;
    }

    private static void close(GxText text) {
        if (text != null) {
            text.close();
        }
    }

    private void releaseText() {
        close(text);
        text = null;
        forgetImage();
    }

    /** Out of the view into its parent, and out of that into the next. */
    private void letEffectsOut() {
        ViewParent parent = getParent();
        for (int i = 0; i < 2 && growsBeyondBounds && hasLook(drawn)
                && parent instanceof ViewGroup; i++) {
            ((ViewGroup) parent).setClipChildren(false);
            ((ViewGroup) parent).setClipToPadding(false);
            parent = parent.getParent();
        }
    }

    private PictureCache.Key makeKey(Layout layout) {
        Paint paint = getPaint();
        return new PictureCache.Key(
            drawn.getEffectKey(), fontName(drawn), drawn.getFontIndex(), drawn.getFontVariations(),
            FontManager.hasSystemFonts(),
            drawn.getEffectKey().contains("\"pattern\"") ? patternKey() : null,
            layout.getText().toString(), backgrounds(layout.getText()), lines(layout),
            getWidth(), getHeight(), getPaddingLeft(), getPaddingTop(), getPaddingRight(),
            getPaddingBottom(), getGravity(), getMaxLines(), getCurrentTextColor(), getTypeface(),
            paint.getTextSize(), paint.getTextScaleX(), paint.getTextSkewX(),
            paint.getLetterSpacing(), paint.getFlags(), paint.isElegantTextHeight(),
            paint.getFontFeatureSettings(), paint.getTextLocales(), paint.getTextAlign());
    }

    private Object patternKey() {
        return patternLoader instanceof AppPatterns
                ? ((AppPatterns) patternLoader).packageName
                : PictureCache.identityOf(patternLoader);
    }

    private static int[] backgrounds(CharSequence text) {
        if (!(text instanceof Spanned)) {
            return new int[0];
        }
        BackgroundColorSpan[] spans =
                ((Spanned) text).getSpans(0, text.length(), BackgroundColorSpan.class);
        int[] colors = new int[spans.length];
        for (int i = 0; i < colors.length; i++) {
            colors[i] = spans[i].getBackgroundColor();
        }
        return colors;
    }

    private static int[] lines(Layout layout) {
        int[] numbers = new int[layout.getLineCount() * 4];
        for (int i = 0; i < layout.getLineCount(); i++) {
            numbers[4 * i] = layout.getLineStart(i);
            numbers[4 * i + 1] = layout.getLineVisibleEnd(i);
            numbers[4 * i + 2] = layout.getLineBaseline(i);
            numbers[4 * i + 3] = (int) layout.getLineLeft(i);
        }
        return numbers;
    }
}
