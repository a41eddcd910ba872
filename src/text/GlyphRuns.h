// Draws the glyphs of a laid-out line with the platform's canvas.
#pragma once

#include <SkBitmap.h>
#include <SkCanvas.h>
#include <SkFont.h>
#include <SkImageInfo.h>
#include <SkRect.h>
#include <SkTextBlob.h>
#include <hwui/MinikinUtils.h>
#include <hwui/Paint.h>
#include <minikin/Layout.h>
#include <minikin/MinikinRect.h>

#include <algorithm>
#include <cstddef>
#include <vector>

namespace GxFontEffect {

// The point of a layout that lands at a bitmap's corner.
struct LayoutCorner {
    float left;
    float top;
};

// By a glyph's place in the layout.
using GlyphChoice = std::vector<bool>;

// Draws one font run of a layout. The platform's font set-up changes the very paint that forFontRun
// is given, so the paint is held by reference and copied per run.
struct DrawTextFunctor {
    const minikin::Layout& layout;
    SkCanvas& canvas;
    const android::Paint& paint;
    SkRect bounds;
    LayoutCorner corner;
    const GlyphChoice* choice = nullptr;  // null for all glyphs

    void operator()(size_t start, size_t end) {
        const auto isDrawn = [this](size_t glyph) { return !choice || (*choice)[glyph]; };
        int count = 0;
        for (size_t i = start; i < end; ++i) count += isDrawn(i) ? 1 : 0;
        if (count == 0) return;
        android::Paint fill(paint);
        fill.setStyle(SkPaint::kFill_Style);
        SkTextBlobBuilder builder;
        const auto& run = builder.allocRunPos(fill.getSkFont(), count, &bounds);
        size_t next = 0;
        for (size_t i = start; i < end; ++i) {
            if (!isDrawn(i)) continue;
            const int glyph = static_cast<int>(i);
            run.glyphs[next] = static_cast<SkGlyphID>(layout.getGlyphId(glyph));
            run.pos[2 * next] = layout.getX(glyph);
            run.pos[2 * next + 1] = layout.getY(glyph);
            ++next;
        }
        canvas.drawTextBlob(builder.make(), -corner.left, -corner.top, fill);
    }
};

// Draws the chosen glyphs, null for all, onto rows of pixels without gaps. Does nothing for a
// format that the canvas does not take. Throws std::bad_alloc.
inline void drawGlyphs(const minikin::Layout& layout, android::Paint& paint, LayoutCorner corner,
                       const GlyphChoice* choice, const SkImageInfo& info, void* pixels) {
    SkBitmap bitmap;
    const size_t pixelBytes = info.colorType() == kAlpha_8_SkColorType ? 1 : 4;
    const auto rowBytes = static_cast<size_t>(info.width()) * pixelBytes;
    if (!bitmap.installPixels(info, pixels, rowBytes)) return;
    SkCanvas canvas(bitmap);
    minikin::MinikinRect ink;
    layout.getBounds(&ink);
    DrawTextFunctor draw{layout, canvas,
                         paint,  SkRect::MakeLTRB(ink.mLeft, ink.mTop, ink.mRight, ink.mBottom),
                         corner, choice};
    android::MinikinUtils::forFontRun(layout, &paint, draw);
}

}  // namespace GxFontEffect
