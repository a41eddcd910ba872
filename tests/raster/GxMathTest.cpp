#include "raster/GxMath.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

namespace GxFontEffect {
namespace {

TEST(GxMath, SqrtTableHoldsRootsRoundedToThreeDecimals) {
    ASSERT_EQ(GX_INT_SQRT_TABLE.size(), 5490u);
    for (int i = 0; i < GX_INT_SQRT_TABLE_SIZE; ++i) {
        const double rounded = std::floor(std::sqrt(static_cast<double>(i)) * 1000 + 0.5) / 1000;
        ASSERT_EQ(GX_INT_SQRT_TABLE[static_cast<size_t>(i)], static_cast<float>(rounded)) << i;
    }
}

TEST(GxMath, FsqrtIsTheOneStepApproximation) {
    EXPECT_EQ(fsqrt(0.0f), 0.0f);
    // v = 1: bits 0x3F800000, halved and subtracted 0x3F7759DF, y = 0.96621507406...;
    // y * (1.5 - 0.5 * y * y) = 0.99830716...
    EXPECT_FLOAT_EQ(fsqrt(1.0f), 0.99830717f);
    for (float v : {1e-6f, 0.5f, 2.0f, 3.75f, 100.0f, 65025.0f, 3e30f}) {
        const float root = std::sqrt(v);
        EXPECT_NEAR(fsqrt(v) / root, 1.0f, 0.00176f) << v;  // known bound of one Newton step
        EXPECT_LE(fsqrt(v), root * 1.000001f) << v;         // the step never overshoots
    }
}

TEST(GxMath, FsqrtOfAnyBitsIsDefined) {
    for (uint32_t bits = 0; bits < 0xFFF00000u; bits += 0x000FFF01u) {
        float v;
        std::memcpy(&v, &bits, sizeof(v));
        const volatile float result = fsqrt(v);
        (void)result;
    }
}

TEST(GxMath, ToIntTruncatesAndSaturates) {
    constexpr int32_t kMax = std::numeric_limits<int32_t>::max();
    constexpr int32_t kMin = std::numeric_limits<int32_t>::min();
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    EXPECT_EQ(toInt(2.9f), 2);
    EXPECT_EQ(toInt(-2.9f), -2);
    EXPECT_EQ(toInt(-0.5f), 0);
    EXPECT_EQ(toInt(2147483520.0f), 2147483520);  // the largest float below 2^31
    EXPECT_EQ(toInt(2147483648.0f), kMax);
    EXPECT_EQ(toInt(-2147483648.0f), kMin);
    EXPECT_EQ(toInt(-2147483904.0f), kMin);
    EXPECT_EQ(toInt(kInfinity), kMax);
    EXPECT_EQ(toInt(-kInfinity), kMin);
    EXPECT_EQ(toInt(std::nanf("")), 0);
    EXPECT_EQ(toInt(2147483647.9), kMax);
    EXPECT_EQ(toInt(-2147483648.9), kMin);
    EXPECT_EQ(toInt(-2147483649.0), kMin);
    EXPECT_EQ(toInt(std::nan("")), 0);
}

TEST(GxMath, ClampSendsNaNToTheLowerBound) {
    EXPECT_EQ(clampFloat(std::nanf(""), 0.25f, 1.0f), 0.25f);
    EXPECT_EQ(clampFloat(-1.0f, 0.25f, 1.0f), 0.25f);
    EXPECT_EQ(clampFloat(0.5f, 0.25f, 1.0f), 0.5f);
    EXPECT_EQ(clampFloat(std::numeric_limits<float>::infinity(), 0.25f, 1.0f), 1.0f);
}

}  // namespace
}  // namespace GxFontEffect
