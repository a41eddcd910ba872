#include "style/TextSettings.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <vector>

#include "style/JsonTree.h"

namespace gxtext {

namespace {

// Axes are numbers of 16 bits before the point.
constexpr float kLargestAxisValue = 32767.0f;

// Of the C locale: <cctype> asks the process's.
bool isDigit(char c) {
    return c >= '0' && c <= '9';
}
bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
bool isSpace(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}
bool isWordCharacter(char c) {
    return isLetter(c) || isDigit(c);
}
bool all(std::string_view text, bool (*is)(char)) {
    return std::all_of(text.begin(), text.end(), is);
}
bool hasLength(std::string_view text, size_t shortest, size_t longest) {
    return text.size() >= shortest && text.size() <= longest;
}

std::vector<std::string_view> split(std::string_view text, char separator) {
    std::vector<std::string_view> parts;
    for (;;) {
        const size_t end = text.find(separator);
        parts.push_back(text.substr(0, end));
        if (end == std::string_view::npos) return parts;
        text.remove_prefix(end + 1);
    }
}

// One feature, taken apart from the front.
class FeatureParser {
public:
    explicit FeatureParser(std::string_view text) : rest_(text) {}

    bool parse() {
        skipSpaces();
        if (!take('+')) take('-');
        skipSpaces();
        if (!parseTag()) return false;
        skipSpaces();
        const bool wantsValue = take('=');
        skipSpaces();
        if (rest_.empty()) return !wantsValue;
        if (!parseValue()) return false;
        skipSpaces();
        return rest_.empty();
    }

private:
    void skipSpaces() {
        while (!rest_.empty() && isSpace(rest_.front())) rest_.remove_prefix(1);
    }
    bool take(char c) {
        if (rest_.empty() || rest_.front() != c) return false;
        rest_.remove_prefix(1);
        return true;
    }
    std::string_view takeWhile(bool (*is)(char)) {
        const auto end = std::find_if_not(rest_.begin(), rest_.end(), is);
        const auto length = static_cast<size_t>(end - rest_.begin());
        const std::string_view word = rest_.substr(0, length);
        rest_.remove_prefix(length);
        return word;
    }
    bool parseTag() {
        if (rest_.empty()) return false;
        const char quote = rest_.front();
        if (quote != '\'' && quote != '"') {
            return hasLength(takeWhile([](char c) { return isWordCharacter(c) || c == '_'; }), 1,
                             4);
        }
        rest_.remove_prefix(1);
        const std::string_view tag =
            takeWhile([](char c) { return isWordCharacter(c) || c == '_'; });
        return tag.size() == 4 && take(quote);
    }
    bool parseValue() {
        const std::string_view digits = takeWhile(isDigit);
        if (!digits.empty()) {
            uint32_t value = 0;
            const auto end = digits.data() + digits.size();
            const auto [next, error] = std::from_chars(digits.data(), end, value);
            return error == std::errc() && next == end;
        }
        const std::string_view word = takeWhile(isLetter);
        return equal(word, "on") || equal(word, "off");
    }
    static bool equal(std::string_view word, std::string_view lower) {
        return std::equal(word.begin(), word.end(), lower.begin(), lower.end(),
                          [](char a, char b) { return (a | 0x20) == b; });
    }

    std::string_view rest_;
};

// The subtags of one tag, taken from the front.
class TagParser {
public:
    explicit TagParser(std::string_view tag) : subtags_(split(tag, '-')) {}

