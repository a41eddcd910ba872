package com.norvale.android.sdk.gxe;

import androidx.annotation.ColorInt;
import androidx.annotation.FloatRange;
import androidx.annotation.NonNull;

/** A colour at one place of a gradient. Immutable. */
public final class ColorStop {
    private final int color;
    private final float opacity;
    private final float position;

    /**
     * An opaque stop.
     *
     * @param color {@code 0xAARRGGBB}; the alpha multiplies the opacity
     * @param position along the gradient, 0 to 1, kept to two decimals when drawn
     * @throws IllegalArgumentException when the position is out of range
     */
    public ColorStop(@ColorInt int color, @FloatRange(from = 0, to = 1) float position) {
        this(color, 1, position);
    }

    /**
     * A stop.
     *
     * @param color {@code 0xAARRGGBB}; the alpha multiplies the opacity
     * @param opacity 0 to 1
     * @param position along the gradient, 0 to 1, kept to two decimals when drawn
     * @throws IllegalArgumentException when opacity or position is out of range
     */
    public ColorStop(@ColorInt int color, @FloatRange(from = 0, to = 1) float opacity,
            @FloatRange(from = 0, to = 1) float position) {
        this.color = color;
        this.opacity = Range.UNIT.check("opacity", opacity);
        this.position = Range.UNIT.check("position", position);
    }

    /**
     * The colour.
     *
     * @return {@code 0xAARRGGBB}
     */
    @ColorInt
    public int getColor() {
        return color;
    }

    /**
     * The opacity.
     *
     * @return 0 to 1
     */
    public float getOpacity() {
        return opacity;
    }

    /**
     * The place along the gradient.
     *
     * @return 0 to 1
     */
    public float getPosition() {
        return position;
    }

    @Override
    public boolean equals(Object other) {
        return other instanceof ColorStop
                && color == ((ColorStop) other).color
                && opacity == ((ColorStop) other).opacity
                && position == ((ColorStop) other).position;
    }

    @Override
    public int hashCode() {
        return 31 * (31 * color + Float.hashCode(opacity)) + Float.hashCode(position);
    }

    @Override
    @NonNull
    public String toString() {
        return StyleWriter.color(color) + " at " + position + ", opacity " + opacity;
    }
}
