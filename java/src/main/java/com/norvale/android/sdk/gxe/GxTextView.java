package com.norvale.android.sdk.gxe;

import android.content.Context;
import android.graphics.Bitmap;
import android.graphics.BitmapFactory;
import android.graphics.Canvas;
import android.graphics.Paint;
import android.graphics.drawable.Drawable;
import android.text.Layout;
import android.text.Spanned;
import android.text.style.BackgroundColorSpan;
import android.util.AttributeSet;
import android.util.Log;
import android.view.ViewGroup;
import android.view.ViewParent;
import android.widget.TextView;
import androidx.annotation.NonNull;
import androidx.annotation.Nullable;
import com.norvale.android.sdk.gxe.font.FontManager;
import java.io.File;
import java.io.FileInputStream;
import java.io.IOException;
import java.io.InputStream;
import java.util.Arrays;
import java.util.Objects;

/**
 * A text view that draws its text with effects.
 *
 * <pre>{@code
 * view.setTextStyle(new TextStyle.Builder()
 *         .setFont("fonts/Title-Bold.ttf")
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
 * <p>Threads: the main one, as with all views.
 */
// The platform's class, not a compatibility library's: the SDK depends on nothing else.
public class GxTextView extends TextView {
    private static final String TAG = "GxTextView";

    private TextStyle style = TextStyle.EMPTY;
    private PatternLoader patternLoader = this::loadPattern;
    private boolean growsBeyondBounds = true;

    /** Native object; null until something is drawn and while detached. */
    private GxText text;
    /** Font that is set on the native object; null when none is. */
    private FontSource textFont;

    private TextImage image;
    /** All that the picture depends on; also kept for one that could not be drawn. */
    private Object[] imageKey;
    private int renderCount;

    /**
     * A view without effects.
     *
     * @param context where the view runs
     */
    public GxTextView(@NonNull Context context) {
        super(context);
    }

    /**
     * A view from a layout file.
     *
     * @param context where the view runs
     * @param attrs the attributes of a text view
     */
    public GxTextView(@NonNull Context context, @Nullable AttributeSet attrs) {
        super(context, attrs);
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
    }

    /**
     * Sets the effects and whatever else the style sets. Like {@link TextView#setTypeface} and the
     * other setters of a view, a later call of one of these holds. A style that is refused leaves the
     * view as it is.
     *
     * @param style the style; {@link TextStyle#EMPTY} for a text without effects
     * @throws IllegalArgumentException when the style's font does not exist
     * @throws GxTextException when the native library refuses font or effects
     */
    public void setTextStyle(@NonNull TextStyle style) {
        Objects.requireNonNull(style, "style");
        FontSource font = FontSource.of(style, getContext());
        GxText opened =
                style.getEffects().isEmpty() || isInEditMode() ? null : openText(style, font);
        try {
            style.applyTo(this);
        } catch (RuntimeException e) {
            close(opened);
            throw e;
        }
        releaseText();
        text = opened;
        textFont = font;
        this.style = style;
        letEffectsOut();
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

    private Bitmap loadPattern(String pattern) throws IOException {
        BitmapFactory.Options options = new BitmapFactory.Options();
        options.inPremultiplied = false;
        try (InputStream in = new File(pattern).isAbsolute()
                        ? new FileInputStream(pattern)
                        : getContext().getAssets().open(pattern)) {
            Bitmap picture = BitmapFactory.decodeStream(in, null, options);
            if (picture == null) {
                throw new IOException("not a picture");
            }
            return picture;
        }
    }

    /**
     * Whether the effects may show outside the view's bounds. While they may, a view with effects
     * switches off its parent's {@link ViewGroup#setClipChildren} and {@link
     * ViewGroup#setClipToPadding} when it is attached, and leaves them off. The parent's own bounds
     * may still cut, so leave room in it.
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
        return !style.getEffects().isEmpty() && !isInEditMode() && length() > 0
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

    /** The picture for what the view is now; null when it cannot be drawn. */
    private TextImage currentImage() {
        Object[] key = makeKey(getLayout());
        if (Arrays.deepEquals(key, imageKey)) {
            return image;
        }
        imageKey = key;
        image = null;
        try {
            if (text == null) {
                textFont = FontSource.of(style, getContext());
                text = openText(style, textFont);
            }
            useSystemFont();
            text.setSource(this);
            image = text.render();
            renderCount++;
        } catch (GxTextException | IllegalArgumentException | OutOfMemoryError e) {
            // An app had better show a plain text than end while drawing.
            Log.e(TAG, "cannot draw the effects", e);
        }
        return image;
    }

    private GxText openText(TextStyle style, FontSource font) {
        GxText opened = new GxText();
        try {
            opened.setPatternLoader(patternLoader);
            opened.setStyle(style);
            if (font != null) {
                font.putOn(opened);
            }
        } catch (RuntimeException e) {
            opened.close();
            throw e;
        }
        return opened;
    }

    private void useSystemFont() {
        if (textFont == null) {
            text.setSystemFont(getTypeface() != null && getTypeface().isBold());
        }
    }

    private static void close(GxText text) {
        if (text != null) {
            text.close();
        }
    }

    private void releaseText() {
        close(text);
        text = null;
        textFont = null;
        image = null;
        imageKey = null;
    }

    private void letEffectsOut() {
        ViewParent parent = getParent();
        if (growsBeyondBounds && !style.getEffects().isEmpty() && parent instanceof ViewGroup) {
            ((ViewGroup) parent).setClipChildren(false);
            ((ViewGroup) parent).setClipToPadding(false);
        }
    }

    private Object[] makeKey(Layout layout) {
        Paint paint = getPaint();
        return new Object[] {
            style.getEffectKey(), style.getFont(), FontManager.hasSystemFonts(),
            layout.getText().toString(), backgrounds(layout.getText()), lines(layout),
            getWidth(), getHeight(), getPaddingLeft(), getPaddingTop(), getPaddingRight(),
            getPaddingBottom(), getGravity(), getMaxLines(), getCurrentTextColor(), getTypeface(),
            paint.getTextSize(), paint.getTextScaleX(), paint.getTextSkewX(),
            paint.getLetterSpacing(), paint.getFlags(), paint.isElegantTextHeight(),
            paint.getFontFeatureSettings(), paint.getTextLocales(), paint.getTextAlign(),
        };
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
