package androidx.annotation;

public @interface AnyThread {}
