// Layout of text with an android::Paint, and the walk over a layout's font runs.
#pragma once

#include <cutils/compiler.h>

#include <cstddef>
#include <cstdint>

#include "hwui/MinikinSkia.h"
#include "hwui/Paint.h"
#include "hwui/Typeface.h"
#include "minikin/Layout.h"
#include "minikin/MinikinPaint.h"

namespace minikin {
class MeasuredText;
}

namespace android {

class ANDROID_API MinikinUtils {
public:
    // The size is cut to whole pixels unless the paint's font asks for linear metrics.
    static minikin::MinikinPaint prepareMinikinPaint(const Paint* paint, const Typeface* typeface);

    // Lays out buf[start, start + count) as part of the text [contextStart, contextStart +
    // contextCount). What lies outside the buffer or the context is cut off. `typeface` null is the
    // default one; it must outlive the layout. `mt`, unless null, is of the whole buffer; it makes
    // many layouts of one text faster and changes nothing.
    static minikin::Layout doLayout(const Paint* paint, minikin::Bidi bidiFlags,
                                    const Typeface* typeface, const uint16_t* buf, size_t bufSize,
                                    size_t start, size_t count, size_t contextStart,
                                    size_t contextCount, minikin::MeasuredText* mt);

    // Advance of the range in pixels. `advances`, unless null, receives `count` values: the advance
    // of each cluster at its first unit, 0 at the others.
    static float measureText(const Paint* paint, minikin::Bidi bidiFlags, const Typeface* typeface,
                             const uint16_t* buf, size_t start, size_t count, size_t bufSize,
                             float* advances);

    // Calls f(start, end) for each run of glyphs of one font, in glyph order. During the call the
    // paint's own SkFont is set up for that run, so f has to read it there, not in a copy. Skew and
    // embolden are restored after each call, the typeface stays.
    template <typename F>
    static void forFontRun(const minikin::Layout& layout, Paint* paint, F& f) {
        const size_t glyphCount = layout.nGlyphs();
        for (size_t start = 0, end = 0; start < glyphCount; start = end) {
            const minikin::MinikinFont* runFont = layout.getFont(static_cast<int>(start));
            while (end < glyphCount && layout.getFont(static_cast<int>(end)) == runFont) end++;

            SkFont& skFont = paint->getSkFont();
            const float skewX = skFont.getSkewX();
            const bool embolden = skFont.isEmbolden();
            MinikinFontSkia::populateSkFont(&skFont, runFont,
                                            layout.getFakery(static_cast<int>(start)));
            f(start, end);
            skFont.setSkewX(skewX);
            skFont.setEmbolden(embolden);
        }
    }
};

}  // namespace android
