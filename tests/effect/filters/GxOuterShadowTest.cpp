#include "effect/filters/GxOuterShadow.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

#include "effect/filters/FilterTesting.h"

namespace GxFontEffect {
namespace {

using gxtest::difference;
using gxtest::paintWith;
using gxtest::Scene;
using testing::ElementsAre;

GxOuterShadowProperty outerRecord(float angle, float distance, float size,
                                  uint32_t color = 0xFFFFFFFF) {
    return {angle, distance, size, color, 0.3f};
}

TEST(GxOuterShadow, Weights) {
    struct Case {
        int radius;
        std::vector<int> weights;
        int sum;
    };
    // exp(-i^2 ln 100 / radius^2) x 100: for radius 2 the square root of a hundredth, 31.6.
    const Case cases[] = {{-1, {100}, 100},           {0, {100}, 100},
                          {1, {100, 1}, 102},         {2, {100, 32, 1}, 166},
                          {3, {100, 60, 13, 1}, 248}, {5, {100, 83, 48, 19, 5, 1}, 412}};
    for (const Case& c : cases) {
        std::vector<int> weights(c.weights.size(), -1);
        int sum = 0;
        GxOuterShadow::computeGaussianWeights(weights.data(), &sum, c.radius);
        EXPECT_EQ(weights, c.weights);
        EXPECT_EQ(sum, c.sum);
    }
    GxOuterShadow::computeGaussianWeights(nullptr, nullptr, 3);
}

TEST(GxOuterShadow, MarginsPerSide) {
    struct Case {
        float angle, distance, size;
        int left, top, right, bottom;
    };
    const Case cases[] = {
        {0, 4, 2, 6, 2, 0, 2},     // to the left
        {90, 10, 0, 0, 0, 0, 10},  // below; the cosine's residue rounds to 0
        {90, 10, 3, 3, 0, 3, 13},
        {180, 4, 2, 0, 2, 6, 2},   // to the right
        {270, 4, 6, 6, 10, 6, 2},  // above
        {45, 10, 0, 7, 0, 0, 7},   // 7.07 on both axes
        {0, 0, -3, 0, 0, -2, -2},  // (int)(-2.5); only the far sides stay negative
        {0, 1e30f, 1e30f, INT32_MAX, INT32_MAX, 0, INT32_MAX},
    };
    for (const Case& c : cases) {
        GxOuterShadow core;
        const auto record = outerRecord(c.angle, c.distance, c.size);
        core.setProperty(&record);
        EXPECT_THAT((std::vector{core.getLeftOffset(), core.getTopOffset(), core.getRightOffset(),
                                 core.getBottomOffset()}),
                    ElementsAre(c.left, c.top, c.right, c.bottom))
            << c.angle << " " << c.distance << " " << c.size;
        EXPECT_EQ(core.getOffset(), 0);
    }
}

// The definition over an unbounded plane.
GxBitmap model(const Scene& scene, const GxOuterShadowProperty& record, int shiftX, int shiftY) {
    const int radius = std::max(static_cast<int>(record.size + 0.5), 0);
    std::vector<int> weights(radius + 1);
    int sum = 0;
    GxOuterShadow::computeGaussianWeights(weights.data(), &sum, radius);
    const int width = scene.box.right - scene.box.left + 2 * radius;
    const int height = scene.box.bottom - scene.box.top + 2 * radius;
    std::vector<uint8_t> shadow;
    for (int y = -radius; y < height - radius; ++y) {
        for (int x = -radius; x < width - radius; ++x) {
            int total = 0;
            for (int i = -radius; i <= radius; ++i) {
                int column = 0;
                // Columns beyond the reach of the blur are not computed and are empty.
                for (int j = -radius; j <= radius; ++j) {
                    column += weights[std::abs(j)] * scene.coverageInBox(x + i, y + j);
                }
                total += weights[std::abs(i)] * (column / sum);
            }
            shadow.push_back(static_cast<uint8_t>(std::min(total / sum, 255)));
        }
    }
    GxBitmap layer(scene.layer);
    GxBlender().drawBitmapBlend8(scene.box.left - radius + shiftX, scene.box.top - radius + shiftY,
                                 &layer, shadow.data(), width, height, width, record.color, 2);
    return layer;
}

TEST(GxOuterShadow, EqualsItsDefinition) {
    gxtest::Random random(303);
    GX_TRACE_SEED(random);
    for (int run = 0; run < 250; ++run) {
        Scene scene = gxtest::randomScene(random, 15);
        const auto record =
            outerRecord(static_cast<float>(random.between(-400, 400)),
                        static_cast<float>(random.between(0, random.oneIn(4) ? 300 : 90)) * 0.1f,
                        static_cast<float>(random.between(-10, 60)) * 0.1f, random.word());
        // Away from halves the shift is that of any arithmetic.
        const double angle = record.angle * 3.14159 / 180.0;
        const double x = -record.distance * std::cos(angle);
        const double y = record.distance * std::sin(angle);
        const auto nearHalf = [](double v) {
            return std::abs(std::abs(v - std::trunc(v)) - 0.5) < 1e-4;
        };
        if (nearHalf(x) || nearHalf(y)) continue;
        const GxBitmap expected = model(scene, record, static_cast<int>(std::lround(x)),
                                        static_cast<int>(std::lround(y)));
        paintWith<GxOuterShadow>(scene, record);
        ASSERT_EQ(difference(expected, scene.layer), "") << run << " size " << record.size;
    }
}

}  // namespace
}  // namespace GxFontEffect
