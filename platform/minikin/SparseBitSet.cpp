#include "minikin/SparseBitSet.h"

#include <algorithm>

namespace minikin {

void SparseBitSet::addRange(uint32_t first, uint32_t last) {
    constexpr uint32_t kLastCodePoint = 0x10FFFF;
    last = std::min(last, kLastCodePoint);
    if (first > last) return;

    mLength = std::max(mLength, last + 1);
    const size_t pagesNeeded = (last >> kLogPageBits) + 1;
    if (mPageIndex.size() < pagesNeeded) mPageIndex.resize(pagesNeeded, kNoPage);
    for (uint32_t value = first; value <= last; value++) {
        uint16_t& page = mPageIndex[value >> kLogPageBits];
        if (page == kNoPage) {
            mPages.emplace_back();  // may throw: the index must not name a page that is not there
            page = static_cast<uint16_t>(mPages.size() - 1);
        }
        const uint32_t bit = value & (kPageBits - 1);
        mPages[page][bit / 64] |= uint64_t{1} << (bit % 64);
    }
}

}  // namespace minikin
