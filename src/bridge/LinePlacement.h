// Which lines of a laid-out text are shown, and where they stand in the view.
#pragma once

#include <cstdint>
#include <vector>

#include "text/GxLineInfo.h"
#include "text/GxView.h"

namespace GxFontEffect {

// A laid-out text, asked line by line (0 to its count - 1). Positions in pixels below the first
// line's top; ascents are negative.
class LineMetrics {
public:
    virtual ~LineMetrics() = default;

    virtual int32_t Baseline(int32_t line) = 0;
    virtual int32_t Bottom(int32_t line) = 0;
    virtual int32_t Ascent(int32_t line) = 0;
    virtual int32_t Descent(int32_t line) = 0;
    virtual int32_t Start(int32_t line) = 0;       // UTF-16 position in the text
    virtual int32_t VisibleEnd(int32_t line) = 0;  // one past the last visible unit
    virtual float Left(int32_t line) = 0;
    virtual float Width(int32_t line) = 0;

    // Whether the answers have stopped being real; the placement ends there.
    virtual bool Failed() const { return false; }
};

// Half-open range of lines.
struct LineRange {
    int32_t first = 0;
    int32_t end = 0;
};

// How many of `lineCount` lines are shown: no more than the view's line limit; without one (below
// 1), no more than its maximum of lines; without either, none.
int32_t VisibleLineCount(int32_t lineCount, const GxView& view);

// The first `visible` lines, or the last when the view's gravity is the bottom.
LineRange ShownLines(int32_t lineCount, int32_t visible, const GxView& view);

// One record per shown line, in order. The block of lines starts at the top padding, is centred in
// the free height (gravity centre and fill, unless it is higher than that), or ends at the bottom
// padding; each line follows the one before by the distance of their baselines. Values that do not
// fit 32 bits saturate. Lines outside the text are never asked for.
std::vector<GxLineInfo> PlaceLines(LineMetrics& lines, int32_t lineCount, const GxView& view);

}  // namespace GxFontEffect
