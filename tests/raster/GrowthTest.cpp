// The fast growth against its formula, byte for byte, on every instruction set.
#include "raster/kernels/Growth.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "raster/SimdTest.h"
#include "support/Random.h"

namespace GxFontEffect::kernels {
namespace {

using gxtest::Random;

enum Content { kNoise, kFull, kEmpty, kPixel, kBars, kContents };

std::vector<uint8_t> maskOf(Content content, int64_t width, int64_t height, Random& random) {
    std::vector<uint8_t> mask(static_cast<size_t>(width * height), content == kFull ? 255 : 0);
    if (content == kNoise) mask = random.edgeBytes(mask.size());
    if (content == kPixel) mask[random.word() % mask.size()] = random.edgeByte();
    if (content == kBars) gxtest::drawBars(random, mask.data(), width, height, width);
    return mask;
}

class Growth : public gxtest::SimdTest {
protected:
    // The fast form works in heap memory of exactly the documented sizes: the address sanitizer
    // sees a step past either end.
    void check(Content content, int64_t width, int64_t height, int64_t passes) {
        std::vector<uint8_t> expected = maskOf(content, width, height, random);
        const auto actual = std::make_unique<uint8_t[]>(expected.size());
        std::copy(expected.begin(), expected.end(), actual.get());
        const auto bytes = static_cast<size_t>(growthScratchBytes(width));
        const auto scratch = std::make_unique<uint8_t[]>(bytes);
        std::fill_n(scratch.get(), bytes, random.byte());
        plain::growMask(expected.data(), width, height, passes, scratch.get());
        growMask(actual.get(), width, height, passes, scratch.get());
        ASSERT_EQ(gxtest::firstDifference(expected.data(), actual.get(), expected.size()), "")
            << width << " x " << height << ", " << passes << " passes, content " << content;
    }

    Random random{41};
};

TEST_P(Growth, EqualsTheFormulaAtEverySmallSize) {
    GX_TRACE_SEED(random);
    for (int64_t width = 1; width <= 100; ++width) {
        for (int64_t height = 1; height <= 12; ++height) {
            check(static_cast<Content>(random.word() % kContents), width, height,
                  random.between(0, 10));
            if (HasFatalFailure()) return;
        }
    }
}

TEST_P(Growth, EqualsTheFormulaForEveryCountOfPasses) {
    GX_TRACE_SEED(random);
    for (int content = kNoise; content < kContents; ++content) {
        for (int64_t passes = -1; passes <= 21; ++passes) {
            check(static_cast<Content>(content), random.between(60, 140), random.between(30, 80),
                  passes);
            if (HasFatalFailure()) return;
        }
    }
}

// Some masks settle, others go on for as long as there is room.
TEST_P(Growth, StopsWhenNothingChanges) {
    for (int content = kNoise; content < kContents; ++content) {
        for (const int64_t height : {7, 8}) {
            check(static_cast<Content>(content), 75, height, INT64_MAX);
            if (HasFatalFailure()) return;
        }
    }
}

GX_INSTANTIATE_SIMD_TESTS(Growth);

}  // namespace
}  // namespace GxFontEffect::kernels
