// Blur of 16-bit planes by three box means in each direction.
#pragma once

#include <algorithm>
#include <cstdint>

namespace GxFontEffect::kernels {

// Radii of the three means of a blur that reaches `reach` cells.
constexpr int64_t boxRadius(int64_t reach, int mean) {
    return (reach + 2 - mean) / 3;
}

// Mean of `count` cells that add up to `sum`, rounded to nearest by a factor that is rounded down,
// so that nothing grows past 65,535.
constexpr uint16_t boxMean(uint32_t sum, uint32_t count) {
    return static_cast<uint16_t>((sum * (65536 / count) + 32768) >> 16);
}

// Bytes of the work memory for planes of width x height cells.
constexpr int64_t boxBlurScratchBytes(int64_t width, int64_t height) {
    return (std::max(width, height) + 32) * 32 * int64_t{sizeof(uint16_t)};
}

// In place: box means of the radii (reach + 2) / 3, (reach + 1) / 3 and reach / 3 down the columns,
// then the same along the rows; a mean of radius k takes 2k + 1 cells and is rounded to 16 bits. A
// radius of 0 changes nothing. Cell (x, y) becomes the mean around the cell `reach` further right
// and down: the plane shrinks by twice the reach, cells beyond do not matter afterwards. Reaches
// are 0 to 255. Rows are packed, `width` a multiple of kReliefStep; there are kReliefStep cells of
// room behind the last. `scratch` holds boxBlurScratchBytes(), aligned for 16 bits.
void boxBlur(uint16_t* plane, int64_t width, int64_t height, int64_t reach, uint8_t* scratch);

// The plain forms: the formulas, one cell at a time.
namespace plain {
void boxBlur(uint16_t* plane, int64_t width, int64_t height, int64_t reach, uint8_t* scratch);
}  // namespace plain

}  // namespace GxFontEffect::kernels
