// The coverage mask of one drawn line: what the glyph drawing hands to the effect stack.
#pragma once

#include <cstdint>

namespace GxFontEffect {

// Plain record. `pixels` is an array of width x height coverage bytes, rows packed; whoever made
// the record releases it with array delete. The effect side reads pixels, width and height only.
struct GxGlyph {
    uint8_t* pixels = nullptr;
    uint16_t width = 0;
    uint16_t height = 0;
    int32_t baseline = 0;  // rows from the mask's top to the baseline
    int32_t xOffset = 0;   // pixels from the pen position to the mask's left edge
};

}  // namespace GxFontEffect
