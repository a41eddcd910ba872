package com.norvale.android.sdk.gxe;

import androidx.annotation.ColorInt;
import androidx.annotation.FloatRange;
import androidx.annotation.NonNull;
import java.util.List;

/**
 * Colours that run over the letters: {@link LinearGradientEffect} or {@link RadialGradientEffect}.
 * Also paints a stroke, see {@link StrokeEffect.Builder#setFill}.
 */
public abstract class GradientEffect extends TextEffect {
    /** What the colours run over. */
    public enum Span implements Property.Named {
        /** All lines together. */
        TEXT("text"),
        /** Each line by itself. */
        LINE("line");

        private final String styleName;

        Span(String styleName) {
            this.styleName = styleName;
        }

        @Override
        public String styleName() {
            return styleName;
        }
    }

    GradientEffect(Builder<?> builder) {
        super(builder);
    }

    /**
     * The length of the ramp, or its radius, relative to the text.
     *
     * @return 0 to 2
     */
    public final float getScale() {
        return number("scale");
    }

    /**
     * What the colours run over.
     *
     * @return all lines or each by itself
     */
    @NonNull
    public final Span getSpan() {
        return (Span) get("span");
    }

    /**
     * The colours in order of position.
     *
     * @return 1 to 256 stops; cannot be changed
     */
    @NonNull
    public final List<ColorStop> getStops() {
        return stops();
    }

    /**
     * Collects the settings of a gradient.
     *
     * @param <B> the builder of the effect itself
     */
    public abstract static class Builder<B extends Builder<B>> extends TextEffect.Builder<B> {
        Builder(EffectType type) {
            super(type);
        }

        /**
         * Sets the length of the ramp, or its radius.
         *
         * @param scale relative to the text, 0 to 2; 1 at first
         * @return this builder
         * @throws IllegalArgumentException when out of range
         */
        @NonNull
        public final B setScale(@FloatRange(from = 0, to = 2) float scale) {
            return set("scale", scale);
        }

        /**
         * Sets what the colours run over.
         *
         * @param span all lines, as at first, or each by itself
         * @return this builder
         */
        @NonNull
        public final B setSpan(@NonNull Span span) {
            return setRequired("span", span);
        }

        /**
         * Adds an opaque colour after those that are there.
         *
         * @param color {@code 0xAARRGGBB}; the alpha fades it
         * @param position along the ramp, 0 to 1
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
         * Adds a colour after those that are there.
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

        final void requireStops() {
            if (values.get("stops") == null) {
                throw new IllegalStateException("a gradient needs at least one stop");
            }
        }
    }
}
