// Small numeric helpers shared by the raster core, the effect stack and the filters.
#pragma once

#include <array>
#include <cmath>
#include <cstdint>
#include <limits>

#include "GxExport.h"

namespace GxFontEffect {

// Approximate square root: v times the reciprocal root that the exponent trick (0x5F3759DF minus
// half of the bits) and one Newton step give. Single precision, evaluated left to right; within
// 0.18 % of the root. Lighting is matched against this approximation, an exact root would change
// its bytes. fsqrt(0) is 0; the answer for negative input is some number, never a trap.
GXTEXT_API float fsqrt(float v);

// Entry i is the square root of i rounded to three decimals, i = 0 ... 5489: distances up to 74
// pixels from squared integer offsets.
inline constexpr int GX_INT_SQRT_TABLE_SIZE = 5490;
GXTEXT_API extern const std::array<float, GX_INT_SQRT_TABLE_SIZE> GX_INT_SQRT_TABLE;

// Float to int for any input: truncates toward zero, saturates at the ends of int32, NaN gives 0.
// The one place where the library converts: a plain cast is undefined outside the range.
constexpr int32_t toInt(float v) {
    // 2^31 is exact in single precision; 2^31 - 1 is not.
    if (v >= 2147483648.0f) return std::numeric_limits<int32_t>::max();
    if (v > -2147483648.0f) return static_cast<int32_t>(v);
    return v != v ? 0 : std::numeric_limits<int32_t>::min();
}

constexpr int32_t toInt(double v) {
    if (v >= 2147483648.0) return std::numeric_limits<int32_t>::max();
    if (v > -2147483649.0) return static_cast<int32_t>(v);
    return v != v ? 0 : std::numeric_limits<int32_t>::min();
}

// Saturates at the ends of int32.
constexpr int32_t saturateInt(int64_t v) {
    constexpr int64_t low = std::numeric_limits<int32_t>::min();
    constexpr int64_t high = std::numeric_limits<int32_t>::max();
    return static_cast<int32_t>(v < low ? low : v > high ? high : v);
}

// min(max(v, low), high); NaN gives low.
constexpr float clampFloat(float v, float low, float high) {
    if (!(v > low)) return low;
    return v < high ? v : high;
}

}  // namespace GxFontEffect
