package com.norvale.android.sdk.gxe;

import android.widget.TextView;
import com.norvale.android.sdk.gxe.annotation.ColorInt;
import com.norvale.android.sdk.gxe.annotation.FloatRange;
import com.norvale.android.sdk.gxe.annotation.IntRange;
import com.norvale.android.sdk.gxe.annotation.NonNull;
import com.norvale.android.sdk.gxe.annotation.Nullable;
import com.norvale.android.sdk.gxe.annotation.Px;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.Collections;
import java.util.Comparator;
import java.util.EnumMap;
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
    /** A value that style files have a name for. */
    interface Named {
        String styleName();
    }

    /** Where lines stand between the sides of the view. */
    public enum Align implements Named {
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

    /** How effects are stacked. */
    public enum Order implements Named {
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

    /** What a value of a field is. */
    enum Kind { STRING, NUMBER, INTEGER, BOOLEAN, COLOR, CHOICE, PADDING }

    /** The fields of a style file that are kept, in the order in which they are written. */
    enum Field {
        TEXT("text", Kind.STRING),
        FONT("font", Kind.STRING),
        SIZE("size", Kind.NUMBER, 1, 4096),
        BOLD("bold", Kind.BOOLEAN),
        ITALIC("italic", Kind.BOOLEAN),
        LETTER_SPACING("letterSpacing", Kind.NUMBER, -1, 10),
        SCALE_X("scaleX", Kind.NUMBER, 0.1, 10),
        SKEW_X("skewX", Kind.NUMBER, -2, 2),
        FONT_FEATURES("fontFeatures", Kind.STRING),
        LOCALE("locale", Kind.STRING),
        COLOR("color", Kind.COLOR),
        BACKGROUND("background", Kind.COLOR),
        WIDTH("width", Kind.INTEGER, 1, 65535),
        ALIGN("align", Align.values()),
        PADDING("padding", Kind.PADDING, 0, 4096),
        LINE_SPACING("lineSpacing", Kind.NUMBER, 0.1, 10),
        ORDER("order", Order.values());

        final String styleName;
        final Kind kind;
        final Range range;
        final Named[] choices;

        Field(String styleName, Kind kind) {
            this(styleName, kind, 0, 0);
        }

        Field(String styleName, Kind kind, double min, double max) {
            this(styleName, kind, new Range(min, max));
        }

        Field(String styleName, Named[] choices) {
            this(styleName, Kind.CHOICE, null, choices);
        }

        Field(String styleName, Kind kind, Range range, Named... choices) {
            this.styleName = styleName;
            this.kind = kind;
            this.range = range;
            this.choices = choices;
        }

        /** What is wrong with a string, or null. */
        String problemOf(String value) {
            switch (this) {
                case FONT_FEATURES:
                    return TextSettings.checkFontFeatures(value);
                case LOCALE:
                    return TextSettings.checkLocale(value);
                default:
                    return null;
            }
        }
    }

    /** A style that changes nothing. */
    public static final TextStyle EMPTY = new Builder().build();

    private final Map<Field, Object> values;
    private final List<TextEffect> effects;
    private final String effectKey;

    private TextStyle(Builder builder) {
        values = new EnumMap<>(builder.values);
        List<TextEffect> stacked = new ArrayList<>(builder.effects);
        if (get(Field.ORDER) != Order.LISTED) {
            stacked.sort(Comparator.comparingInt(TextEffect::rank));
        }
        effects = Collections.unmodifiableList(stacked);
        effectKey = StyleWriter.write(effects);
    }

    /**
     * Reads a style file.
     *
     * <p>What the native library does not offer to Java is refused, not left out: the effects
     * {@code innerGlow}, {@code radialGradient}, {@code pattern}, {@code bevel} and {@code emboss},
     * the colour stops of a glow, an opacity of the text's fill other than 1 and a font index other
     * than 0.
     *
     * @param json the text of the file
     * @return the style
     * @throws IllegalArgumentException when it is no style; the message holds the place, what is
     *     wrong and what is allowed: {@code $.effects[2].size: 140 is out of range 0-100}
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
     * @return at most one of each type; cannot be changed
     */
    @NonNull
    public List<TextEffect> getEffects() {
        return effects;
    }

    /**
     * A text that is the same for two styles exactly when their effects are, for caches.
     *
     * @return the effects as JSON on one line
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
        return (String) get(Field.TEXT);
    }

    /**
     * The font: the absolute path of a font file, a font file among the app's assets, or the name
     * of a family.
     *
     * @return the font, or null when not set
     */
    @Nullable
    public String getFont() {
        return (String) get(Field.FONT);
    }

    /**
     * The font size.
     *
     * @return pixels, 1 to 4096, or null when not set
     */
    @Nullable
    @Px
    public Float getSize() {
        return (Float) get(Field.SIZE);
    }

    /**
     * Whether the text is bold.
     *
     * @return the setting, or null when not set
     */
    @Nullable
    public Boolean getBold() {
        return (Boolean) get(Field.BOLD);
    }

    /**
     * Whether the text is italic.
     *
     * @return the setting, or null when not set
     */
    @Nullable
    public Boolean getItalic() {
        return (Boolean) get(Field.ITALIC);
    }

    /**
     * Extra space between letters.
     *
     * @return em, -1 to 10, or null when not set
     */
    @Nullable
    public Float getLetterSpacing() {
        return (Float) get(Field.LETTER_SPACING);
    }

    /**
     * Horizontal stretch of the letters.
     *
     * @return a factor, 0.1 to 10, or null when not set
     */
    @Nullable
    public Float getScaleX() {
        return (Float) get(Field.SCALE_X);
    }

    /**
     * Horizontal shear of the letters.
     *
     * @return a factor, -2 to 2, or null when not set
     */
    @Nullable
    public Float getSkewX() {
        return (Float) get(Field.SKEW_X);
    }

    /**
     * OpenType features.
     *
     * @return settings such as {@code 'smcp' on, 'kern' off}, or null when not set
     */
    @Nullable
    public String getFontFeatures() {
        return (String) get(Field.FONT_FEATURES);
    }

    /**
     * Languages of the text.
     *
     * @return BCP 47 tags, comma-separated, or null when not set
     */
    @Nullable
    public String getLocale() {
        return (String) get(Field.LOCALE);
    }

    /**
     * Colour of the text. Its alpha fades the whole picture, effects included.
     *
     * @return {@code 0xAARRGGBB}, or null when not set
     */
    @Nullable
    @ColorInt
    public Integer getColor() {
        return (Integer) get(Field.COLOR);
    }

    /**
     * Colour of a box behind each line.
     *
     * @return {@code 0xAARRGGBB}, or null when not set
     */
    @Nullable
    @ColorInt
    public Integer getBackground() {
        return (Integer) get(Field.BACKGROUND);
    }

    /**
     * Width of the view, padding included.
     *
     * @return pixels, 1 to 65535, or null when not set
     */
    @Nullable
    @Px
    public Integer getWidth() {
        return (Integer) get(Field.WIDTH);
    }

    /**
     * Where lines stand between the sides.
     *
     * @return the alignment, or null when not set
     */
    @Nullable
    public Align getAlign() {
        return (Align) get(Field.ALIGN);
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
        return (List<Integer>) get(Field.PADDING);
    }

    /**
     * Distance between lines relative to the font's line height.
     *
     * @return a factor, 0.1 to 10, or null when not set
     */
    @Nullable
    public Float getLineSpacing() {
        return (Float) get(Field.LINE_SPACING);
    }

    /**
     * How the effects are stacked.
     *
     * @return the order, or null when not set, which is the natural one
     */
    @Nullable
    public Order getOrder() {
        return (Order) get(Field.ORDER);
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

    Object get(Field field) {
        return values.get(field);
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
        private final EnumMap<Field, Object> values = new EnumMap<>(Field.class);
        private final List<TextEffect> effects = new ArrayList<>();

        /** A style that sets nothing. */
        public Builder() {}

        /**
         * Adds an effect. Where it lies is the order's choice; in {@link Order#LISTED}, over those
         * of its side (outside, inside) that are there.
         *
         * @param effect the effect
         * @return this builder
         * @throws IllegalArgumentException when there is one of its type already
         */
        @NonNull
        public Builder addEffect(@NonNull TextEffect effect) {
            Objects.requireNonNull(effect, "effect");
            for (TextEffect earlier : effects) {
                if (earlier.getType().equals(effect.getType())) {
                    throw new IllegalArgumentException("effect: a second " + effect.getType()
                            + "; a text has each effect at most once");
                }
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
            return set(Field.TEXT, text);
        }

        /**
         * Sets the font.
         *
         * @param font absolute path of a font file, a font file among the app's assets, or the name
         *     of a family; null or empty to leave the view's
         * @return this builder
         */
        @NonNull
        public Builder setFont(@Nullable String font) {
            return set(Field.FONT, font);
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
            return set(Field.SIZE, size);
        }

        /**
         * Makes the text bold or not.
         *
         * @param bold the setting
         * @return this builder
         */
        @NonNull
        public Builder setBold(boolean bold) {
            return set(Field.BOLD, bold);
        }

        /**
         * Makes the text italic or not.
         *
         * @param italic the setting
         * @return this builder
         */
        @NonNull
        public Builder setItalic(boolean italic) {
            return set(Field.ITALIC, italic);
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
            return set(Field.LETTER_SPACING, letterSpacing);
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
            return set(Field.SCALE_X, scaleX);
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
            return set(Field.SKEW_X, skewX);
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
            return set(Field.FONT_FEATURES, fontFeatures);
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
            return set(Field.LOCALE, locale);
        }

        /**
         * Sets the colour of the text.
         *
         * @param color {@code 0xAARRGGBB}; the alpha fades the whole picture, effects included
         * @return this builder
         */
        @NonNull
        public Builder setColor(@ColorInt int color) {
            return set(Field.COLOR, color);
        }

        /**
         * Sets the colour of a box behind each line.
         *
         * @param background {@code 0xAARRGGBB}
         * @return this builder
         */
        @NonNull
        public Builder setBackground(@ColorInt int background) {
            return set(Field.BACKGROUND, background);
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
            return set(Field.WIDTH, width);
        }

        /**
         * Sets where lines stand between the sides.
         *
         * @param align the alignment, or null to leave the view's
         * @return this builder
         */
        @NonNull
        public Builder setAlign(@Nullable Align align) {
            return set(Field.ALIGN, align);
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
            return set(Field.PADDING,
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
            return set(Field.LINE_SPACING, lineSpacing);
        }

        /**
         * Sets how the effects are stacked.
         *
         * @param order the order, or null for the natural one
         * @return this builder
         */
        @NonNull
        public Builder setOrder(@Nullable Order order) {
            return set(Field.ORDER, order);
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

        Builder set(Field field, Object value) {
            if (value == null || (field == Field.FONT && ((String) value).isEmpty())) {
                values.remove(field);
                return this;
            }
            if (field.kind == Kind.NUMBER || field.kind == Kind.INTEGER) {
                field.range.check(field.styleName, ((Number) value).doubleValue());
            } else if (field.kind == Kind.PADDING) {
                for (Object side : (List<?>) value) {
                    field.range.check(field.styleName, (Integer) side);
                }
            }
            if (field.kind == Kind.STRING && field.problemOf((String) value) != null) {
                throw new IllegalArgumentException(
                        field.styleName + ": " + field.problemOf((String) value));
            }
            values.put(field, value);
            return this;
        }
    }
}
