package androidx.annotation;

public @interface Px {}
