#include "skia/TextPainter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "skia/ColorPaint.h"
#include "skia/GlyphCache.h"
#include "skia/GlyphScaler.h"
#include "skia/GlyphSettings.h"
#include "skia/Numbers.h"
#include "skia/PixelBlend.h"
#include "skia/TextGamma.h"

namespace portable {

namespace {

// A mask in memory: rows packed, kMaskBlock more bytes behind the last, its corner in the bitmap's
// pixels.
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

// The same for a block, in 16-bit lanes, which its sums fit. Copies keep the compiler from seeing a
// row that may lie over the mask.
void moveBlockTowards255(uint8_t* row, const uint8_t* mask) {
    uint64_t before[2];
    static_assert(sizeof(before) == kMaskBlock);
    std::memcpy(before, row, kMaskBlock);
    if ((before[0] | before[1]) == 0) {  // most often: glyphs rarely touch
        std::memcpy(row, mask, kMaskBlock);
        return;
    }
    uint8_t d[kMaskBlock];
    uint8_t c[kMaskBlock];
    std::memcpy(d, row, kMaskBlock);
    std::memcpy(c, mask, kMaskBlock);
    for (size_t i = 0; i < kMaskBlock; ++i) {
        const auto v = static_cast<uint16_t>(d[i] * (255 - c[i]) + 255 * c[i] + 128);
        d[i] = static_cast<uint8_t>(static_cast<uint16_t>(v + (v >> 8)) >> 8);
    }
    std::memcpy(row, d, kMaskBlock);
}

// The first `count` pixels of a block; the others are left as they are.
void moveSomeTowards255(uint8_t* row, const uint8_t* mask, size_t count) {
    static constexpr std::array<uint8_t, 2 * kMaskBlock> kOnesThenZeros = [] {
        std::array<uint8_t, 2 * kMaskBlock> bytes{};
        std::fill_n(bytes.begin(), kMaskBlock, uint8_t{0xFF});
        return bytes;
    }();
    uint8_t some[kMaskBlock];
    for (size_t i = 0; i < kMaskBlock; ++i) {
        some[i] = mask[i] & kOnesThenZeros[kMaskBlock - count + i];
    }
    moveBlockTowards255(row, some);
}

// `room` pixels of the row may be rewritten; the mask can be read for a block from any of its
// `count` pixels.
void blitOpaque(uint8_t* row, const uint8_t* mask, size_t count, size_t room) {
    size_t i = 0;
    for (; i + kMaskBlock <= count; i += kMaskBlock) moveBlockTowards255(row + i, mask + i);
    if (i + kMaskBlock <= room) {
        moveSomeTowards255(row + i, mask + i, count - i);
        return;
    }
    for (; i < count; ++i) row[i] = towards255(row[i], mask[i]);
}

void blitTranslucent(uint8_t* row, const uint8_t* mask, size_t count, unsigned alpha) {
    for (size_t i = 0; i < count; ++i) row[i] = coverageOver(div255(alpha * mask[i]), row[i]);
}

class TextPainter {
public:
    TextPainter(const SkBitmap& bitmap, const SkIRect& clip, SkColor color)
        : fBitmap(bitmap),
          fFormat(pixelFormat(bitmap)),
          fClip(clip),
          fForeground(color),
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
    bool paintColors(const SkTypeface& typeface, const GlyphSettings& settings, SkGlyphID glyph,
                     unsigned phase, int left, int top);
    bool paintColorPart(GlyphScaler& scaler, const GlyphPlacement& placement);
    void blitColors(const Mask& colors) const;
    uint8_t* rowAt(int x, int y) const {
        return static_cast<uint8_t*>(fBitmap.getPixels()) +
               static_cast<size_t>(y) * fBitmap.rowBytes() +
               static_cast<size_t>(x) * bytesPerPixel(fFormat);
    }

