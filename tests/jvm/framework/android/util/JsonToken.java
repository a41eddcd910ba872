package android.util;

public enum JsonToken { BEGIN_ARRAY, BEGIN_OBJECT, STRING, NUMBER, BOOLEAN, END_DOCUMENT }
