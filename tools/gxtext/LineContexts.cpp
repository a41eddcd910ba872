#include "LineContexts.h"

#include <unicode/uchar.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <iterator>

namespace gxtool {

namespace {

// The shaper looks at five characters before a run, to join its first letter.
constexpr int32_t kShapingContext = 5 * U16_MAX_LENGTH;

// Nesting deeper than the bidi algorithm's 125 levels is ignored by it; each control adds at most
// two.
constexpr size_t kMaxDepth = 60;

// Canonically equivalent to U+3008 and U+3009. ICU lets one bracket pair with both forms of the
// other.
bool hasEquivalentBracket(UChar32 c) {
    return c == 0x2329 || c == 0x232A;
}

// The last of the ascending positions before `end`, or -1.
int32_t lastBefore(const std::vector<int32_t>& positions, int32_t end) {
    const auto next = std::lower_bound(positions.begin(), positions.end(), end);
    return next == positions.begin() ? -1 : *std::prev(next);
}

}  // namespace

// Follows the bidi algorithm's view of what is before a character, outside of embeddings and
// isolates; what is inside of them never reaches past their ends.
class LineContexts::Scan {
public:
    explicit Scan(LineContexts& contexts) : out_(contexts) {
        out_.cuts_.push_back({0, std::nullopt});
    }

    void visit(int32_t at, UChar32 c) {
        const UCharDirection direction = u_charDirection(c);
        if (direction == U_BLOCK_SEPARATOR) {
            beginParagraph(at, c);
        } else if (!paragraph_.lost) {
            visitInParagraph(at, c, direction);
        }
    }

private:
    // The strong character that a neutral or a number sees before it.
    enum class Strong : uint8_t { kEdge, kLeftToRight, kRightToLeft, kArabic, kUnknown };
    enum class Opening : uint8_t { kEmbedding, kOverride, kIsolate };
    struct Bracket {
        UChar32 closing;
        int32_t at;
    };
    struct Paragraph {
        int32_t start = 0;
        std::optional<bool> rightToLeft;  // by the first strong character outside isolates
        std::vector<Opening> open;
        int isolates = 0;  // of these
        std::vector<Bracket> brackets;
        Strong strong = Strong::kEdge;
        int32_t strongAt = 0;
        bool arabicNumber = false;  // since `strong`
        bool lost = false;          // no cuts from here on
    };

    void beginParagraph(int32_t at, UChar32 c) {
        paragraph_ = {};
        paragraph_.start = at;
        paragraph_.strongAt = at;
        out_.separators_.push_back(at);
        if (c == '\n' || c == '\r') out_.lineBreaks_.push_back(at);
    }

    void visitInParagraph(int32_t at, UChar32 c, UCharDirection direction) {
        switch (direction) {
            case U_LEFT_TO_RIGHT:
                return addStrong(at, Strong::kLeftToRight);
            case U_RIGHT_TO_LEFT:
                return addStrong(at, Strong::kRightToLeft);
            case U_RIGHT_TO_LEFT_ARABIC:
                return addStrong(at, Strong::kArabic);
            case U_EUROPEAN_NUMBER:
            case U_ARABIC_NUMBER:
                return addNumber(at, direction == U_ARABIC_NUMBER);
            case U_LEFT_TO_RIGHT_EMBEDDING:
            case U_RIGHT_TO_LEFT_EMBEDDING:
            case U_LEFT_TO_RIGHT_OVERRIDE:
            case U_RIGHT_TO_LEFT_OVERRIDE:
            case U_POP_DIRECTIONAL_FORMAT:
            case U_LEFT_TO_RIGHT_ISOLATE:
            case U_RIGHT_TO_LEFT_ISOLATE:
            case U_FIRST_STRONG_ISOLATE:
            case U_POP_DIRECTIONAL_ISOLATE:
                return addControl(at, direction);
            case U_WHITE_SPACE_NEUTRAL:
            case U_OTHER_NEUTRAL:
                return addNeutral(at, c);
            default:
                return;
        }
    }

