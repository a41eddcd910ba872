#include "skia/PixelBlend.h"

#include <algorithm>
#include <cstring>

namespace portable {

namespace {

// Enough for compilers to make vectors of.
constexpr size_t kBlock = 8;

using Words = uint32_t[kBlock];  // R in the lowest byte

static_assert(std::endian::native == std::endian::little);

// Source over where no arithmetic is needed: a source that hides the pixel or shows nothing of
// itself, or a pixel that is clear. False when one of the block's pixels is none of these.
bool blendTrivially(const Words& source, Words& pixels) {
    uint32_t mixed = 0;
    for (size_t i = 0; i < kBlock; ++i) {
        const uint32_t s = source[i] >> 24, d = pixels[i] >> 24;
        mixed |= static_cast<uint32_t>((s != 0) & (s != 255) & (d != 0));
    }
    if (mixed) return false;
    for (size_t i = 0; i < kBlock; ++i) {
        const uint32_t shown = source[i] >> 24 ? source[i] : 0;
        const bool keeps = (source[i] >> 24 == 0) & (pixels[i] >> 24 != 0);
        pixels[i] = keeps ? pixels[i] : shown;
    }
    return true;
}

// The literal arithmetic of loadPixel, blend and storePixel, channel by channel.
void blendInFloat(const Words& source, Words& pixels) {
    float sourceAlpha[kBlock], scale[kBlock], out[kBlock];
    uint32_t result[kBlock];
    const auto channel = [](uint32_t word, int shift) {
        return static_cast<float>(static_cast<int32_t>(word >> shift & 255)) * kByteToUnit;
    };
    const auto bits = [](float v) {
        return std::bit_cast<uint32_t>(std::min(v, 1.0f) * 255 + 8388608.0f) & 0xFF;
    };
    for (size_t i = 0; i < kBlock; ++i) {
        sourceAlpha[i] = channel(source[i], 24);
        const float alpha = sourceAlpha[i] + channel(pixels[i], 24) * (1 - sourceAlpha[i]);
        scale[i] = alpha != 0 ? 1 / (alpha != 0 ? alpha : 1) : 0;
        result[i] = bits(alpha) << 24;
    }
    for (int shift = 0; shift < 24; shift += 8) {
        for (size_t i = 0; i < kBlock; ++i) {
            const float s = channel(source[i], shift) * sourceAlpha[i];
            const float d = channel(pixels[i], shift) * channel(pixels[i], 24);
            out[i] = s + d * (1 - sourceAlpha[i]);
        }
        for (size_t i = 0; i < kBlock; ++i) result[i] |= bits(out[i] * scale[i]) << shift;
    }
    std::memcpy(pixels, result, sizeof(result));
}

void blendBlock(const uint8_t* source, uint8_t* pixels, size_t bytes) {
    Words s = {}, d = {};
    std::memcpy(s, source, bytes);
    std::memcpy(d, pixels, bytes);
    if (!blendTrivially(s, d)) blendInFloat(s, d);
    std::memcpy(pixels, d, bytes);
}

}  // namespace

void blendUnpremulRow(const uint8_t* source, uint8_t* pixels, size_t count) {
    constexpr size_t kBytes = sizeof(Words);
    size_t i = 0;
    for (; i + kBytes <= 4 * count; i += kBytes) blendBlock(source + i, pixels + i, kBytes);
    if (i < 4 * count) blendBlock(source + i, pixels + i, 4 * count - i);
}

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
    const float a = SkColorGetA(color) * kByteToUnit;
    return {SkColorGetR(color) * kByteToUnit * a, SkColorGetG(color) * kByteToUnit * a,
            SkColorGetB(color) * kByteToUnit * a, a};
}

}  // namespace portable
