// Finds the glyphs of a line that have colours of their own, and draws them.
#pragma once

#include <hwui/Paint.h>
#include <hwui/Typeface.h>
#include <minikin/Layout.h>

#include <cstdint>
#include <memory>

#include "effect/ColorGlyphs.h"
#include "raster/GxGlyph.h"
#include "text/GlyphRuns.h"

namespace GxFontEffect {

// Readies a paint for lines whose glyphs are wanted in colour, before they are laid out.
void askForColorGlyphs(android::Paint& paint);

class ColorGlyphDrawing {
public:
    // Colour 0xAARRGGBB, in whose opaque form a glyph is painted where its font says so.
    ColorGlyphDrawing(const android::Typeface& typeface, uint32_t textColor)
        : typeface_(typeface), textColor_(textColor | 0xFF000000u) {}

    // What the colour glyphs of a line are painted with, for a mask of these extents; null when
    // there are none. Throws std::bad_alloc.
    std::unique_ptr<ColorGlyphs> draw(const minikin::Layout& layout, android::Paint& paint,
                                      const GxGlyph& mask, LayoutCorner corner) const;

private:
    const android::Typeface& typeface_;
    uint32_t textColor_;
};

}  // namespace GxFontEffect
