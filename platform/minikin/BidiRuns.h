// Runs of one direction, left to right.
#pragma once

#include <vector>

#include "minikin/Layout.h"
#include "minikin/Range.h"
#include "minikin/U16StringPiece.h"

namespace minikin {

struct BidiRun {
    Range range;
    bool isRtl;
};

// Whether nothing in the text is right to left or changes directions.
bool isLeftToRight(const U16StringPiece& text);

// Visual runs of the whole text, cut to `range`; empty ones are left out.
std::vector<BidiRun> visualRuns(const U16StringPiece& text, const Range& range, Bidi bidiFlags);

}  // namespace minikin
