// A set of code points, stored in pages so that small scripts stay small.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace minikin {

class SparseBitSet {
public:
    SparseBitSet() = default;

    // Adds [first, last], both included. Values beyond Unicode's last code point are left out.
    void addRange(uint32_t first, uint32_t last);

    bool get(uint32_t value) const {
        const size_t page = value >> kLogPageBits;
        if (page >= mPageIndex.size() || mPageIndex[page] == kNoPage) return false;
        const uint32_t bit = value & (kPageBits - 1);
        return (mPages[mPageIndex[page]][bit / 64] >> (bit % 64)) & 1;
    }

    // One more than the largest value; 0 for the empty set.
    uint32_t length() const { return mLength; }
    bool empty() const { return mLength == 0; }

private:
    static constexpr uint32_t kLogPageBits = 8;
    static constexpr uint32_t kPageBits = 1u << kLogPageBits;
    static constexpr uint16_t kNoPage = 0xFFFF;
    using Page = std::array<uint64_t, kPageBits / 64>;

    std::vector<uint16_t> mPageIndex;
    std::vector<Page> mPages;
    uint32_t mLength = 0;
};

}  // namespace minikin
