#include "raster/GxBlender.h"

#include <android/log.h>

#include <bit>

#include "raster/BlendCut.h"

namespace GxFontEffect {

using kernels::fromWord;
using kernels::SourceOrder;

namespace {

constexpr const char* kTag = "Blender";

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
        kernels::max8Rows(cutToBitmap(x, y, destination, mask, width, height, width, 1));
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
    if (!isLayer(bitmap)) return;
    kernels::swapRedBlueRow(reinterpret_cast<kernels::Rgba*>(bitmap->data), bitmap->pixelCount());
}

}  // namespace GxFontEffect
