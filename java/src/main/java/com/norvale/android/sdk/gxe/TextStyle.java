package com.norvale.android.sdk.gxe;

import android.widget.TextView;
import com.norvale.android.sdk.gxe.Property.Kind;
import androidx.annotation.ColorInt;
import androidx.annotation.FloatRange;
import androidx.annotation.IntRange;
import androidx.annotation.NonNull;
import androidx.annotation.Nullable;
import androidx.annotation.Px;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.Collections;
import java.util.Comparator;
import java.util.HashMap;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.Objects;

/**
 * How a text is to look: its effects and, as far as they are set, its font, colours and layout.
 * What is not set (the getter answers null) is left as it is in the view that the style is put on.
 *
 * <p>Styles read and write the style files of the {@code gxtext} program, so that a style can be
 * tried there and shipped with an app.
 *
 * <p>Immutable; equal when all that is set is.
 */
public final class TextStyle {
    /** Where lines stand between the sides of the view. */
    public enum Align implements Property.Named {
        /** Left, or right for right-to-left paragraphs. */
        START("start"),
        /** At the left side. */
        LEFT("left"),
        /** In the middle. */
        CENTER("center"),
        /** At the right side. */
        RIGHT("right");

        private final String styleName;

        Align(String styleName) {
            this.styleName = styleName;
        }

        @Override
        public String styleName() {
            return styleName;
        }
    }

    /** What lengths are in. */
    public enum Unit implements Property.Named {
        /** Pixels. */
        PX("px"),
        /**
         * Density-independent pixels, which follow the font scale too: a {@link GxTextView}
         * multiplies all lengths by the screen's scaled density, so that a style keeps its
         * proportions.
         */
        DP("dp");

        private final String styleName;

        Unit(String styleName) {
            this.styleName = styleName;
        }

        @Override
        public String styleName() {
            return styleName;
        }
    }

    /** How effects are stacked. */
    public enum Order implements Property.Named {
        /**
         * From the lowest: outer shadow, outer glow, outside stroke, the text, linear gradient,
         * inner shadow, centred or inside stroke.
         */
        NATURAL("natural"),
        /** Of two outside effects, and of two inside ones, the one added later lies on top. */
        LISTED("listed");

        private final String styleName;

        Order(String styleName) {
            this.styleName = styleName;
        }

        @Override
        public String styleName() {
            return styleName;
        }
    }

    /** How glyphs are drawn that have colours of their own. */
    public enum Emoji implements Property.Named {
        /** In their colours, over the effects; what lies beneath comes from their silhouettes. */
        COLOR("color"),
        /** Like letters in the shape of their silhouettes. */
        SILHOUETTE("silhouette");

        private final String styleName;

        Emoji(String styleName) {
            this.styleName = styleName;
        }

        @Override
        public String styleName() {
            return styleName;
        }
    }

    /** The fields of a style file but its effects, in the order in which they are written. */
    static final List<Property> PROPERTIES = Collections.unmodifiableList(Arrays.asList(
            Property.of("text", Kind.STRING),
            Property.of("font", Kind.STRING),
            Property.integer("fontIndex", 0, 99),
            Property.choice("unit", Unit.values(), Unit.PX),
            Property.length("size", 1, 4096, 4096, 64),
            Property.flag("bold", false),
            Property.flag("italic", false),
            Property.number("letterSpacing", -1, 10, 0),
            Property.number("scaleX", 0.1, 10, 1),
            Property.number("skewX", -2, 2, 0),
            Property.of("fontFeatures", Kind.STRING),
            Property.of("fontVariations", Kind.STRING),
            Property.of("locale", Kind.STRING),
            Property.color("color", 0xFF000000),
            Property.number("opacity", 0, 1, 1),
            Property.number("fillOpacity", 0, 1, 1),
            Property.choice("emoji", Emoji.values(), Emoji.COLOR),
            Property.of("background", Kind.BACKGROUND),
            Property.of("canvas", Kind.COLOR),
            Property.wholeLength("width", 1, 65535),
            Property.choice("align", Align.values(), Align.START),
            Property.padding("padding", 4096),
            Property.number("lineSpacing", 0.1, 10, 1),
            Property.choice("order", Order.values(), Order.NATURAL)));

