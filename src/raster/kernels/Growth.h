// Growth of a coverage mask by brightened 3 x 3 means.
#pragma once

#include <cstdint>

namespace GxFontEffect::kernels {

// Passes that run over a mask together.
inline constexpr int64_t kGrowthGroup = 4;

// Cells of room for the last vector of a row.
inline constexpr int64_t kGrowthRoom = 64;

// Bytes of the work memory for rows of `width` cells: of each pass of a group two sums per cell,
// and a row that is thrown away.
constexpr int64_t growthScratchBytes(int64_t width) {
    return (4 * kGrowthGroup + 1) * (width + kGrowthRoom);
}

// In place on a packed mask of width x height bytes, `passes` times: every cell that is not on the
// border becomes min(255, sum of its 3 x 3 neighbourhood / 4), rounded down. Four instead of nine
// is deliberate: each pass spreads the mask by a pixel and saturates it. Rows 0 and height - 1 stay
// as they are; in the rows between, columns 0 and width - 1 become 0. `scratch` holds
// growthScratchBytes(), whose contents do not matter. Extents and counts below 1 do nothing. No
// alignment is needed.
void growMask(uint8_t* mask, int64_t width, int64_t height, int64_t passes, uint8_t* scratch);

// The plain forms: the formulas, one cell at a time.
namespace plain {
void growMask(uint8_t* mask, int64_t width, int64_t height, int64_t passes, uint8_t* scratch);
}  // namespace plain

}  // namespace GxFontEffect::kernels
