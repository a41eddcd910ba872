#include "skia/PixelBlend.h"

namespace portable {

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
