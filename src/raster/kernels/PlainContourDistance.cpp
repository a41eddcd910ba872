#include <algorithm>

#include "raster/kernels/ContourDistance.h"

namespace GxFontEffect::kernels::plain {

namespace {

// A column or row of coverage, 0 beyond its ends.
struct Line {
    const uint8_t* first;
    int64_t step;
    int64_t count;

    int operator[](int64_t i) const { return i >= 0 && i < count ? first[i * step] : 0; }
    bool isCrossed(int64_t i) const {
        return ((*this)[i] >= kInsideCoverage) != ((*this)[i + 1] >= kInsideCoverage);
    }
    // From the centre of cell i to the point behind it.
    int pointAfter(int64_t i) const {
        return contourPointFrom((*this)[i - 1], (*this)[i], (*this)[i + 1], (*this)[i + 2]);
    }
};

// Calls store(i, distance) for every cell of the line, twice: first of the points before it only.
template <class Distances>
void measure(const Line& line, const Distances& distances) {
    int nearest = kFarthest;
    for (int64_t i = 0; i < line.count; ++i) {
        nearest = std::min(nearest + kContourUnits, kFarthest);
        if (i > 0 && line.isCrossed(i - 1)) {
            nearest = std::min(nearest, kContourUnits - line.pointAfter(i - 1));
        }
        distances.store(i, nearest);
    }
    nearest = kFarthest;
    for (int64_t i = line.count - 2; i >= 0; --i) {
        nearest = std::min(nearest + kContourUnits, kFarthest);
        if (line.isCrossed(i)) nearest = std::min(nearest, line.pointAfter(i));
        distances.lower(i, nearest);
    }
}

struct InColumn {
    int16_t* first;
    int64_t step;
    void store(int64_t i, int d) const { first[i * step] = static_cast<int16_t>(d); }
    void lower(int64_t i, int d) const { store(i, std::min<int>(first[i * step], d)); }
};

struct SquaresInRow {
    int32_t* first;
    void store(int64_t i, int d) const { first[i] = d * d; }
    void lower(int64_t i, int d) const { first[i] = std::min(first[i], d * d); }
};

}  // namespace

void contourDistances(const ContourPlanes& planes) {
    for (int64_t x = 0; x < planes.width; ++x) {
        measure(Line{planes.coverage + x, planes.width, planes.height},
                InColumn{planes.alongColumns + x, planes.width});
    }
    for (int64_t y = 0; y < planes.height; ++y) {
        measure(Line{planes.coverage + y * planes.width, 1, planes.width},
                SquaresInRow{planes.alongRows + y * planes.width});
    }
}

}  // namespace GxFontEffect::kernels::plain
