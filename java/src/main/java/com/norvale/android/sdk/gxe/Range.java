package com.norvale.android.sdk.gxe;

import java.math.BigDecimal;

/** A closed interval of accepted values: those of the style files. */
final class Range {
    static final Range UNIT = new Range(0, 1);

    final double min;
    final double max;

    Range(double min, double max) {
        this.min = min;
        this.max = max;
    }

    /**
     * Returns the value.
     *
     * @param where the argument's name or the place in a style file, for the message
     * @throws IllegalArgumentException when the value is outside or not a number
     */
    float check(String where, double value) {
        if (!(value >= min && value <= max)) {
            throw new IllegalArgumentException(where + ": " + plain(value) + " is out of range " + this);
        }
        return (float) value;
    }

    float clamp(float value) {
        return (float) Math.max(min, Math.min(max, value));
    }

    /** "0-100", or "-360 to 360" when a sign would blur into the dash. */
    @Override
    public String toString() {
        return plain(min) + (min < 0 ? " to " : "-") + plain(max);
    }

    private static String plain(double value) {
        if (Double.isNaN(value) || Double.isInfinite(value)) {
            return Double.toString(value);
        }
        return BigDecimal.valueOf(value).stripTrailingZeros().toPlainString();
    }
}
