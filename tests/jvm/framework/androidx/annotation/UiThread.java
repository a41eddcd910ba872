package androidx.annotation;

public @interface UiThread {}
