// Takes single glyphs out of a font: advance, box, coverage and colours, by FreeType.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "SkColor.h"
#include "SkRect.h"
#include "SkTypes.h"
#include "skia/ColorPaint.h"
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

    // The same for the premultiplied bytes R, G, B, A of a colour glyph. What the font leaves to
    // the colour of the text is painted in `foreground`, whose alpha is not looked at: true when
    // anything was.
    bool renderColors(const GlyphPlacement& placement, const SkIRect& window, SkColor foreground,
                      uint8_t* out);

    // The glyph, to be boxed and rendered later as by the calls above; null when it is not a single
    // outline, or not a coloured picture.
    std::shared_ptr<const GlyphOutline> copyOutline() const;
    std::shared_ptr<const GlyphPicture> copyPicture() const;

private:
    struct Layer {
        FT_UInt glyph;
        bool isForeground;
        FT_Color color;  // straight; opaque black for the foreground
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
    template <typename Cover>
    void forEachLayer(const GlyphPlacement& placement, const SkIRect& window, Cover cover);
    bool hasGraph(SkGlyphID glyph);
    template <typename Use>
    void withGraph(SkColor foreground, Use use);
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
    enum class Content { kBlank, kOutline, kLayers, kGraph, kStrike } fContent = Content::kBlank;
    SkGlyphID fGlyph = 0;
    std::vector<Layer> fLayers;
    std::shared_ptr<StrikeImage> fStrike;
};

}  // namespace portable
