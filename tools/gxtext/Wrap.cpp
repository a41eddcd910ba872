#include "Wrap.h"

#include <unicode/ubidi.h>
#include <unicode/ubrk.h>
#include <unicode/uchar.h>
#include <unicode/uloc.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <memory>

#include "ToolError.h"

namespace gxtool {

namespace {

struct BreakCloser {
    void operator()(UBreakIterator* iterator) const { ubrk_close(iterator); }
};

// Every break position of a kind, 0 excluded, the end included. `hard` gets those after which a
// line must end.
struct Breaks {
    std::vector<int32_t> all;
    std::vector<int32_t> hard;
};

// "en-US,ja" is a preference list; the break rules take its first entry.
std::string firstLocale(const std::string& tags) {
    const std::string first = tags.substr(0, tags.find(','));
    char id[ULOC_FULLNAME_CAPACITY] = "";
    UErrorCode status = U_ZERO_ERROR;
    uloc_forLanguageTag(first.c_str(), id, sizeof(id), nullptr, &status);
    return U_SUCCESS(status) && status != U_STRING_NOT_TERMINATED_WARNING ? id : "";
}

Breaks findBreaks(UBreakIteratorType type, std::u16string_view text, const std::string& locale) {
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<UBreakIterator, BreakCloser> iterator(
        ubrk_open(type, firstLocale(locale).c_str(), text.data(), static_cast<int32_t>(text.size()),
                  &status));
    if (U_FAILURE(status)) throw ToolError(std::string("no line breaking: ") + u_errorName(status));
    Breaks breaks;
    for (int32_t at = ubrk_next(iterator.get()); at != UBRK_DONE; at = ubrk_next(iterator.get())) {
        breaks.all.push_back(at);
        const int32_t rule = ubrk_getRuleStatus(iterator.get());
        if (type == UBRK_LINE && rule >= UBRK_LINE_HARD && rule < UBRK_LINE_HARD_LIMIT) {
            breaks.hard.push_back(at);
        }
    }
    return breaks;
}

bool isLineEnd(char16_t c) {
    return (c >= 0x0A && c <= 0x0D) || c == 0x85 || c == 0x2028 || c == 0x2029;
}

// Spaces that may hang past the margin; no-break spaces stay.
bool isHangingSpace(char16_t c) {
    return c == u' ' || c == u'\t' || c == 0x1680 || c == 0x3000 ||
           (c >= 0x2000 && c <= 0x200A && c != 0x2007) || c == 0x205F;
}

// The text behind wrapText: paragraphs one by one, lines appended.
class Wrapper {
public:
    Wrapper(std::u16string_view text, std::optional<float> width, const std::string& locale,
            const MeasureText& measure)
        : text_(text), width_(width), locale_(locale), measure_(measure) {}

    std::vector<TextLine> run() {
        const Breaks breaks = findBreaks(UBRK_LINE, text_, locale_);
        opportunities_ = breaks.all;
        int32_t start = 0;
        for (const int32_t end : breaks.hard) {
            // The end of the text counts as hard whether or not there is a line break.
            if (!isLineEnd(text_[end - 1])) continue;
            addParagraph(start, end);
            start = end;
        }
        addParagraph(start, static_cast<int32_t>(text_.size()));
        return std::move(lines_);
    }

private:
    void addParagraph(int32_t start, int32_t end) {
        if (end > start && text_[end - 1] == u'\n' && end - 1 > start && text_[end - 2] == u'\r') {
            end--;
        }
        if (end > start && isLineEnd(text_[end - 1])) end--;
        TextLine line{start, end, isRightToLeft(start, end)};
        if (!width_) {
            lines_.push_back(line);
            return;
        }
        for (int32_t next = nextBreak(line, end); next < end; next = nextBreak(line, end)) {
            line.end = withoutSpaces(line.start, next);
            lines_.push_back(line);
            line.start = next;
        }
        line.end =
            fitsWhole({line.start, end, line.rightToLeft}) ? end : withoutSpaces(line.start, end);
        lines_.push_back(line);
    }

