#include "SkCanvas.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <iterator>

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

// Source over on unpremultiplied pixels, a stretch of the colour at a time.
void fillUnpremul(const SkBitmap& bitmap, const SkIRect& area, SkColor color) {
    constexpr int kStretch = 64;
    uint8_t colors[4 * kStretch];
    for (uint8_t* c = colors; c < std::end(colors); c += 4) {
        c[0] = static_cast<uint8_t>(SkColorGetR(color));
        c[1] = static_cast<uint8_t>(SkColorGetG(color));
        c[2] = static_cast<uint8_t>(SkColorGetB(color));
        c[3] = static_cast<uint8_t>(SkColorGetA(color));
    }
    for (int y = area.fTop; y < area.fBottom; ++y) {
        for (int x = area.fLeft; x < area.fRight; x += kStretch) {
            portable::blendUnpremulRow(colors, pixelAt(bitmap, PixelFormat::kUnpremul, x, y),
                                       static_cast<size_t>(std::min(kStretch, area.fRight - x)));
        }
    }
}

// Blends one colour into all pixels of area, which lies inside the bitmap.
void fill(const SkBitmap& bitmap, const SkIRect& area, SkColor color, SkBlendMode mode) {
    const ColorF source = portable::premultiply(color);
    if (area.isEmpty() || hasNoEffect(source, mode)) return;
    const PixelFormat format = portable::pixelFormat(bitmap);
    const bool over = mode == SkBlendMode::kSrcOver;
    if ((over && source.a == 1) || mode == SkBlendMode::kSrc || mode == SkBlendMode::kClear) {
        replace(bitmap, area, format, portable::blend(mode, source, ColorF()));
        return;
    }
    if (over && format == PixelFormat::kUnpremul) {
        fillUnpremul(bitmap, area, color);
        return;
    }
    const size_t step = portable::bytesPerPixel(format);
    for (int y = area.fTop; y < area.fBottom; ++y) {
        uint8_t* pixel = pixelAt(bitmap, format, area.fLeft, y);
        for (int x = area.fLeft; x < area.fRight; ++x, pixel += step) {
            const ColorF d = portable::loadPixel(format, pixel);
            portable::storePixel(format, portable::blend(mode, source, d), pixel);
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

    // Unpremultiplied onto the same, without a paint's alpha: then whole rows go at once.
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
    fill(fBitmap, fClip, color, mode);
}

void SkCanvas::clipRect(const SkRect& rect, SkClipOp op, bool) {
    if (op != SkClipOp::kIntersect || !rect.isFinite()) return;
    if (!fClip.intersect(roundEdges(rect.makeSorted()))) fClip = SkIRect::MakeEmpty();
}

void SkCanvas::drawRect(const SkRect& rect, const SkPaint& paint) {
    if (paint.getStyle() != SkPaint::kFill_Style || !rect.isFinite()) return;
    SkIRect area = roundEdges(rect.makeSorted());
    if (!area.intersect(fClip)) return;
    fill(fBitmap, area, paint.getColor(), SkBlendMode::kSrcOver);
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
    const int columns = area.fRight - area.fLeft;
    // Rounding may have put an edge half a pixel outside.
    const bool wholeRows =
        source.sharesFormat(format) && firstColumn >= 0 && columns <= bitmap.width() - firstColumn;
    for (int j = area.fTop; j < area.fBottom; ++j) {
        const uint8_t* row = source.row(std::clamp(nearestPixel(j, y), 0, bitmap.height() - 1));
        uint8_t* pixel = pixelAt(fBitmap, format, area.fLeft, j);
        if (wholeRows) {
            portable::blendUnpremulRow(row + 4 * static_cast<size_t>(firstColumn), pixel,
                                       static_cast<size_t>(columns));
            continue;
        }
        for (int i = 0; i < columns; ++i, pixel += step) {
            const int at = std::clamp(firstColumn + i, 0, bitmap.width() - 1);
            portable::blendPixel(format, source.colorAt(row, at), pixel);
        }
    }
}

void SkCanvas::drawTextBlob(const SkTextBlob* blob, SkScalar x, SkScalar y, const SkPaint& paint) {
    if (!blob || fClip.isEmpty() || SkColorGetA(paint.getColor()) == 0) return;
    if (!touches(blob->bounds().makeOffset(x, y), fClip)) return;
    portable::paintText(fBitmap, fClip, *blob, x, y, paint.getColor());
}
