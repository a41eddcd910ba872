// A view of pixels in memory that the caller owns.
#pragma once

#include <cstddef>

#include "SkImageInfo.h"

// Copies share the pixels. The memory must outlive every copy and every canvas that uses it.
class SkBitmap {
public:
    // Borrows pixels: info.height() rows, rowBytes apart. rowBytes 0 stands for packed rows.
    // False, leaving an empty bitmap, for a negative size or rows shorter than the width needs.
    // Null pixels give the dimensions alone: true, and drawing does nothing.
    bool installPixels(const SkImageInfo& info, void* pixels, size_t rowBytes);
    // Back to an empty bitmap.
    void reset() { *this = SkBitmap(); }

    const SkImageInfo& info() const { return fInfo; }
    int width() const { return fInfo.width(); }
    int height() const { return fInfo.height(); }
    SkColorType colorType() const { return fInfo.colorType(); }
    SkAlphaType alphaType() const { return fInfo.alphaType(); }
    size_t rowBytes() const { return fRowBytes; }
    void* getPixels() const { return fPixels; }

    bool empty() const { return fInfo.isEmpty(); }
    bool isNull() const { return fPixels == nullptr; }
    bool drawsNothing() const { return empty() || isNull(); }

private:
    SkImageInfo fInfo;
    void* fPixels = nullptr;
    size_t fRowBytes = 0;
};
