package com.norvale.android.sdk.gxe;

import android.util.JsonWriter;
import com.norvale.android.sdk.gxe.annotation.ColorInt;
import com.norvale.android.sdk.gxe.annotation.FloatRange;
import com.norvale.android.sdk.gxe.annotation.IntRange;
import com.norvale.android.sdk.gxe.annotation.NonNull;
import com.norvale.android.sdk.gxe.annotation.Px;
import java.io.IOException;
import java.util.Objects;

/** An outline along the edges of the letters. */
public final class StrokeEffect extends TextEffect {
    /** Which side of the edge the outline lies on. */
    public enum Position {
        /** Half inside, half outside; drawn over the text's fill. */
        CENTER("center", 0),
        /** Around the letters, beneath their fill. */
        OUTSIDE("outside", 1),
        /** Within the letters. */
        INSIDE("inside", 2);

        final String styleName;
        final int nativeValue;

        Position(String styleName, int nativeValue) {
            this.styleName = styleName;
            this.nativeValue = nativeValue;
        }
    }

    private final float size;
    private final int color;
    private final int cap;
    private final Position position;

    private StrokeEffect(Builder builder) {
        super("stroke", builder.opacity);
        size = builder.size;
        color = builder.color;
        cap = builder.cap;
        position = builder.position;
    }

    /**
     * Width of the outline.
     *
     * @return pixels, 0 to 100
     */
    @Px
    public float getSize() {
        return size;
    }

    /**
     * Colour of the outline; its alpha multiplies the opacity.
     *
     * @return {@code 0xAARRGGBB}
     */
    @ColorInt
    public int getColor() {
        return color;
    }

    /**
     * A number carried along with the outline, without effect on the picture.
     *
     * @return 0 to 127
     */
    public int getCap() {
        return cap;
    }

    /**
     * Where the outline lies.
     *
     * @return the side of the edge
     */
    @NonNull
    public Position getPosition() {
        return position;
    }

    @Override
    int addTo(GxText text) {
        return text.addStroke(size, color, faded(getOpacity(), color), cap, position.nativeValue);
    }

    @Override
    Object[] settings() {
        return new Object[] {size, color, cap, position};
    }

    @Override
    void writeSettings(JsonWriter writer) throws IOException {
        writer.name("size").value(StyleWriter.number(size));
        writer.name("color").value(StyleWriter.color(color));
        if (cap != 0) {
            writer.name("cap").value(cap);
        }
        writer.name("position").value(position.styleName);
    }

    /** Starts from a black outline of 2 pixels around the letters. */
    public static final class Builder {
        private float size = 2;
        private int color = 0xFF000000;
        private float opacity = 1;
        private int cap;
        private Position position = Position.OUTSIDE;

        /** An outline with the settings that a style file leaves out. */
        public Builder() {}

        /**
         * Sets the width.
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
         * Sets the number that is carried along.
         *
         * @param cap 0 to 127
         * @return this builder
         * @throws IllegalArgumentException when out of range
         */
        @NonNull
        public Builder setCap(@IntRange(from = 0, to = 127) int cap) {
            this.cap = (int) Range.SMALL_INT.check("cap", cap);
            return this;
        }

        /**
         * Sets the side of the edge.
         *
         * @param position where the outline lies
         * @return this builder
         */
        @NonNull
        public Builder setPosition(@NonNull Position position) {
            this.position = Objects.requireNonNull(position, "position");
            return this;
        }

        /**
         * Makes the effect.
         *
         * @return an outline with the settings so far
         */
        @NonNull
        public StrokeEffect build() {
            return new StrokeEffect(this);
        }
    }
}
