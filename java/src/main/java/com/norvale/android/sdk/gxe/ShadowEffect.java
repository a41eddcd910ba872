package com.norvale.android.sdk.gxe;

import androidx.annotation.FloatRange;
import androidx.annotation.NonNull;
import androidx.annotation.Px;

/**
 * A soft shadow, behind the letters or inside them.
 *
 * <p>Defaults: black, 5 pixels away from a light at 120 degrees, blurred over 5 pixels, opacity 0.75,
 * no spread, cast from the bare letters.
 *
 * <p><img src="doc-files/outerShadow.png" alt="Letters with a shadow behind them"> <img
 * src="doc-files/innerShadow.png" alt="Letters with a shadow inside them">
 */
public final class ShadowEffect extends ColoredEffect {
    private ShadowEffect(Builder builder) {
        super(builder);
    }

    /**
     * Starts a shadow behind the letters: black, 5 pixels away from a light at 120 degrees, blurred
     * over 5 pixels, opacity 0.75.
     *
     * @return a builder with the settings that a style file leaves out
     */
    @NonNull
    public static Builder outer() {
        return new Builder(EffectType.OUTER_SHADOW);
    }

    /**
     * Starts a shadow inside the letters, as if they were cut out of the page. Otherwise as {@link
     * #outer()}.
     *
     * @return a builder with the settings that a style file leaves out
     */
    @NonNull
    public static Builder inner() {
        return new Builder(EffectType.INNER_SHADOW);
    }

    /**
     * Whether the shadow falls inside the letters.
     *
     * @return true for an inner shadow, false for an outer one
     */
    public boolean isInner() {
        return type == EffectType.INNER_SHADOW;
    }

    /**
     * Where the light comes from.
     *
     * @return degrees counter-clockwise from the right, -360 to 360
     */
    public float getAngle() {
        return number("angle");
    }

    /**
     * How far the shadow is shifted away from the light.
     *
     * @return pixels, 0 to 100, more in a scaled style
     */
    @Px
    public float getDistance() {
        return number("distance");
    }

    /**
     * How much wider than the letters an outer shadow starts, or how far inside their edges an inner
     * one does ({@code choke} in style files).
     *
     * @return pixels, 0 to 100
     */
    @Px
    public float getSpread() {
        return number(isInner() ? "choke" : "spread");
    }

    /**
     * What casts an outer shadow.
     *
     * @return the letters alone, as always with an inner one, or with their outlines
     */
    @NonNull
    public CastFrom getCastFrom() {
        return isInner() ? CastFrom.LETTERS : (CastFrom) get("castFrom");
    }

    @Override
    @NonNull
    public Builder toBuilder() {
        return copyTo(new Builder(type));
    }

    /** Collects the settings of a shadow; see {@link #outer()} and {@link #inner()}. */
    public static final class Builder extends ColoredEffect.Builder<Builder> {
        private Builder(EffectType type) {
            super(type);
        }

        /**
         * Sets where the light comes from.
         *
         * @param angle degrees counter-clockwise from the right, -360 to 360; rounded to a whole one
         *     when drawn
         * @return this builder
         * @throws IllegalArgumentException when out of range
         */
        @NonNull
        public Builder setAngle(@FloatRange(from = -360, to = 360) float angle) {
            return set("angle", angle);
        }

        /**
         * Sets the shift away from the light.
         *
         * @param distance pixels, 0 to 100; rounded to whole pixels when drawn
         * @return this builder
         * @throws IllegalArgumentException when out of range
         */
        @NonNull
        public Builder setDistance(@Px @FloatRange(from = 0, to = 100) float distance) {
            return set("distance", distance);
        }

        /**
         * Sets how much wider than the letters an outer shadow starts, or how far inside their edges
         * an inner one does ({@code choke} in style files).
         *
         * @param spread pixels, 0 to 100; rounded to whole pixels when drawn
         * @return this builder
         * @throws IllegalArgumentException when out of range
         */
        @NonNull
        public Builder setSpread(@Px @FloatRange(from = 0, to = 100) float spread) {
            return set(type == EffectType.INNER_SHADOW ? "choke" : "spread", spread);
        }

        /**
         * Sets what casts an outer shadow.
         *
         * @param castFrom the letters alone or with their outlines
         * @return this builder
         * @throws IllegalArgumentException for an inner shadow
         */
        @NonNull
        public Builder setCastFrom(@NonNull CastFrom castFrom) {
            return setRequired("castFrom", castFrom);
        }

        @Override
        @NonNull
        public ShadowEffect build() {
            return new ShadowEffect(this);
        }
    }
}
