// Blending of single pixels in float, for every format the canvas draws into.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

#include "SkBitmap.h"
#include "SkBlendMode.h"
#include "SkColor.h"

namespace portable {

// Channels are multiplied by this, not divided by 255, and unpremultiplied by the reciprocal of
// alpha: Android's arithmetic, which near halves gives other bytes than a division.
constexpr float kByteToUnit = 1 / 255.0f;

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

// 0 to 1 as a byte, held within that, rounded to the nearest integer, ties to even; NaN gives 0.
inline uint8_t toByte(float v) {
    if (!(v > 0)) return 0;
    if (v >= 1) return 255;
    // From 2^23 on floats are whole numbers: adding it rounds into the lowest bits.
    return static_cast<uint8_t>(std::bit_cast<uint32_t>(v * 255 + 8388608.0f) & 0xFF);
}

// Bytes to colour; alpha-only pixels are black.
inline ColorF loadPixel(PixelFormat format, const uint8_t* pixel) {
    if (format == PixelFormat::kAlpha8) return {0, 0, 0, pixel[0] * kByteToUnit};
    ColorF c = {pixel[0] * kByteToUnit, pixel[1] * kByteToUnit, pixel[2] * kByteToUnit,
                pixel[3] * kByteToUnit};
    if (format == PixelFormat::kOpaque) c.a = 1;
    if (format == PixelFormat::kUnpremul) c = {c.r * c.a, c.g * c.a, c.b * c.a, c.a};
    return c;
}

// Colour to bytes. Unpremultiplied channels are taken out of alpha first, 0 where alpha is 0.
inline void storePixel(PixelFormat format, const ColorF& color, uint8_t* pixel) {
    if (format == PixelFormat::kAlpha8) {
        pixel[0] = toByte(color.a);
        return;
    }
    ColorF c = color;
    if (format == PixelFormat::kUnpremul) {
        const float scale = c.a != 0 ? 1 / c.a : 0;
        c = {c.r * scale, c.g * scale, c.b * scale, c.a};
    }
    pixel[0] = toByte(c.r);
    pixel[1] = toByte(c.g);
    pixel[2] = toByte(c.b);
    pixel[3] = format == PixelFormat::kOpaque ? 255 : toByte(c.a);
}

// s + d * f
inline ColorF addScaled(const ColorF& s, const ColorF& d, float f) {
    return {s.r + d.r * f, s.g + d.g * f, s.b + d.b * f, s.a + d.a * f};
}

inline ColorF blend(SkBlendMode mode, const ColorF& s, const ColorF& d) {
    switch (mode) {
        case SkBlendMode::kClear:
            return {};
        case SkBlendMode::kSrc:
            return s;
        case SkBlendMode::kDst:
            return d;
        case SkBlendMode::kSrcOver:
            return addScaled(s, d, 1 - s.a);
        case SkBlendMode::kDstOver:
            return addScaled(d, s, 1 - d.a);
    }
    return d;
}

// The colour source over the pixel.
inline void blendPixel(PixelFormat format, const ColorF& color, uint8_t* pixel) {
    const ColorF d = loadPixel(format, pixel);
    storePixel(format, blend(SkBlendMode::kSrcOver, color, d), pixel);
}

// Source over for `count` pixels, unpremultiplied on both sides: what blendPixel gives, quicker.
void blendUnpremulRow(const uint8_t* source, uint8_t* pixels, size_t count);

}  // namespace portable
