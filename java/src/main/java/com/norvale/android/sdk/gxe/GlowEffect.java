package com.norvale.android.sdk.gxe;

import androidx.annotation.ColorInt;
import androidx.annotation.FloatRange;
import androidx.annotation.NonNull;
import androidx.annotation.Px;
import java.util.List;

/**
 * A glow in one colour or in the colours of a ramp: {@link OuterGlowEffect} or {@link
 * InnerGlowEffect}.
 */
public abstract class GlowEffect extends ColoredEffect {
    GlowEffect(Builder<?> builder) {
        super(builder);
    }

    /**
     * The colours from the edges of the letters to the end of the glow.
     *
     * @return at most 256 stops in order of position; none for a glow in one colour
     */
    @NonNull
    public final List<ColorStop> getStops() {
        return stops();
    }

    /**
     * How much wider than the letters an outer glow starts, or how far inside their edges an inner
     * one does ({@code choke} in style files).
     *
     * @return pixels, 0 to 100
     */
    @Px
    public final float getSpread() {
        return number(type == EffectType.INNER_GLOW ? "choke" : "spread");
    }

    /**
     * Collects the settings of a glow.
     *
     * @param <B> the builder of the effect itself
     */
    public abstract static class Builder<B extends Builder<B>> extends ColoredEffect.Builder<B> {
        Builder(EffectType type) {
            super(type);
        }

        /**
         * Adds a colour of a ramp after those that are there; the ramp goes before the one colour.
         *
         * @param color {@code 0xAARRGGBB}; the alpha fades it
         * @param position from the edges of the letters (0) to the end of the glow (1)
         * @return this builder
         * @throws IllegalArgumentException when the position is out of range or before the last
         *     one, or there are 256 stops already
         */
        @NonNull
        public final B addStop(
                @ColorInt int color, @FloatRange(from = 0, to = 1) float position) {
            return addStop(new ColorStop(color, position));
        }

        /**
         * Adds a colour of a ramp after those that are there; the ramp goes before the one colour.
         *
         * @param stop the colour and its place
         * @return this builder
         * @throws IllegalArgumentException when its position is before the last one, or there are
         *     256 stops already
         */
        @NonNull
        public final B addStop(@NonNull ColorStop stop) {
            return addTo("stops", stop);
        }

        /**
         * Sets how much wider than the letters an outer glow starts, or how far inside their edges
         * an inner one does ({@code choke} in style files).
         *
         * @param spread pixels, 0 to 100; rounded to whole pixels when drawn
         * @return this builder
         * @throws IllegalArgumentException when out of range
         */
        @NonNull
        public final B setSpread(@Px @FloatRange(from = 0, to = 100) float spread) {
            return set(type == EffectType.INNER_GLOW ? "choke" : "spread", spread);
        }
    }
}
