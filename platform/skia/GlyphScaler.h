// Takes single glyphs out of a font: advance, box and coverage, by FreeType.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "SkRect.h"
#include "SkTypes.h"
#include "skia/FontFace.h"
#include "skia/GlyphOutline.h"
#include "skia/GlyphSettings.h"
#include "skia/StrikeImage.h"

namespace portable {

// Holds the face locked: make one, take the glyphs, drop it. Fonts lie about everything, so every
// result has an answer: glyphs that cannot be loaded measure 0 and are blank, boxes are held within
// ±kMaxCoordinate, and no more memory is used for a glyph than its window and its outline need.
// All calls throw std::bad_alloc.
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

    // Writes the coverage inside window to out: rows of window's width, packed; out comes cleared.
    // What cannot be drawn stays 0.
    void render(const GlyphPlacement& placement, const SkIRect& window, uint8_t* out);

    // The glyph, to be boxed and rendered later as by the calls above; null when it is not a single
    // outline.
    std::shared_ptr<const GlyphOutline> copyOutline() const;

private:
    struct Layer {
        FT_UInt glyph;
        uint8_t alpha;
    };
    bool loadGlyph(SkGlyphID glyph);
    void throwIfOutOfMemory() const;
    void select();
    void selectScalable();
    void selectStrike();
    FT_Int32 loadFlags() const;
    bool loadSlot(FT_UInt glyph);
    bool bitmapTooLarge(FT_UInt glyph, FT_Int32 flags);
    void emboldenSlot();
    void readAdvance(FT_UInt glyph);
    void readLayers(FT_UInt glyph);

    bool loadLayer(const Layer& layer);
    bool layersBox(FT_BBox* all);
    void renderLayers(const GlyphPlacement& placement, const SkIRect& window, uint8_t* out);
    void renderSlot(const GlyphPlacement& placement, const SkIRect& window, uint8_t* out);

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
};

}  // namespace portable
