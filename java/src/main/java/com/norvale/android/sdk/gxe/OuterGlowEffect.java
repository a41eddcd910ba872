package com.norvale.android.sdk.gxe;

import android.util.JsonWriter;
import com.norvale.android.sdk.gxe.annotation.NonNull;
import java.io.IOException;

/** A glow around the letters. */
public final class OuterGlowEffect extends ColoredEffect {
    private OuterGlowEffect(Builder builder) {
        super("outerGlow", builder);
    }

    @Override
    int addTo(GxText text) {
        return text.addOuterGlow(whole(getSize()), getColor(), fadedOpacity());
    }

    @Override
    int rank() {
        return 1;
    }

    @Override
    Object[] settings() {
        return new Object[] {getSize(), getColor()};
    }

    @Override
    void writeSettings(JsonWriter writer) throws IOException {
        writeSizeAndColor(writer);
    }

    /** Starts from a white glow of 5 pixels with opacity 0.75. */
    public static final class Builder extends ColoredEffect.Builder<Builder> {
        /** A glow with the settings that a style file leaves out. */
        public Builder() {
            super(5, 0xFFFFFFFF, 0.75f);
        }

        @Override
        Builder self() {
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
