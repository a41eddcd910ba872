package com.norvale.android.sdk.gxe;

import androidx.annotation.FloatRange;
import androidx.annotation.NonNull;
import java.util.ArrayList;
import java.util.Collections;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.Objects;

/**
 * One effect of a text: {@link StrokeEffect}, {@link ShadowEffect}, {@link OuterGlowEffect}, {@link
 * InnerGlowEffect}, {@link LinearGradientEffect}, {@link RadialGradientEffect}, {@link
 * PatternEffect}, {@link BevelEffect} or {@link EmbossEffect}. Immutable; equal when type and
 * settings are.
 */
public abstract class TextEffect {
    /** The most colour stops of a gradient or glow. */
    public static final int MAX_STOPS = 256;

    final EffectType type;
    private final Map<String, Object> values;

    TextEffect(Builder<?> builder) {
        type = builder.type;
        values = Collections.unmodifiableMap(new LinkedHashMap<>(builder.values));
    }

    /**
     * The effect's name in style files.
     *
     * @return "stroke", "outerShadow", "innerShadow", "outerGlow", "innerGlow", "linearGradient",
     *     "radialGradient", "pattern", "bevel" or "emboss"
     */
    @NonNull
    public final String getType() {
        return type.styleName;
    }

    /**
     * Whether it is drawn.
     *
     * @return true unless it was switched off
     */
    public final boolean isEnabled() {
        return (Boolean) get("enabled");
    }

    /**
     * How strongly the effect covers what lies under it.
     *
     * @return 0 (invisible) to 1 (full)
     */
    @FloatRange(from = 0, to = 1)
    public final float getOpacity() {
        return number("opacity");
    }

    /**
     * Starts an effect from this one.
     *
     * @return a builder with all settings of this effect
     */
    @NonNull
    public abstract Builder<?> toBuilder();

    final <B extends Builder<B>> B copyTo(B builder) {
        builder.values.putAll(values);
        return builder;
    }

    /** The value of a field; null when it has none. */
    final Object get(String name) {
        return values.get(name);
    }

    final float number(String name) {
        return (Float) get(name);
    }

    final int color(String name) {
        return (Integer) get(name);
    }

    @SuppressWarnings("unchecked") // what the builder put there
    final List<ColorStop> stops() {
        Object stops = get("stops");
        return stops == null ? Collections.emptyList() : (List<ColorStop>) stops;
    }

    /**
     * The effect with its lengths multiplied.
     *
     * @throws IllegalArgumentException when one is longer than what can be drawn
     */
    final TextEffect scaled(float factor) {
        Builder<?> builder = toBuilder();
        for (Property property : type.properties.values()) {
            Object value = get(property.name);
            if (value != null) {
                builder.values.put(property.name, property.scaled(value, factor));
            }
        }
        return builder.build();
    }

    @Override
    public final boolean equals(Object other) {
        return other instanceof TextEffect
                && type == ((TextEffect) other).type
                && values.equals(((TextEffect) other).values);
    }

    @Override
    public final int hashCode() {
        return 31 * type.styleName.hashCode() + values.hashCode();
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

    /**
     * Collects the settings of an effect. A new one has those that a style file leaves out.
     *
     * @param <B> the builder of the effect itself
     */
    public abstract static class Builder<B extends Builder<B>> {
        final EffectType type;
        final Map<String, Object> values = new LinkedHashMap<>();

        Builder(EffectType type) {
            this.type = type;
            for (Property property : type.properties.values()) {
                if (property.initial != null) {
                    values.put(property.name, property.initial);
                }
            }
        }

        @SuppressWarnings("unchecked") // B is the class itself
        private B self() {
            return (B) this;
        }

        /** Sets a field of the type; null takes the value away. */
        final B set(String name, Object value) {
            Property property = type.properties.get(name);
            if (property == null) {
                throw new IllegalArgumentException(
                        name + ": " + type.styleName + " has no such setting");
            }
            if (value == null) {
                values.remove(name);
            } else {
                values.put(name, property.check(value));
            }
            return self();
        }

        final B setRequired(String name, Object value) {
            return set(name, Objects.requireNonNull(value, name));
        }

        /** Sets the list of a field to what it holds and one more. */
        final B addTo(String name, Object element) {
            List<Object> longer = new ArrayList<>();
            if (values.get(name) != null) {
                longer.addAll((List<?>) values.get(name));
            }
            longer.add(Objects.requireNonNull(element, "stop"));
            return set(name, longer);
        }

        /**
         * Switches the effect on or off.
         *
         * @param enabled whether it is drawn; true at first
         * @return this builder
         */
        @NonNull
        public final B setEnabled(boolean enabled) {
            return set("enabled", enabled);
        }

        /**
         * Sets the opacity.
         *
         * @param opacity 0 to 1
         * @return this builder
         * @throws IllegalArgumentException when out of range
         */
        @NonNull
        public final B setOpacity(@FloatRange(from = 0, to = 1) float opacity) {
            return set("opacity", opacity);
        }

        /**
         * Makes the effect.
         *
         * @return an effect with the settings so far
         */
        @NonNull
        public abstract TextEffect build();
    }
}
