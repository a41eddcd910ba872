// The two glows: one algorithm, on the mask and on its inverse.
#include <gtest/gtest.h>

#include <array>
#include <type_traits>
#include <vector>

#include "effect/filters/FilterTesting.h"
#include "effect/filters/GlowModel.h"
#include "effect/filters/GxInnerGlow.h"
#include "effect/filters/GxOuterGlow.h"

namespace GxFontEffect {
namespace {

using gxtest::difference;
using gxtest::Scene;
using gxtest::Table;

template <typename Core>
class Glows : public testing::Test {};
using Cores = testing::Types<GxOuterGlow, GxInnerGlow>;
TYPED_TEST_SUITE(Glows, Cores);

// The record of a core.
template <typename Core>
using RecordOf =
    std::conditional_t<std::is_same_v<Core, GxOuterGlow>, GxOuterGlowProperty, GxInnerGlowProperty>;

TEST(GxOuterGlow, Weights) {
    struct Case {
        int radius;
        std::vector<int> weights;
        int sum;
    };
    for (const Case& c : std::vector<Case>{{0, {128}, 128},
                                           {1, {128, 1}, 130},
                                           {2, {128, 40, 1}, 210},
                                           {3, {128, 77, 17, 1}, 318}}) {
        std::vector<int> weights(c.weights.size());
        int sum = 0;
        GxOuterGlow::computeGaussianWeights(weights.data(), &sum, c.radius);
        EXPECT_EQ(weights, c.weights);
        EXPECT_EQ(sum, c.sum);
    }
}

TYPED_TEST(Glows, Margins) {
    for (const auto& [size, margin] :
         {std::pair{0.0f, 0}, {2.7f, 3}, {10.0f, 10}, {2.4f, 2}, {-3.0f, -2}, {1e30f, INT32_MAX}}) {
        TypeParam core;
        const RecordOf<TypeParam> record(size, 0, 1, 0, nullptr);
        core.setProperty(&record);
        EXPECT_EQ(core.getOffset(), margin);
        EXPECT_EQ(core.getBottomOffset(), margin);
    }
}

TYPED_TEST(Glows, TableFadesFromTheSpread) {
    TypeParam core;
    Table table;
    core.makeColorLUT(nullptr, 0.3f, 0);
    const RecordOf<TypeParam> record(4, 0xC8123456, 1, 0, nullptr);
    core.setProperty(&record);
    for (const auto& [spread, start] : {std::pair{0.3f, 76},
                                        {1.5f, 253},
                                        {-1.0f, 2},
                                        {0.5f, 128},
                                        {gxtest::kNaN, 2},
                                        {1.0f, 253},
                                        {0.0f, 2}}) {
        core.makeColorLUT(table.data(), spread, 0);
        for (int i = 0; i < 256; ++i) {
            const int alpha = i < start ? 200 : 200 * ((256 - i) * 256 / (256 - start)) >> 8;
            ASSERT_EQ(table[i], static_cast<uint32_t>(alpha) << 24 | 0x123456u)
                << spread << " " << i;
        }
        EXPECT_EQ(table[256], 0u);
    }
}

TYPED_TEST(Glows, TableColours) {
    const GxGradient stops[] = {{0xFF0000FF, 1, 0.9f}, {0xFF00FF00, 1, 0.125f}};
    TypeParam core;
    Table table;
    core.makeColorLUT(table.data(), 0.3f, 0);
    EXPECT_EQ(table[1], 0u) << "no record";
    const auto tableOf = [&](float size, int count) {
        const RecordOf<TypeParam> record(size, 0xFF123456, 1, count, count > 0 ? stops : nullptr);
        core.setProperty(&record);
        core.makeColorLUT(table.data(), 0.3f, 0);
        return table;
    };
    EXPECT_EQ(tableOf(1, 0)[70], 0xFF123456u);
    EXPECT_EQ(tableOf(1, -2)[70], 0xFF123456u);
    EXPECT_EQ(tableOf(1, 1)[70], 0xFF0000FFu);
    // The first stop's own position is not used: the ramp runs from 0 to 0.125.
    EXPECT_EQ(tableOf(1, 2)[16], 0xFF007F7Fu);
    EXPECT_EQ(tableOf(1, 2)[70], 0xFF00FF00u) << "and holds after its last stop";
    for (uint32_t color : tableOf(0, 2)) EXPECT_EQ(color, 0u);
    for (uint32_t color : tableOf(-0.0f, 2)) EXPECT_EQ(color, 0u);
}

TYPED_TEST(Glows, StopsAreCopied) {
    TypeParam core;
    {
        std::vector<GxGradient> stops = {{0xFF112233, 1, 0}, {0xFF445566, 1, 1}};
        const RecordOf<TypeParam> record(3, 0, 1, 2, stops.data());
        core.setProperty(&record);
    }
    core.setProperty(core.getProperty());
    const auto& record = dynamic_cast<const GxOuterGlowProperty&>(*core.getProperty());
    ASSERT_EQ(record.stopCount, 2);
    EXPECT_EQ(record.stops[0].color, 0xFF112233u);
    EXPECT_EQ(record.stops[1].position, 1.0f);
}

TYPED_TEST(Glows, NothingToGrow) {
    std::vector<uint8_t> mask(25, 9);
    TypeParam::increaseByBoxFilter(nullptr, 1, 5, 5);
    TypeParam::increaseByBoxFilter(mask.data(), 1, 0, 5);
    TypeParam::increaseByBoxFilter(mask.data(), 1, 5, -5);
    EXPECT_EQ(mask, std::vector<uint8_t>(25, 9));
}

TYPED_TEST(Glows, EqualTheirDefinition) {
    constexpr bool inner = std::is_same_v<TypeParam, GxInnerGlow>;
    gxtest::Random random(inner ? 306 : 305);
    GX_TRACE_SEED(random);
    for (int run = 0; run < 200; ++run) {
        Scene scene = gxtest::randomScene(random, 14);
        std::vector<GxGradient> stops;
        for (int i = random.between(0, 4); i > 0; --i) {
            stops.push_back({random.word() | (random.oneIn(2) ? 0xFF000000u : 0), 1,
                             1.0f - static_cast<float>(i - 1) * 0.3f});
        }
        const float size = static_cast<float>(random.between(-15, 60)) * 0.1f;
        const RecordOf<TypeParam> record(size, random.word(), 0.2f, static_cast<int>(stops.size()),
                                         stops.data());
        TypeParam core;
        core.setProperty(&record);
        Table table;
        core.makeColorLUT(table.data(), 0.3f, 0);
        const GxBitmap expected = gxtest::glowModel(scene, size, table, inner);
        auto param = scene.param(random.between(0, 1));
        core.doPostProcessing(&param);
        ASSERT_EQ(difference(expected, scene.layer), "") << run << " size " << size;
    }
}

}  // namespace
}  // namespace GxFontEffect
