#include "skia/TextPainter.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
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

// The whole alpha's scaled coverage over what is there.
uint8_t coverageOver(unsigned coverage, unsigned d) {
    return static_cast<uint8_t>(coverage + div255(d * (255 - coverage)));
}

// Opaque text moves a pixel towards 255 by the coverage.
constexpr uint8_t towards255(uint8_t d, uint8_t c) {
    return static_cast<uint8_t>(div255(d * (255u - c) + 255u * c));
}

// The same for a block, in 16-bit lanes: div255 of these sums stays below 2^16.
constexpr int kBlock = 16;
void moveBlockTowards255(uint8_t* row, const uint8_t* mask) {
    uint16_t v[kBlock];
    for (int i = 0; i < kBlock; ++i) {
        v[i] = static_cast<uint16_t>(row[i] * (255 - mask[i]) + 255 * mask[i] + 128);
    }
    for (int i = 0; i < kBlock; ++i) {
        row[i] = static_cast<uint8_t>(static_cast<uint16_t>(v[i] + (v[i] >> 8)) >> 8);
    }
}

// Most of a large glyph is empty or full.
void blitOpaque(uint8_t* row, const uint8_t* mask, int count) {
    int i = 0;
    for (; i + kBlock <= count; i += kBlock) {
        uint64_t half[2];
        std::memcpy(half, mask + i, kBlock);
        if ((half[0] | half[1]) == 0) continue;
        if ((half[0] & half[1]) == ~uint64_t{0}) {
            std::memset(row + i, 0xFF, kBlock);
        } else {
            moveBlockTowards255(row + i, mask + i);
        }
    }
    for (; i < count; ++i) row[i] = towards255(row[i], mask[i]);
}

void blitAlpha(uint8_t* row, const uint8_t* mask, int count, unsigned alpha) {
    if (alpha == 255) {
        blitOpaque(row, mask, count);
        return;
    }
    for (int i = 0; i < count; ++i) row[i] = coverageOver(div255(alpha * mask[i]), row[i]);
}

class TextPainter {
public:
    TextPainter(const SkBitmap& bitmap, const SkIRect& clip, SkColor color)
        : fBitmap(bitmap),
          fFormat(pixelFormat(bitmap)),
          fClip(clip),
          fAlpha(SkColorGetA(color)),
          fColor(premultiply(color)),
          fGammaLevel(gammaLevel(color)) {}

    void paintRun(const SkTextBlob::Run& run, SkScalar x, SkScalar y);

private:
    void paintMask(const SkTypeface& typeface, const GlyphSettings& settings, SkGlyphID glyph,
                   SkScalar x, SkScalar y);
    void paintPart(GlyphScaler& scaler, const GlyphPlacement& placement, bool gamma);
    void paintOutline(GlyphScaler& scaler, SkGlyphID glyph, const GlyphPlacement& placement);
    void blit(const Mask& mask);
    void blitColor(uint8_t* row, const uint8_t* mask, int count) const;

    const SkBitmap& fBitmap;
    PixelFormat fFormat;
    SkIRect fClip;
    unsigned fAlpha;
    ColorF fColor;
    unsigned fGammaLevel;
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
    const auto mask = GlyphCache::shared().draw(typeface, settings, glyph, phase, fGammaLevel);
    if (!mask->coverage.empty()) {
        this->blit({mask->coverage.data(), moved(mask->bounds, left, top)});
    } else if (!mask->bounds.isEmpty()) {
        GlyphScaler scaler(typeface.face(), settings);
        if (!scaler.load(glyph)) return;
        this->paintPart(scaler, {1, left + phase * 0.25, static_cast<double>(top)},
                        mask->kind == MaskKind::kGrey);
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
    if (gamma) applyGamma(fGammaLevel, fScratch.data(), fScratch.size());
    this->blit({fScratch.data(), window});
}

void TextPainter::blit(const Mask& mask) {
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
            blitAlpha(row, source, count, fAlpha);
        } else {
            this->blitColor(row, source, count);
        }
    }
}

void TextPainter::blitColor(uint8_t* row, const uint8_t* mask, int count) const {
    for (int i = 0; i < count; ++i, row += 4) {
        if (mask[i] == 0) continue;
        const float f = mask[i] * kByteToUnit;
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
