package com.norvale.android.sdk.gxe;

import androidx.annotation.ColorInt;
import androidx.annotation.NonNull;
import androidx.annotation.Nullable;

/**
 * An outline along the edges of the letters, in a colour, a gradient or a pattern.
 *
 * <p>Defaults: 2 pixels wide, black, opaque, around the letters.
 *
 * <p><img src="doc-files/stroke.png" alt="Letters with an outline">
 */
public final class StrokeEffect extends ColoredEffect {
    /** Which side of the edge the outline lies on. */
    public enum Position implements Property.Named {
        /** Half inside, half outside; drawn over the text's fill. */
        CENTER("center"),
        /** Around the letters, beneath their fill. */
        OUTSIDE("outside"),
        /** Within the letters. */
        INSIDE("inside");

        private final String styleName;

        Position(String styleName) {
            this.styleName = styleName;
        }

        @Override
        public String styleName() {
            return styleName;
        }
    }

    private StrokeEffect(Builder builder) {
        super(builder);
    }

    /**
     * Where the outline lies.
     *
     * @return the side of the edge
     */
    @NonNull
    public Position getPosition() {
        return (Position) get("position");
    }

    /**
     * What paints the outline in place of the colour.
     *
     * @return a gradient or a pattern, or null for the colour
     */
    @Nullable
    public TextEffect getFill() {
        return get("fill") instanceof TextEffect ? (TextEffect) get("fill") : null;
    }

    @Override
    @NonNull
    public Builder toBuilder() {
        return copyTo(new Builder());
    }

    /** Starts from a black outline of 2 pixels around the letters. */
    public static final class Builder extends ColoredEffect.Builder<Builder> {
        /** An outline with the settings that a style file leaves out. */
        public Builder() {
            super(EffectType.STROKE);
        }

        /**
         * Sets the side of the edge.
         *
         * @param position where the outline lies
         * @return this builder
         */
        @NonNull
        public Builder setPosition(@NonNull Position position) {
            return setRequired("position", position);
        }

        /**
         * Paints the outline with an effect that runs over the outline's own box.
         *
         * @param fill a {@link LinearGradientEffect}, a {@link RadialGradientEffect} or a {@link
         *     PatternEffect}; null for the colour
         * @return this builder
         * @throws IllegalArgumentException for any other effect
         */
        @NonNull
        public Builder setFill(@Nullable TextEffect fill) {
            if (fill != null && !(fill instanceof GradientEffect)
                    && !(fill instanceof PatternEffect)) {
                throw new IllegalArgumentException(
                        "fill: " + fill.getType() + " is no gradient and no pattern");
            }
            return set("fill", fill);
        }

        /**
         * Paints the outline with a colour that goes before {@link #setColor}'s, as a style file
         * can say it too.
         *
         * @param color {@code 0xAARRGGBB}; the alpha multiplies the opacity
         * @return this builder
         */
        @NonNull
        public Builder setFillColor(@ColorInt int color) {
            return set("fill", color);
        }

        @Override
        @NonNull
        public StrokeEffect build() {
            return new StrokeEffect(this);
        }
    }
}
