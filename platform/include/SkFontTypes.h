// How much glyph outlines are fitted to the pixel grid.
#pragma once

enum class SkFontHinting {
    kNone,    // outlines unchanged
    kSlight,  // fitted vertically only
    kNormal,  // by the font's own instructions
    kFull,    // the same as kNormal for grey masks
};
