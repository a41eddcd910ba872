// Rows of a tiled, scaled picture, seen through a mask.
#pragma once

#include <cstdint>

namespace GxFontEffect::kernels {

// A 32-bit picture, rows packed, bytes A, R, G, B, straight, not empty, and how it is laid: a tile
// of `tileWidth` x `tileHeight` output pixels (0: the picture is not repeated in that direction).
struct PatternTile {
    const uint8_t* pixels = nullptr;
    int64_t width = 0;
    int64_t height = 0;
    float scale = 1.0f;    // output pixels per picture pixel, positive
    float opacity = 1.0f;  // 0-1; the product with the alpha is clamped to 0-255
    int32_t tileWidth = 0;
    int32_t tileHeight = 0;
};

// out[i] = premultiplied colour of output pixel (first + i, y), 0 where mask[i] is 0, for `count`
// pixels (0 allowed). No alignment is needed; the arrays must not overlap.
//
// Bilinear between picture pixels in whole 255ths, in each direction f = (x mod tile) / scale in
// single precision, weight (int)((f - floor f) x 255) for the next picture pixel, which after the
// last one is the first. The four weighted bytes are summed and shifted right by 16: 255 x 255
// weights are divided by 65,536, so a byte b that is everywhere the same comes out as 65,025 b >>
// 16 (255 gives 253), deliberately. Coordinates past the picture's end are held at its last pixel.
void patternRow(const PatternTile& tile, int64_t first, int64_t y, int64_t count,
                const uint8_t* mask, uint32_t* out);

// The formula, pixel by pixel.
void patternRowPlain(const PatternTile& tile, int64_t first, int64_t y, int64_t count,
                     const uint8_t* mask, uint32_t* out);

}  // namespace GxFontEffect::kernels
