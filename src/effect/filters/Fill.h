// What the fills of the glyphs share: gradients and the pattern.
#pragma once

#include <array>
#include <cstdint>

#include "effect/GxProperty.h"
#include "effect/filters/TextMask.h"
#include "effect/filters/WorkPlane.h"
#include "raster/kernels/BlendRows.h"
#include "raster/kernels/GradientRows.h"

namespace GxFontEffect {

// Scales below it draw nothing.
inline constexpr float kMinFillScale = 0.1f;

// The first 256 entries of a gradient's colour ramp, premultiplied.
std::array<uint32_t, 256> makeGradientTable(const GxLinearGradientProperty& gradient);

// The text's box on a layer, as far as the mask and the layer hold it: its first pixel is the box's
// (firstColumn, firstRow), the mask is the source.
kernels::BlendArea fillArea(const TextMask& text, const GxBitmap* layer);

// The same for a gradient. `columns` has a number for each column that the mask holds.
kernels::GradientFill gradientFill(const TextMask& text, const GxBitmap* layer,
                                   const std::array<uint32_t, 256>& table,
                                   const WorkPlane<float>& columns);

}  // namespace GxFontEffect
