package androidx.annotation;

public @interface ColorInt {}
