#include "scene/Wrap.h"

#include <unicode/ubidi.h>
#include <unicode/ubrk.h>
#include <unicode/uchar.h>
#include <unicode/uloc.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>

#include "scene/SceneError.h"

namespace gxtext {

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

void requireBreaking(UErrorCode status) {
    if (U_FAILURE(status))
        throw TextError("the text", std::string("no line breaking: ") + u_errorName(status));
}

// One for each kind stays with its thread: to make one costs more than a title's breaks.
UBreakIterator* iteratorOf(UBreakIteratorType type, const std::string& locale) {
    struct Kept {
        std::string locale;
        std::unique_ptr<UBreakIterator, BreakCloser> iterator;
    };
    thread_local std::array<Kept, UBRK_LINE + 1> kept;
    Kept& known = kept[type];
    if (!known.iterator || known.locale != locale) {
        UErrorCode status = U_ZERO_ERROR;
        known.iterator.reset(ubrk_open(type, firstLocale(locale).c_str(), nullptr, 0, &status));
        known.locale = locale;
        if (U_FAILURE(status)) known.iterator.reset();
        requireBreaking(status);
    }
    return known.iterator.get();
}

Breaks findBreaks(UBreakIteratorType type, std::u16string_view text, const std::string& locale) {
    UBreakIterator* iterator = iteratorOf(type, locale);
    UErrorCode status = U_ZERO_ERROR;
    ubrk_setText(iterator, text.data(), static_cast<int32_t>(text.size()), &status);
    requireBreaking(status);
    Breaks breaks;
    for (int32_t at = ubrk_next(iterator); at != UBRK_DONE; at = ubrk_next(iterator)) {
        breaks.all.push_back(at);
        const int32_t rule = ubrk_getRuleStatus(iterator);
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
            const TextMeasures& measures)
        : text_(text), width_(width), locale_(locale), measures_(measures) {}

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
    enum class Verdict : uint8_t { kFits, kUnclear, kTooWide };

    void addParagraph(int32_t start, int32_t end) {
        if (end > start && text_[end - 1] == u'\n' && end - 1 > start && text_[end - 2] == u'\r') {
            end--;
        }
        if (end > start && isLineEnd(text_[end - 1])) end--;
        TextLine line{start, end, isRightToLeft(start, end)};
        if (!width_ || start == end) {
            lines_.push_back(line);
            return;
        }
        estimate(line);
        for (int32_t next = nextBreak(line, end); next < end; next = nextBreak(line, end)) {
            line.end = withoutSpaces(line.start, next);
            lines_.push_back(line);
            line.start = next;
        }
        const TextLine whole{line.start, end, line.rightToLeft};
        line.end = withoutSpaces(line.start, end);
        if (line.end < end && judge(whole) != Verdict::kTooWide && fits(whole)) line.end = end;
        lines_.push_back(line);
    }

    // What is known about a paragraph's lines without measuring them.
    void estimate(const TextLine& paragraph) {
        const std::vector<float> advances = measures_.advances(paragraph);
        paragraphStart_ = paragraph.start;
        positions_.assign(1, 0.0);
        inkEnds_.assign(1, paragraph.start);
        float widest = 0.0f;
        for (int32_t i = paragraph.start; i < paragraph.end; i++) {
            const float advance = advances[static_cast<size_t>(i - paragraph.start)];
            widest = std::max(widest, std::abs(advance));
            positions_.push_back(positions_.back() + double{advance});
            inkEnds_.push_back(isHangingSpace(text_[i]) ? inkEnds_.back() : i + 1);
        }
        // Ends of lines, where letters join, kern or are in other brackets than in the paragraph;
        // and what adds up in words so long that they are shaped in parts.
        tolerance_ = 2.0 * double{widest} + double{*width_} / 1024.0;
    }

    // Where the line that begins at line.start ends, hanging spaces included; `end` when all the
    // rest fits.
    int32_t nextBreak(const TextLine& line, int32_t end) {
        const int32_t best = lastThatFits(line, opportunities_, line.start, end);
        if (best > line.start) return best;
        // The word alone is too wide: as many of its characters as fit, at least one.
        if (characters_.empty()) characters_ = findBreaks(UBRK_CHARACTER, text_, locale_).all;
        const int32_t wordEnd = std::min(after(opportunities_, line.start), end);
        const int32_t character = std::min(after(characters_, line.start), wordEnd);
        return lastThatFits(line, characters_, character, wordEnd);
    }

    static int32_t after(const std::vector<int32_t>& positions, int32_t position) {
        return *std::upper_bound(positions.begin(), positions.end(), position);
    }

    // The last of the candidates behind `known`, none of them beyond `end`, before the first one at
    // which the line would be too wide; `known` if that is the first.
    int32_t lastThatFits(const TextLine& line, const std::vector<int32_t>& candidates,
                         int32_t known, int32_t end) const {
        if (known == end) return end;
        // Where so many are unclear they come in small steps, each a bit wider than the last.
        constexpr int kMaxTries = 8;
        const auto lineTo = [&](int32_t candidate) {
            return TextLine{line.start, withoutSpaces(line.start, std::min(candidate, end)),
                            line.rightToLeft};
        };
        auto next = std::upper_bound(candidates.begin(), candidates.end(), known);
        const auto last = std::lower_bound(next, candidates.end(), end) + 1;
        const auto first = next;
        const auto fitsTo = [&](int32_t candidate) { return fits(lineTo(candidate)); };
        next = std::find_if(next, last, [&](int32_t candidate) {
            return judge(lineTo(candidate)) != Verdict::kFits;
        });
        const auto unclear = next;
        int tries = 0;
        for (; next != last && tries < kMaxTries; ++next) {
            const Verdict verdict = judge(lineTo(*next));
            if (verdict == Verdict::kTooWide) break;
            if (!fitsTo(*next)) break;
            tries++;
        }
        if (tries == kMaxTries) {
            const auto tooWide = std::find_if(next, last, [&](int32_t candidate) {
                return judge(lineTo(candidate)) == Verdict::kTooWide;
            });
            next = std::partition_point(next, tooWide, fitsTo);
        } else if (tries == 0 && unclear != first && !fitsTo(*std::prev(unclear))) {
            next = std::partition_point(first, std::prev(unclear), fitsTo);  // a poor estimate
        }
        return next == first ? known : std::min(*std::prev(next), end);
    }

    Verdict judge(const TextLine& line) const {
        const double advance = positions_[static_cast<size_t>(line.end - paragraphStart_)] -
                               positions_[static_cast<size_t>(line.start - paragraphStart_)];
        if (advance <= double{*width_} - tolerance_) return Verdict::kFits;
        return advance > double{*width_} + tolerance_ ? Verdict::kTooWide : Verdict::kUnclear;
    }

    bool fits(const TextLine& line) const {
        return line.end <= line.start || measures_.advance(line) <= *width_;
    }

    int32_t withoutSpaces(int32_t start, int32_t end) const {
        return std::max(start, inkEnds_[static_cast<size_t>(end - paragraphStart_)]);
    }

    bool isRightToLeft(int32_t start, int32_t end) const {
        return ubidi_getBaseDirection(text_.data() + start, end - start) == UBIDI_RTL;
    }

    std::u16string_view text_;
    std::optional<float> width_;
    const std::string& locale_;
    const TextMeasures& measures_;
    std::vector<int32_t> opportunities_;
    std::vector<int32_t> characters_;  // found when first needed
    std::vector<TextLine> lines_;
    // Of the paragraph, for each of its units and its end: the advance before it, and where the
    // text before it ends without hanging spaces.
    int32_t paragraphStart_ = 0;
    std::vector<double> positions_;
    std::vector<int32_t> inkEnds_;
    double tolerance_ = 0.0;
};

}  // namespace

std::u16string decodeUtf8(std::string_view utf8, const std::string& name) {
    std::u16string text(utf8.size(), u'\0');  // never longer than the bytes
    int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strFromUTF8(text.data(), static_cast<int32_t>(text.size()), &length, utf8.data(),
                  static_cast<int32_t>(utf8.size()), &status);
    if (status == U_INVALID_CHAR_FOUND) throw TextError(name, "not valid UTF-8");
    if (U_FAILURE(status)) throw TextError(name, u_errorName(status));
    text.resize(static_cast<size_t>(length));
    if (text.find(u'\0') != std::u16string::npos) throw TextError(name, "U+0000 in it");
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
                               const std::string& locale, const TextMeasures& measures) {
    return Wrapper(text, width, locale, measures).run();
}

}  // namespace gxtext
