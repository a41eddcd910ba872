package com.norvale.android.sdk.gxe;

import android.util.JsonWriter;
import com.norvale.android.sdk.gxe.annotation.ColorInt;
import com.norvale.android.sdk.gxe.annotation.FloatRange;
import com.norvale.android.sdk.gxe.annotation.NonNull;
import com.norvale.android.sdk.gxe.annotation.Px;
import java.io.IOException;

/** A glow around the letters. */
public final class OuterGlowEffect extends TextEffect {
    private final float size;
    private final int color;

    private OuterGlowEffect(Builder builder) {
        super("outerGlow", builder.opacity);
        size = builder.size;
        color = builder.color;
    }

    /**
     * How far the glow reaches.
     *
     * @return pixels, 0 to 100
     */
    @Px
    public float getSize() {
        return size;
    }

    /**
     * Colour of the glow; its alpha multiplies the opacity.
     *
     * @return {@code 0xAARRGGBB}
     */
    @ColorInt
    public int getColor() {
        return color;
    }

    @Override
    int addTo(GxText text) {
        return text.addOuterGlow(size, color, faded(getOpacity(), color));
    }

    @Override
    Object[] settings() {
        return new Object[] {size, color};
    }

    @Override
    void writeSettings(JsonWriter writer) throws IOException {
        writer.name("size").value(StyleWriter.number(size));
        writer.name("color").value(StyleWriter.color(color));
    }

    /** Starts from a white glow of 5 pixels with opacity 0.75. */
    public static final class Builder {
        private float size = 5;
        private int color = 0xFFFFFFFF;
        private float opacity = 0.75f;

        /** A glow with the settings that a style file leaves out. */
        public Builder() {}

        /**
         * Sets the reach.
         *
         * @param size pixels, 0 to 100; the part after the point is cut off
         * @return this builder
         * @throws IllegalArgumentException when out of range
         */
        @NonNull
        public Builder setSize(@Px @FloatRange(from = 0, to = 100) float size) {
            this.size = Range.PERCENT.check("size", size);
            return this;
        }

        /**
         * Sets the colour.
         *
         * @param color {@code 0xAARRGGBB}; the alpha multiplies the opacity
         * @return this builder
         */
        @NonNull
        public Builder setColor(@ColorInt int color) {
            this.color = color;
            return this;
        }

        /**
         * Sets the opacity.
         *
         * @param opacity 0 to 1
         * @return this builder
         * @throws IllegalArgumentException when out of range
         */
        @NonNull
        public Builder setOpacity(@FloatRange(from = 0, to = 1) float opacity) {
            this.opacity = Range.UNIT.check("opacity", opacity);
            return this;
        }

        /**
         * Makes the effect.
         *
         * @return a glow with the settings so far
         */
        @NonNull
        public OuterGlowEffect build() {
            return new OuterGlowEffect(this);
        }
    }
}
