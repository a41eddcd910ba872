package com.norvale.android.sdk.gxe;

import androidx.annotation.ColorInt;
import androidx.annotation.IntRange;
import androidx.annotation.NonNull;
import androidx.annotation.Px;
import java.util.Objects;

/** A box behind each line of a text, or one behind all. Immutable. */
public final class TextBackground {
    /** What has a box. */
    public enum Span implements Property.Named {
        /** Each line. */
        LINE("line"),
        /** All lines together. */
        BLOCK("block");

        private final String styleName;

        Span(String styleName) {
            this.styleName = styleName;
        }

        @Override
        public String styleName() {
            return styleName;
        }
    }

    static final int LONGEST = 4096;
    static final Range RANGE = new Range(0, LONGEST);

    private final int color;
    private final int radius;
    private final int padding;
    private final Span span;

    /**
     * A plain box behind each line.
     *
     * @param color {@code 0xAARRGGBB}
     */
    public TextBackground(@ColorInt int color) {
        this(color, 0, 0, Span.LINE);
    }

    /**
     * A box.
     *
     * @param color {@code 0xAARRGGBB}
     * @param radius of the corners, in pixels, 0 to 4096; at most half of the shorter side counts
     * @param padding how much larger than the line it is on each side, in pixels, 0 to 4096
     * @param span what has a box
     * @throws IllegalArgumentException when a length is out of range
     */
    public TextBackground(@ColorInt int color, @Px @IntRange(from = 0, to = 4096) int radius,
            @Px @IntRange(from = 0, to = 4096) int padding, @NonNull Span span) {
        this.color = color;
        this.radius = (int) RANGE.check("radius", radius);
        this.padding = (int) RANGE.check("padding", padding);
        this.span = Objects.requireNonNull(span, "span");
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
     * Radius of the corners.
     *
     * @return pixels, 0 to 4096
     */
    @Px
    public int getRadius() {
        return radius;
    }

    /**
     * How much larger than the line it is on each side.
     *
     * @return pixels, 0 to 4096
     */
    @Px
    public int getPadding() {
        return padding;
    }

    /**
     * What has a box.
     *
     * @return each line or all together
     */
    @NonNull
    public Span getSpan() {
        return span;
    }

    boolean isPlain() {
        return radius == 0 && padding == 0 && span == Span.LINE;
    }

    @Override
    public boolean equals(Object other) {
        return other instanceof TextBackground
                && color == ((TextBackground) other).color
                && radius == ((TextBackground) other).radius
                && padding == ((TextBackground) other).padding
                && span == ((TextBackground) other).span;
    }

    @Override
    public int hashCode() {
        return 31 * (31 * (31 * color + radius) + padding) + span.hashCode();
    }

    @Override
    @NonNull
    public String toString() {
        return StyleWriter.color(color) + ", radius " + radius + ", padding " + padding + ", "
                + span.styleName();
    }
}
