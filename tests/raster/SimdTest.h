// Runs a suite once for each instruction set that the kernels have here; what its masks hold and
// how they are compared.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "raster/kernels/SimdTargets.h"
#include "support/Random.h"

namespace gxtest {

// The kernels of a test run on the set of its parameter; a test that called none fails.
class SimdTest : public testing::TestWithParam<std::string> {
protected:
    void SetUp() override { GxFontEffect::kernels::forceSimdTarget(GetParam()); }
    void TearDown() override {
        EXPECT_TRUE(GxFontEffect::kernels::hasDispatchedSimd()) << "no kernel was called";
        EXPECT_EQ(GxFontEffect::kernels::simdTargetName(), GetParam());
        GxFontEffect::kernels::forceSimdTarget("");
    }
};

#define GX_INSTANTIATE_SIMD_TESTS(suite)                                             \
    INSTANTIATE_TEST_SUITE_P(                                                        \
        Targets, suite, testing::ValuesIn(GxFontEffect::kernels::simdTargetNames()), \
        [](const testing::TestParamInfo<std::string>& target) { return target.param; })

// Solid rectangles with a soft edge, as upright and lying stems of letters.
inline void drawBars(Random& random, uint8_t* cells, int64_t width, int64_t height,
                     int64_t stride) {
    for (int bar = random.between(1, 6); bar > 0; --bar) {
        const int left = random.between(0, static_cast<int>(width) - 1);
        const int top = random.between(0, static_cast<int>(height) - 1);
        const int64_t right = std::min<int64_t>(width, left + random.between(1, 40));
        const int64_t bottom = std::min<int64_t>(height, top + random.between(1, 40));
        for (int64_t y = top; y < bottom; ++y) {
            for (int64_t x = left; x < right; ++x) {
                const bool edge = x == left || y == top || x == right - 1 || y == bottom - 1;
                cells[y * stride + x] = edge ? random.byte() : 255;
            }
        }
    }
}

// The first byte in which two stretches differ, or "".
inline std::string firstDifference(const uint8_t* expected, const uint8_t* actual, size_t count) {
    const auto [e, a] = std::mismatch(expected, expected + count, actual);
    if (e == expected + count) return "";
    return "byte " + std::to_string(e - expected) + " is " + std::to_string(*a) + ", not " +
           std::to_string(*e);
}

}  // namespace gxtest
