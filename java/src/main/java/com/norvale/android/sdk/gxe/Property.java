package com.norvale.android.sdk.gxe;

import java.util.ArrayList;
import java.util.Arrays;
import java.util.Collections;
import java.util.List;

/** A field of style files: its name, what it takes, and what it is when a file leaves it out. */
final class Property {
    /** A value that style files have a name for. */
    interface Named {
        String styleName();
    }

    /** What a value is. */
    enum Kind {
        /** String. */
        STRING,
        /** Float. */
        NUMBER,
        /** Integer. */
        INTEGER,
        /** Boolean. */
        BOOLEAN,
        /** Integer, 0xAARRGGBB. */
        COLOR,
        /** A Named. */
        CHOICE,
        /** List of four Integers. */
        PADDING,
        /** List of ColorStop. */
        STOPS,
        /** Integer, 0xAARRGGBB, or the TextEffect that paints. */
        FILL,
        /** TextBackground. */
        BACKGROUND
    }

    final String name;
    final Kind kind;
    final Range range;
    /** Of a length, scaled; 0 for what is no length. */
    final double longest;
    final Named[] choices;
    /** Null for nothing. */
    final Object initial;

    private Property(String name, Kind kind, Range range, double longest, Named[] choices,
            Object initial) {
        this.name = name;
        this.kind = kind;
        this.range = range;
        this.longest = longest;
        this.choices = choices;
        this.initial = initial;
    }

    static Property of(String name, Kind kind) {
        return new Property(name, kind, null, 0, null, null);
    }

    static Property flag(String name, boolean initial) {
        return new Property(name, Kind.BOOLEAN, null, 0, null, initial);
    }

    static Property color(String name, int initial) {
        return new Property(name, Kind.COLOR, null, 0, null, initial);
    }

    static Property number(String name, double min, double max, double initial) {
        return new Property(
                name, Kind.NUMBER, new Range(min, max), 0, null, (float) initial);
    }

    static Property integer(String name, int min, int max) {
        return new Property(name, Kind.INTEGER, new Range(min, max), 0, null, 0);
    }

    static Property length(String name, double min, double max, double longest, double initial) {
        return new Property(
                name, Kind.NUMBER, new Range(min, max), longest, null, (float) initial);
    }

    static Property wholeLength(String name, int min, int max) {
        return new Property(name, Kind.INTEGER, new Range(min, max), max, null, 0);
    }

    static Property padding(String name, int max) {
        return new Property(name, Kind.PADDING, new Range(0, max), max, null, null);
    }

    static Property choice(String name, Named[] choices, Named initial) {
        return new Property(name, Kind.CHOICE, null, 0, choices, initial);
    }

    /**
     * Returns the value, its lists as ones that cannot be changed.
     *
     * @throws IllegalArgumentException when a file could not hold it
     */
    Object check(Object value) {
        switch (kind) {
            case NUMBER:
            case INTEGER:
                range.check(name, ((Number) value).doubleValue());
                return value;
            case PADDING:
                for (Object side : (List<?>) value) {
                    range.check(name, (Integer) side);
                }
                return value;
            case STOPS:
                return checkStops((List<?>) value);
            case STRING:
                String problem = TextSettings.check(name, (String) value);
                if (problem != null) {
                    throw new IllegalArgumentException(name + ": " + problem);
                }
                return value;
            default:
                return value;
        }
    }

    private Object checkStops(List<?> stops) {
        if (stops.size() > TextEffect.MAX_STOPS) {
            throw new IllegalArgumentException(
                    name + ": " + stops.size() + " stops; at most " + TextEffect.MAX_STOPS);
        }
        float last = 0;
        for (Object stop : stops) {
            float position = ((ColorStop) stop).getPosition();
            if (position < last) {
                throw new IllegalArgumentException(
                        "position: " + position + " is before the last stop's");
            }
            last = position;
        }
        return Collections.unmodifiableList(new ArrayList<>(stops));
    }

    /**
     * The value with its lengths multiplied; whole ones are rounded to nearest.
     *
     * @throws IllegalArgumentException when it is longer than what can be drawn
     */
    Object scaled(Object value, float factor) {
        switch (kind) {
            case NUMBER:
                return longest == 0 ? value : (Object) (float) scaledLength((Float) value, factor);
            case INTEGER:
                return longest == 0 ? value : (Object) scaledWhole((Integer) value, factor);
            case PADDING:
                Integer[] sides = new Integer[4];
                for (int i = 0; i < sides.length; i++) {
                    sides[i] = scaledWhole((Integer) ((List<?>) value).get(i), factor);
                }
                return Collections.unmodifiableList(Arrays.asList(sides));
            case FILL:
                return value instanceof TextEffect ? ((TextEffect) value).scaled(factor) : value;
            case BACKGROUND:
                TextBackground box = (TextBackground) value;
                return new TextBackground(box.getColor(), scaledWhole(box.getRadius(), factor),
                        scaledWhole(box.getPadding(), factor), box.getSpan());
            default:
                return value;
        }
    }

    private int scaledWhole(int value, float factor) {
        return (int) Math.floor(scaledLength(value, factor) + 0.5);
    }

    private double scaledLength(double value, float factor) {
        double most = longest == 0 ? TextBackground.LONGEST : longest;
        double least = range == null ? 0 : range.min;
        double result = value * factor;
        // A float's worth of rounding is no reason to refuse an end of the range.
        double tolerance = 1e-6 * most;
        if (!(result >= least - tolerance && result <= most + tolerance)) {
            throw new IllegalArgumentException(name + ": " + (float) result + " (" + (float) value
                    + " scaled by " + factor + ") is out of range " + new Range(least, most));
        }
        return result;
    }
}