    // Where the line that begins at line.start ends, hanging spaces included; `end` when all the
    // rest fits.
    int32_t nextBreak(const TextLine& line, int32_t end) {
        int32_t best = line.start;
        auto at = std::upper_bound(opportunities_.begin(), opportunities_.end(), line.start);
        for (; best < end; ++at) {
            const int32_t candidate = std::min(*at, end);
            if (!fitsInParts({line.start, candidate, line.rightToLeft}, best)) {
                return best > line.start ? best : breakInWord(line, candidate);
            }
            best = candidate;
        }
        return best;
    }

    // The word [line.start, end) alone is too wide: as many of its characters as fit, at least one.
    int32_t breakInWord(const TextLine& line, int32_t end) {
        auto at = characterAfter(line.start);
        int32_t best = std::min(*at, end);
        while (best < end && fits({line.start, *++at, line.rightToLeft})) best = *at;
        return best;
    }

    // A line of which the part up to `known` fits. A word far longer than a line is not measured
    // whole for each of its lines: when a part does not fit, more than as much again does not.
    bool fitsInParts(const TextLine& line, int32_t known) {
        constexpr int32_t kShortest = 512;
        for (int32_t part = kShortest; part <= (line.end - known) / 2; part *= 2) {
            if (!fits({line.start, *characterAfter(known + part), line.rightToLeft})) return false;
        }
        return fits(line);
    }

    std::vector<int32_t>::const_iterator characterAfter(int32_t position) {
        if (characters_.empty()) characters_ = findBreaks(UBRK_CHARACTER, text_, locale_).all;
        return std::upper_bound(characters_.begin(), characters_.end(), position);
    }

    bool fitsWhole(const TextLine& line) const {
        return line.end <= line.start || measure_(line) <= *width_;
    }

    bool fits(TextLine line) const {
        line.end = withoutSpaces(line.start, line.end);
        return fitsWhole(line);
    }

    int32_t withoutSpaces(int32_t start, int32_t end) const {
        while (end > start && isHangingSpace(text_[end - 1])) end--;
        return end;
    }

    bool isRightToLeft(int32_t start, int32_t end) const {
        return ubidi_getBaseDirection(text_.data() + start, end - start) == UBIDI_RTL;
    }

    std::u16string_view text_;
    std::optional<float> width_;
    const std::string& locale_;
    const MeasureText& measure_;
    std::vector<int32_t> opportunities_;
    std::vector<int32_t> characters_;  // found when first needed
    std::vector<TextLine> lines_;
};

}  // namespace

std::u16string decodeUtf8(std::string_view utf8, const std::string& name) {
    std::u16string text(utf8.size(), u'\0');  // never longer than the bytes
    int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strFromUTF8(text.data(), static_cast<int32_t>(text.size()), &length, utf8.data(),
                  static_cast<int32_t>(utf8.size()), &status);
    if (status == U_INVALID_CHAR_FOUND) throw ToolError(name + " is not valid UTF-8");
    if (U_FAILURE(status)) throw ToolError(name + ": " + u_errorName(status));
    text.resize(static_cast<size_t>(length));
    if (text.find(u'\0') != std::u16string::npos) throw ToolError(name + " contains U+0000");
    return text;
}

std::string encodeUtf8(std::u16string_view utf16) {
    std::string text(utf16.size() * 3, '\0');
    int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strToUTF8WithSub(text.data(), static_cast<int32_t>(text.size()), &length, utf16.data(),
                       static_cast<int32_t>(utf16.size()), 0xFFFD, nullptr, &status);
    text.resize(U_SUCCESS(status) ? static_cast<size_t>(length) : 0);
    return text;
}

std::vector<char32_t> codePoints(std::u16string_view text) {
    std::vector<char32_t> result;
    const auto length = static_cast<int32_t>(text.size());
    for (int32_t i = 0; i < length;) {
        UChar32 c;
        U16_NEXT(text.data(), i, length, c);
        result.push_back(static_cast<char32_t>(c));
    }
    return result;
}

std::vector<TextLine> wrapText(std::u16string_view text, std::optional<float> width,
                               const std::string& locale, const MeasureText& measure) {
    return Wrapper(text, width, locale, measure).run();
}

}  // namespace gxtool
