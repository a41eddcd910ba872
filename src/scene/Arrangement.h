// Where a text lies in its picture, and which fonts draw it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "GxExport.h"
#include "scene/FontCatalog.h"

namespace gxtext {

// Pixels of the picture, from its upper left corner; the interior is [left, right) x [top, bottom).
struct Box {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
    bool operator==(const Box&) const = default;
};

// One line as it lies in the picture.
struct GXTEXT_API Line {
    std::string text;   // UTF-8, without its line break
    int32_t start = 0;  // UTF-16 positions in the whole text
    int32_t end = 0;
    bool rightToLeft = false;
    int x = 0;  // left end
    int baseline = 0;
    float advance = 0.0f;  // pixels
    Box box;               // advance by line height: what a background covers
    Box ink;               // where glyphs are drawn; may reach beyond x and advance

    // Moves it by pixels.
    void shift(int dx, int dy);
};

// A face that takes part.
struct UsedFont {
    FontFace face;
    std::vector<char32_t> characters;  // of the text that it draws, each once, in order of value
};

struct Arrangement {
    int width = 0;  // of the picture, margins included, in pixels
    int height = 0;
    Box margins;  // room for the effects, in pixels on each side
    std::vector<Line> lines;
    std::vector<UsedFont> fonts;    // the style's own first, then fallbacks
    std::vector<char32_t> missing;  // characters that no font has, each once, in order of value
};

}  // namespace gxtext
