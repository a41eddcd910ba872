// Shapes the pieces of a line: chooses fonts, runs HarfBuzz and places the glyphs.
#pragma once

#include <hb.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "minikin/FontCollection.h"
#include "minikin/HbUtils.h"
#include "minikin/Layout.h"
#include "minikin/Locale.h"
#include "minikin/MinikinPaint.h"
#include "minikin/MinikinRect.h"
#include "minikin/Range.h"
#include "minikin/U16StringPiece.h"

namespace minikin {

// Glyphs of one piece in visual order, positions from its left edge.
struct LayoutPiece {
    std::vector<LayoutGlyph> glyphs;
    std::vector<float> advances;  // one per UTF-16 unit
    MinikinRect bounds;
    float advance = 0.0f;
};

// A font at the paint's size, as HarfBuzz sees it. The paint is borrowed.
struct ScaledFont {
    ScaledFont(const FakedFont& fakedFont, const MinikinPaint& minikinPaint);
    ScaledFont(const ScaledFont&) = delete;
    ScaledFont& operator=(const ScaledFont&) = delete;

    // Fills advances[0, count), in pixels.
    void measure(const uint16_t* glyphs, unsigned count, float* advances);
    // Box around the glyph's ink, pixels from its origin; of no size for a blank.
    MinikinRect glyphBounds(uint32_t glyph) const;

    FakedFont faked;
    const MinikinPaint* paint;
    bool hasColorBitmaps;
    HbFontUniquePtr hbFont;    // asks this object for advances
    bool outOfMemory = false;  // set when an advance could not be measured

private:
    // False when the glyph has no picture in the font.
    bool pictureExtents(uint32_t glyph, hb_glyph_extents_t* extents) const;

    // Glyphs measured before, each where its id falls modulo the size. Shaping asks for advances,
    // placing for the boxes of mostly the same glyphs.
    struct MeasuredGlyph {
        uint32_t glyph = 0xFFFFFFFF;
        float advance = 0.0f;
        MinikinRect bounds;
    };
    static constexpr size_t kMeasuredGlyphs = 128;
    std::array<MeasuredGlyph, kMeasuredGlyphs> mMeasured;
};

// Serves one layout: keeps its fonts and buffer from piece to piece. The paint is borrowed, its
// numbers must be finite.
class PieceShaper {
public:
    explicit PieceShaper(const MinikinPaint& paint);
    // When an exception is on its way, what HarfBuzz and the cache keep of this paint's fonts goes:
    // it may come from before memory was found to have run out.
    ~PieceShaper();
    PieceShaper(const PieceShaper&) = delete;
    PieceShaper& operator=(const PieceShaper&) = delete;

    // Shapes `range` of `word`, or finds it shaped before; the rest of the word is context only.
    std::shared_ptr<const LayoutPiece> shape(const U16StringPiece& word, const Range& range,
                                             bool isRtl);

private:
    LayoutPiece shapeAnew(const U16StringPiece& word, const Range& range, bool isRtl);
    // All that decides how the piece is shaped, as bytes. Good until the next call.
    std::string_view keyOf(const U16StringPiece& word, const Range& range, bool isRtl);
    ScaledFont& scaledFont(const FakedFont& fakedFont);
    void shapeScriptRun(const U16StringPiece& word, uint32_t pieceStart, const Range& run,
                        hb_script_t script, bool isRtl, const FakedFont& fakedFont,
                        LayoutPiece* out);
    enum class Shaped { kWhole, kGivenUp, kOutOfMemory };
    // Into the buffer.
    Shaped shapeInto(const U16StringPiece& word, const Range& run, hb_script_t script, bool isRtl,
                     ScaledFont& font);
    void placeGlyphs(uint32_t pieceStart, float letterSpace, const ScaledFont& font,
                     LayoutPiece* out);

    const MinikinPaint& mPaint;
    const LocaleList& mLocales;
    std::vector<hb_feature_t> mFeatures;
    HbBufferUniquePtr mBuffer;
    std::unordered_map<const Font*, ScaledFont> mFonts;
    std::string mKey;            // of the last piece
    const size_t mPaintKeySize;  // of the part that all pieces share
    const int mExceptions;       // on their way at construction
};

}  // namespace minikin
