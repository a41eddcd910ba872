// Parsed locale lists and how well two of them fit together when fonts are chosen.
#pragma once

#include <hb.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace minikin {

// Longest list that font choice looks at; the rest of a list is dropped.
constexpr size_t kLocaleLimit = 12;

// Whether emoji are wanted, or drawn, as pictures or as text.
enum class EmojiStyle : uint8_t {
    EMPTY,    // not said
    DEFAULT,  // said to be left to the code point
    EMOJI,
    TEXT,
};

// One language with its script, a script alone ("und-Arab") or an emoji style ("und-Zsye").
class Locale {
public:
    // An invalid locale unless the tag is well-formed BCP 47.
    explicit Locale(std::string_view tag);

    bool isValid() const { return mLanguage != 0; }
    bool operator==(const Locale& other) const;

    // Canonical tag with the script that the language implies, e.g. "zh-Hans-CN".
    std::string toString() const;
    EmojiStyle emojiStyle() const { return mEmojiStyle; }

    // "Jpan" supports Han, Hiragana and Katakana, and so on.
    bool supportsScript(hb_script_t script) const;

    // How well fonts made for `supported` suit this requested locale: 4 language and emoji style,
    // 3 language and script, 2 emoji style, 1 script, 0 not at all.
    uint32_t scoreFor(const std::vector<Locale>& supported) const;

private:
    bool parse(std::string_view tag);

    uint32_t mLanguage = 0;  // up to four letters, first one most significant; 0 is invalid
    uint32_t mScript = 0;    // four letters likewise; 0 unknown
    uint32_t mRegion = 0;
    uint8_t mScriptParts = 0;  // which East Asian scripts mScript is made of
    EmojiStyle mEmojiStyle = EmojiStyle::EMPTY;
    std::string mVariants;  // with a leading hyphen each
};

class LocaleList {
public:
    // Drops tags that are not well-formed, repetitions and what exceeds kLocaleLimit.
    explicit LocaleList(std::string_view tags);

    bool empty() const { return mLocales.empty(); }
    const std::vector<Locale>& locales() const { return mLocales; }
    // Of the first locale that says one.
    EmojiStyle emojiStyle() const;
    // Language of the first locale that supports the script, else of the first one;
    // HB_LANGUAGE_INVALID for the empty list.
    hb_language_t languageFor(hb_script_t script) const;

private:
    std::vector<Locale> mLocales;
    std::vector<hb_language_t> mLanguages;
};

// The list of an id of registerLocaleList; the empty list for an unknown id. The reference stays
// good.
const LocaleList& localeListById(uint32_t id);

}  // namespace minikin
