// Bitmaps over pixels that something else owns.
#pragma once

#include <cstdint>

#include "raster/GxBitmap.h"

namespace GxFontEffect {

// Rows packed, as in every bitmap; the pixels outlive it.
class BorrowedBitmap : public GxBitmap {
public:
    BorrowedBitmap(void* pixels, uint32_t pixelWidth, uint32_t pixelHeight, uint32_t pixelBytes) {
        width = pixelWidth;
        height = pixelHeight;
        bytesPerPixel = pixelBytes;
        format = pixelBytes == 4 ? kColor32 : kMask8;
        data = static_cast<uint8_t*>(pixels);
    }
    BorrowedBitmap(const BorrowedBitmap&) = delete;
    BorrowedBitmap& operator=(const BorrowedBitmap&) = delete;
    ~BorrowedBitmap() override { data = nullptr; }
};

}  // namespace GxFontEffect
