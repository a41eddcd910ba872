package com.norvale.android.sdk.gxe;

import androidx.annotation.NonNull;

/**
 * A glow inside the letters, from their edges inwards.
 *
 * <p>Defaults: white, reaching 5 pixels, opacity 0.75, not choked.
 *
 * <p><img src="doc-files/innerGlow.png" alt="Letters that glow">
 */
public final class InnerGlowEffect extends GlowEffect {
    private InnerGlowEffect(Builder builder) {
        super(builder);
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
            super(EffectType.INNER_GLOW);
        }

        @Override
        @NonNull
        public InnerGlowEffect build() {
            return new InnerGlowEffect(this);
        }
    }
}
