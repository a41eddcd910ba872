// Puts the glyphs of a blob onto a bitmap.
#pragma once

#include "SkBitmap.h"
#include "SkColor.h"
#include "SkRect.h"
#include "SkTextBlob.h"

namespace portable {

// Draws every run of the blob, moved by (x, y), in order, inside clip, which lies inside the
// bitmap. Throws std::bad_alloc.
void paintText(const SkBitmap& bitmap, const SkIRect& clip, const SkTextBlob& blob, SkScalar x,
               SkScalar y, SkColor color);

}  // namespace portable
