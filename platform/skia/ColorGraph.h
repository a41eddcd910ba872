// Glyphs of COLR version 1: draws a graph of paints.
#pragma once

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_COLOR_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "SkColor.h"
#include "SkRect.h"
#include "skia/ColorPaint.h"
#include "skia/ColorTable.h"
#include "skia/GlyphData.h"
#include "skia/StrikeImage.h"

namespace portable {

// The graph of one glyph. Cycles end where they close, and what is beyond the bounds below is left
// out. All calls throw std::bad_alloc.
class ColorGraph {
public:
    static constexpr int kMaxDepth = 64;
    static constexpr int kMaxPaints = 4096;
    // Pictures made on the way that are there at one time.
    static constexpr int kMaxPictures = 8;
    // Pixels painted, and points of outlines and colour lines, for one glyph.
    static constexpr uint64_t kMaxPixels = uint64_t{1} << 26;
    static constexpr uint64_t kMaxPoints = uint64_t{1} << 20;

    // Of a face whose size is selected and that is used by nobody else meanwhile. `overlaps` says
    // that contours of the font may overlap. `foreground` is the colour that the font leaves to the
    // text, its alpha is not looked at.
    ColorGraph(FT_Face face, const GlyphData& data, const ColorTable& table, bool overlaps,
               SkColor foreground);

    // The whole pixels that hold the font's clip box of the glyph, without one the boxes of all
    // shapes; empty when there are none.
    SkIRect bounds(uint16_t glyph, const GlyphMatrix& matrix, const GlyphPlacement& placement);

    // Paints what window shows onto `out`: premultiplied R, G, B, A, rows packed, which comes
    // cleared.
    void render(uint16_t glyph, const GlyphMatrix& matrix, const GlyphPlacement& placement,
                const SkIRect& window, uint8_t* out);

    // Whether the picture depends on the foreground, after render().
    bool usesForeground() const { return fUsesForeground; }

private:
    // Where paint shows: coverage of the box, nothing for all of it.
    struct Clip {
        SkIRect box;
        std::vector<uint8_t> coverage;
    };
    struct Picture {
        SkIRect box;
        uint8_t* pixels;
    };
    // Where one paint goes. Without a picture only the boxes of shapes are looked at.
    struct Target {
        Affine matrix;  // from font units to pixels
        const Clip* clip;
        const Picture* picture;

        Target with(const Affine& inner) const { return {matrix.after(inner), clip, picture}; }
    };

    void start();
    Affine rootMatrix(const GlyphMatrix& matrix, const GlyphPlacement& placement) const;
    void paintGlyphGraph(uint16_t glyph, const Target& target);
    void paintAt(size_t place, const Target& target);
    void paintContent(const GraphPaint& paint, const Target& target);
    void paintLayers(const GraphPaint& paint, const Target& target);
    void paintShape(const GraphPaint& paint, const Target& target);
    void paintColorGlyph(uint16_t glyph, const Target& target);
    void paintComposite(const GraphPaint& paint, const Target& target);
    void fillGradient(const Gradient& gradient, const GraphPaint& paint, const Target& target);
    template <typename ColorAt>
    void fill(const Target& target, ColorAt colorAt);
    void fillShape(FT_Outline& outline, const Target& target, Clip* clip);

    bool loadShape(uint16_t glyph);
    PaintColor colorOf(const PaletteColor& color);
    ColorLine lineOf(const GraphPaint& gradient);
    bool takePixels(const SkIRect& box);

    FT_Face fFace;
    const GlyphData& fData;
    const ColorTable& fTable;
    bool fOverlaps;
    SkColor fForeground;
    FT_Color* fPalette = nullptr;
    FT_UInt fPaletteSize = 0;
    bool fUsesForeground = false;

    // Of one walk.
    std::vector<size_t> fPath;  // paints from the root to the current one
    int fPaints = 0;
    int fPictures = 0;
    uint64_t fPixels = 0;
    uint64_t fPoints = 0;
    SkIRect fShapes = SkIRect::MakeEmpty();
};

}  // namespace portable
