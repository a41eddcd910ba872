// Gradients seen through a mask and laid beneath a layer.
#pragma once

#include <cstdint>

#include "raster/kernels/BlendRows.h"

namespace GxFontEffect::kernels {

// Where a gradient is drawn and what it is drawn with. `area` lays an 8-bit mask on a layer: where
// the mask is not 0, the colour goes under the pixel (destination over source); coverage is not
// applied. The area's first pixel lies at (firstColumn, firstRow) of the text's box, `centreX` and
// `centreY` are the middle of the box.
struct GradientFill {
    BlendArea area;
    int64_t firstColumn = 0;
    int64_t firstRow = 0;
    float centreX = 0;
    float centreY = 0;
    const uint32_t* table = nullptr;  // 256 premultiplied colours 0xAARRGGBB
    float* columns = nullptr;         // work memory: area.width numbers
};

// Floats are evaluated in single precision as written, products rounded before the sum and every
// column from its own number: stepping or a fused multiply-add would move pixels to other entries.
// With dx = column - centreX, dy = row - centreY:
//
// entry = clamp((int)(stepY x dy + stepX x dx), -128, 127) + 128.
void linearGradientRows(const GradientFill& fill, float stepX, float stepY);
// entry = clamp((int)(step x sqrt(dy^2 + dx^2)), 0, 255).
void radialGradientRows(const GradientFill& fill, float step);

// The plain forms: the formulas, one cell at a time.
namespace plain {
void linearGradientRows(const GradientFill& fill, float stepX, float stepY);
void radialGradientRows(const GradientFill& fill, float step);
}  // namespace plain

}  // namespace GxFontEffect::kernels
