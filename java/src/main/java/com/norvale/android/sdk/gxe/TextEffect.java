package com.norvale.android.sdk.gxe;

import android.util.JsonWriter;
import com.norvale.android.sdk.gxe.annotation.FloatRange;
import com.norvale.android.sdk.gxe.annotation.NonNull;
import java.io.IOException;
import java.util.Arrays;

/**
 * One effect of a text: {@link StrokeEffect}, {@link ShadowEffect}, {@link OuterGlowEffect} or
 * {@link LinearGradientEffect}. Immutable; equal when type and settings are.
 */
public abstract class TextEffect {
    private final String type;
    private final float opacity;

    TextEffect(String type, float opacity) {
        this.type = type;
        this.opacity = opacity;
    }

    /**
     * The effect's name in style files. A text has each type at most once.
     *
     * @return "stroke", "outerShadow", "innerShadow", "outerGlow" or "linearGradient"
     */
    @NonNull
    public final String getType() {
        return type;
    }

    /**
     * How strongly the effect covers what lies under it.
     *
     * @return 0 (invisible) to 1 (full)
     */
    @FloatRange(from = 0, to = 1)
    public final float getOpacity() {
        return opacity;
    }

    /**
     * The opacity with the alpha of a colour in it. The native library takes a colour without its
     * alpha; style files have both multiplied.
     */
    static float faded(float opacity, int color) {
        return opacity * ((color >>> 24) / 255f);
    }

    /** To the nearest whole number, halves upwards: the native library cuts fractions off. */
    static float whole(float value) {
        return (float) Math.floor(value + 0.5);
    }

    /**
     * Where the effect lies in natural order, beneath all that has a higher number. The same in all
     * readers of style files, which have more effects.
     */
    abstract int rank();

    /** Adds the effect to a native stack: its id, or -1. */
    abstract int addTo(GxText text);

    /** All settings but type and opacity, for comparison. */
    abstract Object[] settings();

    /** Writes the settings in the form of the style files; type and opacity are written already. */
    abstract void writeSettings(JsonWriter writer) throws IOException;

    @Override
    public final boolean equals(Object other) {
        return other instanceof TextEffect
                && type.equals(((TextEffect) other).type)
                && opacity == ((TextEffect) other).opacity
                && Arrays.deepEquals(settings(), ((TextEffect) other).settings());
    }

    @Override
    public final int hashCode() {
        return 31 * (31 * type.hashCode() + Float.hashCode(opacity))
                + Arrays.deepHashCode(settings());
    }

    /**
     * The effect as it stands in a style file.
     *
     * @return a JSON object on one line
     */
    @Override
    @NonNull
    public final String toString() {
        return StyleWriter.write(this);
    }
}
