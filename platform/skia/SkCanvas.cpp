#include "SkCanvas.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "skia/Numbers.h"
#include "skia/PixelBlend.h"
#include "skia/TextPainter.h"

namespace {

using portable::ColorF;
using portable::PixelFormat;

SkIRect roundEdges(const SkRect& rect) {
    return SkIRect::MakeLTRB(portable::roundToInt(rect.fLeft), portable::roundToInt(rect.fTop),
                             portable::roundToInt(rect.fRight), portable::roundToInt(rect.fBottom));
}

uint8_t* pixelAt(const SkBitmap& bitmap, PixelFormat format, int x, int y) {
    return static_cast<uint8_t*>(bitmap.getPixels()) + static_cast<size_t>(y) * bitmap.rowBytes() +
           static_cast<size_t>(x) * portable::bytesPerPixel(format);
}

// Writes one pixel's bytes to all of area.
void replace(const SkBitmap& bitmap, const SkIRect& area, PixelFormat format, const ColorF& color) {
    const size_t step = portable::bytesPerPixel(format);
    const size_t rowBytes = static_cast<size_t>(area.fRight - area.fLeft) * step;
    uint8_t* const first = pixelAt(bitmap, format, area.fLeft, area.fTop);
    for (size_t i = 0; i < rowBytes; i += step) portable::storePixel(format, color, first + i);
    for (int y = area.fTop + 1; y < area.fBottom; ++y) {
        std::memcpy(pixelAt(bitmap, format, area.fLeft, y), first, rowBytes);
    }
}

// Whether a colour leaves every pixel alone. Pixels of alpha 0 keep their colour bytes then, which
// the arithmetic of blending would clear.
bool hasNoEffect(const ColorF& color, SkBlendMode mode) {
    const bool over = mode == SkBlendMode::kSrcOver || mode == SkBlendMode::kDstOver;
    return mode == SkBlendMode::kDst || (over && color.a == 0);
}

// Blends one colour into all pixels of area, which lies inside the bitmap.
void fill(const SkBitmap& bitmap, const SkIRect& area, const ColorF& color, SkBlendMode mode) {
    if (area.isEmpty() || hasNoEffect(color, mode)) return;
    const PixelFormat format = portable::pixelFormat(bitmap);
    const bool opaque = mode == SkBlendMode::kSrcOver && color.a == 1;
    if (opaque || mode == SkBlendMode::kSrc || mode == SkBlendMode::kClear) {
        replace(bitmap, area, format, portable::blend(mode, color, ColorF()));
        return;
    }
    const size_t step = portable::bytesPerPixel(format);
    for (int y = area.fTop; y < area.fBottom; ++y) {
        uint8_t* pixel = pixelAt(bitmap, format, area.fLeft, y);
        for (int x = area.fLeft; x < area.fRight; ++x, pixel += step) {
            const ColorF d = portable::loadPixel(format, pixel);
            portable::storePixel(format, portable::blend(mode, color, d), pixel);
        }
    }
}

// A bitmap as a source of colour: what its pixels hold times the paint's alpha; alpha-only ones
// take the paint's colour.
class BitmapSource {
public:
    BitmapSource(const SkBitmap& bitmap, const SkPaint* paint)
        : fBitmap(bitmap),
          fFormat(portable::pixelFormat(bitmap)),
          fColor(portable::premultiply(paint ? paint->getColor() : SK_ColorBLACK)) {}

    PixelFormat format() const { return fFormat; }
    bool isHidden() const { return hasNoEffect(fColor, SkBlendMode::kSrcOver); }
    const uint8_t* row(int y) const { return pixelAt(fBitmap, fFormat, 0, y); }

    // Unpremultiplied onto the same, without a paint's alpha: then most pixels need no arithmetic.
    bool sharesFormat(PixelFormat target) const {
        return fFormat == PixelFormat::kUnpremul && target == fFormat && fColor.a == 1;
    }

