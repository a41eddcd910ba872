package com.norvale.android.sdk.gxe;

/** What casts an outer shadow or an outer glow. */
public enum CastFrom implements Property.Named {
    /** The bare letters. */
    LETTERS("letters"),
    /** The letters and all outside and centred strokes. */
    OUTLINE("outline");

    private final String styleName;

    CastFrom(String styleName) {
        this.styleName = styleName;
    }

    @Override
    public String styleName() {
        return styleName;
    }
}
