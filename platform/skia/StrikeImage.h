// Glyphs that a font holds as pictures: their coverage, fitted to any size.
#pragma once

#include <ft2build.h>
#include FT_FREETYPE_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "SkRect.h"

namespace portable {

// Where a glyph goes: its coordinates times scale, then moved, in pixels with y downwards.
struct GlyphPlacement {
    double scale = 1;
    double dx = 0;
    double dy = 0;
};

// What is left to do to FreeType's glyphs before they are placed, y downwards: (xx, xy; 0, yy).
struct GlyphMatrix {
    float xx = 1;
    float xy = 0;
    float yy = 1;

    bool isIdentity() const { return xx == 1 && xy == 0 && yy == 1; }
};

class StrikeImage {
public:
    struct Picture {
        std::vector<uint8_t> pixels;  // rows packed, top first
        int width = 0;
        int height = 0;

        uint8_t at(int x, int y) const { return pixels[static_cast<size_t>(y) * width + x]; }
    };

    // Larger pictures are left out: a few bytes of PNG can ask for gigabytes.
    static constexpr uint64_t kMaxPixels = 1 << 22;

    // Copies the coverage, for coloured pictures the alpha, of the slot's bitmap. False when there
    // is none or it is too large.
    bool assign(const FT_GlyphSlotRec& slot);

    SkIRect bounds(const GlyphMatrix& matrix, const GlyphPlacement& placement) const;

    // Writes the coverage inside window to out, rows packed; out comes cleared.
    void render(const GlyphMatrix& matrix, const GlyphPlacement& placement, const SkIRect& window,
                uint8_t* out) const;

private:
    void copy(const GlyphPlacement& placement, const SkIRect& window, uint8_t* out) const;
    void resample(const GlyphMatrix& matrix, const GlyphPlacement& placement, const SkIRect& window,
                  uint8_t* out) const;

    Picture fPicture;
    int fLeft = 0;  // of the corner, from the glyph's origin
    int fTop = 0;
};

}  // namespace portable
