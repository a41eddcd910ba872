// Pixel buffers and integer rectangles: what every stage of a render reads and writes.
#pragma once

#include <cstddef>
#include <cstdint>

#include "GxExport.h"

namespace GxFontEffect {

// Integer rectangle; the interior is [left, right) x [top, bottom).
class GXTEXT_API GxRect {
public:
    GxRect() = default;
    GxRect(int32_t l, int32_t t, int32_t r, int32_t b) : left(l), top(t), right(r), bottom(b) {}
    GxRect(const GxRect&) = default;
    GxRect& operator=(const GxRect&) = default;
    virtual ~GxRect() = default;

    // Absolute extents, so that a rectangle given the wrong way round has a size too.
    uint32_t width() const { return distance(left, right); }
    uint32_t height() const { return distance(top, bottom); }
    bool isEmpty() const { return left >= right || top >= bottom; }

    int32_t left = 0;
    int32_t top = 0;
    int32_t right = 0;
    int32_t bottom = 0;

private:
    static uint32_t distance(int32_t a, int32_t b) {
        const int64_t difference = int64_t{a} - b;
        return static_cast<uint32_t>(difference < 0 ? -difference : difference);
    }
};

// An owned pixel buffer, rows packed: the row stride is width x bytesPerPixel bytes.
//
// Two kinds are in use. A 32-bit layer has the bytes R, G, B, A, premultiplied by alpha until the
// final composite. An 8-bit mask holds coverage, 0 to 255. The buffer comes from the C allocator
// and is never shared between bitmaps. Nothing reports errors: a size that does not fit or a failed
// allocation leaves `data` null, and every consumer checks it. Not locked: one render at a time
// uses a bitmap.
class GXTEXT_API GxBitmap {
public:
    enum Format : uint32_t { kColor32 = 1, kMask8 = 2, kEmpty = 4 };

    GxBitmap() = default;

    // Zero-filled.
    GxBitmap(uint32_t width, uint32_t height, uint32_t bytesPerPixel);

    // Copies width x height x bytesPerPixel bytes from `pixels`, which stay the caller's. Null
    // pixels give a bitmap without data.
    GxBitmap(uint32_t width, uint32_t height, const void* pixels, uint32_t bytesPerPixel);

    // Crop of an 8-bit mask to `rect`; cells outside the source stay 0, a null rectangle copies
    // nothing. Moves one byte per pixel and takes the source's pixel width as its row stride
    // whatever the format: of a 32-bit source only a quarter of the buffer is filled.
    GxBitmap(const GxBitmap& source, const GxRect* rect);

    GxBitmap(const GxBitmap& other);
    GxBitmap& operator=(const GxBitmap& other);
    virtual ~GxBitmap();

    // width x height, however large.
    uint64_t pixelCount() const { return uint64_t{width} * height; }

    uint32_t width = 0;
    uint32_t height = 0;
    uint8_t* data = nullptr;
    uint32_t format = kEmpty;
    uint32_t bytesPerPixel = 0;

private:
    void allocate();
    void copyPixels(const void* pixels);
};

}  // namespace GxFontEffect
