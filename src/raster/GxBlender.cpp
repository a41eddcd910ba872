#include "raster/GxBlender.h"

#include <android/log.h>

#include <algorithm>
#include <cstring>
#include <type_traits>

#include "raster/kernels/BlendPixel.h"

namespace GxFontEffect {

using kernels::fromWord;
using kernels::Rgba;

namespace {

constexpr const char* kTag = "Blender";

// A source placed at (x, y) and cut to the destination, in destination pixels. 64 bits: the
// bitmap's extents are unsigned and x + width may pass the int range.
struct Clip {
    int64_t left;
    int64_t right;
    int64_t top;
    int64_t bottom;

    Clip(const GxBitmap& destination, int64_t x, int64_t y, int64_t width, int64_t height)
        : left(std::max<int64_t>(x, 0)),
          right(std::min<int64_t>(x + width, destination.width)),
          top(std::max<int64_t>(y, 0)),
          bottom(std::min<int64_t>(y + height, destination.height)) {}
    bool isEmpty() const { return left >= right || top >= bottom; }
};

// Calls row(destination row, source row, count) for every row of the clipped area, downwards.
// `stride` counts source elements, `Destination` is the pixel type.
template <typename Destination, typename Source, typename Row>
void forEachRow(int64_t x, int64_t y, const GxBitmap* destination, const Source* source,
                int64_t width, int64_t height, int64_t stride, Row row) {
    if (!destination || !source || !destination->data) return;
    constexpr bool is32 = sizeof(Destination) == 4;
    if (is32 ? destination->bytesPerPixel != 4 : destination->bytesPerPixel == 0) return;
    const Clip clip(*destination, x, y, width, height);
    if (clip.isEmpty()) return;
    const int64_t count = clip.right - clip.left;
    auto* pixels = reinterpret_cast<Destination*>(destination->data);
    for (int64_t top = clip.top; top < clip.bottom; ++top) {
        row(pixels + top * destination->width + clip.left,
            source + (top - y) * stride + (clip.left - x), count);
    }
}

// Every pixel of the clipped area becomes pixel(destination, source).
template <typename Destination, typename Source, typename Pixel>
void forEachPixel(int64_t x, int64_t y, const GxBitmap* destination, const Source* source,
                  int64_t width, int64_t height, int64_t stride, Pixel pixel) {
    forEachRow<Destination>(x, y, destination, source, width, height, stride,
                            [&](Destination* d, const Source* s, int64_t count) {
                                for (int64_t i = 0; i < count; ++i) d[i] = pixel(d[i], s[i]);
                            });
}

// Source pixels in their byte order, as they lie in memory.
struct BytesArgb {
    uint8_t a, r, g, b;
    operator Rgba() const { return {r, g, b, a}; }
};

// Byte strides need not be whole pixels, so rows are stepped in bytes.
template <typename Source>
void dstOverBytes(int x, int y, const GxBitmap* destination, const uint8_t* source, int width,
                  int height, int stride) {
    static_assert(sizeof(Source) == 4 && alignof(Source) == 1);
    if (!destination || !source || !destination->data || destination->bytesPerPixel != 4) return;
    const Clip clip(*destination, x, y, width, height);
    if (clip.isEmpty()) return;
    auto* pixels = reinterpret_cast<Rgba*>(destination->data);
    for (int64_t top = clip.top; top < clip.bottom; ++top) {
        Rgba* d = pixels + top * destination->width;
        const auto* s =
            reinterpret_cast<const Source*>(source + (top - y) * int64_t{stride}) + (clip.left - x);
        for (int64_t i = clip.left; i < clip.right; ++i, ++s) d[i] = kernels::dstOver32(d[i], *s);
    }
}

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
    forEachPixel<Rgba>(
        x, y, destination, mask, width, height, stride,
        [c = fromWord(color)](Rgba d, uint8_t m) { return kernels::srcOver8(d, m, c); });
}

void GxBlender::blendDstOver8To32(int x, int y, const GxBitmap* destination, const uint8_t* mask,
                                  int width, int height, int stride, uint32_t color) const {
    forEachPixel<Rgba>(
        x, y, destination, mask, width, height, stride,
        [c = fromWord(color)](Rgba d, uint8_t m) { return kernels::dstOver8(d, m, c); });
}

void GxBlender::blendDstOver8To32NSA(int x, int y, const GxBitmap* destination, const uint8_t* mask,
                                     int width, int height, int stride, uint32_t color) const {
    forEachPixel<Rgba>(
        x, y, destination, mask, width, height, stride,
        [c = fromWord(color)](Rgba d, uint8_t m) { return kernels::dstOverNsa8(d, m, c); });
}

void GxBlender::blendDstOverSA8To32(int x, int y, const GxBitmap* destination, const uint8_t* mask,
                                    int width, int height, int stride, uint32_t color) const {
    forEachPixel<Rgba>(
        x, y, destination, mask, width, height, stride,
        [c = fromWord(color)](Rgba d, uint8_t m) { return kernels::dstOverSa8(d, m, c); });
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
    forEachPixel<Rgba>(x, y, destination, source, width, height, stride,
                       [](Rgba d, uint32_t s) { return kernels::srcOver32(d, fromWord(s)); });
}

void GxBlender::blendDstOver32To32(int x, int y, const GxBitmap* destination,
                                   const uint32_t* source, int width, int height,
                                   int stride) const {
    forEachPixel<Rgba>(x, y, destination, source, width, height, stride,
                       [](Rgba d, uint32_t s) { return kernels::dstOver32(d, fromWord(s)); });
}

void GxBlender::drawBitmapBlend32(int x, int y, const GxBitmap* destination, const uint8_t* source,
                                  int width, int height, int stride, int /*mode*/,
                                  int byteOrder) const {
    blendDstOver32To32(x, y, destination, source, width, height, stride, byteOrder);
}

void GxBlender::blendDstOver32To32(int x, int y, const GxBitmap* destination, const uint8_t* source,
                                   int width, int height, int stride, int byteOrder) const {
    if (byteOrder == GXE_BYTE_ORDER_RGBA) {
        dstOverBytes<Rgba>(x, y, destination, source, width, height, stride);
    } else if (byteOrder == GXE_BYTE_ORDER_ARGB) {
        dstOverBytes<BytesArgb>(x, y, destination, source, width, height, stride);
    }
}

namespace {

// The bitmap form of drawBitmap passes unsigned extents through, so the body takes 64 bits.
void drawMask(int x, int y, const GxBitmap* destination, const uint8_t* mask, int64_t width,
              int64_t height, uint32_t color) {
    if (!destination) return;
    if (destination->bytesPerPixel == 4) {
        forEachPixel<Rgba>(
            x, y, destination, mask, width, height, width,
            [c = fromWord(color)](Rgba, uint8_t m) { return kernels::overwrite8(m, c); });
    } else {
        forEachPixel<uint8_t>(x, y, destination, mask, width, height, width,
                              [](uint8_t d, uint8_t m) { return std::max(d, m); });
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
    if (destination && destination->bytesPerPixel == 4) {
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
    if (!bitmap || !bitmap->data || bitmap->bytesPerPixel != 4) return;
    uint8_t* bytes = bitmap->data;
    for (uint64_t i = 0, count = bitmap->pixelCount(); i < count; ++i, bytes += 4) {
        uint32_t p;
        std::memcpy(&p, bytes, sizeof(p));
        p = (p & 0xFF00FF00u) | ((p & 0xFFu) << 16) | ((p >> 16) & 0xFFu);
        std::memcpy(bytes, &p, sizeof(p));
    }
}

}  // namespace GxFontEffect
