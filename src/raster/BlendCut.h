// Sources placed on bitmaps: where the one meets the other.
#pragma once

#include <cstdint>

#include "raster/GxBitmap.h"
#include "raster/kernels/BlendRows.h"

namespace GxFontEffect {

// Whether there is a 32-bit bitmap, or an 8-bit one, with its pixels.
bool isLayer(const GxBitmap* bitmap);
bool isMask(const GxBitmap* bitmap);

// A source of `sourceBytes` per pixel placed at (x, y) and cut to the destination. `stride` is in
// bytes. An area of no pixels when nothing is to be drawn: null pointers, no data, no overlap.
kernels::BlendArea cutToBitmap(int64_t x, int64_t y, const GxBitmap* destination,
                               const void* source, int64_t width, int64_t height, int64_t stride,
                               int64_t sourceBytes);

// The same onto a layer only: an 8-bit mask, and 32-bit pixels.
kernels::BlendArea cutMaskOntoLayer(int64_t x, int64_t y, const GxBitmap* layer,
                                    const uint8_t* mask, int64_t width, int64_t height,
                                    int64_t stride);
kernels::BlendArea cut32OntoLayer(int64_t x, int64_t y, const GxBitmap* layer, const void* source,
                                  int64_t width, int64_t height, int64_t stride);

}  // namespace GxFontEffect
