package android.text;

public interface Spanned extends CharSequence {
    int SPAN_INCLUSIVE_INCLUSIVE = 0x12;
}
