#include "minikin/BidiRuns.h"

#include <unicode/ubidi.h>

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

}  // namespace

std::vector<BidiRun> visualRuns(const U16StringPiece& text, const Range& range, Bidi bidiFlags) {
    std::vector<BidiRun> runs;
    if (range.isEmpty()) return runs;
    if (isOverride(bidiFlags)) {
        runs.push_back({range, isRtl(bidiFlags)});
        return runs;
    }

    const UBiDiUniquePtr bidi(ubidi_open());
    if (!bidi) throw std::bad_alloc();
    UErrorCode status = U_ZERO_ERROR;
    ubidi_setPara(bidi.get(), reinterpret_cast<const UChar*>(text.data()),
                  static_cast<int32_t>(text.size()), paragraphLevel(bidiFlags), nullptr, &status);
    const int32_t count = ubidi_countRuns(bidi.get(), &status);
    if (U_FAILURE(status)) throw std::bad_alloc();  // there is no other failure

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