    private static final Map<String, Property> BY_NAME = new HashMap<>();

    static {
        for (Property property : PROPERTIES) {
            BY_NAME.put(property.name, property);
        }
    }

    private static final int MAX_EFFECTS = 256;

    /** A style that changes nothing. */
    public static final TextStyle EMPTY = new Builder().build();

    // A map of an enum's own kind would need the enum's members by name, which a shrinker takes away.
    private final Map<String, Object> values;
    private final List<TextEffect> effects;
    private final String effectKey;

    private TextStyle(Builder builder) {
        values = Collections.unmodifiableMap(new LinkedHashMap<>(builder.values));
        List<TextEffect> stacked = new ArrayList<>(builder.effects);
        if (get("order") != Order.LISTED) {
            stacked.sort(Comparator.comparingInt(effect -> effect.type.rank(effect)));
        }
        effects = Collections.unmodifiableList(stacked);
        effectKey = StyleWriter.key(this);
    }

    /**
     * Reads a style file.
     *
     * <p>The native library reads it, and is loaded if that has not been done.
     *
     * @param json the text of the file
     * @return the style
     * @throws StyleException when it is no style; it holds all mistakes with their places, and the
     *     message says {@code $.effects[2].size: 140 is out of range 0-100}
     * @throws UnsatisfiedLinkError when there is no native library for this device
     */
    @NonNull
    public static TextStyle fromJson(@NonNull String json) {
        return StyleReader.read(Objects.requireNonNull(json, "json"));
    }

    /**
     * Writes a style file.
     *
     * @return JSON that {@link #fromJson} makes an equal style of; only what is set
     */
    @NonNull
    public String toJson() {
        return StyleWriter.write(this);
    }

    /**
     * The style with every length multiplied: font size, padding, width, the effects' sizes and
     * distances, a pattern's tiles. Whole ones are rounded to nearest. A style in dp becomes one in
     * pixels by {@code scaled(getResources().getDisplayMetrics().scaledDensity)}.
     *
     * <p>Lengths may come out longer than a style file allows, up to 1,000 pixels for outlines and
     * blurs; such a style draws, but is not read back from what {@link #toJson} writes.
     *
     * @param factor 0.01 to 100
     * @return a style of its own
     * @throws IllegalArgumentException when the factor is out of range, or a length is then longer
     *     than what can be drawn
     */
    @NonNull
    public TextStyle scaled(@FloatRange(from = 0.01, to = 100) float factor) {
        new Range(0.01, 100).check("factor", factor);
        Builder builder = new Builder();
        for (Property property : PROPERTIES) {
            Object value = get(property.name);
            if (value != null) {
                builder.values.put(property.name, property.scaled(value, factor));
            }
        }
        builder.values.remove("unit");
        for (TextEffect effect : effects) {
            builder.effects.add(effect.scaled(factor));
        }
        return builder.build();
    }

    /**
     * Starts a style from this one.
     *
     * @return a builder with all that is set here
     */
    @NonNull
    public Builder toBuilder() {
        Builder builder = new Builder();
        builder.values.putAll(values);
        builder.effects.addAll(effects);
        return builder;
    }

    /**
     * The effects as they are stacked: of two outside effects, and of two inside ones, the later
     * lies on top.
     *
     * @return at most 256, those that are switched off among them; cannot be changed
     */
    @NonNull
    public List<TextEffect> getEffects() {
        return effects;
    }

    /**
     * A text that is the same for two styles exactly when what is drawn of effects, fill, canvas and
     * background is, for caches.
     *
     * @return that part of the style as JSON on one line
     */
    @NonNull
    public String getEffectKey() {
        return effectKey;
    }

    /**
     * The text.
     *
     * @return the text, or null when not set
     */
    @Nullable
    public String getText() {
        return (String) get("text");
    }

