package com.norvale.android.sdk.gxe;

import android.util.JsonWriter;
import com.norvale.android.sdk.gxe.annotation.ColorInt;
import com.norvale.android.sdk.gxe.annotation.FloatRange;
import com.norvale.android.sdk.gxe.annotation.NonNull;
import com.norvale.android.sdk.gxe.annotation.Px;
import java.io.IOException;

/** An effect in one colour: {@link StrokeEffect}, {@link ShadowEffect} or {@link OuterGlowEffect}. */
public abstract class ColoredEffect extends TextEffect {
    private final float size;
    private final int color;

    ColoredEffect(String type, Builder<?> builder) {
        super(type, builder.opacity);
        size = builder.size;
        color = builder.color;
    }

    /**
     * Width of an outline, blur of a shadow, reach of a glow.
     *
     * @return pixels, 0 to 100
     */
    @Px
    public final float getSize() {
        return size;
    }

    /**
     * Colour of the effect; its alpha multiplies the opacity.
     *
     * @return {@code 0xAARRGGBB}
     */
    @ColorInt
    public final int getColor() {
        return color;
    }

    /**
     * The opacity with the alpha of the colour in it. The native library takes a colour without its
     * alpha; style files have both multiplied.
     */
    final float fadedOpacity() {
        return faded(getOpacity(), color);
    }

    final void writeSizeAndColor(JsonWriter writer) throws IOException {
        writer.name("size").value(StyleWriter.number(size));
        writer.name("color").value(StyleWriter.color(color));
    }

    /**
     * Collects the settings of an effect in one colour.
     *
     * @param <B> the builder of the effect itself
     */
    public abstract static class Builder<B extends Builder<B>> {
        private float size;
        private int color;
        private float opacity;

        Builder(float size, int color, float opacity) {
            this.size = size;
            this.color = color;
            this.opacity = opacity;
        }

        abstract B self();

        /**
         * Sets the width of an outline, the blur of a shadow, the reach of a glow.
         *
         * @param size pixels, 0 to 100; rounded to whole pixels
         * @return this builder
         * @throws IllegalArgumentException when out of range
         */
        @NonNull
        public final B setSize(@Px @FloatRange(from = 0, to = 100) float size) {
            this.size = Range.PERCENT.check("size", size);
            return self();
        }

        /**
         * Sets the colour.
         *
         * @param color {@code 0xAARRGGBB}; the alpha multiplies the opacity
         * @return this builder
         */
        @NonNull
        public final B setColor(@ColorInt int color) {
            this.color = color;
            return self();
        }

        /**
         * Sets the opacity.
         *
         * @param opacity 0 to 1
         * @return this builder
         * @throws IllegalArgumentException when out of range
         */
        @NonNull
        public final B setOpacity(@FloatRange(from = 0, to = 1) float opacity) {
            this.opacity = Range.UNIT.check("opacity", opacity);
            return self();
        }
    }
}
