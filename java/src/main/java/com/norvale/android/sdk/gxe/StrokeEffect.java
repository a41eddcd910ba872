package com.norvale.android.sdk.gxe;

import android.util.JsonWriter;
import com.norvale.android.sdk.gxe.annotation.NonNull;
import java.io.IOException;
import java.util.Objects;

/** An outline along the edges of the letters. */
public final class StrokeEffect extends ColoredEffect {
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

    /** The native library takes a number that no effect reads. */
    private static final int NO_CAP = 0;

    private final Position position;

    private StrokeEffect(Builder builder) {
        super("stroke", builder);
        position = builder.position;
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
        return text.addStroke(
                whole(getSize()), getColor(), fadedOpacity(), NO_CAP, position.nativeValue);
    }

    @Override
    int rank() {
        return position == Position.OUTSIDE ? 2 : 8;
    }

    @Override
    Object[] settings() {
        return new Object[] {getSize(), getColor(), position};
    }

    @Override
    void writeSettings(JsonWriter writer) throws IOException {
        writeSizeAndColor(writer);
        writer.name("position").value(position.styleName);
    }

    /** Starts from a black outline of 2 pixels around the letters. */
    public static final class Builder extends ColoredEffect.Builder<Builder> {
        private Position position = Position.OUTSIDE;

        /** An outline with the settings that a style file leaves out. */
        public Builder() {
            super(2, 0xFF000000, 1);
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

        @Override
        Builder self() {
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
