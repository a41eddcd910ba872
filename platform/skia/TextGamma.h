// The contrast curve of antialiased text.
#pragma once

#include <array>
#include <cstdint>

#include "SkColor.h"

namespace portable {

using CoverageTable = std::array<uint8_t, 256>;

// New coverage for each coverage of a glyph's grey mask, for text of this colour: dark text becomes
// a little lighter, light text heavier. 0 and 255 stay. Eight tables serve all colours, by
// luminance.
const CoverageTable& textGamma(SkColor color);

}  // namespace portable