    void addStrong(int32_t at, Strong strong) {
        const bool isRightToLeft = strong != Strong::kLeftToRight;
        if (!paragraph_.rightToLeft && paragraph_.isolates == 0) {
            paragraph_.rightToLeft = isRightToLeft;
        }
        if (!isOverridden()) (isRightToLeft ? out_.rightToLeft_ : out_.leftToRight_).push_back(at);
        if (!paragraph_.open.empty()) return;
        paragraph_.strong = strong;
        paragraph_.strongAt = at;
        paragraph_.arabicNumber = false;
        out_.cuts_.push_back({at, paragraph_.rightToLeft});
    }

    void addNumber(int32_t at, bool arabic) {
        if (arabic) out_.controls_.push_back(at);
        if (!isOverridden()) out_.leftToRight_.push_back(at);
        if (!paragraph_.open.empty()) return;
        if (arabic) {
            paragraph_.arabicNumber = true;
        } else if (paragraph_.strong == Strong::kArabic || paragraph_.strong == Strong::kUnknown) {
            // An Arabic letter makes it an Arabic number, across neutrals and empty embeddings.
            out_.spans_.push_back({paragraph_.strongAt, at});
        }
    }

    void addControl(int32_t at, UCharDirection direction) {
        out_.controls_.push_back(at);
        switch (direction) {
            case U_POP_DIRECTIONAL_FORMAT:
                return popEmbedding();
            case U_POP_DIRECTIONAL_ISOLATE:
                return popIsolate();
            case U_LEFT_TO_RIGHT_EMBEDDING:
            case U_RIGHT_TO_LEFT_EMBEDDING:
                return push(at, Opening::kEmbedding);
            case U_LEFT_TO_RIGHT_OVERRIDE:
            case U_RIGHT_TO_LEFT_OVERRIDE:
                return push(at, Opening::kOverride);
            default:
                return push(at, Opening::kIsolate);
        }
    }

    bool isOverridden() const {
        return !paragraph_.open.empty() && paragraph_.open.back() == Opening::kOverride;
    }

    void popEmbedding() {
        std::vector<Opening>& open = paragraph_.open;
        if (!open.empty() && open.back() != Opening::kIsolate) open.pop_back();
    }

    void popIsolate() {
        if (paragraph_.isolates == 0) return;
        std::vector<Opening>& open = paragraph_.open;
        while (open.back() != Opening::kIsolate) open.pop_back();
        open.pop_back();
        paragraph_.isolates--;
    }

    void push(int32_t at, Opening opening) {
        if (opening == Opening::kIsolate) {
            paragraph_.isolates++;
        } else if (paragraph_.open.empty()) {
            beginEmbedding(at);
        }
        paragraph_.open.push_back(opening);
        if (paragraph_.open.size() > kMaxDepth) giveUp(at);
    }

    // An embedding ends the sequence of characters in which brackets pair, but only if something
    // stands in it.
    void beginEmbedding(int32_t at) {
        paragraph_.strong = Strong::kUnknown;
        if (!paragraph_.brackets.empty()) giveUp(at);
    }

    void addNeutral(int32_t at, UChar32 c) {
        const int32_t bracket = u_getIntPropertyValue(c, UCHAR_BIDI_PAIRED_BRACKET_TYPE);
        if (bracket != U_BPT_NONE) out_.brackets_.push_back(at);
        if (hasEquivalentBracket(c)) return giveUp(at);
        if (!paragraph_.open.empty()) return;
        if (bracket == U_BPT_OPEN) {
            paragraph_.brackets.push_back({u_getBidiPairedBracket(c), at});
        } else if (bracket == U_BPT_CLOSE) {
            closeBracket(at, c);
        }
        if (followsParagraphsDirection()) out_.cuts_.push_back({at, paragraph_.rightToLeft});
    }

    // As at the beginning of a paragraph of the same level. Numbers stand like letters from right
    // to left; European ones behind a letter from left to right, or behind none in a paragraph from
    // left to right, like letters from left to right.
    bool followsParagraphsDirection() const {
        const Strong strong = paragraph_.strong;
        if (paragraph_.rightToLeft.value_or(false)) {
            return strong == Strong::kEdge || strong == Strong::kRightToLeft ||
                   strong == Strong::kArabic;
        }
        if (paragraph_.arabicNumber) return false;
        return strong == Strong::kEdge || strong == Strong::kLeftToRight;
    }

