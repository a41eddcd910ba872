package com.norvale.android.sdk.gxe;

import androidx.annotation.ColorInt;
import androidx.annotation.FloatRange;
import androidx.annotation.IntRange;
import androidx.annotation.NonNull;
import androidx.annotation.Px;

/** Lit and shaded slopes: {@link BevelEffect} or {@link EmbossEffect}. */
public abstract class ReliefEffect extends TextEffect {
    /** How the slopes are shaped. */
    public enum Technique implements Property.Named {
        /** Round all over. */
        SMOOTH("smooth"),
        /** Flat facets that meet in crisp ridges. */
        CHISEL_HARD("chiselHard"),
        /** Facets with rounded ridges. */
        CHISEL_SOFT("chiselSoft");

        private final String styleName;

        Technique(String styleName) {
            this.styleName = styleName;
        }

        @Override
        public String styleName() {
            return styleName;
        }
    }

    /** Whether the relief stands out. */
    public enum Direction implements Property.Named {
        /** Raised. */
        UP("up"),
        /** Pressed in. */
        DOWN("down");

        private final String styleName;

        Direction(String styleName) {
            this.styleName = styleName;
        }

        @Override
        public String styleName() {
            return styleName;
        }
    }

    ReliefEffect(Builder<?> builder) {
        super(builder);
    }

    /**
     * Width of the slope; an emboss has half of it on each side of the edge.
     *
     * @return pixels, 0 to 250
     */
    @Px
    public final float getSize() {
        return number("size");
    }

    /**
     * Steepness.
     *
     * @return 0 to 10; 1 is a slope of 45 degrees for a chisel
     */
    public final float getDepth() {
        return number("depth");
    }

    /**
     * How the slopes are shaped.
     *
     * @return the technique
     */
    @NonNull
    public final Technique getTechnique() {
        return (Technique) get("technique");
    }

    /**
     * Whether the relief stands out.
     *
     * @return raised or pressed in
     */
    @NonNull
    public final Direction getDirection() {
        return (Direction) get("direction");
    }

    /**
     * Blur of the shading.
     *
     * @return pixels, 0 to 16
     */
    @Px
    public final int getSoften() {
        return (Integer) get("soften");
    }

    /**
     * Where the light comes from.
     *
     * @return degrees counter-clockwise from the right, -360 to 360
     */
    public final float getAngle() {
        return number("angle");
    }

    /**
     * Height of the light above the picture.
     *
     * @return degrees, 0 to 89
     */
    public final float getAltitude() {
        return number("altitude");
    }

    /**
     * Colour of the lit sides.
     *
     * @return {@code 0xAARRGGBB}; the alpha multiplies the opacity
     */
    @ColorInt
    public final int getHighlightColor() {
        return color("highlightColor");
    }

    /**
     * Opacity of the lit sides.
     *
     * @return 0 to 1
     */
    public final float getHighlightOpacity() {
        return number("highlightOpacity");
    }

    /**
     * Colour of the sides in shadow.
     *
     * @return {@code 0xAARRGGBB}; the alpha multiplies the opacity
     */
    @ColorInt
    public final int getShadowColor() {
        return color("shadowColor");
    }

    /**
     * Opacity of the sides in shadow.
     *
     * @return 0 to 1
     */
    public final float getShadowOpacity() {
        return number("shadowOpacity");
    }

    /**
     * Collects the settings of a relief.
     *
     * @param <B> the builder of the effect itself
     */
    public abstract static class Builder<B extends Builder<B>> extends TextEffect.Builder<B> {
        Builder(EffectType type) {
            super(type);
        }

        /**
         * Sets the width of the slope; an emboss has half of it on each side of the edge.
         *
         * @param size pixels, 0 to 250; 5 at first; rounded to whole pixels when drawn
         * @return this builder
         * @throws IllegalArgumentException when out of range
         */
        @NonNull
        public final B setSize(@Px @FloatRange(from = 0, to = 250) float size) {
            return set("size", size);
        }

        /**
         * Sets the steepness.
         *
         * @param depth 0 to 10; 1, as at first, is a slope of 45 degrees for a chisel
         * @return this builder
         * @throws IllegalArgumentException when out of range
         */
        @NonNull
        public final B setDepth(@FloatRange(from = 0, to = 10) float depth) {
            return set("depth", depth);
        }

        /**
         * Sets how the slopes are shaped.
         *
         * @param technique the technique; smooth at first
         * @return this builder
         */
        @NonNull
        public final B setTechnique(@NonNull Technique technique) {
            return setRequired("technique", technique);
        }

        /**
         * Raises the relief or presses it in.
         *
         * @param direction raised, as at first, or pressed in
         * @return this builder
         */
        @NonNull
        public final B setDirection(@NonNull Direction direction) {
            return setRequired("direction", direction);
        }

        /**
         * Sets the blur of the shading.
         *
         * @param soften pixels, 0 to 16; 0 at first
         * @return this builder
         * @throws IllegalArgumentException when out of range
         */
        @NonNull
        public final B setSoften(@Px @IntRange(from = 0, to = 16) int soften) {
            return set("soften", soften);
        }

        /**
         * Sets where the light comes from.
         *
         * @param angle degrees counter-clockwise from the right, -360 to 360; 120 at first; rounded
         *     to a whole one when drawn
         * @return this builder
         * @throws IllegalArgumentException when out of range
         */
        @NonNull
        public final B setAngle(@FloatRange(from = -360, to = 360) float angle) {
            return set("angle", angle);
        }

        /**
         * Sets the height of the light above the picture.
         *
         * @param altitude degrees, 0 to 89; 30 at first; rounded to a whole one when drawn
         * @return this builder
         * @throws IllegalArgumentException when out of range
         */
        @NonNull
        public final B setAltitude(@FloatRange(from = 0, to = 89) float altitude) {
            return set("altitude", altitude);
        }

        /**
         * Sets colour and opacity of the lit sides.
         *
         * @param color {@code 0xAARRGGBB}; the alpha multiplies the opacity; white at first
         * @param opacity 0 to 1; 0.75 at first
         * @return this builder
         * @throws IllegalArgumentException when the opacity is out of range
         */
        @NonNull
        public final B setHighlight(
                @ColorInt int color, @FloatRange(from = 0, to = 1) float opacity) {
            set("highlightOpacity", opacity);
            return set("highlightColor", color);
        }

        /**
         * Sets colour and opacity of the sides in shadow.
         *
         * @param color {@code 0xAARRGGBB}; the alpha multiplies the opacity; black at first
         * @param opacity 0 to 1; 0.75 at first
         * @return this builder
         * @throws IllegalArgumentException when the opacity is out of range
         */
        @NonNull
        public final B setShadow(
                @ColorInt int color, @FloatRange(from = 0, to = 1) float opacity) {
            set("shadowOpacity", opacity);
            return set("shadowColor", color);
        }
    }
}
