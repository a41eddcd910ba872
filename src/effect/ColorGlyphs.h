// What a mask's glyphs with colours of their own are painted with.
#pragma once

#include <cstdint>
#include <memory>

#include "raster/GxBitmap.h"
#include "raster/PlaneMemory.h"

namespace GxFontEffect {

// Beside a mask that holds the silhouettes of all glyphs.
struct ColorGlyphs {
    std::unique_ptr<uint8_t[]> letters;   // the mask without the colour glyphs
    std::unique_ptr<PlaneBitmap> pixels;  // as large; premultiplied R, G, B, A, as covering as the
                                          // silhouettes
    GxRect box;                           // of all that they paint, from the mask's corner
    int x = 0;                            // of that corner in the output; the stack's
    int y = 0;
};

}  // namespace GxFontEffect
