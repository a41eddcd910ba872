#include "effect/filters/GxInnerShadow.h"

#include <gtest/gtest.h>

#include <vector>

#include "effect/filters/FilterTesting.h"

namespace GxFontEffect {
namespace {

using gxtest::difference;
using gxtest::paintWith;
using gxtest::Scene;

GxInnerShadowProperty recordOf(float angle, float distance, float size,
                               uint32_t color = 0xFFFFFFFF) {
    return {angle, distance, size, color, 0.3f};
}

TEST(GxInnerShadow, WeightsAndMargin) {
    std::vector<int> weights(6);
    int sum = 0;
    GxInnerShadow::computeGaussianWeights(weights.data(), &sum, 5);
    EXPECT_EQ(weights, (std::vector<int>{100, 83, 48, 19, 5, 1}));
    EXPECT_EQ(sum, 412);
    GxInnerShadow core;
    const auto record = recordOf(45, 50, 50);
    core.setProperty(&record);
    EXPECT_EQ(core.getOffset(), 0);
    EXPECT_EQ(core.getLeftOffset(), 0);
}

TEST(GxInnerShadow, ReducesTheAngle) {
    auto record = recordOf(0, 1, 1);
    record.angle = -725.9f;
    GxInnerShadow core;
    core.setProperty(&record);
    EXPECT_EQ(dynamic_cast<GxInnerShadowProperty&>(*core.getProperty()).angle, -5.0f);
}

// The literal passes: padded mask, horizontal blur of the inverse coverage, 255 bands, column
// buffer. What is blurred is `cast`, what confines it is `scene`.
GxBitmap model(const Scene& scene, const Scene& cast, const GxInnerShadowProperty& record,
               int shiftX, int shiftY) {
    const int w = scene.box.right - scene.box.left, h = scene.box.bottom - scene.box.top;
    const int b = std::max(static_cast<int>(record.size + 0.5), 0);
    std::vector<int> weights(b + 1);
    int sum = 0;
    GxInnerShadow::computeGaussianWeights(weights.data(), &sum, b);
    std::vector<uint8_t> result;
    const auto draw = [&] {
        GxBitmap layer(scene.layer);
        GxBlender().drawBitmapBlend8(scene.box.left, scene.box.top, &layer, result.data(), w, h, w,
                                     record.color, 2);
        return layer;
    };
    if (w + b + shiftX < 0 || -b + shiftX >= w || -b + shiftY >= h || h + b + shiftY < 0) {
        for (int i = 0; i < w * h; ++i) {
            result.push_back(static_cast<uint8_t>(scene.coverageInBox(i % w, i / w)));
        }
        return draw();
    }
    const auto horizontal = [&](int row, int column) {  // in the padded mask
        int total = 255 * sum;
        for (int j = -b; j <= b; ++j) {
            total -= weights[std::abs(j)] * cast.coverageInBox(column + j - b, row);
        }
        return total / sum;
    };
    for (int y = 0; y < h; ++y) {
        for (int x = 0; x < w; ++x) {
            const bool exposed =
                (shiftY > b && y < shiftY - b) || (shiftY < -b && y >= h + b + shiftY) ||
                (shiftX > b && x < shiftX - b) || (shiftX < -b && x >= w + b + shiftX);
            int value = 0;
            if (exposed) {
                value = 255;
            } else if (scene.coverageInBox(x, y) != 0) {
                for (int i = -b; i <= b; ++i) {
                    const int row = y - shiftY + i;
                    const bool inside = row >= 0 && row < h;
                    value +=
                        weights[std::abs(i)] * (inside ? horizontal(row, x + b - shiftX) : 255);
                }
                value /= sum;
            }
            result.push_back(static_cast<uint8_t>(value));
        }
    }
    return draw();
}

TEST(GxInnerShadow, EqualsItsDefinition) {
    gxtest::Random random(304);
    GX_TRACE_SEED(random);
    for (int run = 0; run < 300; ++run) {
        Scene scene = gxtest::randomScene(random, 15);
        const int shift = random.between(0, 20);
        const int direction = random.between(0, 3);  // a quarter turn: the shift is exact
        const auto record =
            recordOf(static_cast<float>(direction * 90), static_cast<float>(shift),
                     static_cast<float>(random.between(-10, 60)) * 0.1f, random.word());
        const int x[] = {-shift, 0, shift, 0};
        const int y[] = {0, shift, 0, -shift};
        Scene cast = scene;
        auto param = scene.param();
        if (random.oneIn(3)) {
            for (size_t i = 0; i < cast.mask.pixelCount(); ++i) {
                cast.mask.data[i] = std::min(cast.mask.data[i], random.edgeByte());
            }
            param.choked = &cast.mask;
        }
        const GxBitmap expected = model(scene, cast, record, x[direction], y[direction]);
        GxInnerShadow core;
        core.setProperty(&record);
        core.doPostProcessing(&param);
        ASSERT_EQ(difference(expected, scene.layer), "")
            << run << " size " << record.size << " shift " << shift << " towards " << direction;
    }
    for (int run = 0; run < 40; ++run) {
        // Diagonal: 7.07 on each axis for distance 10.
        Scene scene = gxtest::randomScene(random, 15);
        const auto record = recordOf(static_cast<float>(45 + 90 * (run % 4)), 10, 2);
        const int x[] = {-7, 7, 7, -7};
        const int y[] = {7, 7, -7, -7};
        const GxBitmap expected = model(scene, scene, record, x[run % 4], y[run % 4]);
        paintWith<GxInnerShadow>(scene, record);
        ASSERT_EQ(difference(expected, scene.layer), "") << run;
    }
}

}  // namespace
}  // namespace GxFontEffect
