// From coverage to colour through a table.
#pragma once

#include <cstdint>

#include "raster/kernels/BlendPixel.h"

namespace GxFontEffect::kernels {

// Colour words 0xAARRGGBB for 0 to 256.
inline constexpr int kColorTableSize = 257;

// The colour channels scaled by the alpha: ((c + 1) x a) >> 8.
constexpr uint32_t premultiplied(uint32_t argb) {
    const uint32_t a = argb >> 24;
    return a << 24 | scale((argb >> 16) & 0xFFu, a) << 16 | scale((argb >> 8) & 0xFFu, a) << 8 |
           scale(argb & 0xFFu, a);
}

// out[i] = table[256 - coverage[i]], premultiplied. `table` has kColorTableSize straight colours;
// `count` may be 0. No alignment is needed; the arrays must not overlap.
void mapCoverage(const uint8_t* coverage, uint32_t* out, int64_t count, const uint32_t* table);

// The formula, pixel by pixel.
void mapCoveragePlain(const uint8_t* coverage, uint32_t* out, int64_t count, const uint32_t* table);

}  // namespace GxFontEffect::kernels
