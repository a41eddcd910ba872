// The two glows: one algorithm, on the mask and on its inverse.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <type_traits>
#include <vector>

#include "effect/filters/FilterTesting.h"
#include "effect/filters/GxInnerGlow.h"
#include "effect/filters/GxOuterGlow.h"
#include "effect/filters/PlaneModels.h"

namespace GxFontEffect {
namespace {

using gxtest::difference;
using gxtest::Plane;
using gxtest::Scene;

using Table = std::array<uint32_t, 257>;

template <typename Core>
class Glows : public testing::Test {
protected:
    static constexpr bool kIsInner = std::is_same_v<Core, GxInnerGlow>;
    using Record = std::conditional_t<kIsInner, GxInnerGlowProperty, GxOuterGlowProperty>;

    Table tableOf(const Record& record, float spread = 0.3f) {
        core.setProperty(&record);
        Table table;
        core.makeColorLUT(table.data(), spread, 0);
        return table;
    }

    Core core;
};
using Cores = testing::Types<GxOuterGlow, GxInnerGlow>;
TYPED_TEST_SUITE(Glows, Cores);

TYPED_TEST(Glows, Margins) {
    for (const auto& [size, margin] :
         {std::pair{0.0f, 0}, {2.7f, 3}, {10.0f, 10}, {2.4f, 2}, {-3.0f, -2}, {1e30f, INT32_MAX}}) {
        const typename TestFixture::Record record(size, 0, 1, 0, nullptr);
        EXPECT_EQ(gxtest::marginsOf<TypeParam>(record),
                  (std::array{margin, margin, margin, margin}));
    }
}

TYPED_TEST(Glows, TableFadesFromTheSpread) {
    const typename TestFixture::Record record(4, 0xC8123456, 1, 0, nullptr);
    for (const auto& [spread, start] : {std::pair{0.3f, 76},
                                        {0.5f, 128},
                                        {1.5f, 253},
                                        {1.0f, 253},
                                        {0.0f, 2},
                                        {-1.0f, 2},
                                        {gxtest::kNaN, 2}}) {
        const Table table = this->tableOf(record, spread);
        for (int i = 0; i <= 256; ++i) {
            const int alpha = i < start ? 200 : 200 * ((256 - i) * 256 / (256 - start)) >> 8;
            const uint32_t color = i < 256 ? static_cast<uint32_t>(alpha) << 24 | 0x123456u : 0;
            ASSERT_EQ(table[i], color) << spread << " " << i;
        }
    }
}

TYPED_TEST(Glows, TableColours) {
    const GxGradient stops[] = {{0xFF0000FF, 1, 0.9f}, {0xFF00FF00, 1, 0.125f}};
    Table table;
    this->core.makeColorLUT(nullptr, 0.3f, 0);
    this->core.makeColorLUT(table.data(), 0.3f, 0);
    EXPECT_EQ(table, Table()) << "no record";
    const auto tableOf = [&](float size, int count) {
        return this->tableOf({size, 0xFF123456, 1, count, count > 0 ? stops : nullptr});
    };
    EXPECT_EQ(tableOf(1, 0)[70], 0xFF123456u);
    EXPECT_EQ(tableOf(1, -2)[70], 0xFF123456u);
    EXPECT_EQ(tableOf(1, 1)[70], 0xFF0000FFu);
    // The first stop's own position is not used: the ramp runs from 0 to 0.125.
    EXPECT_EQ(tableOf(1, 2)[16], 0xFF007F7Fu);
    EXPECT_EQ(tableOf(1, 2)[70], 0xFF00FF00u) << "and holds after its last stop";
    EXPECT_EQ(tableOf(0, 2), Table());
    EXPECT_EQ(tableOf(-0.0f, 2), Table());
}

TYPED_TEST(Glows, NothingToGrow) {
    std::vector<uint8_t> mask(25, 9);
    TypeParam::increaseByBoxFilter(nullptr, 1, 5, 5);
    TypeParam::increaseByBoxFilter(mask.data(), 1, 0, 5);
    TypeParam::increaseByBoxFilter(mask.data(), 1, 5, -5);
    EXPECT_EQ(mask, std::vector<uint8_t>(25, 9));
}

void gaussianWeights(int* weights, int* sum, int radius) {
    *sum = weights[0] = 128;
    for (int i = 1; i <= radius; ++i) {
        weights[i] = static_cast<int>(std::exp(-4.60517 * i * i / (radius * radius)) * 128 + 0.5);
        *sum += 2 * weights[i];
    }
}

// One pass: a quarter of the sum of each cell and its neighbours. The first and the last row stay,
// the first and the last column become empty.
Plane grown(const Plane& plane) {
    return Plane(plane.width, plane.height, 0, [&](int x, int y) {
        if (y == 0 || y == plane.height - 1) return plane.at(x, y);
        int sum = 0;
        for (int i = 0; x > 0 && x < plane.width - 1 && i < 9; ++i) {
            sum += plane.at(x - 1 + i % 3, y - 1 + i / 3);
        }
        return std::min(sum / 4, 255);
    });
}

// The scene's layer under a glow of `size` through `table`.
GxBitmap model(const Scene& scene, float size, const Table& table, bool isInner) {
    GxBitmap layer(scene.layer);
    const int m = static_cast<int>(size) + 1;
    if (m <= 0) return layer;
    const int width = scene.box.right - scene.box.left + 4 * m;
    const int height = scene.box.bottom - scene.box.top + 4 * m;
    Plane plane(width, height, 0, [&](int x, int y) {
        const int coverage = scene.coverageInBox(x - 2 * m, y - 2 * m);
        return isInner ? 255 - coverage : coverage;
    });
    for (int pass = std::max(static_cast<int>(m * 0.4750000089406967), 1); pass > 0; --pass) {
        plane = grown(plane);
    }
    const int g = static_cast<int>(static_cast<float>(m) * 0.9f);
    const gxtest::Weights weights(gaussianWeights, g);
    const auto isComputed = [&](int x, int y) {
        return x >= g && x < width - g && y >= g && y < height - g;
    };
    // Each pass of the inner glow inverts.
    const auto blurredAlong = [&](const Plane& from, bool isColumn) {
        const Plane input(width, height, 0, [&](int x, int y) {
            return isInner ? 255 - from.at(x, y) : from.at(x, y);
        });
        return Plane(width, height, 0, [&](int x, int y) {
            if (!isComputed(x, y)) return isInner ? 255 : 0;
            return weights.mean(input, x, y, isColumn);
        });
    };
    const Plane glow = blurredAlong(blurredAlong(plane, true), false);
    std::vector<uint32_t> pixels;
    for (int i = 0; i < width * height; ++i) {
        const int x = i % width, y = i / width;
        const uint32_t untouched = isInner ? 0xFFFFFFFF : 0;
        const uint32_t color = table[256 - glow.at(x, y)];
        pixels.push_back(isComputed(x, y) ? gxtest::premultiplied(color) : untouched);
    }
    GxBlender().drawBitmapBlend32(scene.box.left - 2 * m, scene.box.top - 2 * m, &layer,
                                  pixels.data(), width, height, width, 2);
    return layer;
}

TYPED_TEST(Glows, EqualTheirDefinition) {
    gxtest::forRandomScenes(305, 200, 14, [this](gxtest::Random& random, Scene& scene) {
        std::vector<GxGradient> stops;
        for (int i = random.between(0, 4); i > 0; --i) {
            stops.push_back({random.word() | (random.oneIn(2) ? 0xFF000000u : 0), 1,
                             1.0f - static_cast<float>(i - 1) * 0.3f});
        }
        const float size = static_cast<float>(random.between(-15, 60)) * 0.1f;
        const Table table = this->tableOf(
            {size, random.word(), 0.2f, static_cast<int>(stops.size()), stops.data()});
        const GxBitmap expected = model(scene, size, table, this->kIsInner);
        auto param = scene.param(random.between(0, 1));
        this->core.doPostProcessing(&param);
        ASSERT_EQ(difference(expected, scene.layer), "") << "size " << size;
    });
}

}  // namespace
}  // namespace GxFontEffect
