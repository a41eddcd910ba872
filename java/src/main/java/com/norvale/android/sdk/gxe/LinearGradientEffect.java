package com.norvale.android.sdk.gxe;

import androidx.annotation.FloatRange;
import androidx.annotation.NonNull;

/**
 * Colours that run across the letters in a straight line.
 *
 * <p>Defaults: upwards, as long as the text, over all lines together, opaque; it has no colours of its own.
 *
 * <p><img src="doc-files/linearGradient.png" alt="Letters in running colours">
 */
public final class LinearGradientEffect extends GradientEffect {
    private LinearGradientEffect(Builder builder) {
        super(builder);
    }

    /**
     * The direction.
     *
     * @return degrees counter-clockwise from the right, -360 to 360
     */
    public float getAngle() {
        return number("angle");
    }

    @Override
    @NonNull
    public Builder toBuilder() {
        return copyTo(new Builder());
    }

    /** Starts from a gradient as large as the text, without colours. */
    public static final class Builder extends GradientEffect.Builder<Builder> {
        /** A gradient with the settings that a style file leaves out. */
        public Builder() {
            super(EffectType.LINEAR_GRADIENT);
        }

        /**
         * Sets the direction.
         *
         * @param angle degrees counter-clockwise from the right, -360 to 360; 90 at first; rounded
         *     to a whole one when drawn
         * @return this builder
         * @throws IllegalArgumentException when out of range
         */
        @NonNull
        public Builder setAngle(@FloatRange(from = -360, to = 360) float angle) {
            return set("angle", angle);
        }

        /**
         * Makes the effect.
         *
         * @return a gradient with the settings so far
         * @throws IllegalStateException when it has no colours
         */
        @Override
        @NonNull
        public LinearGradientEffect build() {
            requireStops();
            return new LinearGradientEffect(this);
        }
    }
}
