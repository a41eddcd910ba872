// Vertical extents of a font in pixels, y downwards: what is above the baseline is negative.
#pragma once

#include "SkScalar.h"

struct SkFontMetrics {
    SkScalar fTop = 0;      // highest point of any glyph
    SkScalar fAscent = 0;   // recommended distance above the baseline
    SkScalar fDescent = 0;  // recommended distance below the baseline
    SkScalar fBottom = 0;   // lowest point of any glyph
    SkScalar fLeading = 0;  // recommended gap between lines
};
