#include "minikin/BidiRuns.h"

#include <unicode/ubidi.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
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

// Whether nothing in the text is right to left or changes directions: all that is lies from Hebrew
// on, but not between the CJK radicals and the surrogates. Contexts can be long: in blocks, which
// compilers turn into vectors.
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

}  // namespace

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
    UErrorCode status = U_ZERO_ERROR;
    ubidi_setPara(bidi.get(), reinterpret_cast<const UChar*>(text.data()),
                  static_cast<int32_t>(text.size()), paragraphLevel(bidiFlags), nullptr, &status);
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
