#include "skia/GlyphSettings.h"

#include <cmath>

namespace portable {

GlyphSettings GlyphSettings::forMasks(const SkFont& font) {
    GlyphSettings s;
    s.size = font.getSize();
    s.scaleX = font.getScaleX();
    s.skewX = font.getSkewX() + 0.0f;  // no negative zero
    s.hinting = font.getHinting();
    // Full hinting is for masks with a coverage per colour, which are never made here.
    if (s.hinting == SkFontHinting::kFull) s.hinting = SkFontHinting::kNormal;
    if (font.isLinearMetrics() || s.skewX != 0) s.hinting = SkFontHinting::kNone;
    s.alias = font.getEdging() == SkFont::Edging::kAlias;
    s.embolden = font.isEmbolden();
    s.subpixel = font.isSubpixel();
    s.embeddedBitmaps = font.isEmbeddedBitmaps();
    s.forceAutoHinting = font.isForceAutoHinting();
    s.colorGraphs = font.isColorGlyphs();
    return s;
}

GlyphSettings GlyphSettings::forOutlines(const SkFont& font) {
    GlyphSettings s = forMasks(font);
    // A size that draws nothing must not start drawing at another one.
    if (s.drawable()) s.size = kOutlineSize;
    s.hinting = SkFontHinting::kNone;
    s.subpixel = true;
    s.embeddedBitmaps = false;
    s.forceAutoHinting = false;
    return s;
}

bool GlyphSettings::drawable() const {
    return size > 0 && scaleX != 0 && std::isfinite(size) && std::isfinite(size * scaleX) &&
           std::isfinite(skewX);
}

unsigned GlyphSettings::flags() const {
    return static_cast<unsigned>(hinting) << 8 | colorGraphs << 5 | alias << 4 | embolden << 3 |
           subpixel << 2 | embeddedBitmaps << 1 | (forceAutoHinting ? 1u : 0u);
}

bool drawsAsOutlines(const SkFont& font) {
    // The columns of the text matrix are (size * scaleX, 0) and (size * skewX, size).
    const double size = font.getSize();
    const double x = size * font.getScaleX();
    const double skew = size * font.getSkewX();
    const double limit = static_cast<double>(kMaxMaskSize) * kMaxMaskSize;
    return x * x > limit || skew * skew + size * size > limit;
}

}  // namespace portable
