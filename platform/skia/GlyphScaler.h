// Takes single glyphs out of a font: advance, box and coverage, by FreeType.
#pragma once

#include <cstdint>
#include <vector>

#include "SkRect.h"
#include "SkTypes.h"
#include "skia/FontFace.h"
#include "skia/GlyphSettings.h"
#include "skia/StrikeImage.h"

namespace portable {

enum class MaskKind : uint8_t {
    kBinary,  // pixels 0 or 255
    kGrey,    // coverage, still without gamma
    kColor,   // alpha of a colour glyph, blended as it is
};

// Holds the face locked: make one, take the glyphs, drop it. Fonts lie about everything, so every
// result has an answer: glyphs that cannot be loaded measure 0 and are blank, boxes are held within
// ±kMaxCoordinate, and no more memory is used for a glyph than its window and its outline need.
class GlyphScaler {
public:
    GlyphScaler(FontFace& face, const GlyphSettings& settings);
    GlyphScaler(const GlyphScaler&) = delete;
    GlyphScaler& operator=(const GlyphScaler&) = delete;

    // Chooses the glyph that the calls below are about. False, and blank, when there is none.
    bool load(SkGlyphID glyph);

    // Pixels to the next glyph, at scale 1.
    float advance() const { return fAdvance; }
    MaskKind kind() const { return fKind; }

    // The whole pixels that hold the glyph's control points; empty (all 0) when blank.
    SkIRect bounds(const GlyphPlacement& placement);

    // Writes the coverage inside window to out: rows of window's width, packed. Nothing of out is
    // left unset. What cannot be drawn is 0.
    void render(const GlyphPlacement& placement, const SkIRect& window, uint8_t* out);

private:
    struct Layer {
        FT_UInt glyph;
        uint8_t alpha;
    };
    void select();
    void selectScalable();
    void selectStrike();
    FT_Int32 loadFlags() const;
    bool loadSlot(FT_UInt glyph);
    bool bitmapTooLarge(FT_UInt glyph, FT_Int32 flags);
    void emboldenSlot();
    void readAdvance(FT_UInt glyph);
    void readLayers(FT_UInt glyph);

    bool outlineBox(FT_BBox* box) const;
    bool layersBox(FT_BBox* all);
    void renderLayers(const GlyphPlacement& placement, const SkIRect& window, uint8_t* out);
    void renderOutline(const GlyphPlacement& placement, const SkIRect& window, uint8_t* out);
    void renderBinary(FT_Outline* outline, const SkIRect& window, uint8_t* out);

    FontFace::Access fAccess;
    FT_Face fFace;
    GlyphSettings fSettings;
    FT_Int32 fLoadFlags = 0;
    bool fReady = false;
    bool fLinearAdvance = false;
    GlyphMatrix fMatrix;

    float fAdvance = 0;
    MaskKind fKind = MaskKind::kGrey;
    enum class Content { kBlank, kOutline, kLayers, kStrike } fContent = Content::kBlank;
    std::vector<Layer> fLayers;
    StrikeImage fStrike;
    std::vector<FT_Vector> fPoints;
};

}  // namespace portable
