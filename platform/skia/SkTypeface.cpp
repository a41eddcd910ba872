#include "SkTypeface.h"

#include <ft2build.h>
#include FT_TRUETYPE_TABLES_H

#include <algorithm>
#include <atomic>
#include <limits>
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

int SkTypeface::countGlyphs() const {
    const FT_Long count = portable::FontFace::Access(*fFace).ft()->num_glyphs;
    return static_cast<int>(std::clamp<FT_Long>(count, 0, std::numeric_limits<int>::max()));
}

int SkTypeface::getUnitsPerEm() const {
    return portable::unitsPerEm(portable::FontFace::Access(*fFace).ft());
}

size_t SkTypeface::getTableSize(SkFontTableTag tag) const {
    const portable::FontFace::Access access(*fFace);
    FT_ULong length = 0;
    // Tag 0 would stand for the whole file.
    if (tag == 0 || FT_Load_Sfnt_Table(access.ft(), tag, 0, nullptr, &length) != 0) return 0;
    return length;
}

size_t SkTypeface::getTableData(SkFontTableTag tag, size_t offset, size_t length,
                                void* data) const {
    const size_t size = this->getTableSize(tag);
    if (offset >= size || length == 0 || !data) return 0;
    FT_ULong count = std::min(length, size - offset);
    const portable::FontFace::Access access(*fFace);
    const auto start = static_cast<FT_Long>(offset);
    auto* buffer = static_cast<FT_Byte*>(data);
    return FT_Load_Sfnt_Table(access.ft(), tag, start, buffer, &count) == 0 ? count : 0;
}

std::unique_ptr<SkStreamAsset> SkTypeface::openStream(int* ttcIndex) const {
    if (ttcIndex) *ttcIndex = fFace->index();
    return fFace->stream().duplicate();
}
