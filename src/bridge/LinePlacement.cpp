#include "bridge/LinePlacement.h"

#include <algorithm>

#include "raster/GxMath.h"

namespace GxFontEffect {

namespace {

// android.view.Gravity; a view that was never given a gravity has all bits set and counts as fill.
constexpr uint32_t kGravityCenter = 0x10;
constexpr uint32_t kGravityFill = 0x70;

uint32_t VerticalGravity(const GxView& view) {
    return view.gravity & GxView::kVerticalGravityMask;
}

// Where the baseline of line 0 stands.
int64_t FirstBaseline(LineMetrics& lines, int32_t lineCount, int32_t visible, const GxView& view) {
    const int64_t top = view.paddingTop;
    const int64_t height = view.height;
    const int64_t baseline = lines.Baseline(0);
    switch (VerticalGravity(view)) {
        case kGravityCenter:
        case kGravityFill: {
            const int64_t freeHeight = height - top - view.paddingBottom;
            const int64_t bottom = lines.Bottom(visible - 1);
            return top + baseline + (freeHeight > bottom ? (freeHeight - bottom) / 2 : 0);
        }
        case GxView::kGravityBottom:
            return baseline - lines.Bottom(lineCount - 1) + height - view.paddingBottom;
        default:
            return top + baseline;
    }
}

GxLineInfo LineAt(LineMetrics& lines, int32_t line, int64_t y, const GxView& view) {
    const int64_t x = int64_t{view.paddingLeft} + toInt(lines.Left(line));
    GxLineInfo info;
    info.x = saturateInt(x);
    info.y = saturateInt(y);
    info.start = lines.Start(line);
    info.end = lines.VisibleEnd(line);
    info.rect.left = info.x;
    info.rect.top = saturateInt(y + lines.Ascent(line));
    info.rect.right = saturateInt(x + toInt(lines.Width(line)));
    info.rect.bottom = saturateInt(y + lines.Descent(line));
    return info;
}

}  // namespace

int32_t VisibleLineCount(int32_t lineCount, const GxView& view) {
    const int32_t most = view.lineLimit >= 1 ? view.lineLimit : std::max(view.maxLines, 0);
    return std::max(std::min(lineCount, most), 0);
}

LineRange ShownLines(int32_t lineCount, int32_t visible, const GxView& view) {
    if (VerticalGravity(view) == GxView::kGravityBottom) return {lineCount - visible, lineCount};
    return {0, visible};
}

std::vector<GxLineInfo> PlaceLines(LineMetrics& lines, int32_t lineCount, const GxView& view) {
    std::vector<GxLineInfo> placed;
    const int32_t visible = VisibleLineCount(lineCount, view);
    if (visible == 0) return placed;
    const LineRange shown = ShownLines(lineCount, visible, view);
    int64_t y = FirstBaseline(lines, lineCount, visible, view);
    int64_t previous = lines.Baseline(0);
    if (shown.first >= 1) {
        const int64_t before = lines.Baseline(shown.first - 1);
        y += before - previous;
        previous = before;
    }
    for (int32_t line = shown.first; line < shown.end && !lines.Failed(); line++) {
        const int64_t baseline = lines.Baseline(line);
        y += baseline - previous;
        previous = baseline;
        placed.push_back(LineAt(lines, line, y, view));
    }
    return placed;
}

}  // namespace GxFontEffect
