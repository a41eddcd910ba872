#include "minikin/Locale.h"

#include <algorithm>
#include <deque>
#include <map>
#include <mutex>
#include <new>

#include "NeverDestroyed.h"
#include "minikin/LikelyScript.h"
#include "minikin/LocaleList.h"

namespace minikin {
namespace {

bool isAlpha(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
bool isDigit(char c) {
    return c >= '0' && c <= '9';
}
char toLower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}
char toUpper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

std::string lowercase(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), toLower);
    return result;
}

bool allAlpha(std::string_view text) {
    return std::all_of(text.begin(), text.end(), isAlpha);
}
bool allAlphaNumeric(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return isAlpha(c) || isDigit(c); });
}

// Subtags of a tag; BCP 47 separates them by hyphens, POSIX by underscores.
std::vector<std::string> split(std::string_view tag) {
    std::vector<std::string> subtags;
    for (size_t begin = 0;;) {
        const size_t end = std::min(tag.find_first_of("-_", begin), tag.size());
        subtags.push_back(lowercase(tag.substr(begin, end - begin)));
        if (end == tag.size()) return subtags;
        begin = end + 1;
    }
}

bool isWellFormedSubtag(const std::string& subtag) {
    return !subtag.empty() && subtag.size() <= 8 && allAlphaNumeric(subtag);
}
bool isLanguage(const std::string& s) {
    return (s.size() == 2 || s.size() == 3) && allAlpha(s);
}
bool isExtendedLanguage(const std::string& s) {
    return s.size() == 3 && allAlpha(s);
}
bool isScript(const std::string& s) {
    return s.size() == 4 && allAlpha(s);
}
bool isRegion(const std::string& s) {
    return (s.size() == 2 && allAlpha(s)) ||
           (s.size() == 3 && std::all_of(s.begin(), s.end(), isDigit));
}
bool isVariant(const std::string& s) {
    return (s.size() >= 5 && s.size() <= 8) || (s.size() == 4 && isDigit(s[0]));
}

// Up to four letters in one number, the first one most significant, blanks at the end.
uint32_t pack(std::string_view letters) {
    uint32_t packed = 0;
    for (size_t i = 0; i < 4; i++) {
        packed = packed << 8 | static_cast<uint8_t>(i < letters.size() ? letters[i] : ' ');
    }
    return packed;
}
std::string unpack(uint32_t packed) {
    std::string letters;
    for (int shift = 24; shift >= 0; shift -= 8) {
        const auto letter = static_cast<char>(packed >> shift & 0xFF);
        if (letter != ' ') letters += letter;
    }
    return letters;
}

uint32_t packScript(std::string script) {
    script[0] = toUpper(script[0]);
    return pack(script);
}
uint32_t packRegion(std::string region) {
    std::transform(region.begin(), region.end(), region.begin(), toUpper);
    return pack(region);
}

// Value of the key "em" in a Unicode extension: the emoji presentation asked for.
EmojiStyle emojiStyleOfExtension(const std::vector<std::string>& subtags, size_t begin) {
    bool inUnicodeExtension = false;
    for (size_t i = begin; i < subtags.size() && subtags[i] != "x"; i++) {
        if (subtags[i].size() == 1) inUnicodeExtension = subtags[i] == "u";
        if (!inUnicodeExtension || subtags[i] != "em" || i + 1 == subtags.size()) continue;
        if (subtags[i + 1] == "emoji") return EmojiStyle::EMOJI;
        if (subtags[i + 1] == "text") return EmojiStyle::TEXT;
        if (subtags[i + 1] == "default") return EmojiStyle::DEFAULT;
    }
    return EmojiStyle::EMPTY;
}

EmojiStyle emojiStyleOfScript(uint32_t script) {
    if (script == HB_TAG('Z', 's', 'y', 'e')) return EmojiStyle::EMOJI;
    if (script == HB_TAG('Z', 's', 'y', 'm')) return EmojiStyle::TEXT;
    return EmojiStyle::EMPTY;
}

// East Asian writing systems mix scripts; one bit each.
enum ScriptPart : uint8_t {
    kBopomofo = 1u << 0,
    kHan = 1u << 1,
    kHangul = 1u << 2,
    kHiragana = 1u << 3,
    kKatakana = 1u << 4,
    kSimplified = 1u << 5,
    kTraditional = 1u << 6,
};

uint8_t scriptParts(uint32_t script) {
    switch (script) {
        case HB_TAG('B', 'o', 'p', 'o'):
            return kBopomofo;
        case HB_TAG('H', 'a', 'n', 'b'):
            return kHan | kBopomofo;
        case HB_TAG('H', 'a', 'n', 'g'):
            return kHangul;
        case HB_TAG('H', 'a', 'n', 'i'):
            return kHan;
        case HB_TAG('H', 'a', 'n', 's'):
            return kHan | kSimplified;
        case HB_TAG('H', 'a', 'n', 't'):
            return kHan | kTraditional;
        case HB_TAG('H', 'i', 'r', 'a'):
            return kHiragana;
        case HB_TAG('H', 'r', 'k', 't'):
            return kHiragana | kKatakana;
        case HB_TAG('J', 'p', 'a', 'n'):
            return kHan | kHiragana | kKatakana;
        case HB_TAG('K', 'a', 'n', 'a'):
            return kKatakana;
        case HB_TAG('K', 'o', 'r', 'e'):
            return kHan | kHangul;
        default:
            return 0;
    }
}

bool provides(uint8_t provided, uint8_t requested) {
    return requested != 0 && (provided & requested) == requested;
}

