#include "skia/PixelBlend.h"

#include <bit>

namespace portable {

namespace {

// s + d * f
ColorF sum(const ColorF& s, const ColorF& d, float f) {
    return {s.r + d.r * f, s.g + d.g * f, s.b + d.b * f, s.a + d.a * f};
}

uint8_t toByte(float v) {
    if (!(v > 0)) return 0;
    if (v >= 1) return 255;
    // Above 2^23 floats are whole numbers: adding it rounds, ties to even, into the lowest bits.
    return static_cast<uint8_t>(std::bit_cast<uint32_t>(v * 255 + 8388608.0f) & 0xFF);
}

float unpremultiply(float channel, float alpha) {
    return alpha != 0 ? channel / alpha : 0;
}

}  // namespace

PixelFormat pixelFormat(const SkBitmap& bitmap) {
    if (bitmap.drawsNothing()) return PixelFormat::kNone;
    if (bitmap.colorType() == kAlpha_8_SkColorType) return PixelFormat::kAlpha8;
    if (bitmap.colorType() != kRGBA_8888_SkColorType) return PixelFormat::kNone;
    switch (bitmap.alphaType()) {
        case kOpaque_SkAlphaType:
            return PixelFormat::kOpaque;
        case kPremul_SkAlphaType:
            return PixelFormat::kPremul;
        case kUnpremul_SkAlphaType:
            return PixelFormat::kUnpremul;
        case kUnknown_SkAlphaType:
            break;
    }
    return PixelFormat::kNone;
}

ColorF premultiply(SkColor color) {
    const float a = SkColorGetA(color) / 255.0f;
    return {SkColorGetR(color) / 255.0f * a, SkColorGetG(color) / 255.0f * a,
            SkColorGetB(color) / 255.0f * a, a};
}

ColorF loadPixel(PixelFormat format, const uint8_t* pixel) {
    if (format == PixelFormat::kAlpha8) return {0, 0, 0, pixel[0] / 255.0f};
    ColorF c = {pixel[0] / 255.0f, pixel[1] / 255.0f, pixel[2] / 255.0f, pixel[3] / 255.0f};
    if (format == PixelFormat::kOpaque) c.a = 1;
    if (format == PixelFormat::kUnpremul) c = {c.r * c.a, c.g * c.a, c.b * c.a, c.a};
    return c;
}

void storePixel(PixelFormat format, const ColorF& color, uint8_t* pixel) {
    if (format == PixelFormat::kAlpha8) {
        pixel[0] = toByte(color.a);
        return;
    }
    ColorF c = color;
    if (format == PixelFormat::kUnpremul) {
        c = {unpremultiply(c.r, c.a), unpremultiply(c.g, c.a), unpremultiply(c.b, c.a), c.a};
    }
    pixel[0] = toByte(c.r);
    pixel[1] = toByte(c.g);
    pixel[2] = toByte(c.b);
    pixel[3] = format == PixelFormat::kOpaque ? 255 : toByte(c.a);
}

ColorF blend(SkBlendMode mode, const ColorF& s, const ColorF& d) {
    switch (mode) {
        case SkBlendMode::kClear:
            return {};
        case SkBlendMode::kSrc:
            return s;
        case SkBlendMode::kDst:
            return d;
        case SkBlendMode::kSrcOver:
            return sum(s, d, 1 - s.a);
        case SkBlendMode::kDstOver:
            return sum(d, s, 1 - d.a);
    }
    return d;
}

void blendPixel(PixelFormat format, const ColorF& color, uint8_t* pixel) {
    const ColorF d = loadPixel(format, pixel);
    storePixel(format, blend(SkBlendMode::kSrcOver, color, d), pixel);
}

}  // namespace portable
