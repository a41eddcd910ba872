// Draws into the memory of a bitmap.
#pragma once

#include "SkBitmap.h"
#include "SkBlendMode.h"
#include "SkClipOp.h"
#include "SkColor.h"
#include "SkPaint.h"
#include "SkRect.h"
#include "SkRefCnt.h"
#include "SkScalar.h"
#include "SkTextBlob.h"

// One thread at a time. On a bitmap that is empty, has no pixels or a format other than kAlpha_8
// and kRGBA_8888 every call does nothing. Non-finite coordinates draw nothing.
class SkCanvas {
public:
    // The bitmap's memory must outlive the canvas. The clip starts as the whole bitmap.
    explicit SkCanvas(const SkBitmap& bitmap);
    virtual ~SkCanvas() = default;
    SkCanvas(const SkCanvas&) = delete;
    SkCanvas& operator=(const SkCanvas&) = delete;

    // Blends the colour into every pixel of the clip.
    void drawColor(SkColor color, SkBlendMode mode = SkBlendMode::kSrcOver);

    // Narrows the clip to the rectangle: sorted, edges rounded to the nearest pixel whether or not
    // antiAlias is set. Only kIntersect; non-finite rectangles are ignored.
    void clipRect(const SkRect& rect, SkClipOp op, bool antiAlias);

    // Fills the rectangle, sorted and rounded to nearest pixels, source over. A paint whose style
    // is not fill draws nothing.
    void drawRect(const SkRect& rect, const SkPaint& paint);

    // Draws the bitmap with its corner at (x, y), source over, each pixel from the nearest one of
    // the bitmap. Only the paint's alpha counts; for a kAlpha_8 bitmap its colour too.
    void drawBitmap(const SkBitmap& bitmap, SkScalar x, SkScalar y, const SkPaint* paint = nullptr);

    // Draws the glyphs filled with the paint's colour, one after another. Null draws nothing.
    // Throws std::bad_alloc, with some of them drawn.
    void drawTextBlob(const SkTextBlob* blob, SkScalar x, SkScalar y, const SkPaint& paint);
    void drawTextBlob(const sk_sp<SkTextBlob>& blob, SkScalar x, SkScalar y, const SkPaint& paint) {
        this->drawTextBlob(blob.get(), x, y, paint);
    }

private:
    SkBitmap fBitmap;
    SkIRect fClip = SkIRect::MakeEmpty();
};
