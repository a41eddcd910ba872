// Rows of a gradient, seen through a mask.
#pragma once

#include <cstdint>

namespace GxFontEffect::kernels {

// `count` pixels of one row from column `first` of the box on (count may be 0). Where `mask` is 0
// the pixel is 0; elsewhere it is the table's colour, coverage is not applied. `table` has 256
// premultiplied colours. Arrays must not overlap, no alignment is needed.
//
// Floats are evaluated in single precision as written, products rounded before the sum and every
// column from its own number: stepping or a fused multiply-add would move pixels to other entries.
struct GradientRow {
    const uint8_t* mask = nullptr;
    uint32_t* out = nullptr;
    int64_t first = 0;
    int64_t count = 0;
    const uint32_t* table = nullptr;
};

// index = clamp((int)(rowTerm + step x (column - centre)), -128, 127) + 128.
void linearGradientRow(const GradientRow& row, float rowTerm, float step, float centre);
// index = clamp((int)(step x sqrt(dy^2 + (column - centre)^2)), 0, 255).
void radialGradientRow(const GradientRow& row, float dy, float step, float centre);

// The formulas, pixel by pixel.
void linearGradientRowPlain(const GradientRow& row, float rowTerm, float step, float centre);
void radialGradientRowPlain(const GradientRow& row, float dy, float step, float centre);

}  // namespace GxFontEffect::kernels
