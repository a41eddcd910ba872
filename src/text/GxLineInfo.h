// One line of a laid-out text, in view pixels.
#pragma once

#include <cstdint>

#include "raster/GxBitmap.h"

namespace GxFontEffect {

// Filled by whoever lays the text out (the Java layout, or a caller's own line breaking), handed
// over with GxTextObject::SetLineInfo.
struct GxLineInfo {
    int32_t x = 0;          // left end of the line in the view
    int32_t y = 0;          // baseline in the view, downwards
    int32_t start = 0;      // first UTF-16 unit of the line in the text
    int32_t end = 0;        // one past its last unit
    int32_t direction = 1;  // of the paragraph: negative means right to left
    GxRect rect;  // background box in bitmap pixels; rendering moves it by the effect margins
};

}  // namespace GxFontEffect
