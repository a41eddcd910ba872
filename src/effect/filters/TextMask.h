// The text's coverage as a filter sees it, and drawing a mask that it made.
#pragma once

#include <cstdint>

#include "effect/GxECore.h"
#include "raster/GxBitmap.h"

namespace GxFontEffect {

// The part of the text mask inside the text's box, a view for the length of a call. The box may be
// empty and may reach past the bitmap: coverage there is 0. Coordinates are relative to the box.
class TextMask {
public:
    // Null blocks, bitmaps and rectangles, bitmaps that are no 8-bit mask and inverted rectangles
    // give an invalid view.
    explicit TextMask(const GxECore::ParamPostProcessing* param);

    bool isValid() const { return pixels != nullptr; }

    // The same box of another mask of the same size; this view when it is no such mask.
    TextMask over(const GxBitmap& mask) const;

    // Position in the layer and extents of the box, in pixels.
    int64_t left = 0;
    int64_t top = 0;
    int64_t width = 0;
    int64_t height = 0;

    int64_t stride = 0;  // bytes per row of the bitmap

    // What the bitmap holds of the box: columns [firstColumn, lastColumn), rows [firstRow,
    // lastRow).
    int64_t firstColumn = 0;
    int64_t lastColumn = 0;
    int64_t firstRow = 0;
    int64_t lastRow = 0;

    // Coverage of row y from `firstColumn` on, null for a row that the bitmap does not hold.
    const uint8_t* row(int64_t y) const;

    // Copies the coverage to a plane of zeros; `corner` is the cell of the box's top left.
    void copyTo(uint8_t* corner, int64_t stride) const;

private:
    const uint8_t* pixels = nullptr;  // the bitmap's first
    int64_t maskLeft = 0;             // which lies here in the box
    int64_t maskTop = 0;
};

// GxBlender::drawBitmapBlend8 at a position of 64 bits; nothing is drawn where 32 do not do.
void drawTinted(int64_t x, int64_t y, const GxBitmap* layer, const uint8_t* mask, int64_t width,
                int64_t height, int64_t stride, uint32_t color, int mode);

}  // namespace GxFontEffect