    /**
     * The font: the absolute path of a font file, a font file among the app's assets, one of its
     * resources ({@code @font/title}), or the name of a family.
     *
     * @return the font, or null when not set
     */
    @Nullable
    public String getFont() {
        return (String) get("font");
    }

    /**
     * What the style's lengths are in.
     *
     * @return the unit, or null when not set, which is pixels
     */
    @Nullable
    public Unit getUnit() {
        return (Unit) get("unit");
    }

    /**
     * The font size.
     *
     * @return pixels, 1 to 4096, or null when not set
     */
    @Nullable
    @Px
    public Float getSize() {
        return (Float) get("size");
    }

    /**
     * Whether the text is bold.
     *
     * @return the setting, or null when not set
     */
    @Nullable
    public Boolean getBold() {
        return (Boolean) get("bold");
    }

    /**
     * Whether the text is italic.
     *
     * @return the setting, or null when not set
     */
    @Nullable
    public Boolean getItalic() {
        return (Boolean) get("italic");
    }

    /**
     * Extra space between letters.
     *
     * @return em, -1 to 10, or null when not set
     */
    @Nullable
    public Float getLetterSpacing() {
        return (Float) get("letterSpacing");
    }

    /**
     * Horizontal stretch of the letters.
     *
     * @return a factor, 0.1 to 10, or null when not set
     */
    @Nullable
    public Float getScaleX() {
        return (Float) get("scaleX");
    }

    /**
     * Horizontal shear of the letters.
     *
     * @return a factor, -2 to 2, or null when not set
     */
    @Nullable
    public Float getSkewX() {
        return (Float) get("skewX");
    }

    /**
     * OpenType features.
     *
     * @return settings such as {@code 'smcp' on, 'kern' off}, or null when not set
     */
    @Nullable
    public String getFontFeatures() {
        return (String) get("fontFeatures");
    }

    /**
     * Languages of the text.
     *
     * @return BCP 47 tags, comma-separated, or null when not set
     */
    @Nullable
    public String getLocale() {
        return (String) get("locale");
    }

    /**
     * Colour of the text. Its alpha fades the whole picture, effects included.
     *
     * @return {@code 0xAARRGGBB}, or null when not set
     */
    @Nullable
    @ColorInt
    public Integer getColor() {
        return (Integer) get("color");
    }

    /**
     * Colour of a box behind each line.
     *
     * @return {@code 0xAARRGGBB}, or null when not set
     */
    @Nullable
    @ColorInt
    public Integer getBackground() {
        TextBackground box = getBackgroundBox();
        return box == null ? null : box.getColor();
    }

    /**
     * The box behind each line, or behind all.
     *
     * @return colour and shape, or null when not set
     */
    @Nullable
    public TextBackground getBackgroundBox() {
        return (TextBackground) get("background");
    }

    /**
     * Opacity of the whole picture, on top of the colour's alpha.
     *
     * @return 0 to 1, or null when not set, which is 1
     */
    @Nullable
    public Float getOpacity() {
        return (Float) get("opacity");
    }

    /**
     * Opacity of the letters' own colour; 0 leaves the effects around hollow letters.
     *
     * @return 0 to 1, or null when not set, which is 1
     */
    @Nullable
    public Float getFillOpacity() {
        return (Float) get("fillOpacity");
    }

    /**
     * Colour of the whole picture, beneath everything.
     *
     * @return {@code 0xAARRGGBB}, or null when not set, which is transparent
     */
    @Nullable
    @ColorInt
    public Integer getCanvas() {
        return (Integer) get("canvas");
    }

    /**
     * Font inside a collection file.
     *
     * @return 0 to 99, or null when not set, which is 0
     */
    @Nullable
    public Integer getFontIndex() {
        return (Integer) get("fontIndex");
    }

    /**
     * How emoji are drawn.
     *
     * @return the way, or null when not set, which is in their colours
     */
    @Nullable
    public Emoji getEmoji() {
        return (Emoji) get("emoji");
    }

