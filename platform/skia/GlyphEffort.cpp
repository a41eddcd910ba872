#include "skia/GlyphEffort.h"

#include <algorithm>
#include <vector>

namespace portable {

bool GlyphEffort::add(FT_UInt glyph) {
    if (++fParts > kMaxParts) return false;
    const GlyphData::Outline outline = fData.outline(glyph);
    fPoints += outline.points;
    return !outline.composite || this->addComponents(glyph);
}

bool GlyphEffort::addComponents(FT_UInt glyph) {
    if (FT_Load_Glyph(fFace, glyph, FT_LOAD_NO_RECURSE) != 0) return true;
    const FT_GlyphSlot slot = fFace->glyph;
    if (slot->format != FT_GLYPH_FORMAT_COMPOSITE) return true;
    // Each of them is loaded into the same slot.
    std::vector<FT_UInt> components(std::min<FT_UInt>(slot->num_subglyphs, kMaxParts));
    for (FT_UInt i = 0; i < components.size(); ++i) {
        FT_Int component = 0;
        FT_UInt flags = 0;
        FT_Int x = 0;
        FT_Int y = 0;
        FT_Matrix matrix;
        if (FT_Get_SubGlyph_Info(slot, i, &component, &flags, &x, &y, &matrix) != 0) return true;
        components[i] = static_cast<FT_UInt>(component);
    }
    return std::all_of(components.begin(), components.end(),
                       [this](FT_UInt component) { return this->add(component); });
}

}  // namespace portable
