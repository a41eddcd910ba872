#include "raster/GxBitmap.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace GxFontEffect {

namespace {

uint32_t formatOf(uint32_t bytesPerPixel) {
    return bytesPerPixel == 4 ? GxBitmap::kColor32 : GxBitmap::kMask8;
}

// False when the size cannot be addressed.
bool byteSize(const GxBitmap& bitmap, size_t& size) {
    return !__builtin_mul_overflow(bitmap.pixelCount(), uint64_t{bitmap.bytesPerPixel}, &size) &&
           size <= PTRDIFF_MAX;
}

}  // namespace

GxBitmap::GxBitmap(uint32_t width, uint32_t height, uint32_t bytesPerPixel)
    : width(width), height(height), format(formatOf(bytesPerPixel)), bytesPerPixel(bytesPerPixel) {
    allocate();
}

GxBitmap::GxBitmap(uint32_t width, uint32_t height, const void* pixels, uint32_t bytesPerPixel)
    : width(width), height(height), format(formatOf(bytesPerPixel)), bytesPerPixel(bytesPerPixel) {
    copyPixels(pixels);
}

GxBitmap::GxBitmap(const GxBitmap& other)
    : width(other.width),
      height(other.height),
      format(other.format),
      bytesPerPixel(other.bytesPerPixel) {
    copyPixels(other.data);
}

GxBitmap::GxBitmap(const GxBitmap& source, const GxRect* rect)
    : format(source.format), bytesPerPixel(source.bytesPerPixel) {
    if (!rect) return;
    width = rect->width();
    height = rect->height();
    allocate();
    if (!data || !source.data || bytesPerPixel == 0) return;

    const int64_t left = std::max<int64_t>(rect->left, 0);
    const int64_t right = std::min<int64_t>(rect->right, source.width);
    const int64_t top = std::max<int64_t>(rect->top, 0);
    const int64_t bottom = std::min<int64_t>(rect->bottom, source.height);
    if (left >= right) return;
    for (int64_t y = top; y < bottom; ++y) {
        std::memcpy(data + (y - rect->top) * width + (left - rect->left),
                    source.data + y * source.width + left, static_cast<size_t>(right - left));
    }
}

GxBitmap& GxBitmap::operator=(const GxBitmap& other) {
    if (this == &other) return *this;
    width = other.width;
    height = other.height;
    format = other.format;
    bytesPerPixel = other.bytesPerPixel;
    std::free(data);
    data = nullptr;
    copyPixels(other.data);
    return *this;
}

GxBitmap::~GxBitmap() {
    std::free(data);
}

void GxBitmap::allocate() {
    size_t size = 0;
    // At least one byte: an empty bitmap is not a failed one.
    if (byteSize(*this, size)) {
        data = static_cast<uint8_t*>(std::calloc(std::max<size_t>(size, 1), 1));
    }
}

void GxBitmap::copyPixels(const void* pixels) {
    size_t size = 0;
    if (!pixels || !byteSize(*this, size)) return;
    data = static_cast<uint8_t*>(std::malloc(std::max<size_t>(size, 1)));
    if (data) std::memcpy(data, pixels, size);
}

}  // namespace GxFontEffect