    bool parse() {
        if (!std::all_of(subtags_.begin(), subtags_.end(), [](std::string_view subtag) {
                return hasLength(subtag, 1, 8) && all(subtag, isWordCharacter);
            })) {
            return false;
        }
        if (!take([](auto s) { return hasLength(s, 2, 3) && all(s, isLetter); })) return false;
        for (int i = 0; i < 3; i++) {
            take([](auto s) { return s.size() == 3 && all(s, isLetter); });  // extended language
        }
        take([](auto s) { return s.size() == 4 && all(s, isLetter); });  // script
        take([](auto s) {                                                // region
            return (s.size() == 2 && all(s, isLetter)) || (s.size() == 3 && all(s, isDigit));
        });
        while (take([](auto s) {  // variants
            return hasLength(s, 5, 8) || (s.size() == 4 && isDigit(s.front()));
        })) {
        }
        while (takeExtension()) {
        }
        return next_ == subtags_.size();
    }

private:
    template <typename Is>
    bool take(Is is) {
        if (next_ == subtags_.size() || !is(subtags_[next_])) return false;
        next_++;
        return true;
    }
    // A single character and what it introduces: after "x" anything, elsewhere two characters and
    // more.
    bool takeExtension() {
        if (next_ == subtags_.size() || subtags_[next_].size() != 1) return false;
        const size_t shortest = (subtags_[next_].front() | 0x20) == 'x' ? 1 : 2;
        const size_t begin = ++next_;
        while (take([shortest](auto s) { return s.size() >= shortest; })) {
        }
        if (next_ == begin) next_--;  // introduces nothing
        return next_ > begin;
    }

    std::vector<std::string_view> subtags_;
    size_t next_ = 0;
};

}  // namespace

std::optional<std::string> checkFontFeatures(std::string_view features) {
    if (features.empty()) return std::nullopt;
    for (const std::string_view feature : split(features, ',')) {
        if (!FeatureParser(feature).parse()) {
            return shown({std::string(feature)}) +
                   " is not an OpenType feature ('smcp' on, kern=0, -liga)";
        }
    }
    return std::nullopt;
}

std::optional<std::vector<AxisSetting>> parseFontVariations(std::string_view text) {
    std::vector<AxisSetting> settings;
    if (text.empty()) return settings;
    for (std::string_view part : split(text, ',')) {
        const auto skipSpaces = [&part] {
            while (!part.empty() && isSpace(part.front())) part.remove_prefix(1);
        };
        const auto take = [&part](char c) {
            const bool is = part.starts_with(c);
            if (is) part.remove_prefix(1);
            return is;
        };
        skipSpaces();
        const char quote = take('\'') ? '\'' : take('"') ? '"' : '\0';
        const std::string_view tag = part.substr(0, std::min<size_t>(4, part.size()));
        const bool isTag = all(tag, [](char c) { return isWordCharacter(c) || c == '_'; });
        if (tag.size() != 4 || !isTag) return std::nullopt;
        part.remove_prefix(4);
        if (quote != '\0' && !take(quote)) return std::nullopt;
        skipSpaces();
        take('=');
        skipSpaces();
        float value = 0.0f;
        const auto end = part.data() + part.size();
        const auto [next, error] = std::from_chars(part.data(), end, value);
        if (error != std::errc() || !(std::fabs(value) <= kLargestAxisValue)) return std::nullopt;
        part.remove_prefix(static_cast<size_t>(next - part.data()));
        skipSpaces();
        if (!part.empty()) return std::nullopt;
        settings.push_back({std::string(tag), value});
    }
    return settings;
}

std::optional<std::string> checkFontVariations(std::string_view text) {
    if (parseFontVariations(text)) return std::nullopt;
    return shown({std::string(text)}) + " are no axis settings ('wght' 650, 'wdth' 80)";
}

std::optional<std::string> checkLocale(std::string_view tags) {
    if (tags.empty()) return std::nullopt;
    for (const std::string_view tag : split(tags, ',')) {
        if (!TagParser(tag).parse())
            return shown({std::string(tag)}) + " is not a BCP 47 tag (sr-Cyrl, zh-Hant-TW)";
    }
    return std::nullopt;
}

std::optional<std::string> checkPatternPath(std::string_view path) {
    if (path.empty()) return "the path of the pattern image is empty";
    return std::nullopt;
}

}  // namespace gxtext
