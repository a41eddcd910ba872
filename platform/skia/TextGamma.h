// The contrast curve of antialiased text.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "SkColor.h"

namespace portable {

using CoverageTable = std::array<uint8_t, 256>;

// Which of the curves text of this colour takes, by luminance.
constexpr unsigned kGammaLevels = 8;
unsigned gammaLevel(SkColor color);

// Puts count pixels of a grey mask through the curve.
void applyGamma(unsigned level, uint8_t* coverage, size_t count);

// New coverage for each coverage of a glyph's grey mask, for text of this colour: dark text becomes
// a little lighter, light text heavier. 0 and 255 stay.
const CoverageTable& textGamma(SkColor color);

}  // namespace portable
