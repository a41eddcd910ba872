// A tiled, scaled picture seen through a mask and laid beneath a layer.
#pragma once

#include <cstdint>

#include "raster/kernels/BlendRows.h"

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

// Where an output coordinate falls between two picture pixels.
struct PatternSample {
    PatternSample(int64_t coordinate, int32_t tile, float scale, int64_t extent);

    int64_t near;
    int64_t next;    // near + 1, or 0 after the last one
    int32_t weight;  // of `next`, 0-255
};

// What the fast form keeps for a column of output: the picture column and the next one's weight as
// a share of 65,536.
struct PatternColumn {
    int32_t near;
    float nextWeight;
};

// Work memory. Contents do not matter.
struct PatternMemory {
    Rgba* row = nullptr;               // one for each column of the area
    PatternColumn* columns = nullptr;  // likewise
    uint8_t* covered = nullptr;        // likewise, and 8 more
    float* texels = nullptr;           // 4 for each picture column, and 4 more
};

// Where a picture is drawn. `area` lays an 8-bit mask on a layer: where the mask is not 0, the
// colour goes under the pixel (destination over source); coverage is not applied. The area's first
// pixel lies at (firstColumn, firstRow) of the text's box, from whose corner the tiles run.
struct PatternFill {
    BlendArea area;
    int64_t firstColumn = 0;
    int64_t firstRow = 0;
    PatternTile tile;
    PatternMemory memory;
};

// Bilinear between picture pixels in whole 255ths, in each direction f = (x mod tile) / scale in
// single precision, weight (int)((f - floor f) x 255) for the next picture pixel, which after the
// last one is the first. The four weighted bytes are summed and shifted right by 16: 255 x 255
// weights are divided by 65,536, so a byte b that is everywhere the same comes out as
// (65,025 b) >> 16 (255 gives 253), deliberately. Coordinates past the picture's end are held at
// its last pixel.
// The alpha is (int)(opacity x alpha), by which the colour is premultiplied.
void patternRows(const PatternFill& fill);

// The plain forms: the formulas, one cell at a time.
namespace plain {
void patternRows(const PatternFill& fill);
}  // namespace plain

}  // namespace GxFontEffect::kernels
