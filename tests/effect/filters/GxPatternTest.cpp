#include "effect/filters/GxPattern.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <vector>

#include "effect/filters/FilterTesting.h"

namespace GxFontEffect {
namespace {

using gxtest::difference;
using gxtest::premultiplied;
using gxtest::Scene;

// A picture of straight colours.
GxBitmap pictureOf(int width, int height, const std::vector<uint32_t>& colors) {
    GxBitmap picture(width, height, 4);
    for (size_t i = 0; i < colors.size(); ++i) {
        for (int byte = 0; byte < 4; ++byte) {
            picture.data[i * 4 + byte] = static_cast<uint8_t>(colors[i] >> (24 - 8 * byte));
        }
    }
    return picture;
}

void paint(Scene& scene, GxBitmap& picture, float scale, float opacity, uint32_t mode = 0) {
    const GxPatternProperty record(&picture, scale, opacity);
    gxtest::paintWith<GxPattern>(scene, record, mode);
}

TEST(GxPattern, OpacityWeighsTheAlpha) {
    GxBitmap picture = pictureOf(1, 1, {0xFFFFFFFF});
    for (const auto& [opacity, alpha] : {std::pair{0.0f, 0u},
                                         {0.5f, 126u},
                                         {1.0f, 253u},
                                         {9.0f, 255u},
                                         {-1.0f, 0u},
                                         {gxtest::kNaN, 0u}}) {
        Scene scene({"#"});
        paint(scene, picture, 1, opacity);
        EXPECT_EQ(scene.pixel(0, 0) >> 24, alpha) << opacity;
    }
}

TEST(GxPattern, OddPicturesDrawNothing) {
    GxBitmap empty, none(0, 4, 4), mask(2, 2, 1), fine(2, 2, 4);
    std::memset(fine.data, 255, 16);
    for (GxBitmap* picture : {&empty, &none, &mask}) {
        Scene scene({"##"});
        paint(scene, *picture, 1, 1);
        EXPECT_EQ(scene.pixel(0, 0), 0u);
    }
    Scene small({"##"});
    paint(small, fine, 0.05f, 1);
    EXPECT_EQ(small.pixel(0, 0), 0u);
    GxPattern core;
    const GxPatternProperty record(nullptr, 1, 1);
    core.setProperty(&record);
    auto param = small.param();
    core.doPostProcessing(&param);
}

TEST(GxPattern, KeepsItsOwnPicture) {
    GxPattern core;
    Scene scene({"#"});
    auto picture = std::make_unique<GxBitmap>(pictureOf(1, 1, {0xFF00FF00}));
    {
        const GxPatternProperty record(picture.get(), 1, 1);
        core.setProperty(&record);
    }
    EXPECT_NE(dynamic_cast<GxPatternProperty&>(*core.getProperty()).pattern, picture.get());
    picture.reset();
    core.setProperty(core.getProperty());
    auto& record = dynamic_cast<GxPatternProperty&>(*core.getProperty());
    auto param = scene.param();
    core.doPostProcessing(&param);
    EXPECT_EQ(scene.pixel(0, 0), 0xFD00FB00u);
    // The key names the core's copy.
    char key[18];
    char* cursor = key;
    record.toSequentialChar(&cursor);
    const auto address = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(record.pattern));
    for (int i = 0; i < 8; ++i) {
        EXPECT_EQ(static_cast<uint8_t>(key[1 + i]), 0x80u | (address >> (28 - 4 * i) & 15));
    }
}

GxBitmap model(const Scene& scene, const GxBitmap& picture, float scale, float opacity) {
    GxBitmap layer(scene.layer);
    const int pw = static_cast<int>(picture.width), ph = static_cast<int>(picture.height);
    const int tw = static_cast<int>(scale * static_cast<float>(pw));
    const int th = static_cast<int>(scale * static_cast<float>(ph));
    const int w = scene.box.right - scene.box.left, h = scene.box.bottom - scene.box.top;
    for (int y = 0; y < h; ++y) {
        const float fy = static_cast<float>(th ? y % th : y) / scale;
        const int iy = static_cast<int>(std::floor(fy));
        const int wy = static_cast<int>((fy - static_cast<float>(iy)) * 255.0f);
        for (int x = 0; x < w; ++x) {
            if (scene.coverage(x, y) == 0) continue;
            const float fx = static_cast<float>(tw ? x % tw : x) / scale;
            const int ix = static_cast<int>(std::floor(fx));
            const int wx = static_cast<int>((fx - static_cast<float>(ix)) * 255.0f);
            int f[4];
            for (int byte = 0; byte < 4; ++byte) {
                int sum = 0;
                for (int corner = 0; corner < 4; ++corner) {
                    int px = ix + corner % 2, py = iy + corner / 2;
                    if (corner % 2 == 1 && px >= pw) px = 0;
                    if (corner / 2 == 1 && py >= ph) py = 0;
                    px = std::min(px, pw - 1), py = std::min(py, ph - 1);
                    sum += (corner % 2 ? wx : 255 - wx) * (corner / 2 ? wy : 255 - wy) *
                           picture.data[(py * pw + px) * 4 + byte];
                }
                f[byte] = sum >> 16;
            }
            const auto a = static_cast<uint32_t>(opacity * static_cast<float>(f[0]));
            const uint32_t color =
                premultiplied(a << 24 | static_cast<uint32_t>(f[1]) << 16 |
                              static_cast<uint32_t>(f[2]) << 8 | static_cast<uint32_t>(f[3]));
            GxBlender().drawBitmapBlend32(scene.box.left + x, scene.box.top + y, &layer, &color, 1,
                                          1, 1, 2);
        }
    }
    return layer;
}

TEST(GxPattern, EqualsItsDefinition) {
    gxtest::Random random(308);
    GX_TRACE_SEED(random);
    for (int run = 0; run < 250; ++run) {
        Scene scene = gxtest::randomScene(random, 30);
        std::vector<uint32_t> colors(64);
        for (uint32_t& color : colors) color = random.word() | (random.oneIn(2) ? 0xFF000000u : 0);
        const int width = random.between(1, 8), height = random.between(1, 8);
        GxBitmap picture =
            pictureOf(width, height, {colors.begin(), colors.begin() + width * height});
        const float scale = static_cast<float>(random.between(11, 400)) * 0.01f;
        const float opacity = static_cast<float>(random.between(0, 100)) * 0.01f;
        const GxBitmap expected = model(scene, picture, scale, opacity);
        paint(scene, picture, scale, opacity, random.between(0, 1));
        ASSERT_EQ(difference(expected, scene.layer), "") << run << " scale " << scale;
    }
}

}  // namespace
}  // namespace GxFontEffect
