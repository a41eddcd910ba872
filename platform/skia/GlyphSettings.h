// What of an SkFont decides how its glyphs look, with the rules applied by which settings override
// each other.
#pragma once

#include "SkFont.h"

namespace portable {

// Text whose matrix has a column longer than this many pixels is drawn as outlines, not as masks.
constexpr float kMaxMaskSize = 256;

// The size at which outlines are taken when they are scaled afterwards.
constexpr float kOutlineSize = 64;

struct GlyphSettings {
    float size;
    float scaleX;
    float skewX;
    SkFontHinting hinting;
    bool alias;
    bool embolden;
    bool subpixel;
    bool embeddedBitmaps;
    bool forceAutoHinting;
    bool colorGraphs;

    // Glyphs at their own size. Linear metrics and any skew switch hinting off.
    static GlyphSettings forMasks(const SkFont& font);

    // Glyphs at kOutlineSize, unhinted, with linear advances, to be scaled by size / kOutlineSize.
    static GlyphSettings forOutlines(const SkFont& font);

    // False when nothing can be drawn: a size or scale of 0, a value that is not finite.
    bool drawable() const;

    // Everything but the three floats, packed.
    unsigned flags() const;
};

// Whether the font is beyond kMaxMaskSize.
bool drawsAsOutlines(const SkFont& font);

}  // namespace portable
