// Puts measured lines into a view.
#pragma once

#include <string_view>
#include <vector>

#include "scene/Arrangement.h"
#include "scene/Measurer.h"
#include "scene/Wrap.h"
#include "style/Style.h"

namespace gxtext {

// Lines as they lie in the view, before the effects' margins move them into the picture.
struct Placement {
    int viewWidth = 0;  // padding included, in pixels
    int viewHeight = 0;
    std::vector<Line> lines;
};

// Room between the padding on both sides: what lines are wrapped at; nothing without a width.
// Throws TextError when the padding leaves none.
std::optional<float> wrapWidth(const Style& style);

// Stacks the lines from the top padding downwards and aligns them. `metrics` has one entry for each
// of `ranges`. Throws TextError for lines beyond the sides of a mask, or too many of them.
Placement placeLines(const Style& style, std::u16string_view text,
                     const std::vector<TextLine>& ranges, const std::vector<LineMetrics>& metrics);

// left for right-to-left paragraphs' "start", and so on: never kStart.
Align resolveAlign(Align align, bool rightToLeft);

}  // namespace gxtext
