#include "raster/kernels/Growth.h"

#include <algorithm>
#include <cstring>

namespace GxFontEffect::kernels::plain {

namespace {

int sumOfThree(const uint8_t* row, int64_t x) {
    return row[x - 1] + row[x] + row[x + 1];
}

// One pass. The row above is kept as it was before the pass. True when a cell changed.
bool growOnce(uint8_t* mask, int64_t width, int64_t height, uint8_t* above, uint8_t* grown) {
    const auto bytes = static_cast<size_t>(width);
    bool changed = false;
    std::memcpy(above, mask, bytes);
    for (int64_t y = 1; y < height - 1; ++y) {
        uint8_t* row = mask + y * width;
        for (int64_t x = 1; x < width - 1; ++x) {
            const int sum = sumOfThree(above, x) + sumOfThree(row, x) + sumOfThree(row + width, x);
            grown[x] = static_cast<uint8_t>(std::min(sum >> 2, 255));
        }
        changed = changed || std::memcmp(row, grown, bytes) != 0;
        std::memcpy(above, row, bytes);
        std::memcpy(row, grown, bytes);
    }
    return changed;
}

}  // namespace

void growMask(uint8_t* mask, int64_t width, int64_t height, int64_t passes, uint8_t* scratch) {
    if (width < 1 || height < 1) return;
    uint8_t* above = scratch;
    uint8_t* grown = scratch + width;
    grown[0] = grown[width - 1] = 0;
    // A pass that changes nothing is followed by none that does.
    while (passes-- > 0 && growOnce(mask, width, height, above, grown)) {
    }
}

}  // namespace GxFontEffect::kernels::plain
