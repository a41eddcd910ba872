#include "SkTypeface.h"

#include <ft2build.h>
#include FT_TRUETYPE_TABLES_H

#include <algorithm>
#include <atomic>
#include <utility>
#include <vector>

#include "SkFontArguments.h"
#include "skia/FontFace.h"
#include "skia/GlyphCache.h"

namespace {

SkFontID nextUniqueID() {
    static std::atomic<SkFontID> next{1};
    return next.fetch_add(1, std::memory_order_relaxed);
}

// OS/2 where there is one; the style bits of 'head' as FreeType reads them otherwise.
SkFontStyle readStyle(FT_Face face) {
    int weight = (face->style_flags & FT_STYLE_FLAG_BOLD) ? SkFontStyle::kBold_Weight
                                                          : SkFontStyle::kNormal_Weight;
    int width = SkFontStyle::kNormal_Width;
    SkFontStyle::Slant slant = (face->style_flags & FT_STYLE_FLAG_ITALIC)
                                   ? SkFontStyle::kItalic_Slant
                                   : SkFontStyle::kUpright_Slant;
    const auto* os2 = static_cast<const TT_OS2*>(FT_Get_Sfnt_Table(face, FT_SFNT_OS2));
    if (os2 && os2->version != 0xFFFF) {
        constexpr FT_UShort kObliqueBit = 1 << 9;
        weight = os2->usWeightClass;
        width = os2->usWidthClass;
        if (os2->fsSelection & kObliqueBit) slant = SkFontStyle::kOblique_Slant;
    }
    return SkFontStyle(weight, width, slant);
}

}  // namespace

SkTypeface::SkTypeface(std::unique_ptr<portable::FontFace> face, SkFontStyle style)
    : fFace(std::move(face)), fStyle(style), fUniqueID(nextUniqueID()) {}

SkTypeface::~SkTypeface() {
    portable::GlyphCache::shared().forget(fUniqueID);
}

sk_sp<SkTypeface> SkTypeface::MakeFromStream(std::unique_ptr<SkStreamAsset> stream, int index) {
    auto face = portable::FontFace::open(std::move(stream), index);
    if (!face) return nullptr;
    const SkFontStyle style = readStyle(portable::FontFace::Access(*face).ft());
    return sk_sp<SkTypeface>(new SkTypeface(std::move(face), style));
}

sk_sp<SkTypeface> SkTypeface::makeClone(const SkFontArguments& arguments) const {
    const auto position = arguments.getVariationDesignPosition();
    std::vector<portable::AxisValue> values;
    values.reserve(static_cast<size_t>(std::max(position.coordinateCount, 0)));
    for (int i = 0; i < position.coordinateCount; ++i) {
        values.push_back({position.coordinates[i].axis, position.coordinates[i].value});
    }
    auto face =
        portable::FontFace::open(fFace->stream().duplicate(), fFace->index(), std::move(values));
    return face ? sk_sp<SkTypeface>(new SkTypeface(std::move(face), fStyle)) : nullptr;
}
