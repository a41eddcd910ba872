// Blending of single pixels in float, for every format the canvas draws into.
#pragma once

#include <cstddef>
#include <cstdint>

#include "SkBitmap.h"
#include "SkBlendMode.h"
#include "SkColor.h"

namespace portable {

// Premultiplied, 0 to 1.
struct ColorF {
    float r = 0;
    float g = 0;
    float b = 0;
    float a = 0;
};

enum class PixelFormat : uint8_t {
    kNone,    // not drawable
    kAlpha8,  // one byte of alpha
    kOpaque,  // bytes R, G, B, A, alpha taken and left as 255
    kPremul,
    kUnpremul,
};

// kNone for other types, and for bitmaps without pixels.
PixelFormat pixelFormat(const SkBitmap& bitmap);

constexpr size_t bytesPerPixel(PixelFormat format) {
    return format == PixelFormat::kAlpha8 ? 1 : 4;
}

ColorF premultiply(SkColor color);

// Bytes to colour. Channels are divided by 255; alpha-only pixels are black.
ColorF loadPixel(PixelFormat format, const uint8_t* pixel);

// Colour to bytes: each channel held within 0 to 1, times 255, rounded once to the nearest integer,
// ties to even. Unpremultiplied channels are divided by alpha first, 0 where alpha is 0.
void storePixel(PixelFormat format, const ColorF& color, uint8_t* pixel);

ColorF blend(SkBlendMode mode, const ColorF& s, const ColorF& d);

// The colour source over the pixel.
void blendPixel(PixelFormat format, const ColorF& color, uint8_t* pixel);

}  // namespace portable
