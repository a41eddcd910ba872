package com.norvale.android.sdk.gxe;

import androidx.annotation.NonNull;

/**
 * Relief pressed out of the ground.
 *
 * <p>Defaults: one slope across the edges, 5 pixels, smooth, raised, lit from 120 degrees at a height of 30, white
 * light and black shade with opacity 0.75 each.
 *
 * <p><img src="doc-files/emboss.png" alt="Letters in relief">
 */
public final class EmbossEffect extends ReliefEffect {
    /** Where the slope lies. */
    public enum Kind implements Property.Named {
        /** One slope across the edges. */
        EMBOSS("emboss"),
        /** The edges are a groove from which both sides rise. */
        PILLOW("pillow");

        private final String styleName;

        Kind(String styleName) {
            this.styleName = styleName;
        }

        @Override
        public String styleName() {
            return styleName;
        }
    }

    private EmbossEffect(Builder builder) {
        super(builder);
    }

    /**
     * Where the slope lies.
     *
     * @return the kind
     */
    @NonNull
    public Kind getKind() {
        return (Kind) get("kind");
    }

    @Override
    @NonNull
    public Builder toBuilder() {
        return copyTo(new Builder());
    }

    /** Starts from a smooth slope of 5 pixels. */
    public static final class Builder extends ReliefEffect.Builder<Builder> {
        /** A relief with the settings that a style file leaves out. */
        public Builder() {
            super(EffectType.EMBOSS);
        }

        /**
         * Sets where the slope lies.
         *
         * @param kind the kind
         * @return this builder
         */
        @NonNull
        public Builder setKind(@NonNull Kind kind) {
            return setRequired("kind", kind);
        }

        @Override
        @NonNull
        public EmbossEffect build() {
            return new EmbossEffect(this);
        }
    }
}
