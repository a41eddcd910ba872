#include "raster/kernels/SeparableBlur.h"

#include <cstring>

namespace GxFontEffect::kernels::plain {

namespace {

// Weighted mean of 2 radius + 1 cells, `step` bytes apart, around `centre`.
uint8_t weightedMean(const uint8_t* centre, int64_t step, const BlurWeights& weights) {
    int32_t total = weights.taps[0] * centre[0];
    for (int32_t i = 1; i <= weights.radius; ++i) {
        total += weights.taps[i] * (centre[-i * step] + centre[i * step]);
    }
    return static_cast<uint8_t>(total / weights.sum);
}

// The mean of inverted cells. Not 255 minus the mean: the quotient is rounded down after the
// subtraction.
uint8_t weightedInverseMean(const uint8_t* centre, int64_t step, const BlurWeights& weights) {
    int32_t total = 255 * weights.sum - weights.taps[0] * centre[0];
    for (int32_t i = 1; i <= weights.radius; ++i) {
        total -= weights.taps[i] * (centre[-i * step] + centre[i * step]);
    }
    return static_cast<uint8_t>(total / weights.sum);
}

// `step` leads from one tap to the next; `in` points at the first output's centre.
void blur(const BlurPass& pass, const uint8_t* in, int64_t step, const BlurWeights& weights,
          BlurInput input) {
    const auto mean = input == BlurInput::kDirect ? weightedMean : weightedInverseMean;
    for (int64_t y = 0; y < pass.rows; ++y) {
        const uint8_t* cells = in + y * pass.inStride;
        uint8_t* out = pass.out + y * pass.outStride;
        for (int64_t x = 0; x < pass.columns; ++x) out[x] = mean(cells + x, step, weights);
    }
}

}  // namespace

void blurRows(const BlurPass& pass, const BlurWeights& weights, BlurInput input) {
    blur(pass, pass.in + weights.radius, 1, weights, input);
}

void blurColumns(const BlurPass& pass, const BlurWeights& weights, BlurInput input) {
    blur(pass, pass.in + weights.radius * pass.inStride, pass.inStride, weights, input);
}

void blurPlane(const uint8_t* in, uint8_t* out, int64_t width, int64_t height,
               const BlurWeights& weights, BlurInput input, uint8_t* scratch) {
    const int64_t radius = weights.radius;
    const int64_t columns = width - 2 * radius;
    const int64_t rows = height - 2 * radius;
    if (columns < 0 || rows < 0) return;
    const int border = input == BlurInput::kDirect ? 0 : 255;
    std::memset(out, border, static_cast<size_t>(width * height));
    std::memset(scratch, border, static_cast<size_t>(width));
    for (int64_t y = 0; y < rows; ++y) {
        const uint8_t* inRow = in + y * width + radius;
        uint8_t* outRow = out + (y + radius) * width + radius;
        blurColumns({inRow, width, scratch + radius, width, columns, 1}, weights, input);
        blurRows({scratch, width, outRow, width, columns, 1}, weights, input);
    }
}

void blurPaddedPlane(uint8_t* plane, int64_t width, int64_t height, const BlurWeights& weights) {
    const int64_t columns = width - 2 * int64_t{weights.radius};
    const int64_t rows = height - 2 * int64_t{weights.radius};
    // A mean replaces a cell that none of those after it reads.
    blurColumns({plane, width, plane, width, width, rows}, weights, BlurInput::kDirect);
    blurRows({plane, width, plane, width, columns, rows}, weights, BlurInput::kDirect);
}

}  // namespace GxFontEffect::kernels::plain