    /**
     * Axis settings of a variable font.
     *
     * @return settings such as {@code 'wght' 650, 'wdth' 80}, or null when not set
     */
    @Nullable
    public String getFontVariations() {
        return (String) get("fontVariations");
    }

    /**
     * Width of the view, padding included.
     *
     * @return pixels, 1 to 65535, or null when not set
     */
    @Nullable
    @Px
    public Integer getWidth() {
        return (Integer) get("width");
    }

    /**
     * Where lines stand between the sides.
     *
     * @return the alignment, or null when not set
     */
    @Nullable
    public Align getAlign() {
        return (Align) get("align");
    }

    /**
     * Space around the text.
     *
     * @return pixels, 0 to 4096 each, in the order left, top, right, bottom; or null when not set
     */
    @Nullable
    @Px
    @SuppressWarnings("unchecked") // what the builder put there
    public List<Integer> getPadding() {
        return (List<Integer>) get("padding");
    }

    /**
     * Distance between lines relative to the font's line height.
     *
     * @return a factor, 0.1 to 10, or null when not set
     */
    @Nullable
    public Float getLineSpacing() {
        return (Float) get("lineSpacing");
    }

    /**
     * How the effects are stacked.
     *
     * @return the order, or null when not set, which is the natural one
     */
    @Nullable
    public Order getOrder() {
        return (Order) get("order");
    }

    /**
     * Puts all but the effects on a text view: text, typeface, paint, colours, padding, gravity,
     * width and line spacing, as far as they are set.
     *
     * @param view the view
     * @throws IllegalArgumentException when the font does not exist
     */
    public void applyTo(@NonNull TextView view) {
        ViewStyler.apply(this, Objects.requireNonNull(view, "view"));
    }

    Object get(String name) {
        return values.get(name);
    }

    /** A value with a default for when it is not set. */
    float number(String name) {
        Object value = get(name);
        return (Float) (value == null ? BY_NAME.get(name).initial : value);
    }

    @Override
    public boolean equals(Object other) {
        return other instanceof TextStyle
                && values.equals(((TextStyle) other).values)
                && effects.equals(((TextStyle) other).effects);
    }

    @Override
    public int hashCode() {
        return 31 * values.hashCode() + effects.hashCode();
    }

    /**
     * The same as {@link #toJson()}.
     *
     * @return the style file
     */
    @Override
    @NonNull
    public String toString() {
        return toJson();
    }

    /** Collects what a style is to set. */
    public static final class Builder {
        private final Map<String, Object> values = new LinkedHashMap<>();
        private final List<TextEffect> effects = new ArrayList<>();

        /** A style that sets nothing. */
        public Builder() {}

        /**
         * Adds an effect; a type may repeat. Where it lies is the order's choice; in {@link
         * Order#LISTED}, over those of its side (outside, inside) that are there.
         *
         * @param effect the effect
         * @return this builder
         * @throws IllegalArgumentException when there are 256 already
         */
        @NonNull
        public Builder addEffect(@NonNull TextEffect effect) {
            Objects.requireNonNull(effect, "effect");
            if (effects.size() == MAX_EFFECTS) {
                throw new IllegalArgumentException("effect: at most " + MAX_EFFECTS + " effects");
            }
            effects.add(effect);
            return this;
        }

        /**
         * Removes all effects.
         *
         * @return this builder
         */
        @NonNull
        public Builder clearEffects() {
            effects.clear();
            return this;
        }

        /**
         * Sets the text.
         *
         * @param text the text, or null to leave the view's
         * @return this builder
         */
        @NonNull
        public Builder setText(@Nullable String text) {
            return set("text", text);
        }

        /**
         * Sets the font.
         *
         * @param font absolute path of a font file, a font file among the app's assets, one of its
         *     resources ({@code @font/title}, from API level 26 on), or the name of a family; null or
         *     empty to leave the view's
         * @return this builder
         */
        @NonNull
        public Builder setFont(@Nullable String font) {
            return set("font", font);
        }