struct LocaleTable {
    std::mutex mutex;
    std::map<std::string, uint32_t, std::less<>> ids;
    std::deque<LocaleList> lists{LocaleList("")};  // grows at the end only: references stay good
};

LocaleTable& localeTable() {
    return portable::neverDestroyed<LocaleTable>();
}

}  // namespace

Locale::Locale(std::string_view tag) {
    if (!parse(tag)) mLanguage = 0;
}

bool Locale::parse(std::string_view tag) {
    const std::vector<std::string> subtags = split(tag);
    const size_t count = subtags.size();
    if (!std::all_of(subtags.begin(), subtags.end(), isWellFormedSubtag)) return false;
    if (!isLanguage(subtags[0])) return false;
    const std::string language(currentLanguage(subtags[0]));
    mLanguage = pack(language);

    size_t next = 1;
    while (next < count && next <= 3 && isExtendedLanguage(subtags[next])) next++;
    if (next < count && isScript(subtags[next])) mScript = packScript(subtags[next++]);
    if (next < count && isRegion(subtags[next])) mRegion = packRegion(subtags[next++]);
    while (next < count && isVariant(subtags[next])) mVariants.append("-").append(subtags[next++]);
    // What is left has to begin an extension or the private part.
    if (next < count && subtags[next].size() != 1) return false;

    if (mScript == 0 && language != "und") {
        mScript = pack(likelyScript(language, mRegion ? unpack(mRegion) : std::string()));
    }
    mScriptParts = scriptParts(mScript);
    mEmojiStyle = emojiStyleOfExtension(subtags, next);
    if (mEmojiStyle == EmojiStyle::EMPTY) mEmojiStyle = emojiStyleOfScript(mScript);
    return true;
}

bool Locale::operator==(const Locale& other) const {
    return mLanguage == other.mLanguage && mScript == other.mScript && mRegion == other.mRegion &&
           mVariants == other.mVariants && mEmojiStyle == other.mEmojiStyle;
}

std::string Locale::toString() const {
    std::string tag = unpack(mLanguage);
    for (const uint32_t part : {mScript, mRegion}) {
        if (part) tag.append("-").append(unpack(part));
    }
    return tag + mVariants;
}

bool Locale::supportsScript(hb_script_t script) const {
    return mScript == static_cast<uint32_t>(script) ||
           provides(mScriptParts, scriptParts(static_cast<uint32_t>(script)));
}

uint32_t Locale::scoreFor(const std::vector<Locale>& supported) const {
    bool emojiMatch = false;
    bool scriptMatch = false;
    bool languageAndScriptMatch = false;
    bool sameLanguageThroughout = !supported.empty();
    uint8_t allParts = 0;
    for (const Locale& locale : supported) {
        const bool languageMatch = mLanguage == locale.mLanguage;
        if (mEmojiStyle != EmojiStyle::EMPTY && mEmojiStyle == locale.mEmojiStyle) {
            if (languageMatch) return 4;
            emojiMatch = true;
        }
        if (mScript == locale.mScript || provides(locale.mScriptParts, mScriptParts)) {
            scriptMatch = true;
            languageAndScriptMatch = languageAndScriptMatch || languageMatch;
        }
        allParts |= locale.mScriptParts;
        sameLanguageThroughout = sameLanguageThroughout && languageMatch;
    }
    // "zh-Hant,zh-Bopo" serves Hanb although neither entry does by itself.
    if (provides(allParts, mScriptParts)) {
        scriptMatch = true;
        languageAndScriptMatch = languageAndScriptMatch || sameLanguageThroughout;
    }
    if (languageAndScriptMatch) return 3;
    if (emojiMatch) return 2;
    return scriptMatch ? 1 : 0;
}

LocaleList::LocaleList(std::string_view tags) {
    for (size_t begin = 0; begin < tags.size() && mLocales.size() < kLocaleLimit;) {
        const size_t end = std::min(tags.find(',', begin), tags.size());
        Locale locale(tags.substr(begin, end - begin));
        begin = end + 1;
        if (!locale.isValid()) continue;
        if (std::find(mLocales.begin(), mLocales.end(), locale) != mLocales.end()) continue;
        const hb_language_t language = hb_language_from_string(locale.toString().c_str(), -1);
        if (language == HB_LANGUAGE_INVALID) throw std::bad_alloc();
        mLanguages.push_back(language);
        mLocales.push_back(std::move(locale));
    }
}

EmojiStyle LocaleList::emojiStyle() const {
    for (const Locale& locale : mLocales) {
        if (locale.emojiStyle() != EmojiStyle::EMPTY) return locale.emojiStyle();
    }
    return EmojiStyle::EMPTY;
}

hb_language_t LocaleList::languageFor(hb_script_t script) const {
    for (size_t i = 0; i < mLocales.size(); i++) {
        if (mLocales[i].supportsScript(script)) return mLanguages[i];
    }
    return mLanguages.empty() ? HB_LANGUAGE_INVALID : mLanguages.front();
}

const LocaleList& localeListById(uint32_t id) {
    LocaleTable& table = localeTable();
    const std::lock_guard lock(table.mutex);
    return table.lists[id < table.lists.size() ? id : 0];
}

uint32_t registerLocaleList(const std::string& locales) {
    if (locales.empty()) return 0;
    LocaleTable& table = localeTable();
    const std::lock_guard lock(table.mutex);
    const auto known = table.ids.find(locales);
    if (known != table.ids.end()) return known->second;

    LocaleList list(locales);
    if (list.empty()) return 0;
    const auto id = static_cast<uint32_t>(table.lists.size());
    table.lists.push_back(std::move(list));
    table.ids.emplace(locales, id);
    return id;
}

}  // namespace minikin
