package com.norvale.android.sdk.gxe;

import java.util.regex.Pattern;

/** The grammars of a style's strings. */
final class TextSettings {
    private static final Pattern FEATURE = Pattern.compile("\\s*[+-]?\\s*"
            + "(\\w{1,4}|'\\w{4}'|\"\\w{4}\")"
            + "\\s*(=?\\s*([0-9]{1,9}|(?i:on|off))\\s*)?");

    private static final Pattern LANGUAGE_TAG = Pattern.compile("[A-Za-z]{2,3}(-[A-Za-z]{3}){0,3}"
            + "(-[A-Za-z]{4})?(-([A-Za-z]{2}|[0-9]{3}))?"
            + "(-([A-Za-z0-9]{5,8}|[0-9][A-Za-z0-9]{3}))*"
            + "(-[A-WYZa-wyz0-9](-[A-Za-z0-9]{2,8})+)*(-[Xx](-[A-Za-z0-9]{1,8})+)?");

    private static final Pattern AXIS = Pattern.compile("\\s*(\\w{4}|'\\w{4}'|\"\\w{4}\")\\s*=?\\s*"
            + "[+-]?([0-9]+\\.?[0-9]*|\\.[0-9]+)([eE][+-]?[0-9]+)?\\s*");

    private TextSettings() {}

    /** What is wrong with the string of a style's field, or null. */
    static String check(String field, String value) {
        if (value.indexOf('\0') >= 0) {
            return "the string contains U+0000";
        }
        switch (field) {
            case "fontFeatures":
                return checkFontFeatures(value);
            case "fontVariations":
                return check(value, AXIS, "an axis setting ('wght' 650, wdth=80)");
            case "locale":
                return checkLocale(value);
            case "pattern":
                return value.isEmpty() ? "the path of the pattern image is empty" : null;
            default:
                return null;
        }
    }

    /** What is wrong with a comma-separated list of OpenType features, or null. */
    static String checkFontFeatures(String features) {
        return check(features, FEATURE, "an OpenType feature ('smcp' on, kern=0, -liga)");
    }

    /** What is wrong with a comma-separated list of BCP 47 tags, or null. */
    static String checkLocale(String tags) {
        return check(tags, LANGUAGE_TAG, "a BCP 47 tag (sr-Cyrl, zh-Hant-TW)");
    }

    private static String check(String list, Pattern pattern, String wanted) {
        if (list.isEmpty()) {
            return null;
        }
        for (String part : list.split(",", -1)) {
            if (!pattern.matcher(part).matches()) {
                return "\"" + part + "\" is not " + wanted;
            }
        }
        return null;
    }
}
