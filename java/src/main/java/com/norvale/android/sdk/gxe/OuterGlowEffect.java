package com.norvale.android.sdk.gxe;

import androidx.annotation.NonNull;

/**
 * A glow around the letters.
 *
 * <p>Defaults: white, reaching 5 pixels, opacity 0.75, no spread, cast from the bare letters.
 *
 * <p><img src="doc-files/outerGlow.png" alt="Letters that glow">
 */
public final class OuterGlowEffect extends GlowEffect {
    private OuterGlowEffect(Builder builder) {
        super(builder);
    }

    /**
     * What casts the glow.
     *
     * @return the letters alone or with their outlines
     */
    @NonNull
    public CastFrom getCastFrom() {
        return (CastFrom) get("castFrom");
    }

    @Override
    @NonNull
    public Builder toBuilder() {
        return copyTo(new Builder());
    }

    /** Starts from a white glow of 5 pixels with opacity 0.75. */
    public static final class Builder extends GlowEffect.Builder<Builder> {
        /** A glow with the settings that a style file leaves out. */
        public Builder() {
            super(EffectType.OUTER_GLOW);
        }

        /**
         * Sets what casts the glow.
         *
         * @param castFrom the letters alone or with their outlines
         * @return this builder
         */
        @NonNull
        public Builder setCastFrom(@NonNull CastFrom castFrom) {
            return setRequired("castFrom", castFrom);
        }

        @Override
        @NonNull
        public OuterGlowEffect build() {
            return new OuterGlowEffect(this);
        }
    }
}
