// A typeface at a size, with the settings that shape its glyphs.
#pragma once

#include <utility>

#include "SkFontTypes.h"
#include "SkRect.h"
#include "SkRefCnt.h"
#include "SkScalar.h"
#include "SkTypeface.h"
#include "SkTypes.h"

class SkPaint;
struct SkFontMetrics;

// A plain value. Without a typeface nothing is measured or drawn.
class SkFont {
public:
    enum class Edging {
        kAlias,              // pixels are covered or not
        kAntiAlias,          // 256 levels of coverage
        kSubpixelAntiAlias,  // drawn as kAntiAlias
    };

    // Size 12, no typeface, antialiased, hinting kNormal, every flag clear.
    SkFont() = default;
    explicit SkFont(sk_sp<SkTypeface> typeface, SkScalar size = 12, SkScalar scaleX = 1,
                    SkScalar skewX = 0);

    // Pixels per em. Negative values and NaN become 0.
    SkScalar getSize() const { return fSize; }
    void setSize(SkScalar size) { fSize = size > 0 ? size : 0; }
    // Horizontal stretch.
    SkScalar getScaleX() const { return fScaleX; }
    void setScaleX(SkScalar scaleX) { fScaleX = scaleX; }
    // Horizontal shift per pixel of y; y grows downwards, so negative values lean to the right.
    SkScalar getSkewX() const { return fSkewX; }
    void setSkewX(SkScalar skewX) { fSkewX = skewX; }

    bool isEmbolden() const { return fEmbolden; }
    void setEmbolden(bool on) { fEmbolden = on; }
    bool isSubpixel() const { return fSubpixel; }
    void setSubpixel(bool on) { fSubpixel = on; }
    bool isLinearMetrics() const { return fLinearMetrics; }
    void setLinearMetrics(bool on) { fLinearMetrics = on; }
    bool isEmbeddedBitmaps() const { return fEmbeddedBitmaps; }
    void setEmbeddedBitmaps(bool on) { fEmbeddedBitmaps = on; }
    bool isForceAutoHinting() const { return fForceAutoHinting; }
    void setForceAutoHinting(bool on) { fForceAutoHinting = on; }

    // Ours alone. The text is to be drawn in colour: glyphs of COLR version 1 are their pictures,
    // in boxes and masks too, not the font's outlines; pictures that are measured are kept
    // unpacked.
    bool isColorGlyphs() const { return fColorGlyphs; }
    void setColorGlyphs(bool on) { fColorGlyphs = on; }

    Edging getEdging() const { return fEdging; }
    void setEdging(Edging edging) { fEdging = edging; }
    SkFontHinting getHinting() const { return fHinting; }
    void setHinting(SkFontHinting hinting) { fHinting = hinting; }

    SkTypeface* getTypeface() const { return fTypeface.get(); }
    sk_sp<SkTypeface> refTypeface() const { return fTypeface; }
    void setTypeface(sk_sp<SkTypeface> typeface) { fTypeface = std::move(typeface); }

    // Advances in pixels, one per glyph. Glyphs the font does not have measure 0. This and the two
    // below throw std::bad_alloc when memory runs out.
    void getWidths(const SkGlyphID glyphs[], int count, SkScalar widths[]) const {
        this->getWidthsBounds(glyphs, count, widths, nullptr, nullptr);
    }
    // Boxes in pixels around each glyph at origin (0, 0), y downwards; (0, 0, 0, 0) when blank.
    // They hold the control points of the drawn shape and have whole edges, unless metrics are
    // linear or a column of the text matrix is longer than 256: then they are measured unhinted at
    // size 64 and scaled. The paint is not looked at: glyphs are always filled.
    void getBounds(const SkGlyphID glyphs[], int count, SkRect bounds[],
                   const SkPaint* paint) const {
        this->getWidthsBounds(glyphs, count, nullptr, bounds, paint);
    }
    // Both; either array may be null.
    void getWidthsBounds(const SkGlyphID glyphs[], int count, SkScalar widths[], SkRect bounds[],
                         const SkPaint* paint) const;

    // Recommended distance between baselines. metrics may be null.
    SkScalar getMetrics(SkFontMetrics* metrics) const;

    friend bool operator==(const SkFont& a, const SkFont& b) = default;

private:
    sk_sp<SkTypeface> fTypeface;
    SkScalar fSize = 12;
    SkScalar fScaleX = 1;
    SkScalar fSkewX = 0;
    Edging fEdging = Edging::kAntiAlias;
    SkFontHinting fHinting = SkFontHinting::kNormal;
    bool fEmbolden = false;
    bool fSubpixel = false;
    bool fLinearMetrics = false;
    bool fEmbeddedBitmaps = false;
    bool fForceAutoHinting = false;
    bool fColorGlyphs = false;
};
