// Conversions and 8-bit arithmetic with an answer for every input.
#pragma once

#include <cmath>
#include <cstdint>

namespace portable {

// Coordinates in whole pixels stay within this, so that the sum of two fits an int.
constexpr int kMaxCoordinate = 1 << 29;

// The nearest integer below, held within ±kMaxCoordinate; NaN gives 0.
inline int floorToInt(double v) {
    if (!(v > -kMaxCoordinate)) return v != v ? 0 : -kMaxCoordinate;
    return v < kMaxCoordinate ? static_cast<int>(std::floor(v)) : kMaxCoordinate;
}

inline int ceilToInt(double v) {
    return -floorToInt(-v);
}

// The nearest integer, halves upwards; the sum is a float like the coordinate.
inline int roundToInt(float v) {
    return floorToInt(v + 0.5f);
}

// FreeType's 16.16 (FT_Fixed), exact.
constexpr double fromFixed(long v) {
    return static_cast<double>(v) / 65536;
}

// v / 255 to the nearest integer, for v up to 255 * 255.
constexpr unsigned div255(unsigned v) {
    v += 128;
    return (v + (v >> 8)) >> 8;
}

}  // namespace portable
