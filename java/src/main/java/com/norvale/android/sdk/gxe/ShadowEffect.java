package com.norvale.android.sdk.gxe;

import android.util.JsonWriter;
import com.norvale.android.sdk.gxe.annotation.FloatRange;
import com.norvale.android.sdk.gxe.annotation.NonNull;
import com.norvale.android.sdk.gxe.annotation.Px;
import java.io.IOException;

/** A soft shadow, behind the letters or inside them. */
public final class ShadowEffect extends ColoredEffect {
    private final boolean inner;
    private final float angle;
    private final float distance;

    private ShadowEffect(Builder builder) {
        super(builder.inner ? "innerShadow" : "outerShadow", builder);
        inner = builder.inner;
        angle = builder.angle;
        distance = builder.distance;
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

    @Override
    int addTo(GxText text) {
        return inner
                ? text.addInnerShadow(whole(angle), whole(distance), whole(getSize()), getColor(),
                        fadedOpacity())
                : text.addOuterShadow(whole(angle), whole(distance), whole(getSize()), getColor(),
                        fadedOpacity());
    }

    @Override
    int rank() {
        return inner ? 6 : 0;
    }

    @Override
    Object[] settings() {
        return new Object[] {angle, distance, getSize(), getColor()};
    }

    @Override
    void writeSettings(JsonWriter writer) throws IOException {
        writer.name("angle").value(StyleWriter.number(angle));
        writer.name("distance").value(StyleWriter.number(distance));
        writeSizeAndColor(writer);
    }

    /** Collects the settings of a shadow; see {@link #outer()} and {@link #inner()}. */
    public static final class Builder extends ColoredEffect.Builder<Builder> {
        private final boolean inner;
        private float angle = 120;
        private float distance = 5;

        private Builder(boolean inner) {
            super(5, 0xFF000000, 0.75f);
            this.inner = inner;
        }

        /**
         * Sets where the light comes from.
         *
         * @param angle degrees counter-clockwise from the right, -360 to 360; rounded to a whole one
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
         * @param distance pixels, 0 to 100; rounded to whole pixels
         * @return this builder
         * @throws IllegalArgumentException when out of range
         */
        @NonNull
        public Builder setDistance(@Px @FloatRange(from = 0, to = 100) float distance) {
            this.distance = Range.PERCENT.check("distance", distance);
            return this;
        }

        @Override
        Builder self() {
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
