#include "minikin/MeasuredText.h"

#include <unicode/utf16.h>

#include <algorithm>
#include <iterator>
#include <utility>

#include "minikin/BidiRuns.h"
#include "minikin/BidiState.h"

namespace minikin {
namespace {

// Shorter contexts are used whole.
constexpr uint32_t kLongContext = 1024;

// How much stays in front of a range as it is: more than shaping looks at, and enough for what
// follows a summary to settle.
constexpr uint32_t kKept = 64;

constexpr uint32_t kMarkDistance = 256;

// Longer texts are not remembered.
constexpr uint32_t kMaxRecentLength = 1u << 20;

// `head`, then the text from `start` on.
ShortContext contextFrom(std::vector<uint16_t> head, const U16StringPiece& text, uint32_t start,
                         const Range& range) {
    const auto headLength = static_cast<uint32_t>(head.size());
    head.insert(head.end(), text.data() + start, text.data() + range.getEnd());
    return {std::move(head),
            Range(range.getStart() - start + headLength, range.getEnd() - start + headLength)};
}

ShortContext withoutSummary(const U16StringPiece& text, const Range& range) {
    uint32_t start = range.getStart() - kLongContext;
    if (U16_IS_TRAIL(text[start])) start--;
    return contextFrom({}, text, start, range);
}

}  // namespace

// Reads the text once, as far as asked for, and keeps summaries at places not far from each other.
class MeasuredText::Reader {
public:
    explicit Reader(const U16StringPiece& text) : text_(text) {}

    void readTo(uint32_t end) {
        while (at_ < end) {
            const uint32_t start = at_;
            UChar32 c;
            U16_NEXT(text_.data(), at_, text_.size(), c);
            if (c == '\n' || c == '\r') contextStart_ = start;
            state_.add(c);
            const uint32_t last = marks_.empty() ? contextStart_ : marks_.back().at;
            if (at_ - last >= kMarkDistance)
                marks_.push_back({at_, contextStart_, state_.summary()});
        }
    }

    std::optional<ShortContext> contextOf(uint32_t contextStart, const Range& range, bool isRtl) {
        auto mark = std::upper_bound(
            marks_.begin(), marks_.end(), range.getStart() - kKept,
            [](uint32_t position, const Mark& item) { return position < item.at; });
        if (mark == marks_.begin() || (--mark)->contextStart != contextStart) return std::nullopt;
        std::vector<uint16_t> head = mark->summary;
        for (uint16_t& unit : head) {
            if (unit == BidiState::kDefaultLetter) unit = isRtl ? 0x05D0 : 'a';
        }
        return contextFrom(std::move(head), text_, mark->at, range);
    }

private:
    // Where the summary of all of the context before stands.
    struct Mark {
        uint32_t at;
        uint32_t contextStart;
        std::vector<uint16_t> summary;
    };

    const U16StringPiece text_;
    uint32_t at_ = 0;
    uint32_t contextStart_ = 0;
    BidiState state_;
    std::vector<Mark> marks_;
};

MeasuredText::MeasuredText(const U16StringPiece& text)
    : mText(text.data(), text.data() + text.size()) {}

MeasuredText::~MeasuredText() = default;

std::optional<ShortContext> MeasuredText::shortContext(uint32_t contextStart, const Range& range,
                                                       Bidi bidiFlags) {
    const U16StringPiece text(mText.data(), mText.size());
    if (range.getStart() - contextStart <= kLongContext) return std::nullopt;
    if (isOverride(bidiFlags)) return withoutSummary(text, range);
    // Summaries leave paragraphs without a strong character as they are.
    if (bidiFlags != Bidi::DEFAULT_LTR && bidiFlags != Bidi::DEFAULT_RTL) return std::nullopt;
    // Without memory half of what was read is lost.
    std::unique_ptr<Reader> reader = std::move(mReader);
    if (!reader) reader = std::make_unique<Reader>(text);
    reader->readTo(range.getStart());
    auto context = reader->contextOf(contextStart, range, isRtl(bidiFlags));
    mReader = std::move(reader);
    return context;
}

std::optional<ShortContext> shortContext(MeasuredText* measured, const U16StringPiece& text,
                                         uint32_t contextStart, const Range& range,
                                         Bidi bidiFlags) {
    if (range.getStart() - contextStart <= kLongContext) return std::nullopt;
    if (measured && measured->text().size() == text.size()) {
        return measured->shortContext(contextStart, range, bidiFlags);
    }
    const U16StringPiece context = text.substr(Range(contextStart, range.getEnd()));
    if (isOverride(bidiFlags) || (!isRtl(bidiFlags) && isLeftToRight(context))) {
        return withoutSummary(text, range);
    }
    if (text.size() > kMaxRecentLength) return std::nullopt;
    thread_local std::unique_ptr<MeasuredText> recent;
    const auto isRecent = [&] {
        return recent && recent->text().size() == text.size() &&
               std::equal(context.data(), context.data() + context.size(),
                          recent->text().begin() + contextStart);
    };
    if (!isRecent()) recent = std::make_unique<MeasuredText>(text);
    return recent->shortContext(contextStart, range, bidiFlags);
}

}  // namespace minikin