    ColorF colorAt(const uint8_t* row, int x) const {
        const size_t step = portable::bytesPerPixel(fFormat);
        ColorF c = portable::loadPixel(fFormat, row + static_cast<size_t>(x) * step);
        if (fFormat == PixelFormat::kAlpha8) {
            return {fColor.r * c.a, fColor.g * c.a, fColor.b * c.a, fColor.a * c.a};
        }
        // Times 1 changes nothing.
        return {c.r * fColor.a, c.g * fColor.a, c.b * fColor.a, c.a * fColor.a};
    }

private:
    const SkBitmap& fBitmap;
    PixelFormat fFormat;
    ColorF fColor;
};

// Source over for unpremultiplied bytes where the source hides the pixel or shows nothing of
// itself. False when it does neither.
bool blendTrivially(const uint8_t* source, uint8_t* pixel) {
    const bool copies = source[3] == 255;
    if (!copies && source[3] != 0) return false;
    if (copies) {
        std::memcpy(pixel, source, 4);
    } else if (pixel[3] == 0) {
        std::memset(pixel, 0, 4);
    }
    return true;
}

// Which pixel of a source that starts at offset is nearest to the centre of destination pixel i.
// The next destination pixel is nearest to the next one.
int nearestPixel(int i, SkScalar offset) {
    return portable::floorToInt(i + 0.5 - offset);
}

// Whether a rectangle comes within a pixel of the clip; false when it has a NaN.
bool touches(const SkRect& r, const SkIRect& clip) {
    return r.fLeft < static_cast<float>(clip.fRight) + 1 &&
           r.fTop < static_cast<float>(clip.fBottom) + 1 &&
           r.fRight > static_cast<float>(clip.fLeft) - 1 &&
           r.fBottom > static_cast<float>(clip.fTop) - 1;
}

}  // namespace

SkCanvas::SkCanvas(const SkBitmap& bitmap) : fBitmap(bitmap) {
    // Formats that cannot be drawn into leave the clip empty: every call then stops there.
    if (portable::pixelFormat(bitmap) != PixelFormat::kNone) fClip = bitmap.info().bounds();
}

void SkCanvas::drawColor(SkColor color, SkBlendMode mode) {
    fill(fBitmap, fClip, portable::premultiply(color), mode);
}

void SkCanvas::clipRect(const SkRect& rect, SkClipOp op, bool) {
    if (op != SkClipOp::kIntersect || !rect.isFinite()) return;
    if (!fClip.intersect(roundEdges(rect.makeSorted()))) fClip = SkIRect::MakeEmpty();
}

void SkCanvas::drawRect(const SkRect& rect, const SkPaint& paint) {
    if (paint.getStyle() != SkPaint::kFill_Style || !rect.isFinite()) return;
    SkIRect area = roundEdges(rect.makeSorted());
    if (!area.intersect(fClip)) return;
    fill(fBitmap, area, portable::premultiply(paint.getColor()), SkBlendMode::kSrcOver);
}

void SkCanvas::drawBitmap(const SkBitmap& bitmap, SkScalar x, SkScalar y, const SkPaint* paint) {
    const BitmapSource source(bitmap, paint);
    if (source.format() == PixelFormat::kNone || source.isHidden()) return;
    const SkRect place = SkRect::MakeXYWH(x, y, static_cast<SkScalar>(bitmap.width()),
                                          static_cast<SkScalar>(bitmap.height()));
    SkIRect area = place.isFinite() ? roundEdges(place) : SkIRect::MakeEmpty();
    if (!area.intersect(fClip)) return;

    const PixelFormat format = portable::pixelFormat(fBitmap);
    const size_t step = portable::bytesPerPixel(format);
    const int firstColumn = nearestPixel(area.fLeft, x);
    const bool sameFormat = source.sharesFormat(format);
    for (int j = area.fTop; j < area.fBottom; ++j) {
        // Rounding may have put an edge half a pixel outside.
        const uint8_t* row = source.row(std::clamp(nearestPixel(j, y), 0, bitmap.height() - 1));
        uint8_t* pixel = pixelAt(fBitmap, format, area.fLeft, j);
        for (int i = area.fLeft; i < area.fRight; ++i, pixel += step) {
            const int at = std::clamp(firstColumn + i - area.fLeft, 0, bitmap.width() - 1);
            if (sameFormat && blendTrivially(row + 4 * static_cast<size_t>(at), pixel)) continue;
            portable::blendPixel(format, source.colorAt(row, at), pixel);
        }
    }
}

void SkCanvas::drawTextBlob(const SkTextBlob* blob, SkScalar x, SkScalar y, const SkPaint& paint) {
    if (!blob || fClip.isEmpty() || SkColorGetA(paint.getColor()) == 0) return;
    if (!touches(blob->bounds().makeOffset(x, y), fClip)) return;
    portable::paintText(fBitmap, fClip, *blob, x, y, paint.getColor());
}
