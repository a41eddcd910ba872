// Dimensions and pixel format of a bitmap.
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>

#include "SkColorSpace.h"
#include "SkRect.h"
#include "SkRefCnt.h"

// The canvas draws into kAlpha_8 and kRGBA_8888 (bytes R, G, B, A); on the others it draws nothing.
enum SkColorType {
    kUnknown_SkColorType,
    kAlpha_8_SkColorType,
    kRGB_565_SkColorType,
    kARGB_4444_SkColorType,
    kRGBA_8888_SkColorType,
    kRGB_888x_SkColorType,
    kBGRA_8888_SkColorType,
};

enum SkAlphaType {
    kUnknown_SkAlphaType,
    kOpaque_SkAlphaType,
    kPremul_SkAlphaType,
    kUnpremul_SkAlphaType,
};

struct SkImageInfo {
public:
    SkImageInfo() = default;

    static SkImageInfo Make(int width, int height, SkColorType ct, SkAlphaType at,
                            sk_sp<SkColorSpace> cs = nullptr) {
        return SkImageInfo(width, height, ct, at, std::move(cs));
    }
    // 8-bit coverage: premultiplied, no colour space.
    static SkImageInfo MakeA8(int width, int height) {
        return Make(width, height, kAlpha_8_SkColorType, kPremul_SkAlphaType);
    }

    int width() const { return fWidth; }
    int height() const { return fHeight; }
    SkColorType colorType() const { return fColorType; }
    SkAlphaType alphaType() const { return fAlphaType; }
    SkColorSpace* colorSpace() const { return fColorSpace.get(); }
    sk_sp<SkColorSpace> refColorSpace() const { return fColorSpace; }
    bool isEmpty() const { return fWidth <= 0 || fHeight <= 0; }
    SkIRect bounds() const { return SkIRect::MakeWH(fWidth, fHeight); }

    // 0 for the unknown type.
    int bytesPerPixel() const {
        switch (fColorType) {
            case kUnknown_SkColorType:
                return 0;
            case kAlpha_8_SkColorType:
                return 1;
            case kRGB_565_SkColorType:
            case kARGB_4444_SkColorType:
                return 2;
            case kRGBA_8888_SkColorType:
            case kRGB_888x_SkColorType:
            case kBGRA_8888_SkColorType:
                return 4;
        }
        return 0;
    }
    // Bytes of one packed row; 0 when the width is not positive.
    uint64_t minRowBytes64() const {
        return fWidth <= 0 ? 0 : static_cast<uint64_t>(fWidth) * bytesPerPixel();
    }
    bool validRowBytes(size_t rowBytes) const { return rowBytes >= minRowBytes64(); }

private:
    SkImageInfo(int width, int height, SkColorType ct, SkAlphaType at, sk_sp<SkColorSpace> cs)
        : fColorSpace(std::move(cs)),
          fWidth(width),
          fHeight(height),
          fColorType(ct),
          fAlphaType(at) {}

    sk_sp<SkColorSpace> fColorSpace;
    int fWidth = 0;
    int fHeight = 0;
    SkColorType fColorType = kUnknown_SkColorType;
    SkAlphaType fAlphaType = kUnknown_SkAlphaType;
};
