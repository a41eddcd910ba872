package com.norvale.android.sdk.gxe;

import androidx.annotation.NonNull;

/**
 * Colours that run outwards from the middle of the text.
 *
 * <p>Defaults: as large as the text, over all lines together, opaque; it has no colours of its own.
 *
 * <p><img src="doc-files/radialGradient.png" alt="Letters in running colours">
 */
public final class RadialGradientEffect extends GradientEffect {
    private RadialGradientEffect(Builder builder) {
        super(builder);
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
            super(EffectType.RADIAL_GRADIENT);
        }

        /**
         * Makes the effect.
         *
         * @return a gradient with the settings so far
         * @throws IllegalStateException when it has no colours
         */
        @Override
        @NonNull
        public RadialGradientEffect build() {
            requireStops();
            return new RadialGradientEffect(this);
        }
    }
}
