#include <algorithm>
#include <cmath>

#include "raster/GxMath.h"
#include "raster/kernels/ReliefHeight.h"

namespace GxFontEffect::kernels::plain {

namespace {

// Squared distance of cell (x, y) to the nearest contour point, `reach` squared at most.
int32_t nearestPoint(const ContourPlanes& planes, int64_t x, int64_t y, int32_t reach) {
    const int64_t width = planes.width;
    const int16_t* alongColumns = planes.alongColumns + y * width;
    const int32_t* alongRows = planes.alongRows + x;
    int32_t nearest = reach * reach;
    const auto see = [&](int32_t acrossSquared, int32_t alongSquared) {
        nearest = std::min(nearest, acrossSquared + alongSquared);
    };
    for (int32_t k = 0; k * k * kContourUnits * kContourUnits < nearest; ++k) {
        const int32_t across = k * k * kContourUnits * kContourUnits;
        for (const int64_t column : {x - k, x + k}) {
            if (column < 0 || column >= width) continue;
            see(across, alongColumns[column] * alongColumns[column]);
        }
        for (const int64_t row : {y - k, y + k}) {
            if (row >= 0 && row < planes.height) see(across, alongRows[row * width]);
        }
    }
    return nearest;
}

// Signed distances of a row of cells, in 1/256 pixel.
void distanceRow(const ContourPlanes& planes, const ReliefSlope& slope, int64_t y, int32_t* row) {
    for (int64_t x = 0; x < planes.width; ++x) {
        const bool isInside = planes.coverage[y * planes.width + x] >= kInsideCoverage;
        const int32_t reach = isInside ? slope.reachInside() : slope.reachOutside();
        const auto square = static_cast<float>(nearestPoint(planes, x, y, reach));
        const int32_t distance = toInt(std::sqrt(square) * 2.0f + 0.5f);
        row[x] = isInside ? distance : -distance;
    }
}

int32_t weightedThree(int32_t a, int32_t b, int32_t c) {
    return a + 2 * b + c;
}

}  // namespace

void reliefHeights(const ContourPlanes& planes, const ReliefSlope& slope, uint16_t* heights,
                   uint8_t* scratch) {
    const int64_t width = planes.width;
    auto* ring = reinterpret_cast<int32_t*>(scratch);
    const auto row = [&](int64_t y) { return ring + y % 3 * width; };
    for (int64_t y = 0; y < planes.height; ++y) {
        distanceRow(planes, slope, y, row(y));
        if (y < 2) continue;
        const int32_t *above = row(y - 2), *middle = row(y - 1), *below = row(y);
        for (int64_t x = 0; x + 2 < width; ++x) {
            const int32_t sum =
                weightedThree(weightedThree(above[x], above[x + 1], above[x + 2]),
                              weightedThree(middle[x], middle[x + 1], middle[x + 2]),
                              weightedThree(below[x], below[x + 1], below[x + 2]));
            const int32_t mean = (sum + 8) >> 4;
            heights[(y - 2) * width + x] =
                static_cast<uint16_t>(std::clamp(mean, slope.low, slope.high) - slope.low);
        }
    }
}

}  // namespace GxFontEffect::kernels::plain