    const SkBitmap& fBitmap;
    PixelFormat fFormat;
    SkIRect fClip;
    SkColor fForeground;
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
        if (asOutlines) {
            GlyphScaler scaler(typeface->face(), settings);
            const double scale = run.font.getSize() / kOutlineSize;
            this->paintOutline(scaler, run.glyphs[i], {scale, gx, gy});
        } else {
            this->paintMask(*typeface, settings, run.glyphs[i], gx, gy);
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
    if (this->paintColors(typeface, settings, glyph, phase, left, top)) return;
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
    if (!scaler.load(glyph) || this->paintColorPart(scaler, placement)) return;
    this->paintPart(scaler, placement, false);
}

// Onto colours, glyphs that have some are painted in them. False for other glyphs, and on masks.
bool TextPainter::paintColors(const SkTypeface& typeface, const GlyphSettings& settings,
                              SkGlyphID glyph, unsigned phase, int left, int top) {
    if (fFormat == PixelFormat::kAlpha8) return false;
    const auto colors =
        GlyphCache::shared().drawColors(typeface, settings, glyph, phase, fForeground);
    if (!colors->pixels.empty()) {
        this->blitColors({colors->pixels.data(), moved(colors->bounds, left, top)});
    } else if (colors->isColored && !colors->bounds.isEmpty()) {
        GlyphScaler scaler(typeface.face(), settings);
        if (scaler.load(glyph)) {
            this->paintColorPart(scaler, {1, left + phase * 0.25, static_cast<double>(top)});
        }
    }
    return colors->isColored;
}

bool TextPainter::paintColorPart(GlyphScaler& scaler, const GlyphPlacement& placement) {
    if (fFormat == PixelFormat::kAlpha8 || scaler.kind() != MaskKind::kColor) return false;
    SkIRect window = scaler.bounds(placement);
    if (window.isEmpty() || !window.intersect(fClip)) return true;
    fScratch.assign(pixelCount(window) * kColorBytes, 0);
    scaler.renderColors(placement, window, fForeground, fScratch.data());
    this->blitColors({fScratch.data(), window});
    return true;
}

void TextPainter::blitColors(const Mask& colors) const {
    SkIRect area = colors.bounds;
    if (!area.intersect(fClip)) return;
    const ptrdiff_t stride = colors.bounds.fRight - colors.bounds.fLeft;
    for (int y = area.fTop; y < area.fBottom; ++y) {
        const uint8_t* source =
            colors.pixels + ((y - colors.bounds.fTop) * stride + area.fLeft - colors.bounds.fLeft) *
                                static_cast<ptrdiff_t>(kColorBytes);
        uint8_t* pixel = this->rowAt(area.fLeft, y);
        for (int x = area.fLeft; x < area.fRight; ++x, source += kColorBytes, pixel += 4) {
            if (source[3] == 0) continue;
            if (fFormat == PixelFormat::kPremul) {
                uint32_t before;
                std::memcpy(&before, pixel, kColorBytes);
                if (fAlpha == 255 && (source[3] == 255 || before == 0)) {
                    std::memcpy(pixel, source, kColorBytes);
                } else {
                    coverPixel(source, fAlpha, pixel);
                }
                continue;
            }
            const float part = static_cast<float>(fAlpha) * kByteToUnit * kByteToUnit;
            blendPixel(fFormat,
                       {source[0] * part, source[1] * part, source[2] * part, source[3] * part},
                       pixel);
        }
    }
}

// Fills only what the clip shows of the glyph, however large it is.
void TextPainter::paintPart(GlyphScaler& scaler, const GlyphPlacement& placement, bool gamma) {
    SkIRect window = scaler.bounds(placement);
    if (window.isEmpty() || !window.intersect(fClip)) return;
    const size_t pixels = pixelCount(window);
    fScratch.assign(pixels + kMaskBlock, 0);
    scaler.render(placement, window, fScratch.data());
    if (gamma) applyGamma(fGammaLevel, fScratch.data(), pixels);
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
        uint8_t* row = this->rowAt(area.fLeft, y);
        if (fFormat == PixelFormat::kAlpha8) {
            const auto length = static_cast<size_t>(count);
            const auto room = static_cast<size_t>(fBitmap.width() - area.fLeft);
            if (fAlpha == 255) {
                blitOpaque(row, source, length, room);
            } else {
                blitTranslucent(row, source, length, fAlpha);
            }
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
