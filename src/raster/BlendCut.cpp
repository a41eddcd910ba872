#include "raster/BlendCut.h"

#include <algorithm>

namespace GxFontEffect {

using kernels::BlendArea;

bool isLayer(const GxBitmap* bitmap) {
    return bitmap && bitmap->data && bitmap->bytesPerPixel == 4;
}

bool isMask(const GxBitmap* bitmap) {
    return bitmap && bitmap->data && bitmap->bytesPerPixel == 1;
}

// 64 bits: the bitmap's extents are unsigned and x + width may pass the int range.
BlendArea cutToBitmap(int64_t x, int64_t y, const GxBitmap* destination, const void* source,
                      int64_t width, int64_t height, int64_t stride, int64_t sourceBytes) {
    if (!destination || !source || !destination->data) return {};
    const int64_t left = std::max<int64_t>(x, 0);
    const int64_t right = std::min<int64_t>(x + width, destination->width);
    const int64_t top = std::max<int64_t>(y, 0);
    const int64_t bottom = std::min<int64_t>(y + height, destination->height);
    if (left >= right || top >= bottom) return {};

    const int64_t pixelBytes = destination->bytesPerPixel == 4 ? 4 : 1;
    const int64_t rowBytes = destination->width * pixelBytes;
    BlendArea area;
    area.destination = destination->data + top * rowBytes + left * pixelBytes;
    area.destinationStride = rowBytes;
    area.source =
        static_cast<const uint8_t*>(source) + (top - y) * stride + (left - x) * sourceBytes;
    area.sourceStride = stride;
    area.width = static_cast<size_t>(right - left);
    area.height = static_cast<size_t>(bottom - top);
    return area;
}

BlendArea cutMaskOntoLayer(int64_t x, int64_t y, const GxBitmap* layer, const uint8_t* mask,
                           int64_t width, int64_t height, int64_t stride) {
    return isLayer(layer) ? cutToBitmap(x, y, layer, mask, width, height, stride, 1) : BlendArea();
}

BlendArea cut32OntoLayer(int64_t x, int64_t y, const GxBitmap* layer, const void* source,
                         int64_t width, int64_t height, int64_t stride) {
    return isLayer(layer) ? cutToBitmap(x, y, layer, source, width, height, stride, 4)
                          : BlendArea();
}

}  // namespace GxFontEffect
