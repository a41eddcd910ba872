#include "scene/Placement.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "raster/GxMath.h"
#include "scene/SceneError.h"

namespace gxtext {

namespace {

using GxFontEffect::toInt;

constexpr int kMaxViewHeight = 1 << 26;
// A mask's sides are 16-bit.
constexpr int kMaxLineSide = 65535;

void checkLine(const LineMetrics& metrics, size_t index) {
    const float width = std::max(metrics.advance, metrics.inkRight - metrics.inkLeft + 2);
    const float height = metrics.inkBottom - metrics.inkTop + 2;  // rounded outwards
    if (width <= kMaxLineSide && height <= kMaxLineSide) return;
    throw TextError(
        "line " + std::to_string(index + 1),
        std::to_string(toInt(width)) + " x " + std::to_string(toInt(height)) + " pixels",
        "up to " + std::to_string(kMaxLineSide) + " pixels");
}

// The line with its top at `top`, its left end at 0.
Line stackLine(std::u16string_view text, const TextLine& range, const LineMetrics& metrics,
               int top) {
    Line line;
    line.text = encodeUtf8(text.substr(static_cast<size_t>(range.start),
                                       static_cast<size_t>(range.end - range.start)));
    line.start = range.start;
    line.end = range.end;
    line.rightToLeft = range.rightToLeft;
    line.advance = metrics.advance;
    line.baseline = top + toInt(std::ceil(-metrics.ascent));
    const int advance = toInt(metrics.advance);
    line.box = {0, top, advance, line.baseline + toInt(std::ceil(metrics.descent))};
    line.ink = {
        toInt(std::floor(metrics.inkLeft)), line.baseline + toInt(std::floor(metrics.inkTop)),
        toInt(std::ceil(metrics.inkRight)), line.baseline + toInt(std::ceil(metrics.inkBottom))};
    return line;
}

// A line that is wider than the view begins at the padding whatever the alignment.
int leftOf(const Style& style, const Line& line, int viewWidth) {
    const int left = style.padding.left;
    const float free = static_cast<float>(viewWidth - left - style.padding.right) - line.advance;
    switch (resolveAlign(style.align, line.rightToLeft)) {
        case Align::kCenter:
            return left + std::max(0, toInt(free / 2));
        case Align::kRight:
            return left + std::max(0, toInt(free));
        default:
            return left;
    }
}

// Letters may reach beyond their line on both sides, and boxes by their padding: the view grows by
// what lies outside it.
void makeRoom(const Style& style, Placement& placement) {
    const int around = style.background ? style.background->padding : 0;
    Box view{0, 0, placement.viewWidth, placement.viewHeight};
    for (const Line& line : placement.lines) {
        if (line.ink.left < line.ink.right && line.ink.top < line.ink.bottom) {
            view.left = std::min(view.left, line.ink.left);
            view.right = std::max(view.right, line.ink.right);
        }
        if (around == 0 || line.box.left >= line.box.right) continue;
        view.left = std::min(view.left, line.box.left - around);
        view.top = std::min(view.top, line.box.top - around);
        view.right = std::max(view.right, line.box.right + around);
        view.bottom = std::max(view.bottom, line.box.bottom + around);
    }
    placement.viewWidth = view.right - view.left;
    placement.viewHeight = view.bottom - view.top;
    for (Line& line : placement.lines) line.shift(-view.left, -view.top);
}

}  // namespace

void Line::shift(int dx, int dy) {
    x += dx;
    baseline += dy;
    for (Box* area : {&box, &ink}) {
        area->left += dx;
        area->right += dx;
        area->top += dy;
        area->bottom += dy;
    }
}

Align resolveAlign(Align align, bool rightToLeft) {
    if (align != Align::kStart) return align;
    return rightToLeft ? Align::kRight : Align::kLeft;
}

std::optional<float> wrapWidth(const Style& style) {
    if (!style.width) return std::nullopt;
    const int sides = style.padding.left + style.padding.right;
    if (*style.width <= sides) {
        throw TextError("the width", "no room within the padding",
                        "more than " + std::to_string(sides) + " pixels");
    }
    return static_cast<float>(*style.width - sides);
}

Placement placeLines(const Style& style, std::u16string_view text,
                     const std::vector<TextLine>& ranges, const std::vector<LineMetrics>& metrics) {
    Placement placement;
    int y = style.padding.top;
    int widest = 0;
    Box ink{0, y, 0, y};
    for (size_t i = 0; i < ranges.size(); i++) {
        checkLine(metrics[i], i);
        Line& line = placement.lines.emplace_back(stackLine(text, ranges[i], metrics[i], y));
        y += toInt(
            std::round(static_cast<float>(line.box.bottom - line.box.top) * style.lineSpacing));
        if (y > kMaxViewHeight) throw TextError("the text", "too many lines");
        // Each box reaches to the next line's; the last one keeps its own height.
        if (i + 1 < ranges.size()) line.box.bottom = y;
        widest = std::max(widest, toInt(std::ceil(line.advance)));
        ink.top = std::min(ink.top, line.ink.top);
        ink.bottom = std::max({ink.bottom, line.ink.bottom, line.box.bottom});
    }
    // Marks may rise above and fall below what the fonts reserve: make room, or the picture's edge
    // cuts them.
    const int raise = style.padding.top - ink.top;
    placement.viewWidth = style.width.value_or(widest + style.padding.left + style.padding.right);
    placement.viewHeight = ink.bottom + raise + style.padding.bottom;
    for (Line& line : placement.lines) line.shift(leftOf(style, line, placement.viewWidth), raise);
    makeRoom(style, placement);
    return placement;
}

}  // namespace gxtext
