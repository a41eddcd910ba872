#include "SkFont.h"

#include <ft2build.h>
#include FT_TRUETYPE_TABLES_H

#include <algorithm>
#include <cmath>
#include <utility>

#include "SkFontMetrics.h"
#include "skia/FontFace.h"
#include "skia/GlyphCache.h"
#include "skia/GlyphSettings.h"

namespace {

float finiteOrZero(float v) {
    return std::isfinite(v) ? v : 0;
}

SkRect scaled(const SkIRect& box, float scale) {
    return SkRect::MakeLTRB(finiteOrZero(static_cast<float>(box.fLeft) * scale),
                            finiteOrZero(static_cast<float>(box.fTop) * scale),
                            finiteOrZero(static_cast<float>(box.fRight) * scale),
                            finiteOrZero(static_cast<float>(box.fBottom) * scale));
}

// Extents at 1 pixel per em. Bitmap fonts keep them in 'hhea' alone.
SkFontMetrics readMetrics(FT_Face face) {
    SkFontMetrics m;
    const auto em = static_cast<float>(portable::unitsPerEm(face));
    if (em <= 0) return m;
    int ascender = face->ascender;
    int descender = face->descender;
    int height = face->height;
    const auto* hhea = static_cast<const TT_HoriHeader*>(FT_Get_Sfnt_Table(face, FT_SFNT_HHEA));
    if (!FT_IS_SCALABLE(face) && hhea) {
        ascender = hhea->Ascender;
        descender = hhea->Descender;
        height = ascender - descender + hhea->Line_Gap;
    }
    m.fAscent = static_cast<float>(-ascender) / em;
    m.fDescent = static_cast<float>(-descender) / em;
    m.fLeading = static_cast<float>(height + descender - ascender) / em;
    m.fTop = static_cast<float>(-face->bbox.yMax) / em;
    m.fBottom = static_cast<float>(-face->bbox.yMin) / em;
    return m;
}

}  // namespace

SkFont::SkFont(sk_sp<SkTypeface> typeface, SkScalar size, SkScalar scaleX, SkScalar skewX)
    : fTypeface(std::move(typeface)), fScaleX(scaleX), fSkewX(skewX) {
    this->setSize(size);
}

void SkFont::getWidthsBounds(const SkGlyphID glyphs[], int count, SkScalar widths[],
                             SkRect bounds[], const SkPaint*) const {
    const bool asOutlines = fLinearMetrics || portable::drawsAsOutlines(*this);
    const auto settings = asOutlines ? portable::GlyphSettings::forOutlines(*this)
                                     : portable::GlyphSettings::forMasks(*this);
    const float scale = asOutlines ? fSize / portable::kOutlineSize : 1;
    constexpr int kBatch = 64;
    portable::GlyphMetrics metrics[kBatch];
    for (int start = 0; start < count; start += kBatch) {
        const int batch = std::min(count - start, kBatch);
        if (fTypeface) {
            portable::GlyphCache::shared().measure(*fTypeface, settings, glyphs + start, batch,
                                                   !asOutlines, metrics);
        }
        for (int i = 0; i < batch; ++i) {
            if (widths) widths[start + i] = finiteOrZero(metrics[i].advance * scale);
            if (bounds) bounds[start + i] = scaled(metrics[i].bounds, scale);
        }
    }
}

SkScalar SkFont::getMetrics(SkFontMetrics* metrics) const {
    SkFontMetrics m;
    if (fTypeface) m = readMetrics(portable::FontFace::Access(fTypeface->face()).ft());
    for (SkScalar* v : {&m.fTop, &m.fAscent, &m.fDescent, &m.fBottom, &m.fLeading}) {
        *v = finiteOrZero(*v * fSize);
    }
    if (metrics) *metrics = m;
    return m.fDescent - m.fAscent + m.fLeading;
}
