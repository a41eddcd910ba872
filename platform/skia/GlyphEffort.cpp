#include "skia/GlyphEffort.h"

#include FT_TRUETYPE_TABLES_H
#include FT_TRUETYPE_TAGS_H

#include <algorithm>
#include <vector>

namespace portable {

namespace {

FT_ULong bigEndian(const FT_Byte* bytes, int count) {
    FT_ULong value = 0;
    for (int i = 0; i < count; ++i) value = value << 8 | bytes[i];
    return value;
}

}  // namespace

GlyphEffort::GlyphEffort(FT_Face face) : fFace(face) {
    const auto* head = static_cast<const TT_Header*>(FT_Get_Sfnt_Table(face, FT_SFNT_HEAD));
    fLongOffsets = head && head->Index_To_Loc_Format != 0;
    const auto* maxp = static_cast<const TT_MaxProfile*>(FT_Get_Sfnt_Table(face, FT_SFNT_MAXP));
    fHintable = !maxp || maxp->maxTwilightPoints <= kMaxTwilightPoints;
}

bool GlyphEffort::read(FT_ULong table, FT_ULong offset, FT_ULong length, FT_Byte* out) const {
    return FT_Load_Sfnt_Table(fFace, table, static_cast<FT_Long>(offset), out, &length) == 0;
}

// From the first bytes of its description. Nothing for a glyph that cannot be read: FreeType cannot
// either.
GlyphEffort::Outline GlyphEffort::outlineOf(FT_UInt glyph) const {
    constexpr int kHeader = 10;  // contours, then the box
    FT_Byte bytes[kHeader];
    const int entry = fLongOffsets ? 4 : 2;
    if (!this->read(TTAG_loca, FT_ULong{glyph} * entry, entry, bytes)) return {};
    const FT_ULong offset = bigEndian(bytes, entry) * (fLongOffsets ? 1 : 2);
    if (!this->read(TTAG_glyf, offset, 2, bytes)) return {};
    const auto contours = static_cast<FT_Short>(bigEndian(bytes, 2));
    if (contours < 0) return {true, 0};
    // The last contour's last point.
    const FT_ULong end = offset + kHeader + 2 * static_cast<FT_ULong>(contours) - 2;
    if (contours == 0 || !this->read(TTAG_glyf, end, 2, bytes)) return {};
    return {false, static_cast<int>(bigEndian(bytes, 2)) + 1};
}

bool GlyphEffort::add(FT_UInt glyph) {
    if (++fParts > kMaxParts) return false;
    const Outline outline = this->outlineOf(glyph);
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
