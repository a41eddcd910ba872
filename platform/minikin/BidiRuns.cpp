#include "minikin/BidiRuns.h"

#include <unicode/ubidi.h>
#include <unicode/uchar.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <new>

namespace minikin {
namespace {

struct UBiDiCloser {
    void operator()(UBiDi* bidi) const { ubidi_close(bidi); }
};
using UBiDiUniquePtr = std::unique_ptr<UBiDi, UBiDiCloser>;

UBiDiLevel paragraphLevel(Bidi bidiFlags) {
    constexpr uint8_t kDefaultBit = 0b0010;
    const bool byFirstStrong = static_cast<uint8_t>(bidiFlags) & kDefaultBit;
    if (isRtl(bidiFlags)) return byFirstStrong ? UBIDI_DEFAULT_RTL : 1;
    return byFirstStrong ? UBIDI_DEFAULT_LTR : 0;
}

// ICU looks at all open brackets at every letter. With more than this many, no further ones pair
// before the paragraph ends, so that the time stays in proportion to the length; Unicode's
// algorithm ends at 63.
constexpr size_t kMaxOpenBrackets = 1024;

// Whether the bracket still pairs. The closing brackets wanted are on the stack.
bool pairs(UChar32 c, std::vector<UChar32>* open, bool* isFull) {
    const int32_t type = u_getIntPropertyValue(c, UCHAR_BIDI_PAIRED_BRACKET_TYPE);
    if (type == U_BPT_NONE) return true;
    if (type == U_BPT_OPEN) {
        *isFull = *isFull || open->size() == kMaxOpenBrackets;
        if (!*isFull) open->push_back(u_getBidiPairedBracket(c));
    } else {
        const auto last = std::find(open->rbegin(), open->rend(), c);
        if (last != open->rend()) open->erase(std::prev(last.base()), open->end());
    }
    return !*isFull;
}

// The text, or a copy in which brackets that open too many are other neutrals.
U16StringPiece withFewBrackets(const U16StringPiece& text, std::vector<uint16_t>* copy) {
    if (text.size() <= kMaxOpenBrackets) return text;
    std::vector<UChar32> open;
    bool isFull = false;
    for (uint32_t i = 0; i < text.size(); i++) {
        const uint16_t unit = text[i];  // brackets are single units
        if (u_charDirection(unit) == U_BLOCK_SEPARATOR) {
            open.clear();
            isFull = false;
        } else if (!pairs(unit, &open, &isFull)) {
            if (copy->empty()) copy->assign(text.data(), text.data() + text.size());
            (*copy)[i] = '|';
        }
    }
    return copy->empty() ? text : U16StringPiece(copy->data(), copy->size());
}

}  // namespace

// All that is not lies from Hebrew on, but not between the CJK radicals and the surrogates.
// Contexts can be long: in blocks, which compilers turn into vectors.
bool isLeftToRight(const U16StringPiece& text) {
    constexpr uint32_t kBlock = 64;
    const uint16_t* unit = text.data();
    const uint16_t* const end = unit + text.size();
    while (unit != end) {
        const uint16_t* const blockEnd = unit + std::min<ptrdiff_t>(end - unit, kBlock);
        unsigned others = 0;
        for (; unit != blockEnd; unit++) {
            const auto fromRadicals = static_cast<uint16_t>(*unit - 0x2E80);
            others |= static_cast<unsigned>(*unit >= 0x0590) & (fromRadicals >= 0xD800 - 0x2E80);
        }
        if (others != 0) return false;
    }
    return true;
}

std::vector<BidiRun> visualRuns(const U16StringPiece& text, const Range& range, Bidi bidiFlags) {
    std::vector<BidiRun> runs;
    if (range.isEmpty()) return runs;
    if (isOverride(bidiFlags)) {
        runs.push_back({range, isRtl(bidiFlags)});
        return runs;
    }

    if (!isRtl(bidiFlags) && isLeftToRight(text)) {
        runs.push_back({range, false});
        return runs;
    }

    const UBiDiUniquePtr bidi(ubidi_open());
    if (!bidi) throw std::bad_alloc();
    std::vector<uint16_t> copy;
    const U16StringPiece resolved = withFewBrackets(text, &copy);
    UErrorCode status = U_ZERO_ERROR;
    ubidi_setPara(bidi.get(), reinterpret_cast<const UChar*>(resolved.data()),
                  static_cast<int32_t>(resolved.size()), paragraphLevel(bidiFlags), nullptr,
                  &status);
    const int32_t count = ubidi_countRuns(bidi.get(), &status);
    // Memory ran out; ICU does not set the status everywhere.
    if (U_FAILURE(status) || count < 1) throw std::bad_alloc();

    for (int32_t i = 0; i < count; i++) {
        int32_t start = 0;
        int32_t length = 0;
        const UBiDiDirection direction = ubidi_getVisualRun(bidi.get(), i, &start, &length);
        const Range run = Range::intersection(
            Range(static_cast<uint32_t>(start), static_cast<uint32_t>(start + length)), range);
        if (!run.isEmpty()) runs.push_back({run, direction == UBIDI_RTL});
    }
    return runs;
}

}  // namespace minikin
