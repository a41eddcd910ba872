// Distances to the contour of a coverage mask, along its columns and along its rows.
//
// The contour is where coverage passes one half, to 1/128 pixel: a point lies between two
// neighbours in a row or a column of which one is inside. Distances to such points change smoothly
// along a slanted edge, where distances to whole pixels would jump with every stair of it.
#pragma once

#include <cstdint>

namespace GxFontEffect::kernels {

// A pixel is inside from this coverage on.
inline constexpr int kInsideCoverage = 128;

// 1/128 pixels from one pixel's centre to the next.
inline constexpr int kContourUnits = 128;

// The distance of cells without a point in their column or row, and the largest of all: 255.99
// pixels.
inline constexpr int32_t kFarthest = 32767;

// Widths of the planes of a relief are multiples of it.
inline constexpr int64_t kReliefStep = 32;

// A mask and the distances in it: width x height cells each, rows packed, with kReliefStep cells of
// room behind the last. The width is a multiple of kReliefStep; coverage outside the plane is 0.
struct ContourPlanes {
    int64_t width = 0;
    int64_t height = 0;
    const uint8_t* coverage = nullptr;
    int16_t* alongColumns = nullptr;  // to the nearest point in the cell's column, 1/128 pixel
    int32_t* alongRows = nullptr;     // the square of the same in its row, 1/128^2 pixel^2
};

// Fills both planes of distances.
void contourDistances(const ContourPlanes& planes);

// Where the contour passes between an inside pixel u and an outside pixel v, in 1/128 pixel from
// the centre of u towards that of v. p lies behind u, w behind v. Between full and empty
// neighbours the four pixels' area tells, which is exact for straight edges that meet the line at
// 27 degrees or more; otherwise the straight line from u to v.
constexpr int contourPoint(int p, int u, int v, int w) {
    if (255 - p <= 16 && w <= 16) {
        const int f = ((p + u + v + w) * 128 + 127) / 255 - 192;
        return f < 0 ? 0 : f > kContourUnits ? kContourUnits : f;
    }
    return ((2 * u - 255) * 128 + (u - v)) / (2 * (u - v));
}

// The same between the neighbours `a` and `b`, of which one is inside, from the centre of `a`
// towards that of `b`. `before` lies behind a, `after` behind b.
constexpr int contourPointFrom(int before, int a, int b, int after) {
    return a >= kInsideCoverage ? contourPoint(before, a, b, after)
                                : kContourUnits - contourPoint(after, b, a, before);
}

// The plain forms: the formulas, one cell at a time.
namespace plain {
void contourDistances(const ContourPlanes& planes);
}  // namespace plain

}  // namespace GxFontEffect::kernels