    void closeBracket(int32_t at, UChar32 c) {
        std::vector<Bracket>& brackets = paragraph_.brackets;
        const auto opening =
            std::find_if(brackets.rbegin(), brackets.rend(),
                         [&](const Bracket& bracket) { return bracket.closing == c; });
        if (opening == brackets.rend()) return;
        out_.spans_.push_back({opening->at, at});
        brackets.erase(std::prev(opening.base()), brackets.end());
    }

    // Whatever reaches beyond `at` needs the paragraph from its start on.
    void giveUp(int32_t at) {
        paragraph_.lost = true;
        out_.spans_.push_back({paragraph_.start, at});
    }

    LineContexts& out_;
    Paragraph paragraph_;
};

LineContexts::LineContexts(std::u16string_view text) {
    Scan scan(*this);
    const auto length = static_cast<int32_t>(text.size());
    for (int32_t next = 0; next < length;) {
        const int32_t at = next;
        UChar32 c;
        U16_NEXT(text.data(), next, length, c);
        scan.visit(at, c);
    }
}

LineContext LineContexts::whole(const TextLine& line) const {
    return {std::max(lastBefore(lineBreaks_, line.start + 1), 0),
            line.rightToLeft ? minikin::Bidi::DEFAULT_RTL : minikin::Bidi::DEFAULT_LTR};
}

LineContext LineContexts::shortest(const TextLine& line) const {
    const LineContext all = whole(line);
    const int32_t separator = lastBefore(separators_, line.start);
    if (lastBefore(separators_, line.end) != separator) return all;
    const Cut* cut = &cutOutsideSpans(latestCut(line.start - kShapingContext), line.end);

    // Text of one direction is one run, whatever its levels are. Levels of one direction differ
    // only with controls and Arabic numbers: with these the cut text has to have both directions,
    // as then the whole context has.
    if (lastBefore(controls_, line.end) >= cut->at) {
        const int32_t both =
            std::min(lastBefore(leftToRight_, line.end), lastBefore(rightToLeft_, line.end));
        if (both < cut->at) cut = &cutOutsideSpans(latestCut(both), line.end);
    }
    if (cut->at <= all.start || cut->at < separator || (separator >= 0 && !isPlain(*cut, line))) {
        return all;
    }
    if (!cut->rightToLeft) return {cut->at, all.bidi};
    return {cut->at, *cut->rightToLeft ? minikin::Bidi::RTL : minikin::Bidi::LTR};
}

// In a context of several paragraphs, of which the first may be nothing but a line break, ICU lets
// the level or the last letters of one decide on what begins the next, and resolves the brackets of
// all by the level of the first. True where that makes no difference.
bool LineContexts::isPlain(const Cut& cut, const TextLine& line) const {
    const auto has = [&](const std::vector<int32_t>& positions) {
        return lastBefore(positions, line.end) >= cut.at;
    };
    const int32_t separator = lastBefore(separators_, line.start);
    if (separator > whole(line).start) {
        return cut.rightToLeft && lastBefore(brackets_, line.end) < separator;
    }
    if (cut.rightToLeft) return cut.rightToLeft == line.rightToLeft;
    return !has(controls_) && !has(line.rightToLeft ? leftToRight_ : rightToLeft_);
}

// At `limit` or before it; the one at 0 if there is none.
const LineContexts::Cut& LineContexts::latestCut(int32_t limit) const {
    const auto next =
        std::upper_bound(cuts_.begin(), cuts_.end(), limit,
                         [](int32_t position, const Cut& cut) { return position < cut.at; });
    return next == cuts_.begin() ? *next : *std::prev(next);
}

// `cut` or the last one before it that lies in no span of the text up to `end`.
const LineContexts::Cut& LineContexts::cutOutsideSpans(const Cut& cut, int32_t end) const {
    auto span =
        std::lower_bound(spans_.begin(), spans_.end(), end,
                         [](const Span& item, int32_t position) { return item.last < position; });
    const Cut* result = &cut;
    while (span != spans_.begin() && (--span)->last >= result->at) {
        if (span->first < result->at) result = &latestCut(span->first);
    }
    return *result;
}

}  // namespace gxtool
