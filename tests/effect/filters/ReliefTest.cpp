// Bevel and emboss: lit and shaded slopes along the edges.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "effect/filters/FilterTesting.h"
#include "effect/filters/GxBevel.h"
#include "effect/filters/GxEmboss.h"
#include "effect/filters/ReliefShape.h"

namespace GxFontEffect {
namespace {

using gxtest::difference;
using gxtest::paintWith;
using gxtest::Scene;
using testing::ElementsAre;

// White light and black shade, opaque; the light comes from the upper left.
template <typename Record>
Record settings(int kind, float size, int technique) {
    return Record(kind, size, 1.0f, technique, 0, 0, 1.0f, 120, 30, 0xFFFFFFFF, 1, 0xFF000000, 1);
}
GxBevelProperty bevel(int kind, float size, int technique) {
    return settings<GxBevelProperty>(kind, size, technique);
}
GxEmbossProperty emboss(int kind, float size, int technique) {
    return settings<GxEmbossProperty>(kind, size, technique);
}

constexpr int kTechniques[] = {0, GXE_RELIEF_CHISEL_HARD, GXE_RELIEF_CHISEL_SOFT};

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
    paintWith<GxBevel>(scene, bevel(1, 2, GXE_RELIEF_CHISEL_HARD));
    const std::vector<std::vector<int>> expected = {{0, 0, 0, 0, 0, 0, 0},
                                                    {0, 197, 198, 151, 61, -31, 0},
                                                    {0, 131, 130, 60, -42, -110, 0},
                                                    {0, 37, -10, -82, -141, -162, 0},
                                                    {0, -63, -136, -190, -211, -208, 0},
                                                    {0, -141, -198, -228, -241, -231, 0}};
    for (int y = 0; y < 6; ++y) EXPECT_EQ(lightOfRow(scene, y), expected[y]) << "row " << y;
    EXPECT_EQ(scene.pixel(1, 1), 0xC5C5C5C5u);
    EXPECT_EQ(scene.pixel(5, 2), 0x6E000000u);

