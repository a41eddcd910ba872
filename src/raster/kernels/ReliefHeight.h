// Heights of a relief: a slope across the contour of a mask.
#pragma once

#include <cstdint>

#include "raster/kernels/ContourDistance.h"

namespace GxFontEffect::kernels {

// The slope rises from 0 at the signed distance `low` to its full height at `high`, which is not
// below it; distances are in 1/256 pixel, negative outside. Both lie less than 254 pixels from 0,
// low not above it, high not below it, and less than 256 pixels apart.
struct ReliefSlope {
    int32_t low = 0;
    int32_t high = 0;

    // Distances are cut two pixels past the slope, where no mean shows them; in 1/128 pixel.
    int32_t reachOutside() const { return (2 * 256 - low) / 2; }
    int32_t reachInside() const { return (2 * 256 + high) / 2; }
};

// Bytes of the work memory for planes of width x height cells: some rows, and three numbers for
// each block of 64 cells or more, tables.
constexpr int64_t heightScratchBytes(int64_t width, int64_t height) {
    return (6 * width + 3 * (width / 8) * (height / 8 + 9) + height / 8 + 4096) *
           int64_t{sizeof(int32_t)};
}

// With q = the smallest squared distance from a cell's centre to any contour point, in 1/128 pixel,
// a cell's signed distance is d = (int)(sqrt((float)q) x 2 + 0.5), negative when the cell is
// outside. heights[y][x] = clamp(t, low, high) - low, t being the mean of d over the 3 x 3 cells
// from (x, y) on, weighted 1 2 1 / 2 4 2 / 1 2 1 and rounded to nearest. It smooths what is left of
// the pixels' stairs.
//
// `planes` come from contourDistances(). `heights` has rows of planes.width cells and
// kReliefStep cells of room behind the last; width - 2 cells in height - 2 rows are made, others
// are written but do not matter. `scratch` holds heightScratchBytes(), aligned for 32 bits.
void reliefHeights(const ContourPlanes& planes, const ReliefSlope& slope, uint16_t* heights,
                   uint8_t* scratch);

// The plain forms: the formulas, one cell at a time.
namespace plain {
void reliefHeights(const ContourPlanes& planes, const ReliefSlope& slope, uint16_t* heights,
                   uint8_t* scratch);
}  // namespace plain

}  // namespace GxFontEffect::kernels
