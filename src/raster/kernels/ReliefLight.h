// Light on the slopes of a relief, and the masks that show it.
#pragma once

#include <algorithm>
#include <cstdint>

#include "raster/GxMath.h"
#include "raster/kernels/ContourDistance.h"

namespace GxFontEffect::kernels {

// Light is in 1/64 level above or below that of level ground, stored with kLevelLight added.
inline constexpr int32_t kLevelLight = 16384;
inline constexpr int32_t kMostLight = 16320;  // 255 levels

// How slopes catch the light.
struct ReliefLighting {
    float steepness = 0;  // 200 takes heights as they are; negative: they rise
    float x = 0;          // direction of the light, a unit vector; y grows downwards
    float y = 0;
    float z = 0;
    float flat = 0;    // the light on level ground, by the same arithmetic
    float lit = 0;     // 1/64 levels for what a slope catches more,
    float shaded = 0;  // and less
};

// The third component of all normals: 200 x 512, since the two differences at a corner, in 1/256
// pixel, add up to 512 for a slope of 45 degrees.
inline constexpr float kNormalHeight = 102400.0f;

// The light at the corner between four heights `a b / c e`. Single precision, as written: products
// are rounded, sums go from left to right.
inline int32_t lightAtCorner(int32_t a, int32_t b, int32_t c, int32_t e,
                             const ReliefLighting& light) {
    const float nx = light.steepness * static_cast<float>((b + e) - (a + c));
    const float ny = light.steepness * static_cast<float>((c + e) - (a + b));
    const float nz = kNormalHeight;
    const float length = fsqrt((nx * nx + ny * ny) + nz * nz);
    const float t = ((nx * light.x + ny * light.y) + nz * light.z) / length - light.flat;
    const auto v = static_cast<int32_t>(t * (t > 0 ? light.lit : light.shaded));
    return std::clamp(v, -kMostLight, kMostLight);
}

// Bytes of the work memory for planes of `width` cells.
constexpr int64_t lightScratchBytes(int64_t width) {
    return 2 * (width + 32) * int64_t{sizeof(int16_t)};
}

// In place: the cell at (x, y) becomes the light on the cell at (x + 1, y + 1), the mean of that at
// its four corners plus kLevelLight; the plane shrinks by 2 in each direction, cells beyond do not
// matter afterwards. Rows are packed, `width` a multiple of kReliefStep; there are kReliefStep
// cells of room behind the last. `scratch` holds lightScratchBytes(), aligned for 16 bits.
void reliefLight(uint16_t* heights, int64_t width, int64_t height, const ReliefLighting& light,
                 uint8_t* scratch);

// Where a relief shows, by coverage.
enum class ReliefPart { kAll, kCovered, kNotFull };

// Splits `count` cells of light into the masks of the highlight and of the shadow, in levels
// rounded to nearest; 0 where the part leaves out the coverage. Up to kReliefStep - 1 cells more
// are read and written.
void reliefMasks(const uint16_t* light, const uint8_t* coverage, int64_t count, ReliefPart part,
                 uint8_t* highlight, uint8_t* shadow);

// The plain forms: the formulas, one cell at a time.
namespace plain {
void reliefLight(uint16_t* heights, int64_t width, int64_t height, const ReliefLighting& light,
                 uint8_t* scratch);
void reliefMasks(const uint16_t* light, const uint8_t* coverage, int64_t count, ReliefPart part,
                 uint8_t* highlight, uint8_t* shadow);
}  // namespace plain

}  // namespace GxFontEffect::kernels
