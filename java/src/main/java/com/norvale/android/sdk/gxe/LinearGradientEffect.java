package com.norvale.android.sdk.gxe;

import android.util.JsonWriter;
import com.norvale.android.sdk.gxe.annotation.ColorInt;
import com.norvale.android.sdk.gxe.annotation.FloatRange;
import com.norvale.android.sdk.gxe.annotation.NonNull;
import java.io.IOException;
import java.util.ArrayList;
import java.util.Collections;
import java.util.List;
import java.util.Objects;

/** Colours that run across the letters in a straight line. */
public final class LinearGradientEffect extends TextEffect {
    /** The most colour stops of a gradient. */
    public static final int MAX_STOPS = 256;

    private final float angle;
    private final float scale;
    private final List<ColorStop> stops;

    private LinearGradientEffect(Builder builder) {
        super("linearGradient", builder.opacity);
        angle = builder.angle;
        scale = builder.scale;
        stops = Collections.unmodifiableList(new ArrayList<>(builder.stops));
    }

    /**
     * The direction.
     *
     * @return degrees counter-clockwise from the right, -360 to 360
     */
    public float getAngle() {
        return angle;
    }

    /**
     * The length of the ramp relative to the text.
     *
     * @return 0 to 2
     */
    public float getScale() {
        return scale;
    }

    /**
     * The colours in order of position.
     *
     * @return 1 to 256 stops; cannot be changed
     */
    @NonNull
    public List<ColorStop> getStops() {
        return stops;
    }

    @Override
    int addTo(GxText text) {
        int[] colors = new int[stops.size()];
        float[] opacities = new float[stops.size()];
        float[] positions = new float[stops.size()];
        for (int i = 0; i < colors.length; i++) {
            colors[i] = stops.get(i).getColor();
            opacities[i] = faded(stops.get(i).getOpacity(), colors[i]);
            positions[i] = stops.get(i).getPosition();
        }
        return text.addLinearGradient(whole(angle), scale, colors, opacities, positions, getOpacity());
    }

    @Override
    int rank() {
        return 4;
    }

    @Override
    Object[] settings() {
        return new Object[] {angle, scale, stops};
    }

    @Override
    void writeSettings(JsonWriter writer) throws IOException {
        writer.name("angle").value(StyleWriter.number(angle));
        writer.name("scale").value(StyleWriter.number(scale));
        writer.name("stops").beginArray();
        for (ColorStop stop : stops) {
            writer.beginObject();
            writer.name("color").value(StyleWriter.color(stop.getColor()));
            if (stop.getOpacity() != 1) {
                writer.name("opacity").value(StyleWriter.number(stop.getOpacity()));
            }
            writer.name("position").value(StyleWriter.number(stop.getPosition()));
            writer.endObject();
        }
        writer.endArray();
    }

    /** Starts from a gradient that runs upwards, as long as the text, without colours. */
    public static final class Builder {
        private float angle = 90;
        private float scale = 1;
        private float opacity = 1;
        private final List<ColorStop> stops = new ArrayList<>();

        /** A gradient with the settings that a style file leaves out. */
        public Builder() {}

        /**
         * Sets the direction.
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
         * Sets the length of the ramp.
         *
         * @param scale relative to the text, 0 to 2
         * @return this builder
         * @throws IllegalArgumentException when out of range
         */
        @NonNull
        public Builder setScale(@FloatRange(from = 0, to = 2) float scale) {
            this.scale = Range.GRADIENT_SCALE.check("scale", scale);
            return this;
        }

        /**
         * Sets the opacity of the whole gradient.
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
         * Adds an opaque colour after those that are there.
         *
         * @param color {@code 0xAARRGGBB}; the alpha fades it
         * @param position along the ramp, 0 to 1
         * @return this builder
         * @throws IllegalArgumentException when the position is out of range or before the last
         *     one, or there are 256 stops already
         */
        @NonNull
        public Builder addStop(@ColorInt int color, @FloatRange(from = 0, to = 1) float position) {
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
        public Builder addStop(@NonNull ColorStop stop) {
            Objects.requireNonNull(stop, "stop");
            if (stops.size() == MAX_STOPS) {
                throw new IllegalArgumentException("stop: at most " + MAX_STOPS + " stops");
            }
            if (!stops.isEmpty() && stop.getPosition() < stops.get(stops.size() - 1).getPosition()) {
                throw new IllegalArgumentException(
                        "position: " + stop.getPosition() + " is before the last stop's");
            }
            stops.add(stop);
            return this;
        }

        /**
         * Makes the effect.
         *
         * @return a gradient with the settings so far
         * @throws IllegalStateException when it has no colours
         */
        @NonNull
        public LinearGradientEffect build() {
            if (stops.isEmpty()) {
                throw new IllegalStateException("a gradient needs at least one stop");
            }
            return new LinearGradientEffect(this);
        }
    }
}
