#include "raster/GxBlender.h"

#include <android/log.h>

#include <algorithm>
#include <bit>

#include "raster/kernels/BlendRows.h"

namespace GxFontEffect {

using kernels::BlendArea;
using kernels::fromWord;
using kernels::SourceOrder;

namespace {

constexpr const char* kTag = "Blender";

// A source placed at (x, y) and cut to the destination. Strides are in bytes. 64 bits: the bitmap's
// extents are unsigned and x + width may pass the int range. No area, of no pixels, when nothing
// is to be drawn.
BlendArea cut(int64_t x, int64_t y, const GxBitmap* destination, const void* source, int64_t width,
              int64_t height, int64_t stride, int64_t sourceBytes) {
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

bool isLayer(const GxBitmap* bitmap) {
    return bitmap && bitmap->bytesPerPixel == 4;
}

BlendArea cutMaskOntoLayer(int x, int y, const GxBitmap* layer, const uint8_t* mask, int64_t width,
                           int64_t height, int64_t stride) {
    return isLayer(layer) ? cut(x, y, layer, mask, width, height, stride, 1) : BlendArea();
}

BlendArea cut32OntoLayer(int x, int y, const GxBitmap* layer, const void* source, int64_t width,
                         int64_t height, int64_t stride) {
    return isLayer(layer) ? cut(x, y, layer, source, width, height, stride, 4) : BlendArea();
}

// Words 0xAARRGGBB lie in memory as blue, green, red, alpha.
static_assert(std::endian::native == std::endian::little);
constexpr SourceOrder kWords = SourceOrder::kBgra;

}  // namespace

void GxBlender::drawBitmapBlend8(int x, int y, const GxBitmap* destination, const uint8_t* mask,
                                 int width, int height, int stride, uint32_t color,
                                 int mode) const {
    switch (mode) {
        case GXE_BLEND_SRC_OVER:
            blendSrcOver8To32(x, y, destination, mask, width, height, stride, color);
            break;
        case GXE_BLEND_DST_OVER:
            blendDstOver8To32(x, y, destination, mask, width, height, stride, color);
            break;
        case GXE_BLEND_DST_OVER_NSA:
            blendDstOver8To32NSA(x, y, destination, mask, width, height, stride, color);
            __android_log_print(ANDROID_LOG_DEBUG, kTag, "Blender - GXE_BLEND_DST_OVER_NSA");
            break;
        case GXE_BLEND_OTHER:
            blendDstOverSA8To32(x, y, destination, mask, width, height, stride, color);
            __android_log_print(ANDROID_LOG_DEBUG, kTag, "Blender - GXE_BLEND_OTHER");
            break;
        default:
            break;
    }
}

void GxBlender::blendSrcOver8To32(int x, int y, const GxBitmap* destination, const uint8_t* mask,
                                  int width, int height, int stride, uint32_t color) const {
    kernels::srcOver8Rows(cutMaskOntoLayer(x, y, destination, mask, width, height, stride),
                          fromWord(color));
}

void GxBlender::blendDstOver8To32(int x, int y, const GxBitmap* destination, const uint8_t* mask,
                                  int width, int height, int stride, uint32_t color) const {
    kernels::dstOver8Rows(cutMaskOntoLayer(x, y, destination, mask, width, height, stride),
                          fromWord(color));
}

void GxBlender::blendDstOver8To32NSA(int x, int y, const GxBitmap* destination, const uint8_t* mask,
                                     int width, int height, int stride, uint32_t color) const {
    kernels::dstOverNsa8Rows(cutMaskOntoLayer(x, y, destination, mask, width, height, stride),
                             fromWord(color));
}

void GxBlender::blendDstOverSA8To32(int x, int y, const GxBitmap* destination, const uint8_t* mask,
                                    int width, int height, int stride, uint32_t color) const {
    kernels::dstOverSa8Rows(cutMaskOntoLayer(x, y, destination, mask, width, height, stride),
                            fromWord(color));
}

void GxBlender::drawBitmapBlend32(int x, int y, const GxBitmap* destination, const uint32_t* source,
                                  int width, int height, int stride, int mode) const {
    if (mode == GXE_BLEND_SRC_OVER) {
        blendSrcOver32To32(x, y, destination, source, width, height, stride);
    } else if (mode == GXE_BLEND_DST_OVER) {
        blendDstOver32To32(x, y, destination, source, width, height, stride);
    }
}

void GxBlender::blendSrcOver32To32(int x, int y, const GxBitmap* destination,
                                   const uint32_t* source, int width, int height,
                                   int stride) const {
    kernels::srcOver32Rows(
        cut32OntoLayer(x, y, destination, source, width, height, int64_t{stride} * 4), kWords);
}

void GxBlender::blendDstOver32To32(int x, int y, const GxBitmap* destination,
                                   const uint32_t* source, int width, int height,
                                   int stride) const {
    kernels::dstOver32Rows(
        cut32OntoLayer(x, y, destination, source, width, height, int64_t{stride} * 4), kWords);
}

void GxBlender::drawBitmapBlend32(int x, int y, const GxBitmap* destination, const uint8_t* source,
                                  int width, int height, int stride, int /*mode*/,
                                  int byteOrder) const {
    blendDstOver32To32(x, y, destination, source, width, height, stride, byteOrder);
}

void GxBlender::blendDstOver32To32(int x, int y, const GxBitmap* destination, const uint8_t* source,
                                   int width, int height, int stride, int byteOrder) const {
    if (byteOrder != GXE_BYTE_ORDER_RGBA && byteOrder != GXE_BYTE_ORDER_ARGB) return;
    kernels::dstOver32Rows(
        cut32OntoLayer(x, y, destination, source, width, height, stride),
        byteOrder == GXE_BYTE_ORDER_RGBA ? SourceOrder::kRgba : SourceOrder::kArgb);
}

namespace {

// The bitmap form of drawBitmap passes unsigned extents through, so the body takes 64 bits.
void drawMask(int x, int y, const GxBitmap* destination, const uint8_t* mask, int64_t width,
              int64_t height, uint32_t color) {
    if (isLayer(destination)) {
        kernels::overwrite8Rows(cutMaskOntoLayer(x, y, destination, mask, width, height, width),
                                fromWord(color));
    } else if (destination && destination->bytesPerPixel != 0) {
        kernels::max8Rows(cut(x, y, destination, mask, width, height, width, 1));
    }
}

}  // namespace

void GxBlender::drawBitmap(int x, int y, const GxBitmap* destination, const uint8_t* mask,
                           int width, int height, uint32_t color) const {
    drawMask(x, y, destination, mask, width, height, color);
}

void GxBlender::drawBitmap(int x, int y, const GxBitmap* destination, const GxBitmap* source,
                           uint32_t color) const {
    if (source) drawMask(x, y, destination, source->data, source->width, source->height, color);
}

void GxBlender::drawBitmap8To32(int x, int y, const GxBitmap* destination, const uint8_t* mask,
                                int width, int height, uint32_t color) const {
    if (isLayer(destination)) {
        drawMask(x, y, destination, mask, width, height, color);
    }
}

void GxBlender::drawBitmap8To8(int x, int y, const GxBitmap* destination, const uint8_t* mask,
                               int width, int height) const {
    if (destination && destination->bytesPerPixel != 4) {
        drawMask(x, y, destination, mask, width, height, 0);
    }
}

void GxBlender::convertBGRAToARGB(const GxBitmap* bitmap) {
    if (!isLayer(bitmap) || !bitmap->data) return;
    kernels::swapRedBlueRow(reinterpret_cast<kernels::Rgba*>(bitmap->data), bitmap->pixelCount());
}

}  // namespace GxFontEffect
