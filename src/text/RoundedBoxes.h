// Boxes with rounded corners beneath a picture.
#pragma once

#include <cstdint>
#include <vector>

#include "raster/GxBitmap.h"

namespace GxFontEffect {

// Lays the union of `boxes`, cut to `clip`, beneath the picture in one colour (0xAARRGGBB,
// straight); `picture` is 32-bit words 0xAARRGGBB, straight alpha. Corners are quarters of circles
// of `radius` pixels, at most half of the box's shorter side, with edges a pixel wide: at a
// distance d of the pixel's middle from the corner's centre coverage is radius - d + 1/2, between 0
// and 1. Where boxes overlap the larger coverage counts, so that translucent ones show no seams.
// Throws std::bad_alloc before anything is drawn.
void drawBoxesUnder(const GxBitmap& picture, std::vector<GxRect> boxes, const GxRect& clip,
                    int radius, uint32_t color);

}  // namespace GxFontEffect
