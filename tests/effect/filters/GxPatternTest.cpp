#include "effect/filters/GxPattern.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "effect/filters/FilterTesting.h"

namespace GxFontEffect {
namespace {

using gxtest::difference;
using gxtest::premultiplied;
using gxtest::Scene;

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
            const auto a =
                static_cast<uint32_t>(std::clamp(opacity * static_cast<float>(f[0]), 0.0f, 255.0f));
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
    gxtest::forRandomScenes(308, 250, 30, [](gxtest::Random& random, Scene& scene) {
        GxBitmap picture(random.between(1, 8), random.between(1, 8), 4);
        const bool isOpaque = random.oneIn(2);
        for (size_t i = 0; i < picture.pixelCount() * 4; ++i) {
            picture.data[i] = i % 4 == 0 && isOpaque ? 255 : random.byte();
        }
        const float scale = static_cast<float>(random.between(11, 400)) * 0.01f;
        const float opacity = static_cast<float>(random.between(-20, 140)) * 0.01f;
        const GxBitmap expected = model(scene, picture, scale, opacity);
        const GxPatternProperty record(&picture, scale, opacity);
        gxtest::paintWith<GxPattern>(scene, record, random.between(0, 1));
        ASSERT_EQ(difference(expected, scene.layer), "") << "x" << scale << " at " << opacity;
    });
}

}  // namespace
}  // namespace GxFontEffect
