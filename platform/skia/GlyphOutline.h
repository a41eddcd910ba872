// A glyph's outline at its size, kept apart from the font.
#pragma once

#include <ft2build.h>
#include FT_FREETYPE_H

#include <cstddef>
#include <cstdint>
#include <memory>

#include "SkRect.h"
#include "skia/StrikeImage.h"

namespace portable {

enum class MaskKind : uint8_t {
    kBinary,  // pixels 0 or 255
    kGrey,    // coverage, still without gamma
    kColor,   // alpha of a colour glyph, blended as it is
};

// Around the control points, in FreeType's units. False for an outline without contours.
bool outlineBox(const FT_Outline& outline, FT_BBox* box);
// Of a box that is not inverted.
inline size_t pixelCount(const SkIRect& box) {
    return static_cast<size_t>(box.fRight - box.fLeft) *
           static_cast<size_t>(box.fBottom - box.fTop);
}
// The whole pixels that hold the box; all 0 when it has no area.
SkIRect placeBox(const FT_BBox& box, const GlyphPlacement& placement);

// Adds the outline's coverage inside window to out, rows packed, which comes cleared. Outlines that
// FreeType refuses stay blank. Throws std::bad_alloc when memory runs out.
void fillOutline(FT_Library library, const FT_Outline& outline, MaskKind kind,
                 const GlyphPlacement& placement, const SkIRect& window, uint8_t* out);

// A copy, so that a glyph measured first and drawn later is loaded, and hinted, once. Immutable.
class GlyphOutline {
public:
    // Of a loaded slot in outline format. The slot's library must outlive the object.
    GlyphOutline(const FT_GlyphSlotRec& slot, MaskKind kind);

    MaskKind kind() const { return fKind; }
    SkIRect bounds(const GlyphPlacement& placement) const;
    // As fillOutline().
    void render(const GlyphPlacement& placement, const SkIRect& window, uint8_t* out) const;
    size_t bytes() const { return sizeof(GlyphOutline) + bytesOf(fOutline); }

private:
    static size_t bytesOf(const FT_Outline& outline);

    FT_Library fLibrary;
    MaskKind fKind;
    FT_Outline fOutline;  // of pointers into fBlock
    std::unique_ptr<char[]> fBlock;
};

}  // namespace portable
