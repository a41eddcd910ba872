// The one place where masks and layers are combined.
#pragma once

#include <cstdint>

#include "GxExport.h"
#include "raster/GxBitmap.h"

namespace GxFontEffect {

// How a source meets what a layer already holds. Values 4 to 6 exist and do nothing.
enum GxBlendMode : int {
    GXE_BLEND_SRC_OVER = 1,      // source over destination
    GXE_BLEND_DST_OVER = 2,      // destination over source
    GXE_BLEND_DST_OVER_NSA = 3,  // destination over source, the mask only switches on and off
    GXE_BLEND_OTHER = 7,         // destination over source, the mask attenuates the destination too
};

// Byte orders of 32-bit sources given as bytes.
enum GxByteOrder : int {
    GXE_BYTE_ORDER_ARGB = 0,
    GXE_BYTE_ORDER_RGBA = 1,
};

// Stateless, safe to share between threads that draw into different bitmaps.
//
// In every operation (x, y) is where the source's top-left corner lands in the destination; it may
// be negative, and whatever falls outside the destination is cut. The destination header is
// constant, its pixels are written. Widths and heights are in pixels, colours 0xAARRGGBB words.
// Null pointers, a destination without data or of the wrong pixel size and empty areas make an
// operation do nothing; nothing is reported and nothing is allocated. Each destination pixel is
// read and written once, rows downwards.
//
// Arithmetic: division by 255 is ((value + 1) x factor) >> 8, sums are clamped to 255. The formulas
// stand in raster/kernels/BlendPixel.h.
class GXTEXT_API GxBlender {
public:
    GxBlender() = default;
    virtual ~GxBlender() = default;

    // 8-bit mask tinted with `color` onto a 32-bit layer. `stride` is the mask's row stride in
    // bytes. Modes 3 and 7 leave a debug log line.
    void drawBitmapBlend8(int x, int y, const GxBitmap* destination, const uint8_t* mask, int width,
                          int height, int stride, uint32_t color, int mode) const;
    void blendSrcOver8To32(int x, int y, const GxBitmap* destination, const uint8_t* mask,
                           int width, int height, int stride, uint32_t color) const;
    void blendDstOver8To32(int x, int y, const GxBitmap* destination, const uint8_t* mask,
                           int width, int height, int stride, uint32_t color) const;
    void blendDstOver8To32NSA(int x, int y, const GxBitmap* destination, const uint8_t* mask,
                              int width, int height, int stride, uint32_t color) const;
    void blendDstOverSA8To32(int x, int y, const GxBitmap* destination, const uint8_t* mask,
                             int width, int height, int stride, uint32_t color) const;

    // 32-bit words 0xAARRGGBB, premultiplied, onto a 32-bit layer. `stride` in pixels. Modes 1 and
    // 2 only.
    void drawBitmapBlend32(int x, int y, const GxBitmap* destination, const uint32_t* source,
                           int width, int height, int stride, int mode) const;
    void blendSrcOver32To32(int x, int y, const GxBitmap* destination, const uint32_t* source,
                            int width, int height, int stride) const;
    void blendDstOver32To32(int x, int y, const GxBitmap* destination, const uint32_t* source,
                            int width, int height, int stride) const;

    // 32-bit source given as bytes, `stride` in bytes: destination over source whatever the mode.
    // Any byte order but the two of GxByteOrder draws nothing.
    void drawBitmapBlend32(int x, int y, const GxBitmap* destination, const uint8_t* source,
                           int width, int height, int stride, int mode, int byteOrder) const;
    void blendDstOver32To32(int x, int y, const GxBitmap* destination, const uint8_t* source,
                            int width, int height, int stride, int byteOrder) const;

    // Packed mask rows. A 32-bit layer is overwritten with the colour, its alpha scaled by the
    // mask, where the mask is 0 too; any other destination takes the per-pixel maximum.
    void drawBitmap(int x, int y, const GxBitmap* destination, const uint8_t* mask, int width,
                    int height, uint32_t color) const;
    void drawBitmap(int x, int y, const GxBitmap* destination, const GxBitmap* source,
                    uint32_t color) const;
    void drawBitmap8To32(int x, int y, const GxBitmap* destination, const uint8_t* mask, int width,
                         int height, uint32_t color) const;
    void drawBitmap8To8(int x, int y, const GxBitmap* destination, const uint8_t* mask, int width,
                        int height) const;

    // Swaps bytes 0 and 2 of every pixel of a 32-bit bitmap.
    static void convertBGRAToARGB(const GxBitmap* bitmap);
};

}  // namespace GxFontEffect
