// Short words for laying text out and drawing it into 8-bit masks.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "SkDrawing.h"
#include "hwui/MinikinUtils.h"
#include "hwui/Paint.h"
#include "hwui/Typeface.h"
#include "minikin/Layout.h"

namespace gxtest {

using Families = std::vector<std::shared_ptr<minikin::FontFamily>>;

inline std::unique_ptr<android::Typeface> typefaceOf(Families families, int weight = 400,
                                                     int italic = 0) {
    return std::unique_ptr<android::Typeface>(
        android::Typeface::createFromFamilies(std::move(families), weight, italic));
}

inline const uint16_t* unitsOf(const std::u16string& text) {
    return reinterpret_cast<const uint16_t*>(text.data());
}

// A part of the text, with all of it as context.
inline minikin::Layout layOut(const std::u16string& text, const android::Typeface& typeface,
                              const android::Paint& paint,
                              minikin::Bidi bidi = minikin::Bidi::DEFAULT_LTR, size_t start = 0,
                              size_t count = std::u16string::npos) {
    return android::MinikinUtils::doLayout(&paint, bidi, &typeface, unitsOf(text), text.size(),
                                           start, count, 0, text.size(), nullptr);
}

inline std::vector<uint32_t> glyphsOf(const minikin::Layout& layout) {
    std::vector<uint32_t> ids;
    for (int i = 0; i < static_cast<int>(layout.nGlyphs()); i++) {
        ids.push_back(layout.getGlyphId(i));
    }
    return ids;
}

// Every length that a layout answers.
inline std::vector<float> lengthsOf(const minikin::Layout& layout) {
    const minikin::MinikinRect& box = layout.getBounds();
    std::vector<float> all = {layout.getAdvance(), box.mLeft, box.mTop, box.mRight, box.mBottom};
    all.insert(all.end(), layout.getAdvances().begin(), layout.getAdvances().end());
    for (int i = 0; i < static_cast<int>(layout.nGlyphs()); i++) {
        all.insert(all.end(), {layout.getX(i), layout.getY(i)});
    }
    return all;
}

// Draws the layout's glyphs in their fonts from (x, y) on.
inline void drawLayout(const minikin::Layout& layout, android::Paint paint, float x, float y,
                       MaskCanvas* mask) {
    const auto drawRun = [&](size_t start, size_t end) {
        std::vector<PlacedGlyph> run;
        for (int i = static_cast<int>(start); i < static_cast<int>(end); i++) {
            run.push_back({static_cast<SkGlyphID>(layout.getGlyphId(i)), layout.getX(i) + x,
                           layout.getY(i) + y});
        }
        mask->draw(paint.getSkFont(), run);
    };
    android::MinikinUtils::forFontRun(layout, &paint, drawRun);
}

}  // namespace gxtest
