// How the blur kernels divide their work memory.
#pragma once

#include <cstdint>

#include "raster/kernels/SeparableBlur.h"

namespace GxFontEffect::kernels {

// Steps behind the last cell of a strip that kernels may read and write.
inline constexpr int64_t kBlurReadAhead = 16;

// Parts of the memory that blurScratchBytes() asks for, for strips of up to `length` cells. `strip`
// and `wide` lie on whole cache lines.
struct BlurScratch {
    BlurScratch(uint8_t* memory, int64_t length, int64_t radius)
        : strip(memory + (64 - reinterpret_cast<uintptr_t>(memory) % 64) % 64),
          wide(strip + (length + kBlurReadAhead + 4) * kBlurStripWidth / 64 * 64),
          taps(reinterpret_cast<uint32_t*>(wide + (length + 224) * kBlurStripWidth *
                                                      (radius < kBlurRunRadius ? 2 : 4))) {}

    uint8_t* strip;  // kBlurStripWidth bytes for each of length + kBlurReadAhead + 2 steps
    uint8_t* wide;   // two, from kBlurRunRadius on four times as much for length + 224 steps
    uint32_t* taps;  // 3 (radius + 64) words
};

}  // namespace GxFontEffect::kernels
