// Lines of text drawn by the libraries that a program would otherwise call: what ours are held to.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace gxbench {

// A font file and how a line is set in it.
struct LineSetting {
    std::string fontFile;
    int faceIndex = 0;
    int size = 0;  // pixels per em
    bool rightToLeft = false;
};

// An 8-bit mask that every contender clears and draws its line into, from the left edge.
struct LineCanvas {
    int width;
    int height;
    int baseline;
};

// Clears the mask, lays the text out and draws it.
using DrawLine = std::function<void(std::u16string_view)>;

// One HarfBuzz call over the whole line with FreeType's hinted advances, one FreeType call that
// loads and renders for each glyph, its bitmap added to the mask. Nothing is kept from line to line
// but the face and HarfBuzz's shape plans and advances. Null when the font cannot be opened.
DrawLine drawDirectly(const LineSetting& setting, const LineCanvas& canvas);

#ifdef GXBENCH_PANGO
// One Pango layout for each line, shown on a cairo A8 surface, the font map and cairo's glyph cache
// kept from line to line. Antialiasing is grey, hinting by the font's instructions. The font map
// knows no font but this one. Null when the font cannot be opened.
DrawLine drawWithPango(const LineSetting& setting, const LineCanvas& canvas);
#endif

}  // namespace gxbench
