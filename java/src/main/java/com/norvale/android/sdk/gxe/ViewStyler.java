package com.norvale.android.sdk.gxe;

import android.graphics.Typeface;
import android.os.Build;
import android.os.LocaleList;
import android.text.SpannableString;
import android.text.Spanned;
import android.text.style.BackgroundColorSpan;
import android.util.TypedValue;
import android.view.Gravity;
import android.widget.TextView;
import java.util.Arrays;
import java.util.List;

/** Puts what a style sets on a text view. */
final class ViewStyler {
    /** The box of a style, to be told apart from the app's own spans. */
    private static final class StyleBackground extends BackgroundColorSpan {
        StyleBackground(int color) {
            super(color);
        }
    }

    private ViewStyler() {}

    static void apply(TextStyle style, TextView view) {
        applyTypeface(style, view);
        applyPaint(style, view);
        applyText(style, view);
        applyBox(style, view);
    }

    /** Gives lengths that still are those of the style before what they are in the style after. */
    static void rescale(TextStyle before, TextStyle after, TextView view) {
        if (before.getSize() != null && view.getTextSize() == before.getSize()) {
            view.setTextSize(TypedValue.COMPLEX_UNIT_PX, after.getSize());
        }
        if (before.getWidth() != null && view.getMaxWidth() == before.getWidth()) {
            view.setWidth(after.getWidth());
        }
        if (before.getPadding() != null && before.getPadding().equals(Arrays.asList(
                view.getPaddingLeft(), view.getPaddingTop(), view.getPaddingRight(),
                view.getPaddingBottom()))) {
            setPadding(view, after.getPadding());
        }
    }

    private static void setPadding(TextView view, List<Integer> sides) {
        view.setPadding(sides.get(0), sides.get(1), sides.get(2), sides.get(3));
    }

    private static void applyTypeface(TextStyle style, TextView view) {
        Boolean bold = style.getBold();
        Boolean italic = style.getItalic();
        if (style.getFont() == null && bold == null && italic == null) {
            return;
        }
        FontSource source = FontSource.of(style, view.getContext());
        Typeface typeface = source == null ? view.getTypeface() : source.toTypeface();
        int before = view.getTypeface() == null ? Typeface.NORMAL : view.getTypeface().getStyle();
        boolean isBold = bold == null ? (before & Typeface.BOLD) != 0 : bold;
        boolean isItalic = italic == null ? (before & Typeface.ITALIC) != 0 : italic;
        view.setTypeface(typeface,
                (isBold ? Typeface.BOLD : 0) | (isItalic ? Typeface.ITALIC : 0));
    }

    private static void applyPaint(TextStyle style, TextView view) {
        if (style.getSkewX() != null) {
            // After the typeface, which sets the slant of a fake italic.
            view.getPaint().setTextSkewX(style.getSkewX());
            view.invalidate();
        }
        if (style.getSize() != null) {
            view.setTextSize(TypedValue.COMPLEX_UNIT_PX, style.getSize());
        }
        if (style.getLetterSpacing() != null) {
            view.setLetterSpacing(style.getLetterSpacing());
        }
        if (style.getScaleX() != null) {
            view.setTextScaleX(style.getScaleX());
        }
        if (style.getFontFeatures() != null) {
            view.setFontFeatureSettings(style.getFontFeatures());
        }
        if (style.getFontVariations() != null && Build.VERSION.SDK_INT >= 26) {
            view.setFontVariationSettings(style.getFontVariations());
        }
        if (style.getLocale() != null) {
            view.setTextLocales(LocaleList.forLanguageTags(style.getLocale()));
        }
        if (style.getColor() != null) {
            view.setTextColor(style.getColor());
        }
    }

    private static void applyText(TextStyle style, TextView view) {
        if (style.getText() == null && style.getBackground() == null) {
            return;
        }
        CharSequence text = style.getText() == null ? view.getText() : style.getText();
        if (style.getBackground() != null) {
            SpannableString spannable = new SpannableString(text);
            for (StyleBackground old :
                    spannable.getSpans(0, spannable.length(), StyleBackground.class)) {
                spannable.removeSpan(old);
            }
            spannable.setSpan(new StyleBackground(style.getBackground()), 0, spannable.length(),
                    Spanned.SPAN_INCLUSIVE_INCLUSIVE);
            text = spannable;
        }
        view.setText(text);
    }

    private static void applyBox(TextStyle style, TextView view) {
        if (style.getWidth() != null) {
            view.setWidth(style.getWidth());
        }
        if (style.getPadding() != null) {
            setPadding(view, style.getPadding());
        }
        if (style.getAlign() != null) {
            int vertical = view.getGravity() & ~Gravity.RELATIVE_HORIZONTAL_GRAVITY_MASK;
            view.setGravity(vertical | horizontalGravity(style.getAlign()));
        }
        if (style.getLineSpacing() != null) {
            view.setLineSpacing(view.getLineSpacingExtra(), style.getLineSpacing());
        }
    }

    private static int horizontalGravity(TextStyle.Align align) {
        switch (align) {
            case LEFT:
                return Gravity.LEFT;
            case CENTER:
                return Gravity.CENTER_HORIZONTAL;
            case RIGHT:
                return Gravity.RIGHT;
            default:
                return Gravity.START;
        }
    }
}
