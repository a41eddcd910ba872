package com.norvale.android.sdk.gxe;

import androidx.annotation.ColorInt;
import androidx.annotation.FloatRange;
import androidx.annotation.NonNull;
import androidx.annotation.Px;

/** An effect in one colour: {@link StrokeEffect}, {@link ShadowEffect} or {@link GlowEffect}. */
public abstract class ColoredEffect extends TextEffect {
    ColoredEffect(Builder<?> builder) {
        super(builder);
    }

    /**
     * Width of an outline, blur of a shadow, reach of a glow.
     *
     * @return pixels, 0 to 100, more in a scaled style
     */
    @Px
    public final float getSize() {
        return number("size");
    }

    /**
     * Colour of the effect; its alpha multiplies the opacity.
     *
     * @return {@code 0xAARRGGBB}
     */
    @ColorInt
    public final int getColor() {
        return color("color");
    }

    /**
     * Collects the settings of an effect in one colour.
     *
     * @param <B> the builder of the effect itself
     */
    public abstract static class Builder<B extends Builder<B>> extends TextEffect.Builder<B> {
        Builder(EffectType type) {
            super(type);
        }

        /**
         * Sets the width of an outline, the blur of a shadow, the reach of a glow.
         *
         * @param size pixels, 0 to 100; rounded to whole pixels when drawn
         * @return this builder
         * @throws IllegalArgumentException when out of range
         */
        @NonNull
        public final B setSize(@Px @FloatRange(from = 0, to = 100) float size) {
            return set("size", size);
        }

        /**
         * Sets the colour.
         *
         * @param color {@code 0xAARRGGBB}; the alpha multiplies the opacity
         * @return this builder
         */
        @NonNull
        public final B setColor(@ColorInt int color) {
            return set("color", color);
        }
    }
}