        /**
         * Sets what the style's lengths are in. {@link GxTextView} puts them into pixels; for {@link
         * GxText}, call {@link TextStyle#scaled}, whose result is in pixels.
         *
         * @param unit the unit, or null for pixels
         * @return this builder
         */
        @NonNull
        public Builder setUnit(@Nullable Unit unit) {
            return set("unit", unit);
        }

        /**
         * Sets the font size.
         *
         * @param size pixels, 1 to 4096
         * @return this builder
         * @throws IllegalArgumentException when out of range
         */
        @NonNull
        public Builder setSize(@Px @FloatRange(from = 1, to = 4096) float size) {
            return set("size", size);
        }

        /**
         * Makes the text bold or not.
         *
         * @param bold the setting
         * @return this builder
         */
        @NonNull
        public Builder setBold(boolean bold) {
            return set("bold", bold);
        }

        /**
         * Makes the text italic or not.
         *
         * @param italic the setting
         * @return this builder
         */
        @NonNull
        public Builder setItalic(boolean italic) {
            return set("italic", italic);
        }

        /**
         * Sets the extra space between letters.
         *
         * @param letterSpacing em, -1 to 10
         * @return this builder
         * @throws IllegalArgumentException when out of range
         */
        @NonNull
        public Builder setLetterSpacing(@FloatRange(from = -1, to = 10) float letterSpacing) {
            return set("letterSpacing", letterSpacing);
        }

        /**
         * Sets the horizontal stretch.
         *
         * @param scaleX a factor, 0.1 to 10
         * @return this builder
         * @throws IllegalArgumentException when out of range
         */
        @NonNull
        public Builder setScaleX(@FloatRange(from = 0.1, to = 10) float scaleX) {
            return set("scaleX", scaleX);
        }

        /**
         * Sets the horizontal shear.
         *
         * @param skewX a factor, -2 to 2; -0.25 is an ordinary slant
         * @return this builder
         * @throws IllegalArgumentException when out of range
         */
        @NonNull
        public Builder setSkewX(@FloatRange(from = -2, to = 2) float skewX) {
            return set("skewX", skewX);
        }

        /**
         * Sets OpenType features.
         *
         * @param fontFeatures settings such as {@code 'smcp' on, 'kern' off}, or null to leave the
         *     view's
         * @return this builder
         * @throws IllegalArgumentException when there is something else in it
         */
        @NonNull
        public Builder setFontFeatures(@Nullable String fontFeatures) {
            return set("fontFeatures", fontFeatures);
        }

        /**
         * Sets the languages of the text.
         *
         * @param locale BCP 47 tags, comma-separated, or null to leave the view's
         * @return this builder
         * @throws IllegalArgumentException when one is malformed
         */
        @NonNull
        public Builder setLocale(@Nullable String locale) {
            return set("locale", locale);
        }

        /**
         * Sets the colour of the text.
         *
         * @param color {@code 0xAARRGGBB}; the alpha fades the whole picture, effects included
         * @return this builder
         */
        @NonNull
        public Builder setColor(@ColorInt int color) {
            return set("color", color);
        }

        /**
         * Sets the colour of a box behind each line.
         *
         * @param background {@code 0xAARRGGBB}
         * @return this builder
         */
        @NonNull
        public Builder setBackground(@ColorInt int background) {
            return setBackground(new TextBackground(background));
        }

        /**
         * Sets the box behind each line, or behind all.
         *
         * @param background colour and shape, or null for none of the style's own
         * @return this builder
         */
        @NonNull
        public Builder setBackground(@Nullable TextBackground background) {
            return set("background", background);
        }

        /**
         * Sets the opacity of the whole picture, on top of the colour's alpha.
         *
         * @param opacity 0 to 1
         * @return this builder
         * @throws IllegalArgumentException when out of range
         */
        @NonNull
        public Builder setOpacity(@FloatRange(from = 0, to = 1) float opacity) {
            return set("opacity", opacity);
        }

        /**
         * Sets the opacity of the letters' own colour.
         *
         * @param fillOpacity 0, which leaves the effects around hollow letters, to 1
         * @return this builder
         * @throws IllegalArgumentException when out of range
         */
        @NonNull
        public Builder setFillOpacity(@FloatRange(from = 0, to = 1) float fillOpacity) {
            return set("fillOpacity", fillOpacity);
        }

