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

template <typename Core>
class Gradients : public testing::Test {};
using GradientCores = testing::Types<GxLinearGradient, GxRadialGradient>;
TYPED_TEST_SUITE(Gradients, GradientCores);

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
    gxtest::forRandomScenes(307, 200, 40, [](gxtest::Random& random, Scene& scene) {
        std::vector<GxGradient> stops;
        const int count = random.between(1, 6);
        for (int i = 0; i < count; ++i) {
            const float position = count == 1 ? 0.5f : static_cast<float>(i) / (count - 1);
            stops.push_back({random.word() | (random.oneIn(2) ? 0xFF000000u : 0), 1, position});
        }
        const auto angle = static_cast<float>(random.between(-359, 359));
        const float scale = static_cast<float>(random.between(11, 200)) * 0.01f;
        const GxBitmap expected = model<TypeParam>(scene, angle, scale, stops);
        const GradientRecord<TypeParam> record(angle, scale, 0.1f, count, stops.data());
        gxtest::paintWith<TypeParam>(scene, record, random.between(0, 1));
        ASSERT_EQ(difference(expected, scene.layer), "") << "angle " << angle << " x" << scale;
    });
}

}  // namespace
}  // namespace GxFontEffect
