// Bevel and emboss: lit and shaded slopes along the edges.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "effect/filters/FilterTesting.h"
#include "effect/filters/GxBevel.h"
#include "effect/filters/GxEmboss.h"
#include "effect/filters/ReliefShape.h"

namespace GxFontEffect {
namespace {

using gxtest::Scene;

// White light and black shade, opaque; the light comes from the upper left.
template <typename Record>
Record settings(int kind, float size, int technique) {
    return Record(kind, size, 1.0f, technique, 0, 0, 1.0f, 120, 30, 0xFFFFFFFF, 1, 0xFF000000, 1);
}
GxBevelProperty bevel(int kind, float size, int technique) {
    return settings<GxBevelProperty>(kind, size, technique);
}

// The light at a pixel of an empty layer that white light and black shade were painted on, in
// levels.
int lightAt(const GxBitmap& layer, int64_t x, int64_t y) {
    const uint8_t* pixel = layer.data + (y * layer.width + x) * 4;
    return pixel[0] > 0 ? pixel[0] : -pixel[3];
}

std::vector<int> lightOfRow(const Scene& scene, int y) {
    std::vector<int> light;
    for (uint32_t x = 0; x < scene.layer.width; ++x) light.push_back(lightAt(scene.layer, x, y));
    return light;
}

Scene exampleScene() {
    Scene scene(7, 6);
    const uint8_t mask[6][7] = {{0, 0, 0, 0, 0, 0, 0},          {0, 255, 255, 255, 255, 96, 0},
                                {0, 255, 255, 255, 255, 96, 0}, {0, 255, 255, 255, 255, 96, 0},
                                {0, 255, 255, 255, 255, 96, 0}, {0, 64, 64, 64, 64, 24, 0}};
    std::memcpy(scene.mask.data, mask, sizeof(mask));
    return scene;
}

TEST(Relief, AChiselledBlockInBytes) {
    Scene scene = exampleScene();
    gxtest::paintWith<GxBevel>(scene, bevel(1, 2, GXE_RELIEF_CHISEL_HARD));
    const std::vector<std::vector<int>> expected = {{0, 0, 0, 0, 0, 0, 0},
                                                    {0, 197, 198, 151, 61, -31, 0},
                                                    {0, 131, 130, 60, -42, -110, 0},
                                                    {0, 37, -10, -82, -141, -162, 0},
                                                    {0, -63, -136, -190, -211, -208, 0},
                                                    {0, -141, -198, -228, -241, -231, 0}};
    for (int y = 0; y < 6; ++y) EXPECT_EQ(lightOfRow(scene, y), expected[y]) << "row " << y;
    EXPECT_EQ(scene.pixel(1, 1), 0xC5C5C5C5u);
    EXPECT_EQ(scene.pixel(5, 2), 0x6E000000u);
}

TEST(Relief, ASmoothAndSoftBlockInBytes) {
    Scene scene = exampleScene();
    GxBevelProperty record = bevel(1, 3, 0);
    record.soften = 1;
    gxtest::paintWith<GxBevel>(scene, record);
    EXPECT_EQ(lightOfRow(scene, 1), (std::vector{0, 191, 172, 117, 41, -33, 0}));
    EXPECT_EQ(lightOfRow(scene, 4), (std::vector{0, -77, -123, -169, -205, -225, 0}));
}

}  // namespace
}  // namespace GxFontEffect
