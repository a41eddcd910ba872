// Positioned glyphs of one line.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "minikin/Font.h"
#include "minikin/FontCollection.h"
#include "minikin/MinikinFont.h"
#include "minikin/MinikinPaint.h"
#include "minikin/MinikinRect.h"
#include "minikin/Range.h"
#include "minikin/U16StringPiece.h"

namespace minikin {

struct LayoutPiece;

// Direction of a line. LTR and RTL set the paragraph level, the DEFAULT values only where the text
// has no strong character of its own; the FORCE values switch the bidi algorithm off.
enum class Bidi : uint8_t {
    LTR = 0b0000,
    RTL = 0b0001,
    DEFAULT_LTR = 0b0010,
    DEFAULT_RTL = 0b0011,
    FORCE_LTR = 0b0100,
    FORCE_RTL = 0b0101,
};

inline bool isRtl(Bidi bidi) {
    return static_cast<uint8_t>(bidi) & 0b0001;
}
inline bool isOverride(Bidi bidi) {
    return static_cast<uint8_t>(bidi) & 0b0100;
}

struct LayoutGlyph {
    LayoutGlyph(FakedFont glyphFont, uint32_t id, float glyphX, float glyphY)
        : font(glyphFont), glyph_id(id), x(glyphX), y(glyphY) {}

    FakedFont font;
    uint32_t glyph_id;
    float x;
    float y;
};

// Glyphs are in visual order, left to right, positions in pixels from the left edge of the range on
// the baseline, y growing downwards. The fonts are borrowed: the collection must outlive the
// layout. Not to be changed from two threads at once; reading is free.
class Layout {
public:
    // Lays out `range` of `text`; the text around it takes part in bidi and shaping. What of the
    // range lies outside the text is cut off.
    Layout(const U16StringPiece& text, const Range& range, Bidi bidiFlags,
           const MinikinPaint& paint);

    size_t nGlyphs() const { return mGlyphs.size(); }
    // The glyph getters want 0 <= i < nGlyphs().
    const MinikinFont* getFont(int i) const { return mGlyphs[i].font.font->typeface().get(); }
    FontFakery getFakery(int i) const { return mGlyphs[i].font.fakery; }
    unsigned int getGlyphId(int i) const { return mGlyphs[i].glyph_id; }
    float getX(int i) const { return mGlyphs[i].x; }
    float getY(int i) const { return mGlyphs[i].y; }

    float getAdvance() const { return mAdvance; }
    // Advance of the cluster that begins at UTF-16 unit i of the range; 0 for its other units.
    float getCharAdvance(size_t i) const { return mAdvances[i]; }
    const std::vector<float>& getAdvances() const { return mAdvances; }

    // Box around the ink. Without ink: a rectangle of no size where the last blank stands.
    void getBounds(MinikinRect* rect) const { rect->set(mBounds); }
    const MinikinRect& getBounds() const { return mBounds; }

private:
    void appendPiece(const LayoutPiece& piece, uint32_t outOffset, float extraAdvance);

    std::vector<LayoutGlyph> mGlyphs;
    std::vector<float> mAdvances;
    MinikinRect mBounds;
    float mAdvance = 0.0f;
};

}  // namespace minikin