        /**
         * Sets the colour of the whole picture, beneath everything.
         *
         * @param canvas {@code 0xAARRGGBB}
         * @return this builder
         */
        @NonNull
        public Builder setCanvas(@ColorInt int canvas) {
            return set("canvas", canvas);
        }

        /**
         * Chooses the font inside a collection file. Before API level 26 a view measures with the
         * first all the same.
         *
         * @param fontIndex 0 to 99
         * @return this builder
         * @throws IllegalArgumentException when out of range
         */
        @NonNull
        public Builder setFontIndex(@IntRange(from = 0, to = 99) int fontIndex) {
            return set("fontIndex", fontIndex);
        }

        /**
         * Sets the axes of a variable font. Before API level 26 a view measures without them all
         * the same.
         *
         * @param fontVariations settings such as {@code 'wght' 650, 'wdth' 80}, or null
         * @return this builder
         * @throws IllegalArgumentException when it is no list of axis settings
         */
        @NonNull
        public Builder setFontVariations(@Nullable String fontVariations) {
            return set("fontVariations", fontVariations);
        }

        /**
         * Sets the width of the view.
         *
         * @param width pixels, padding included, 1 to 65535
         * @return this builder
         * @throws IllegalArgumentException when out of range
         */
        @NonNull
        public Builder setWidth(@Px @IntRange(from = 1, to = 65535) int width) {
            return set("width", width);
        }

        /**
         * Sets where lines stand between the sides.
         *
         * @param align the alignment, or null to leave the view's
         * @return this builder
         */
        @NonNull
        public Builder setAlign(@Nullable Align align) {
            return set("align", align);
        }

        /**
         * Sets the same space on all sides of the text.
         *
         * @param padding pixels, 0 to 4096
         * @return this builder
         * @throws IllegalArgumentException when out of range
         */
        @NonNull
        public Builder setPadding(@Px @IntRange(from = 0, to = 4096) int padding) {
            return setPadding(padding, padding, padding, padding);
        }

        /**
         * Sets the space on each side of the text.
         *
         * @param left pixels, 0 to 4096
         * @param top pixels, 0 to 4096
         * @param right pixels, 0 to 4096
         * @param bottom pixels, 0 to 4096
         * @return this builder
         * @throws IllegalArgumentException when one is out of range
         */
        @NonNull
        public Builder setPadding(@Px int left, @Px int top, @Px int right, @Px int bottom) {
            return set("padding",
                    Collections.unmodifiableList(Arrays.asList(left, top, right, bottom)));
        }

        /**
         * Sets the distance between lines.
         *
         * @param lineSpacing relative to the font's line height, 0.1 to 10
         * @return this builder
         * @throws IllegalArgumentException when out of range
         */
        @NonNull
        public Builder setLineSpacing(@FloatRange(from = 0.1, to = 10) float lineSpacing) {
            return set("lineSpacing", lineSpacing);
        }

        /**
         * Sets how glyphs are drawn that have colours of their own.
         *
         * @param emoji the way, or null for their colours
         * @return this builder
         */
        @NonNull
        public Builder setEmoji(@Nullable Emoji emoji) {
            return set("emoji", emoji);
        }

        /**
         * Sets how the effects are stacked.
         *
         * @param order the order, or null for the natural one
         * @return this builder
         */
        @NonNull
        public Builder setOrder(@Nullable Order order) {
            return set("order", order);
        }

        /**
         * Makes the style.
         *
         * @return a style with the settings so far
         */
        @NonNull
        public TextStyle build() {
            return new TextStyle(this);
        }

        /** Sets a field; null takes the value away. */
        Builder set(String name, Object value) {
            if (value == null || (name.equals("font") && ((String) value).isEmpty())) {
                values.remove(name);
            } else {
                values.put(name, BY_NAME.get(name).check(value));
            }
            return this;
        }
    }
}
