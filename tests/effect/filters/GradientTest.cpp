// The linear and the radial gradient.
#include <gtest/gtest.h>

#include <cmath>
#include <type_traits>
#include <vector>

#include "effect/filters/FilterTesting.h"
#include "effect/filters/GxLinearGradient.h"
#include "effect/filters/GxRadialGradient.h"

namespace GxFontEffect {
namespace {

using gxtest::difference;
using gxtest::premultiplied;
using gxtest::Scene;

template <typename Core>
using GradientRecord = std::conditional_t<std::is_same_v<Core, GxLinearGradient>,
                                          GxLinearGradientProperty, GxRadialGradientProperty>;

const std::vector<GxGradient> kTwoStops = {{0xFF000000, 1, 0}, {0xFF0000FF, 1, 1}};

template <typename Core>
void paint(Scene& scene, float angle, float scale, const std::vector<GxGradient>& stops,
           uint32_t mode = 0) {
    const GradientRecord<Core> record(angle, scale, 0.1f, static_cast<int>(stops.size()),
                                      stops.data());
    gxtest::paintWith<Core>(scene, record, mode);
}

Scene fullScene(int width, int height) {
    Scene scene(width, height);
    std::memset(scene.mask.data, 255, size_t{scene.mask.width} * scene.mask.height);
    return scene;
}

template <typename Core>
class Gradients : public testing::Test {};
using GradientCores = testing::Types<GxLinearGradient, GxRadialGradient>;
TYPED_TEST_SUITE(Gradients, GradientCores);

TYPED_TEST(Gradients, NothingWithoutStopsOrScale) {
    for (const auto& [scale, count] :
         {std::pair{0.05f, 2}, {0.0f, 2}, {-3.0f, 2}, {1.0f, 0}, {gxtest::kNaN, 2}, {0.099f, 2}}) {
        Scene scene = fullScene(3, 3);
        paint<TypeParam>(scene, 0, scale, {kTwoStops.begin(), kTwoStops.begin() + count});
        EXPECT_EQ(scene.pixel(1, 1), 0u) << scale << " " << count;
    }
    TypeParam core;
    const GradientRecord<TypeParam> record(0, 1, 1, 2, nullptr);
    core.setProperty(&record);
    Scene scene = fullScene(3, 3);
    auto param = scene.param();
    core.doPostProcessing(&param);
    EXPECT_EQ(scene.pixel(1, 1), 0u);
    EXPECT_EQ(core.getOffset(), 0);
}

TYPED_TEST(Gradients, KeepTheirOwnStops) {
    TypeParam core;
    {
        std::vector<GxGradient> stops = kTwoStops;
        GradientRecord<TypeParam> record(-725, 9, 1, 2, stops.data());
        record.angle = -725;
        record.scale = 9;
        core.setProperty(&record);
    }
    const auto& record = dynamic_cast<const GxLinearGradientProperty&>(*core.getProperty());
    EXPECT_EQ(record.stops[1].color, 0xFF0000FFu);
    EXPECT_EQ(record.angle, -5.0f);
    EXPECT_EQ(record.scale, 2.0f);
}

// One entry of the table, from its definition for stops at 0, `middle` and 1.
uint32_t modelColor(int index, const std::vector<GxGradient>& stops) {
    if (stops.size() == 1 || index == 0) return premultiplied(stops[0].color);
    const float t = static_cast<float>(index) / 256.0f;
    // With stops at least 1/256 apart, one step per entry is enough to stay in the right segment.
    size_t k = 0;
    while (k + 2 < stops.size() && stops[k + 1].position < t) ++k;
    const GxGradient &a = stops[k], &b = stops[k + 1];
    const int f = static_cast<int>((t - a.position) / (b.position - a.position) * 256.0f);
    uint32_t color = 0;
    for (int shift = 0; shift < 32; shift += 8) {
        const uint32_t ca = (a.color >> shift) & 255, cb = (b.color >> shift) & 255;
        const uint32_t mixed = f < 1      ? ca
                               : f >= 256 ? cb
                                          : (cb * static_cast<uint32_t>(f) + ca * (256u - f)) >> 8;
        color |= mixed << shift;
    }
    return premultiplied(color);
}

template <typename Core>
GxBitmap model(const Scene& scene, float angle, float scale, const std::vector<GxGradient>& stops) {
    GxBitmap layer(scene.layer);
    const int w = scene.box.right - scene.box.left, h = scene.box.bottom - scene.box.top;
    const auto fw = static_cast<float>(w), fh = static_cast<float>(h);
    const float a = angle * -0.01745328f;
    const float length =
        std::abs(std::tan(a)) < fh / fw ? fw / std::abs(std::cos(a)) : fh / std::abs(std::sin(a));
    const float q = 256.0f / scale / length;
    const float k = (256.0f / fw + 256.0f / fw) / scale;
    for (int y = 0; y < h; ++y) {
        for (int x = 0; x < w; ++x) {
            if (scene.coverage(x, y) == 0) continue;
            const float dx = static_cast<float>(x) - fw * 0.5f;
            const float dy = static_cast<float>(y) - fh * 0.5f;
            int index;
            if (std::is_same_v<Core, GxLinearGradient>) {
                // Named products: the sum of two rounded products, whatever the machine.
                const float vertical = std::sin(a) * q * dy;
                const float horizontal = std::cos(a) * q * dx;
                index = std::clamp(static_cast<int>(vertical + horizontal), -128, 127) + 128;
            } else {
                const float squareY = dy * dy, squareX = dx * dx;
                index = std::clamp(static_cast<int>(k * std::sqrt(squareY + squareX)), 0, 255);
            }
            const uint32_t color = modelColor(index, stops);
            GxBlender().drawBitmapBlend32(scene.box.left + x, scene.box.top + y, &layer, &color, 1,
                                          1, 1, 2);
        }
    }
    return layer;
}

TYPED_TEST(Gradients, EqualTheirDefinition) {
    gxtest::Random random(307);
    GX_TRACE_SEED(random);
    for (int run = 0; run < 200; ++run) {
        Scene scene = gxtest::randomScene(random, 40);
        std::vector<GxGradient> stops;
        const int count = random.between(1, 6);
        for (int i = 0; i < count; ++i) {
            const float position = count == 1 ? 0.5f : static_cast<float>(i) / (count - 1);
            stops.push_back({random.word() | (random.oneIn(2) ? 0xFF000000u : 0), 1, position});
        }
        const auto angle = static_cast<float>(random.between(-359, 359));
        const float scale = static_cast<float>(random.between(11, 200)) * 0.01f;
        const GxBitmap expected = model<TypeParam>(scene, angle, scale, stops);
        paint<TypeParam>(scene, angle, scale, stops, random.between(0, 1));
        ASSERT_EQ(difference(expected, scene.layer), "")
            << run << " angle " << angle << " scale " << scale;
    }
}

}  // namespace
}  // namespace GxFontEffect
