// COLR tables of version 1, made up in memory.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "support/SyntheticFont.h"

namespace gxtest {

// A paint and what is below it. Numbers are as the font keeps them: font units, angles in half
// turns, and fractions, which hold from -2 to just below 2.
using Paint = Bytes;

struct ColorStop {
    double offset;
    int palette;  // 0xFFFF is the text's colour
    double alpha = 1;
};
enum class Extend { kPad, kRepeat, kReflect };

Paint solidPaint(int palette, double alpha = 1);
// From (x0, y0) to (x1, y1), turned to the point (x2, y2).
Paint linearPaint(const std::array<int, 6>& points, const std::vector<ColorStop>& stops,
                  Extend extend = Extend::kPad);
// x, y and radius of both circles.
Paint radialPaint(const std::array<int, 6>& circles, const std::vector<ColorStop>& stops,
                  Extend extend = Extend::kPad);
// Degrees from 0 to 540.
Paint sweepPaint(int x, int y, double start, double end, const std::vector<ColorStop>& stops,
                 Extend extend = Extend::kPad);
Paint glyphPaint(uint16_t glyph, const Paint& fill);
Paint colorGlyphPaint(uint16_t glyph);
Paint layersPaint(int count, int first);
// xx, yx, xy, yy, dx, dy.
Paint transformPaint(const std::array<double, 6>& affine, const Paint& child);
Paint translatePaint(int dx, int dy, const Paint& child);
Paint scalePaint(double x, double y, int centerX, int centerY, const Paint& child);
Paint rotatePaint(double halfTurns, int centerX, int centerY, const Paint& child);
Paint skewPaint(double x, double y, const Paint& child);
Paint compositePaint(int mode, const Paint& source, const Paint& backdrop);

struct GraphGlyph {
    uint16_t glyph;
    Paint paint;
    std::vector<Box> clip = {};  // one or none
};

// The glyphs in rising order, the layers that layersPaint() names, and the palette as 0xAARRGGBB.
void addColorGraphs(SyntheticFont& font, const std::vector<GraphGlyph>& glyphs,
                    const std::vector<uint32_t>& palette, const std::vector<Paint>& layers = {});

}  // namespace gxtest
