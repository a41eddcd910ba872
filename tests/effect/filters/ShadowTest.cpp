// The outer and the inner shadow.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <vector>

#include "effect/filters/FilterTesting.h"
#include "effect/filters/GxInnerShadow.h"
#include "effect/filters/GxOuterGlow.h"
#include "effect/filters/GxOuterShadow.h"
#include "effect/filters/PlaneModels.h"

namespace GxFontEffect {
namespace {

using gxtest::blurred;
using gxtest::difference;
using gxtest::marginsOf;
using gxtest::Order;
using gxtest::paintWith;
using gxtest::Plane;
using gxtest::Random;
using gxtest::Scene;
using gxtest::Weights;

TEST(GaussianWeights, FallToAHundredth) {
    struct Case {
        void (*compute)(int*, int*, int);
        int radius;
        std::vector<int> weights;
        int sum;
    };
    // exp(-i^2 ln 100 / radius^2) x 100: for radius 2 the square root of a hundredth, 31.6.
    const auto outer = GxOuterShadow::computeGaussianWeights;
    const auto glow = GxOuterGlow::computeGaussianWeights;
    const Case cases[] = {{outer, -1, {100}, 100},
                          {outer, 0, {100}, 100},
                          {outer, 1, {100, 1}, 102},
                          {outer, 2, {100, 32, 1}, 166},
                          {outer, 3, {100, 60, 13, 1}, 248},
                          {outer, 5, {100, 83, 48, 19, 5, 1}, 412},
                          {GxInnerShadow::computeGaussianWeights, 5, {100, 83, 48, 19, 5, 1}, 412},
                          {glow, 0, {128}, 128},
                          {glow, 1, {128, 1}, 130},
                          {glow, 2, {128, 40, 1}, 210},
                          {glow, 3, {128, 77, 17, 1}, 318}};
    for (const Case& c : cases) {
        const Weights weights(c.compute, c.radius);
        EXPECT_EQ(weights.taps, c.weights);
        EXPECT_EQ(weights.sum, c.sum);
        c.compute(nullptr, nullptr, c.radius);
    }
}

TEST(GxOuterShadow, MarginsPerSide) {
    struct Case {
        float angle, distance, size;
        std::array<int, 4> margins;  // left, top, right, bottom
    };
    const Case cases[] = {
        {0, 4, 2, {6, 2, 0, 2}},     // to the left
        {90, 10, 0, {0, 0, 0, 10}},  // below; the cosine's residue rounds to 0
        {90, 10, 3, {3, 0, 3, 13}},
        {180, 4, 2, {0, 2, 6, 2}},   // to the right
        {270, 4, 6, {6, 10, 6, 2}},  // above
        {45, 10, 0, {7, 0, 0, 7}},   // 7.07 on both axes
        {0, 0, -3, {0, 0, -2, -2}},  // (int)(-2.5); only the far sides stay negative
        {0, 1e30f, 1e30f, {INT32_MAX, INT32_MAX, 0, INT32_MAX}},
    };
    for (const Case& c : cases) {
        const GxOuterShadowProperty record(c.angle, c.distance, c.size, 0, 1);
        EXPECT_EQ(marginsOf<GxOuterShadow>(record), c.margins) << c.angle << " " << c.size;
        const GxInnerShadowProperty inner(c.angle, c.distance, c.size, 0, 1);
        EXPECT_EQ(marginsOf<GxInnerShadow>(inner), (std::array{0, 0, 0, 0}));
    }
}

int radiusOf(float size) {
    return std::max(static_cast<int>(size + 0.5), 0);
}

struct Shift {
    int x, y;
};

// Away from the light. Nothing close to halves, where it depends on the machine's arithmetic.
std::optional<Shift> shiftOf(float degrees, float distance) {
    const double angle = degrees * 3.14159 / 180.0;
    const double x = -distance * std::cos(angle), y = distance * std::sin(angle);
    const auto nearHalf = [](double v) {
        return std::abs(std::abs(v - std::trunc(v)) - 0.5) < 1e-4;
    };
    if (nearHalf(x) || nearHalf(y)) return {};
    return Shift{static_cast<int>(std::lround(x)), static_cast<int>(std::lround(y))};
}

// The layer after a tint through the plane, whose first cell lies at (x, y) of the box.
GxBitmap tinted(const Scene& scene, const Plane& plane, int x, int y, uint32_t color) {
    GxBitmap layer(scene.layer);
    GxBlender().drawBitmapBlend8(scene.box.left + x, scene.box.top + y, &layer,
                                 plane.bytes().data(), plane.width, plane.height, plane.width,
                                 color, 2);
    return layer;
}

TEST(GxOuterShadow, EqualsItsDefinition) {
    gxtest::forRandomScenes(303, 250, 15, [](Random& random, Scene& scene) {
        const GxOuterShadowProperty record(
            static_cast<float>(random.between(-400, 400)),
            static_cast<float>(random.between(0, random.oneIn(4) ? 300 : 90)) * 0.1f,
            static_cast<float>(random.between(-10, 60)) * 0.1f, random.word(), 0.3f);
        const auto shift = shiftOf(record.angle, record.distance);
        if (!shift) return;
        const int radius = radiusOf(record.size);
        const Plane letters(scene.box.right - scene.box.left + 2 * radius,
                            scene.box.bottom - scene.box.top + 2 * radius, 0,
                            [&](int column, int row) {
                                return scene.coverageInBox(column - radius, row - radius);
                            });
        const Weights weights(GxOuterShadow::computeGaussianWeights, radius);
        const GxBitmap expected = tinted(scene, blurred(letters, weights, Order::kColumnsFirst),
                                         shift->x - radius, shift->y - radius, record.color);
        paintWith<GxOuterShadow>(scene, record);
        ASSERT_EQ(difference(expected, scene.layer), "") << "size " << record.size;
    });
}

// The background of `cast`, blurred and shifted, within the letters of `scene`; where nothing of
// the box is in reach, all of the background.
Plane innerShade(const Scene& scene, const Scene& cast, int radius, const Shift& shift) {
    const int w = scene.box.right - scene.box.left, h = scene.box.bottom - scene.box.top;
    const auto letters = [&](int x, int y) { return scene.coverageInBox(x, y); };
    if (w + radius + shift.x < 0 || -radius + shift.x >= w || -radius + shift.y >= h ||
        h + radius + shift.y < 0) {
        return Plane(w, h, 0, letters);
    }
    // As far around the box as the blur spreads it.
    const Plane background(w + 2 * radius, h + 2 * radius, 255, [&](int x, int y) {
        return 255 - cast.coverageInBox(x - radius, y - radius);
    });
    const Weights weights(GxInnerShadow::computeGaussianWeights, radius);
    const Plane shade = blurred(background, weights, Order::kRowsFirst);
    return Plane(w, h, 0, [&](int x, int y) {
        const bool exposed = (shift.y > radius && y < shift.y - radius) ||
                             (shift.y < -radius && y >= h + radius + shift.y) ||
                             (shift.x > radius && x < shift.x - radius) ||
                             (shift.x < -radius && x >= w + radius + shift.x);
        if (exposed) return 255;
        return letters(x, y) == 0 ? 0 : shade.at(x - shift.x + radius, y - shift.y + radius);
    });
}

TEST(GxInnerShadow, EqualsItsDefinition) {
    gxtest::forRandomScenes(304, 300, 15, [](Random& random, Scene& scene) {
        const int angle = random.oneIn(2) ? 90 * random.between(0, 3) : random.between(-400, 400);
        const GxInnerShadowProperty record(
            static_cast<float>(angle), static_cast<float>(random.between(0, 20)),
            static_cast<float>(random.between(-10, 60)) * 0.1f, random.word(), 0.3f);
        const auto shift = shiftOf(record.angle, record.distance);
        if (!shift) return;
        Scene cast = scene;
        auto param = scene.param();
        if (random.oneIn(3)) {
            for (size_t i = 0; i < cast.mask.pixelCount(); ++i) {
                cast.mask.data[i] = std::min(cast.mask.data[i], random.edgeByte());
            }
            param.choked = &cast.mask;
        }
        const Plane shade = innerShade(scene, cast, radiusOf(record.size), *shift);
        const GxBitmap expected = tinted(scene, shade, 0, 0, record.color);
        GxInnerShadow core;
        core.setProperty(&record);
        core.doPostProcessing(&param);
        ASSERT_EQ(difference(expected, scene.layer), "")
            << record.angle << " degrees, " << record.distance << ", size " << record.size;
    });
}

}  // namespace
}  // namespace GxFontEffect
