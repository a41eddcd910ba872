// Runs a suite once for each instruction set that the kernels have here.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "raster/kernels/SimdTargets.h"

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

}  // namespace gxtest
