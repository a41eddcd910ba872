package com.norvale.android.sdk.gxe;

import android.util.JsonWriter;
import com.norvale.android.sdk.gxe.annotation.ColorInt;
import com.norvale.android.sdk.gxe.annotation.FloatRange;
import com.norvale.android.sdk.gxe.annotation.NonNull;
import com.norvale.android.sdk.gxe.annotation.Px;
import java.io.IOException;

/** A soft shadow, behind the letters or inside them. */
public final class ShadowEffect extends TextEffect {
    private final boolean inner;
    private final float angle;
    private final float distance;
    private final float size;
    private final int color;

    private ShadowEffect(Builder builder) {
        super(builder.inner ? "innerShadow" : "outerShadow", builder.opacity);
        inner = builder.inner;
        angle = builder.angle;
        distance = builder.distance;
        size = builder.size;
        color = builder.color;
    }

    /**
     * Starts a shadow behind the letters: black, 5 pixels away from a light at 120 degrees, blurred
     * over 5 pixels, opacity 0.75.
     *
     * @return a builder with the settings that a style file leaves out
     */
    @NonNull
    public static Builder outer() {
        return new Builder(false);
    }

    /**
     * Starts a shadow inside the letters, as if they were cut out of the page. Otherwise as {@link
     * #outer()}.
     *
     * @return a builder with the settings that a style file leaves out
     */
    @NonNull
    public static Builder inner() {
        return new Builder(true);
    }

    /**
     * Whether the shadow falls inside the letters.
     *
     * @return true for an inner shadow, false for an outer one
     */
    public boolean isInner() {
        return inner;
    }

    /**
     * Where the light comes from.
     *
     * @return degrees counter-clockwise from the right, -360 to 360
     */
    public float getAngle() {
        return angle;
    }

    /**
     * How far the shadow is shifted away from the light.
     *
     * @return pixels, 0 to 100
     */
    @Px
    public float getDistance() {
        return distance;
    }

    /**
     * How far the shadow is blurred.
     *
     * @return pixels, 0 to 100
     */
    @Px
    public float getSize() {
        return size;
    }

    /**
     * Colour of the shadow; its alpha multiplies the opacity.
     *
     * @return {@code 0xAARRGGBB}
     */
    @ColorInt
    public int getColor() {
        return color;
    }

    @Override
    int addTo(GxText text) {
        return inner
                ? text.addInnerShadow(angle, distance, size, color, faded(getOpacity(), color))
                : text.addOuterShadow(angle, distance, size, color, faded(getOpacity(), color));
    }

    @Override
    Object[] settings() {
        return new Object[] {angle, distance, size, color};
    }

    @Override
    void writeSettings(JsonWriter writer) throws IOException {
        writer.name("angle").value(StyleWriter.number(angle));
        writer.name("distance").value(StyleWriter.number(distance));
        writer.name("size").value(StyleWriter.number(size));
        writer.name("color").value(StyleWriter.color(color));
    }

    /** Collects the settings of a shadow; see {@link #outer()} and {@link #inner()}. */
    public static final class Builder {
        private final boolean inner;
        private float angle = 120;
        private float distance = 5;
        private float size = 5;
        private int color = 0xFF000000;
        private float opacity = 0.75f;

        private Builder(boolean inner) {
            this.inner = inner;
        }

        /**
         * Sets where the light comes from.
         *
         * @param angle degrees counter-clockwise from the right, -360 to 360; the part after the
         *     point is cut off
         * @return this builder
         * @throws IllegalArgumentException when out of range
         */
        @NonNull
        public Builder setAngle(@FloatRange(from = -360, to = 360) float angle) {
            this.angle = Range.ANGLE.check("angle", angle);
            return this;
        }

        /**
         * Sets the shift away from the light.
         *
         * @param distance pixels, 0 to 100; the part after the point is cut off
         * @return this builder
         * @throws IllegalArgumentException when out of range
         */
        @NonNull
        public Builder setDistance(@Px @FloatRange(from = 0, to = 100) float distance) {
            this.distance = Range.PERCENT.check("distance", distance);
            return this;
        }

        /**
         * Sets the blur.
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
         * @return a shadow with the settings so far
         */
        @NonNull
        public ShadowEffect build() {
            return new ShadowEffect(this);
        }
    }
}
