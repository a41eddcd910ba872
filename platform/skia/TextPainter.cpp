#include "skia/TextPainter.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <new>
#include <vector>

#include "skia/GlyphCache.h"
#include "skia/GlyphScaler.h"
#include "skia/GlyphSettings.h"
#include "skia/Numbers.h"
#include "skia/PixelBlend.h"
#include "skia/TextGamma.h"

namespace portable {

namespace {

// A mask in memory: rows packed, its corner in the bitmap's pixels.
struct Mask {
    const uint8_t* pixels;
    SkIRect bounds;
};

SkIRect moved(const SkIRect& r, int dx, int dy) {
    return SkIRect::MakeLTRB(r.fLeft + dx, r.fTop + dy, r.fRight + dx, r.fBottom + dy);
}

class TextPainter {
public:
    TextPainter(const SkBitmap& bitmap, const SkIRect& clip, SkColor color)
        : fBitmap(bitmap),
          fFormat(pixelFormat(bitmap)),
          fClip(clip),
          fAlpha(SkColorGetA(color)),
          fColor(premultiply(color)),
          fGamma(textGamma(color)) {}

    void paintRun(const SkTextBlob::Run& run, SkScalar x, SkScalar y);

private:
    void paintMask(const SkTypeface& typeface, const GlyphSettings& settings, SkGlyphID glyph,
                   SkScalar x, SkScalar y);
    void paintPart(GlyphScaler& scaler, const GlyphPlacement& placement, bool gamma);
    void paintOutline(GlyphScaler& scaler, SkGlyphID glyph, const GlyphPlacement& placement);
    void blit(const Mask& mask, const CoverageTable* gamma);
    void blitAlpha(uint8_t* row, const uint8_t* mask, int count, const CoverageTable* gamma) const;
    void blitColor(uint8_t* row, const uint8_t* mask, int count, const CoverageTable* gamma) const;