    // Both tints at half: alpha scale(128, 128) = 64, then the mask's 197 and 110.
    scene = exampleScene();
    GxBevelProperty record = bevel(1, 2, GXE_RELIEF_CHISEL_HARD);
    record.highlightColor = 0x80FF8000;
    record.opacity = 0.5f;
    paintWith<GxBevel>(scene, record);
    EXPECT_EQ(scene.pixel(1, 1), 0x32321900u);
    EXPECT_EQ(scene.pixel(5, 2), (129u * 110 >> 8) << 24);
}

TEST(Relief, LevelGroundKeepsItsColour) {
    for (const int technique : kTechniques) {
        constexpr int kExtent = 63;
        Scene block(kExtent, kExtent), blank(kExtent, kExtent);
        std::memset(block.mask.data, 255, block.mask.pixelCount());
        GxBevelProperty record = bevel(1, 12, technique);
        record.soften = 16;
        record.altitude = 89;
        paintWith<GxBevel>(block, record);
        EXPECT_EQ(block.pixel(kExtent / 2, kExtent / 2), 0u) << technique;
        EXPECT_NE(block.pixel(kExtent / 2, 1), 0u) << technique;
        record.kind = 0;
        paintWith<GxBevel>(blank, record);
        EXPECT_EQ(difference(GxBitmap(kExtent, kExtent, 4), blank.layer), "") << technique;
    }
}

TEST(Relief, Margins) {
    for (const int technique : kTechniques) {
        for (const int soften : {0, 5}) {
            const auto margins = [](int m) { return std::array{m, m, m, m}; };
            for (const int kind : {0, 1, 2}) {
                GxBevelProperty slope = bevel(kind, 12, technique);
                slope.soften = soften;
                const int beyond = kind == 1 ? 0 : 12 + soften + 1;
                EXPECT_EQ(gxtest::marginsOf<GxBevel>(slope), margins(beyond));
                GxEmbossProperty across = emboss(kind, 11, technique);
                across.soften = soften;
                EXPECT_EQ(gxtest::marginsOf<GxEmboss>(across), margins(6 + soften + 1));
            }
        }
    }
}

// FNV-1a of the bytes of both layers.
uint32_t hashOf(const Scene& scene) {
    uint32_t hash = 0x811C9DC5;
    for (const GxBitmap* layer : {&scene.layer, &scene.other}) {
        for (size_t i = 0; i < layer->pixelCount() * 4; ++i) {
            hash = (hash ^ layer->data[i]) * 0x01000193;
        }
    }
    return hash;
}

// Discs and bars with soft edges, on paper all around.
Scene shapes() {
    Scene scene(70, 60, GxRect(15, 15, 55, 45));
    for (int y = 15; y < 45; ++y) {
        for (int x = 15; x < 55; ++x) {
            const int u = x - 27, v = y - 30;
            const int disc = 130 - u * u - v * v, bar = 40 - std::abs(6 * (x - 45) - 2 * v);
            scene.mask.data[y * 70 + x] =
                static_cast<uint8_t>(std::clamp(std::max(disc * 8, bar * 12), 0, 255));
        }
    }
    return scene;
}

// Smooth, hard and soft.
template <typename Core, typename Record>
std::vector<uint32_t> hashesOf(Record record, uint32_t mode = 0) {
    std::vector<uint32_t> hashes;
    for (const int technique : kTechniques) {
        record.technique = technique;
        Scene scene = shapes();
        paintWith<Core>(scene, record, mode, mode == GXE_MODE_TWO_LAYERS);
        hashes.push_back(hashOf(scene));
    }
    return hashes;
}

TEST(Relief, IsTheSameBytesEverywhere) {
    GxBevelProperty slope = bevel(0, 7, 0);
    slope.soften = 2;
    EXPECT_THAT(hashesOf<GxBevel>(slope), ElementsAre(0xBA7B432B, 0xBDE967C9, 0x45F2A88C));
    slope.kind = 1;
    slope.direction = GXE_RELIEF_DOWN;
    EXPECT_THAT(hashesOf<GxBevel>(slope), ElementsAre(0x54B276A1, 0x334D075A, 0xB72D9816));
    slope.size = 9999;  // as 250
    slope.depth = 10;
    slope.altitude = 80;
    EXPECT_THAT(hashesOf<GxBevel>(slope), ElementsAre(0x8349508E, 0x0F64C43D, 0x48CE428F));
    GxEmbossProperty across = emboss(0, 9, 0);
    across.soften = 1;
    across.angle = -60;  // as 300
    EXPECT_THAT(hashesOf<GxEmboss>(across), ElementsAre(0x0D31C0EE, 0xEA138627, 0xE958CA45));
    EXPECT_THAT(hashesOf<GxEmboss>(across, GXE_MODE_TWO_LAYERS),
                ElementsAre(0x0C630898, 0x7D3EF1B5, 0x76F9BC3C));
    across.kind = 1;
    across.angle = 215;
    EXPECT_THAT(hashesOf<GxEmboss>(across), ElementsAre(0x1D0C3301, 0x605862E2, 0x7EC9A8D9));
    EXPECT_THAT(hashesOf<GxEmboss>(across, GXE_MODE_TWO_LAYERS),
                ElementsAre(0x24D4159A, 0xEDB9C397, 0xFFA1D604));
}

TEST(Relief, OfTinyTexts) {
    for (const auto& [width, height] : {std::pair{1, 1}, {1, 9}, {9, 1}}) {
        Scene scene(std::vector<std::string>(height, std::string(width, '#')), 10);
        paintWith<GxBevel>(scene, bevel(0, 5, 0));
        EXPECT_GT(lightAt(scene.layer, 8, 8), 0) << "the corner towards the light";
        EXPECT_LT(lightAt(scene.layer, 11 + width, 11 + height), 0);
    }
}

}  // namespace
}  // namespace GxFontEffect
