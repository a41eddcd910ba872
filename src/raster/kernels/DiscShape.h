// A disc of coverage, sorted for dilation: of each row the solid middle, and the soft cells beside.
#pragma once

#include <array>
#include <cstdint>

#include "raster/kernels/DiscDilation.h"

namespace GxFontEffect::kernels {

// One quadrant, by distance from the middle row and column; the others mirror it.
struct DiscShape {
    static constexpr int kMaxRadius = 127;

    struct RimCell {
        uint8_t column;
        uint8_t loss;  // 255 - coverage
    };

    int radius = 0;
    const uint8_t* kernel = nullptr;
    std::array<uint8_t, kMaxRadius + 1> chords;  // full columns from the middle on
    // Row y has the rim cells [rimEnds[y], rimEnds[y + 1]), at least one: a cell without coverage
    // fills in.
    std::array<uint16_t, kMaxRadius + 2> rimEnds;
    std::array<RimCell, 1024> rim;

    // False when the kernel is none: not symmetric, stronger farther from the middle row, too large
    // or too soft to hold.
    bool read(const DilationBand& band);

    uint8_t lossAt(int x, int y) const {
        return static_cast<uint8_t>(255 - kernel[(radius + y) * (2 * radius + 1) + radius + x]);
    }

private:
    bool readRow(const uint8_t* below, const uint8_t* above, int y, int64_t stride);
};

}  // namespace GxFontEffect::kernels
