// TrueType fonts made up in memory: small ones for any script, and ones that no tool would write.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "platform/SfntFile.h"

namespace gxtest {

// All in font units, y upwards.
struct Box {
    int left;
    int bottom;
    int right;
    int top;
};

struct Component {
    uint16_t glyph;
    int dx = 0;
    int dy = 0;
};

// Descriptions for 'glyf'. Boxes are contours of four corners; `instructions` is what the
// interpreter runs for the glyph.
Bytes boxGlyph(const std::vector<Box>& boxes, const Bytes& instructions = {});
// A contour of `points` points, all in the same place, in a few hundred bytes.
Bytes densePointGlyph(int points);
Bytes compositeGlyph(const std::vector<Component>& components, const Bytes& instructions = {});

class SyntheticFont {
public:
    // Glyph 0 is a box, as in any font.
    SyntheticFont();

    uint16_t addGlyph(Bytes description, int advance);
    // A new glyph of one box for each of the code points first to last; returns the first glyph.
    uint16_t addLetters(uint32_t first, uint32_t last);
    void map(uint32_t codePoint, uint16_t glyph) { codePoints_[codePoint] = glyph; }
    // Makes the font variable: at `max` of its weight the right sides of all boxes and the advances
    // lie `widening` units further right. After the last glyph.
    void addWeightAxis(int min, int initial, int max, int widening);
    // The glyph of a code point; 0 when there is none.
    uint16_t glyphOf(uint32_t codePoint) const;

    Bytes build() const;

    uint32_t unitsPerEm = 1000;
    int ascender = 800;
    int descender = -200;
    uint32_t twilightPoints = 0;
    uint32_t weight = 400;
    // Added as they are; a name that build() makes itself is replaced.
    std::map<std::string, Bytes> tables;

private:
    Bytes cmap() const;

    std::vector<Bytes> glyphs_;
    std::vector<int> advances_;
    std::map<uint32_t, uint16_t> codePoints_;
};

// One lookup of a GSUB or GPOS table and the feature that it serves in every script.
struct LayoutFeature {
    std::string tag;
    uint32_t lookupType;
    Bytes subtable;
};
Bytes layoutTable(const std::vector<LayoutFeature>& features);

// Subtables: of GSUB type 1 (one glyph for another), 4 (two glyphs become one), 2 (one glyph
// becomes several), and of GPOS type 1 (a glyph moved by x and its advance changed).
Bytes singleSubstitution(const std::map<uint16_t, uint16_t>& pairs);
Bytes ligature(uint16_t first, uint16_t second, uint16_t both);
Bytes multiplication(uint16_t glyph, const std::vector<uint16_t>& into);
Bytes adjustment(uint16_t glyph, int x, int advance);

// COLR and CPAL: one colour glyph of layers in half transparent and in text colour.
void addColorLayers(SyntheticFont& font, uint16_t base, const std::vector<uint16_t>& layers);

// CBLC and CBDT at `ppem` pixels: one grey picture of width x height for `glyph`.
void addPicture(SyntheticFont& font, uint16_t glyph, int ppem, int width, int height);

}  // namespace gxtest