    const SkBitmap& fBitmap;
    PixelFormat fFormat;
    SkIRect fClip;
    unsigned fAlpha;
    ColorF fColor;
    const CoverageTable& fGamma;
    std::vector<uint8_t> fScratch;
};

void TextPainter::paintRun(const SkTextBlob::Run& run, SkScalar x, SkScalar y) {
    const SkTypeface* typeface = run.font.getTypeface();
    if (!typeface) return;
    const bool asOutlines = drawsAsOutlines(run.font);
    const auto settings =
        asOutlines ? GlyphSettings::forOutlines(run.font) : GlyphSettings::forMasks(run.font);
    if (!settings.drawable()) return;
    for (int i = 0; i < run.count; ++i) {
        const SkScalar gx = x + run.positions[2 * static_cast<size_t>(i)];
        const SkScalar gy = y + run.positions[2 * static_cast<size_t>(i) + 1];
        if (!(std::fabs(gx) < kMaxCoordinate) || !(std::fabs(gy) < kMaxCoordinate)) continue;
        try {
            if (asOutlines) {
                GlyphScaler scaler(typeface->face(), settings);
                const double scale = run.font.getSize() / kOutlineSize;
                this->paintOutline(scaler, run.glyphs[i], {scale, gx, gy});
            } else {
                this->paintMask(*typeface, settings, run.glyphs[i], gx, gy);
            }
        } catch (const std::bad_alloc&) {
            continue;  // this glyph is left out
        }
    }
}

void TextPainter::paintMask(const SkTypeface& typeface, const GlyphSettings& settings,
                            SkGlyphID glyph, SkScalar x, SkScalar y) {
    unsigned phase = 0;
    int left = roundToInt(x);
    if (settings.subpixel) {
        // To the nearest of four phases: an eighth further, then cut to quarters.
        const float biased = x + 0.125f;
        left = floorToInt(biased);
        phase = static_cast<unsigned>(floorToInt((biased - static_cast<float>(left)) * 4)) & 3;
    }
    const int top = roundToInt(y);
    const auto cached = GlyphCache::shared().draw(typeface, settings, glyph, phase);
    const CoverageTable* gamma = cached->kind == MaskKind::kGrey ? &fGamma : nullptr;
    if (!cached->coverage.empty()) {
        this->blit({cached->coverage.data(), moved(cached->bounds, left, top)}, gamma);
    } else if (!cached->bounds.isEmpty()) {
        GlyphScaler scaler(typeface.face(), settings);
        if (!scaler.load(glyph)) return;
        this->paintPart(scaler, {1, left + phase * 0.25, static_cast<double>(top)}, gamma);
    }
}

// Beyond the mask size: exactly where it falls, without gamma.
void TextPainter::paintOutline(GlyphScaler& scaler, SkGlyphID glyph,
                               const GlyphPlacement& placement) {
    if (!scaler.load(glyph)) return;
    this->paintPart(scaler, placement, false);
}

// Fills only what the clip shows of the glyph, however large it is.
void TextPainter::paintPart(GlyphScaler& scaler, const GlyphPlacement& placement, bool gamma) {
    SkIRect window = scaler.bounds(placement);
    if (window.isEmpty() || !window.intersect(fClip)) return;
    fScratch.resize(static_cast<size_t>(window.fRight - window.fLeft) *
                    static_cast<size_t>(window.fBottom - window.fTop));
    scaler.render(placement, window, fScratch.data());
    this->blit({fScratch.data(), window}, gamma ? &fGamma : nullptr);
}

void TextPainter::blit(const Mask& mask, const CoverageTable* gamma) {
    SkIRect area = mask.bounds;
    if (!area.intersect(fClip)) return;
    const ptrdiff_t stride = mask.bounds.fRight - mask.bounds.fLeft;
    const int count = area.fRight - area.fLeft;
    for (int y = area.fTop; y < area.fBottom; ++y) {
        const uint8_t* source =
            mask.pixels + (y - mask.bounds.fTop) * stride + (area.fLeft - mask.bounds.fLeft);
        uint8_t* row = static_cast<uint8_t*>(fBitmap.getPixels()) +
                       static_cast<size_t>(y) * fBitmap.rowBytes() +
                       static_cast<size_t>(area.fLeft) * bytesPerPixel(fFormat);
        if (fFormat == PixelFormat::kAlpha8) {
            this->blitAlpha(row, source, count, gamma);
        } else {
            this->blitColor(row, source, count, gamma);
        }
    }
}

// Opaque text moves each pixel towards 255 by the coverage; with less than full alpha the scaled
// coverage goes over what is there.
void TextPainter::blitAlpha(uint8_t* row, const uint8_t* mask, int count,
                            const CoverageTable* gamma) const {
    for (int i = 0; i < count; ++i) {
        if (mask[i] == 0) continue;
        const unsigned c = gamma ? (*gamma)[mask[i]] : mask[i];
        const unsigned d = row[i];
        if (fAlpha == 255) {
            row[i] = static_cast<uint8_t>(div255(d * (255 - c) + 255 * c));
        } else {
            const unsigned s = div255(fAlpha * c);
            row[i] = static_cast<uint8_t>(s + div255(d * (255 - s)));
        }
    }
}

void TextPainter::blitColor(uint8_t* row, const uint8_t* mask, int count,
                            const CoverageTable* gamma) const {
    for (int i = 0; i < count; ++i, row += 4) {
        const uint8_t c = gamma ? (*gamma)[mask[i]] : mask[i];
        if (c == 0) continue;
        const float f = c * kByteToUnit;
        blendPixel(fFormat, {fColor.r * f, fColor.g * f, fColor.b * f, fColor.a * f}, row);
    }
}

}  // namespace

void paintText(const SkBitmap& bitmap, const SkIRect& clip, const SkTextBlob& blob, SkScalar x,
               SkScalar y, SkColor color) {
    TextPainter painter(bitmap, clip, color);
    for (const SkTextBlob::Run& run : blob.runs()) painter.paintRun(run, x, y);
}

}  // namespace portable
