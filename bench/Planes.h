// The pictures that are measured on.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace gxbench {

constexpr int kWidth = 1080;
constexpr int kHeight = 320;
constexpr uint64_t kPixels = uint64_t{kWidth} * kHeight;

using Mask = std::vector<uint8_t>;    // kPixels bytes, rows packed
using Layer = std::vector<uint32_t>;  // kPixels pixels

// "Agfx&S" in 255 px bold, grey edges: a little over a quarter of the pixels full, most of the
// rest empty. Without FreeType at build time a drawing of rings and bars of about that coverage.
const Mask& textMask();
std::string textMaskSource();

Mask filledMask(uint8_t value);
Mask noiseMask();
// Empty, full and noisy stretches in random turns: the worst for skipping.
Mask patchyMask();

// Premultiplied pixels of any alpha.
Layer randomLayer();
Layer filledLayer(uint32_t pixel);
// `color`, 0xAARRGGBB, premultiplied, scaled by the mask.
Layer tintedLayer(const Mask& mask, uint32_t color);

}  // namespace gxbench
