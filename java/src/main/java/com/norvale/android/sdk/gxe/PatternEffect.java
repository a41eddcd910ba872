package com.norvale.android.sdk.gxe;

import androidx.annotation.FloatRange;
import androidx.annotation.NonNull;

/**
 * A picture that is tiled over the letters. Also paints a stroke, see {@link
 * StrokeEffect.Builder#setFill}.
 *
 * <p>An effect names its picture; a {@link PatternLoader} gives it.
 *
 * <p>Defaults: tiles as large as the picture, opaque.
 *
 * <p><img src="doc-files/pattern.png" alt="Letters with a pattern">
 */
public final class PatternEffect extends TextEffect {
    private PatternEffect(Builder builder) {
        super(builder);
    }

    /**
     * The picture.
     *
     * @return the name that the loader is given, in style files the path of a PNG file
     */
    @NonNull
    public String getPattern() {
        return (String) get("pattern");
    }

    /**
     * The size of a tile relative to the picture.
     *
     * @return 0 to 10
     */
    public float getScale() {
        return number("scale");
    }

    @Override
    @NonNull
    public Builder toBuilder() {
        return copyTo(new Builder());
    }

    /** Starts from tiles as large as the picture. */
    public static final class Builder extends TextEffect.Builder<Builder> {
        /** A pattern with the settings that a style file leaves out, and no picture. */
        public Builder() {
            super(EffectType.PATTERN);
        }

        /**
         * Sets the picture.
         *
         * @param pattern a name for the {@link PatternLoader}, not empty; the usual one takes an
         *     asset or an absolute path
         * @return this builder
         * @throws IllegalArgumentException when it is empty
         */
        @NonNull
        public Builder setPattern(@NonNull String pattern) {
            return setRequired("pattern", pattern);
        }

        /**
         * Sets the size of a tile.
         *
         * @param scale relative to the picture, 0 to 10
         * @return this builder
         * @throws IllegalArgumentException when out of range
         */
        @NonNull
        public Builder setScale(@FloatRange(from = 0, to = 10) float scale) {
            return set("scale", scale);
        }

        /**
         * Makes the effect.
         *
         * @return a pattern with the settings so far
         * @throws IllegalStateException when it has no picture
         */
        @Override
        @NonNull
        public PatternEffect build() {
            if (values.get("pattern") == null) {
                throw new IllegalStateException("a pattern needs the name of its picture");
            }
            return new PatternEffect(this);
        }
    }
}
