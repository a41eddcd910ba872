// Glyphs that a font holds as pictures: their coverage and their colours, fitted to any size.
#pragma once

#include <ft2build.h>
#include FT_FREETYPE_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
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
        size_t channels = 1;  // coverage, or 4: premultiplied B, G, R, A

        const uint8_t* at(int x, int y) const {
            return pixels.data() + (static_cast<size_t>(y) * width + x) * channels;
        }
    };

    // Larger pictures are left out: a few bytes of PNG can ask for gigabytes.
    static constexpr uint64_t kMaxPixels = 1 << 22;

    // Copies the slot's bitmap. False when there is none or it is too large.
    bool assign(const FT_GlyphSlotRec& slot);

    bool isColored() const { return fPicture.channels > 1; }
    size_t bytes() const { return sizeof(StrikeImage) + fPicture.pixels.capacity(); }

    SkIRect bounds(const GlyphMatrix& matrix, const GlyphPlacement& placement) const;

    // Writes the coverage inside window, for coloured pictures the alpha, to out, rows packed; out
    // comes cleared.
    void render(const GlyphMatrix& matrix, const GlyphPlacement& placement, const SkIRect& window,
                uint8_t* out) const;
    // The same for the premultiplied bytes R, G, B, A of a coloured picture. Their alpha is what
    // render() writes, and no colour is above it.
    void renderColors(const GlyphMatrix& matrix, const GlyphPlacement& placement,
                      const SkIRect& window, uint8_t* out) const;

private:
    template <size_t kFirst, size_t kChannels>
    void draw(const GlyphMatrix& matrix, const GlyphPlacement& placement, const SkIRect& window,
              uint8_t* out) const;
    template <size_t kFirst, size_t kChannels>
    void copy(const GlyphPlacement& placement, const SkIRect& window, uint8_t* out) const;
    template <size_t kFirst, size_t kChannels>
    void resample(const GlyphMatrix& matrix, const GlyphPlacement& placement, const SkIRect& window,
                  uint8_t* out) const;

    Picture fPicture;
    int fLeft = 0;  // of the corner, from the glyph's origin
    int fTop = 0;
};

// A coloured picture at its size, kept apart from the font: one measured first and drawn later is
// unpacked once. Immutable.
class GlyphPicture {
public:
    GlyphPicture(std::shared_ptr<const StrikeImage> image, const GlyphMatrix& matrix)
        : fImage(std::move(image)), fMatrix(matrix) {}

    SkIRect bounds(const GlyphPlacement& placement) const {
        return fImage->bounds(fMatrix, placement);
    }
    void render(const GlyphPlacement& placement, const SkIRect& window, uint8_t* out) const {
        fImage->render(fMatrix, placement, window, out);
    }
    void renderColors(const GlyphPlacement& placement, const SkIRect& window, uint8_t* out) const {
        fImage->renderColors(fMatrix, placement, window, out);
    }
    size_t bytes() const { return sizeof(GlyphPicture) + fImage->bytes(); }

private:
    std::shared_ptr<const StrikeImage> fImage;
    GlyphMatrix fMatrix;
};

}  // namespace portable
