// Every method of Android's classes that the library looks up, by name and signature. The tests
// read this file: what stands here must exist in the platform.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

#include "bridge/JavaMethods.h"

namespace GxFontEffect {

// A class and the methods that are looked up on its objects.
template <size_t count>
struct JavaClass {
    const char* name;
    JavaMethod methods[count];

    // A method's place in the table; one that is not there does not compile.
    consteval size_t operator[](std::string_view method) const {
        size_t place = 0;
        while (methods[place].name != method) place++;
        return place;
    }
    // A table of this method alone.
    consteval std::span<const JavaMethod> Only(std::string_view method) const {
        return std::span(methods).subspan((*this)[method], 1);
    }
};

template <size_t count>
constexpr JavaClass<count> MakeJavaClass(const char* name, const JavaMethod (&methods)[count]) {
    JavaClass<count> made{name, {}};
    for (size_t i = 0; i < count; i++) made.methods[i] = methods[i];
    return made;
}

// clang-format off
inline constexpr auto kPaintClass = MakeJavaClass("android/graphics/Paint", {
    {"getTextScaleX", "()F"},
    {"getTextSkewX", "()F"},
    {"getLetterSpacing", "()F"},
    {"isElegantTextHeight", "()Z"},
    {"getFlags", "()I"},
    {"getFontFeatureSettings", "()Ljava/lang/String;"},
    {"getTextLocales", "()Landroid/os/LocaleList;"},
    {"getTextAlign", "()Landroid/graphics/Paint$Align;"},
    {"getColor", "()I"},
    {"getTextSize", "()F"},
    {"isFakeBoldText", "()Z"},
});
inline constexpr auto kTextViewClass = MakeJavaClass("android/widget/TextView", {
    {"getTextSize", "()F"},
    {"getCurrentTextColor", "()I"},
    {"getTypeface", "()Landroid/graphics/Typeface;"},
    {"getTextDirection", "()I"},
    {"getLayoutDirection", "()I"},
    {"getWidth", "()I"},
    {"getHeight", "()I"},
    {"getPaddingLeft", "()I"},
    {"getPaddingRight", "()I"},
    {"getPaddingTop", "()I"},
    {"getPaddingBottom", "()I"},
    {"getGravity", "()I"},
    {"getMaxLines", "()I"},
});
inline constexpr auto kLayoutClass = MakeJavaClass("android/text/Layout", {
    {"getWidth", "()I"},
    {"getHeight", "()I"},
    {"getTopPadding", "()I"},
    {"getBottomPadding", "()I"},
    {"getLineCount", "()I"},
    {"getParagraphDirection", "(I)I"},
    {"getParagraphLeft", "(I)I"},
    {"getParagraphRight", "(I)I"},
    {"getLineBaseline", "(I)I"},
    {"getLineTop", "(I)I"},
    {"getLineBottom", "(I)I"},
    {"getLineAscent", "(I)I"},
    {"getLineDescent", "(I)I"},
    {"getLineStart", "(I)I"},
    {"getLineEnd", "(I)I"},
    {"getLineVisibleEnd", "(I)I"},
    {"getLineLeft", "(I)F"},
    {"getLineRight", "(I)F"},
    {"getLineMax", "(I)F"},
    {"getLineWidth", "(I)F"},
    {"getText", "()Ljava/lang/CharSequence;"},
});
inline constexpr auto kFontConfigClass = MakeJavaClass("android/text/FontConfig", {
    {"getFamilies", "()[Landroid/text/FontConfig$Family;"},
});
inline constexpr auto kFamilyClass = MakeJavaClass("android/text/FontConfig$Family", {
    {"getName", "()Ljava/lang/String;"},
    {"getFonts", "()[Landroid/text/FontConfig$Font;"},
    {"getLanguages", "()Ljava/lang/String;"},
    {"getVariant", "()I"},
});
inline constexpr auto kFontClass = MakeJavaClass("android/text/FontConfig$Font", {
    {"getFontName", "()Ljava/lang/String;"},
    {"getTtcIndex", "()I"},
    {"getWeight", "()I"},
    {"isItalic", "()Z"},
    {"getFallbackFor", "()Ljava/lang/String;"},
});
inline constexpr auto kLocaleListClass = MakeJavaClass("android/os/LocaleList", {
    {"toLanguageTags", "()Ljava/lang/String;"},
});
inline constexpr auto kTypefaceClass = MakeJavaClass("android/graphics/Typeface", {
    {"isBold", "()Z"},
    {"isItalic", "()Z"},
});
inline constexpr auto kSpannableStringClass = MakeJavaClass("android/text/SpannableString", {
    {"<init>", "(Ljava/lang/CharSequence;)V"},
    {"getSpans", "(IILjava/lang/Class;)[Ljava/lang/Object;"},
});
inline constexpr auto kBackgroundColorSpanClass = MakeJavaClass("android/text/style/BackgroundColorSpan", {
    {"getBackgroundColor", "()I"},
});
inline constexpr auto kEnumClass = MakeJavaClass("java/lang/Enum", {
    {"name", "()Ljava/lang/String;"},
});
inline constexpr auto kObjectClass = MakeJavaClass("java/lang/Object", {
    {"toString", "()Ljava/lang/String;"},
});
// clang-format on

}  // namespace GxFontEffect
