// Blur of 8-bit planes by a symmetric row of integer weights, in each direction, with exact
// division.
#pragma once

#include <cstdint>

namespace GxFontEffect::kernels {

// taps[0] is the centre's weight, taps[i] that of the cells i away on either side; positive
//     sum = taps[0] + 2 (taps[1] + ... + taps[radius]).
// 255 x sum must fit 32 bits.
struct BlurWeights {
    const int32_t* taps = nullptr;
    int32_t radius = 0;
    int32_t sum = 0;
};

// Whether a pass takes the cells as they are or their inverse, 255 - cell.
enum class BlurInput { kDirect, kInverse };

// Rows x columns of output and the input around them. Strides in bytes; no alignment is needed.
// Input and output must not overlap, but for columns that are blurred onto their own first rows:
// where both are multiples of kBlurStripWidth and 2, no cell is taken twice. Negative or zero
// extents do nothing.
struct BlurPass {
    const uint8_t* in = nullptr;
    int64_t inStride = 0;
    uint8_t* out = nullptr;
    int64_t outStride = 0;
    int64_t columns = 0;
    int64_t rows = 0;
};

// Rows of a pass that are blurred side by side: passes over rows are best given in multiples of it.
inline constexpr int64_t kBlurStripWidth = 64;

// From this radius on, blurs may keep sums of neighbouring cells.
inline constexpr int64_t kBlurRunRadius = 32;

// Bytes of the work memory for passes that read up to width x height cells: a strip of the plane,
// the differences or sums of its cells, and the weights' differences.
constexpr int64_t blurScratchBytes(int64_t width, int64_t height, int64_t radius) {
    const int64_t length = width > height ? width : height;
    const int64_t perCell = kBlurStripWidth * (radius < kBlurRunRadius ? 3 : 5);
    return (length + 224) * perCell + radius * 12;
}

// `scratch` holds blurScratchBytes() of the cells that are read; its contents do not matter.
//
// out[y][x] = (sum over i = -radius ... radius of taps[|i|] x in[y][x + radius + i]) / sum, rounded
// down: reads columns + 2 radius cells per row.
void blurRows(const BlurPass& pass, const BlurWeights& weights, BlurInput input, uint8_t* scratch);
// out[y][x] = (sum of taps[|i|] x in[y + radius + i][x]) / sum, rounded down: reads rows + 2 radius
// rows.
void blurColumns(const BlurPass& pass, const BlurWeights& weights, BlurInput input,
                 uint8_t* scratch);

// Both directions over a packed plane of width x height: columns first, then rows, the quotient
// truncated to a byte after each. Cells nearer than `radius` to the plane's edge are not computed:
// they become 0, or 255 of inverse input, and count as that in the second pass. Extents below 2
// radius do nothing.
void blurPlane(const uint8_t* in, uint8_t* out, int64_t width, int64_t height,
               const BlurWeights& weights, BlurInput input, uint8_t* scratch);

// The same in place, of direct input, for a packed plane whose outermost 2 radius cells on each
// side are 0: the first height - 2 radius rows, which must be an even number, become in their first
// width - 2 radius cells the means around the cells `radius` further right and down. The others do
// not matter afterwards.
void blurPaddedPlane(uint8_t* plane, int64_t width, int64_t height, const BlurWeights& weights,
                     uint8_t* scratch);

// The plain forms: the formulas, one cell at a time.
namespace plain {
void blurRows(const BlurPass& pass, const BlurWeights& weights, BlurInput input);
void blurColumns(const BlurPass& pass, const BlurWeights& weights, BlurInput input);
void blurPlane(const uint8_t* in, uint8_t* out, int64_t width, int64_t height,
               const BlurWeights& weights, BlurInput input, uint8_t* scratch);
void blurPaddedPlane(uint8_t* plane, int64_t width, int64_t height, const BlurWeights& weights);
}  // namespace plain

}  // namespace GxFontEffect::kernels
