// What the fills of the glyphs share: gradients and the pattern.
#pragma once

#include <array>
#include <cstdint>

#include "effect/GxProperty.h"
#include "effect/filters/TextMask.h"
#include "effect/filters/WorkPlane.h"
#include "raster/GxBlender.h"

namespace GxFontEffect {

// Scales below it draw nothing.
inline constexpr float kMinFillScale = 0.1f;

// The first 256 entries of a gradient's colour ramp, premultiplied.
std::array<uint32_t, 256> makeGradientTable(const GxLinearGradientProperty& gradient);

// Paints the rows of the text's box, as far as the bitmap holds them, beneath what the layer holds:
// fillRow(y, first, count, coverage, pixels) gives `count` premultiplied words of row y from column
// `first` on. One row is made at a time; without memory for it nothing is drawn.
template <typename FillRow>
void paintFill(const TextMask& text, const GxBitmap* layer, FillRow fillRow) {
    const int64_t count = text.lastColumn - text.firstColumn;
    const WorkPlane<uint32_t> pixels(count);
    if (!pixels || count == 0) return;
    for (int64_t y = text.firstRow; y < text.lastRow; ++y) {
        fillRow(y, text.firstColumn, count, text.row(y), pixels.data());
        drawPixels(text.left + text.firstColumn, text.top + y, layer, pixels.data(), count, 1,
                   count, GXE_BLEND_DST_OVER);
    }
}

}  // namespace GxFontEffect
