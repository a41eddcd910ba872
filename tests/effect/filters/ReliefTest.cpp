// Bevel and emboss: lit and shaded slopes along the edges.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "effect/filters/FilterTesting.h"
#include "effect/filters/GxBevel.h"
#include "effect/filters/GxEmboss.h"
#include "effect/filters/ReliefShape.h"

namespace GxFontEffect {
namespace {

using gxtest::Scene;

using gxtest::difference;
using gxtest::paintWith;
using gxtest::Random;

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

TEST(Relief, ASmoothAndSoftBlockInBytes) {
    Scene scene = exampleScene();
    GxBevelProperty record = bevel(1, 3, 0);
    record.soften = 1;
    paintWith<GxBevel>(scene, record);
    EXPECT_EQ(lightOfRow(scene, 1), (std::vector{0, 191, 172, 117, 41, -33, 0}));
    EXPECT_EQ(lightOfRow(scene, 4), (std::vector{0, -77, -123, -169, -205, -225, 0}));
}

// A picture of random coverage with blank paper around its box.
Scene framedScene(Random& random, int extent, int margin) {
    Scene scene(extent + 2 * margin, extent + 2 * margin,
                GxRect(margin, margin, margin + extent, margin + extent));
    const double slope = random.between(-30, 30) / 20.0, radius = random.between(2, extent / 2);
    for (int y = 0; y < extent; ++y) {
        for (int x = 0; x < extent; ++x) {
            const double u = x - extent / 2.0, v = y - extent / 2.0;
            const double depth = std::max(radius - std::hypot(u, v), 3 - std::abs(u - v * slope));
            scene.mask.data[(y + margin) * scene.mask.width + x + margin] =
                static_cast<uint8_t>(std::clamp(depth * 255.0, 0.0, 255.0));
        }
    }
    return scene;
}

TEST(Relief, DownIsUpUnderTheOppositeLight) {
    Random random(4);
    GX_TRACE_SEED(random);
    for (const int technique : kTechniques) {
        Scene up = framedScene(random, 40, 10);
        Scene down = up;
        GxEmbossProperty record = emboss(0, 13, technique);
        record.soften = 1;
        record.angle = -60;  // as 300
        paintWith<GxEmboss>(up, record);
        record.direction = GXE_RELIEF_DOWN;
        record.angle = 120;
        paintWith<GxEmboss>(down, record);
        EXPECT_EQ(difference(up.layer, down.layer), "") << technique;
    }
}

TEST(Relief, LevelGroundKeepsItsColour) {
    for (const int technique : kTechniques) {
        for (const auto& [size, soften, altitude] :
             {std::tuple{3.0f, 0, 0.0f}, {12.0f, 16, 89.0f}, {30.0f, 3, 45.0f}}) {
            const int extent = 2 * (static_cast<int>(size) + soften) + 7;
            Scene block(extent, extent);
            std::memset(block.mask.data, 255, block.mask.pixelCount());
            GxBevelProperty record = bevel(1, size, technique);
            record.soften = soften;
            record.altitude = altitude;
            paintWith<GxBevel>(block, record);
            EXPECT_EQ(block.pixel(extent / 2, extent / 2), 0u) << technique << " " << size;
            EXPECT_NE(block.pixel(extent / 2, 1), 0u) << technique << " " << size;
        }
        Scene blank(30, 30);
        paintWith<GxBevel>(blank, bevel(0, 9, technique));
        EXPECT_EQ(difference(GxBitmap(30, 30, 4), blank.layer), "") << technique;
    }
}

// Noise in a frame, as steep as it goes. The ends of blurs are too faint to fill the margin.
template <typename Core, typename Record>
void expectWithin(int margin, Record record, Random& random) {
    SCOPED_TRACE(testing::Message() << record.kind << " " << record.technique);
    EXPECT_EQ(gxtest::marginsOf<Core>(record), (std::array{margin, margin, margin, margin}));
    record.depth = 10;
    bool isFilled = false;
    for (int run = 0; run < 3; ++run) {
        Scene scene(80, 80, GxRect(25, 25, 55, 55));
        for (int i = 0; i < 900; ++i) {
            scene.mask.data[(25 + i / 30) * 80 + 25 + i % 30] = random.edgeByte();
        }
        paintWith<Core>(scene, record);
        for (int i = 0; i < 6400; ++i) {
            const int x = i % 80, y = i / 80;
            const int depth = margin + std::min({x - 25, y - 25, 54 - x, 54 - y});
            const bool isPainted = scene.pixel(x, y) != 0;
            ASSERT_FALSE(isPainted && depth < 0) << x << ", " << y;
            isFilled = isFilled || (isPainted && depth == 0);
        }
    }
    const bool isCrisp = record.technique == GXE_RELIEF_CHISEL_HARD && record.soften == 0;
    EXPECT_TRUE(isFilled || !isCrisp);
}

TEST(Relief, StaysInItsMarginAndFillsIt) {
    Random random(5);
    GX_TRACE_SEED(random);
    for (const int technique : kTechniques) {
        for (const int soften : {0, 5}) {
            for (const int kind : {0, 1}) {
                GxBevelProperty slope = bevel(kind, 12, technique);
                slope.soften = soften;
                expectWithin<GxBevel>(kind == 1 ? 0 : 12 + soften + 1, slope, random);
                GxEmbossProperty across = emboss(kind, 12, technique);
                across.soften = soften;
                expectWithin<GxEmboss>(6 + soften + 1, across, random);
            }
        }
    }
}

TEST(Relief, LiesOverTheTextBeneathItOrBoth) {
    Random random(6);
    GX_TRACE_SEED(random);
    const Scene scene = framedScene(random, 40, 12);
    // All that the emboss has, and what a slope on one side leaves out.
    Scene whole = scene, over = scene, beneath = scene, halves = scene;
    paintWith<GxEmboss>(whole, emboss(1, 12, 0));
    paintWith<GxEmboss>(halves, emboss(1, 12, 0), GXE_MODE_TWO_LAYERS, true);
    paintWith<GxBevel>(over, bevel(1, 6, 0));
    paintWith<GxBevel>(beneath, bevel(0, 6, 0), GXE_MODE_TWO_LAYERS);
    size_t edges = 0;
    for (uint32_t i = 0; i < scene.mask.pixelCount(); ++i) {
        const int m = scene.mask.data[i];
        const auto at = [&](const GxBitmap& layer) {
            return lightAt(layer, i % layer.width, i / layer.width);
        };
        EXPECT_EQ(at(halves.layer), m < 255 ? at(whole.layer) : 0) << i;
        EXPECT_EQ(at(halves.other), m > 0 ? at(whole.layer) : 0) << i;
        EXPECT_TRUE(m > 0 || at(over.layer) == 0) << i;
        EXPECT_TRUE(m < 255 || at(beneath.layer) == 0) << i;
        edges += m > 0 && m < 255 && at(over.layer) != 0 && at(beneath.layer) != 0;
    }
    EXPECT_GT(edges, 20u) << "soft edges belong to both";
}

// Heights have 16 bits: a slope of 250 pixels, in the letters or around them, has one shade.
TEST(Relief, TheWidestSlopeIsStraight) {
    constexpr int kExtent = 1120, kFirst = 290, kSpan = 540;
    Scene scene(kExtent, kSpan + 20, GxRect(kFirst, 10, kFirst + kSpan, 10 + kSpan));
    for (int y = 10; y < 10 + kSpan; ++y) {
        std::memset(scene.mask.data + y * kExtent + kFirst, 255, kSpan);
    }
    for (const int kind : {0, 1}) {
        GxBevelProperty record = bevel(kind, 9999, GXE_RELIEF_CHISEL_HARD);
        record.soften = 99;
        record.angle = 180;
        record.depth = 10;
        record.altitude = 89;
        Scene painted = scene;
        paintWith<GxBevel>(painted, record);
        for (int depth = 20; depth <= 230; ++depth) {
            const int x = kind == 0 ? kFirst - depth : kFirst + depth;
            ASSERT_NEAR(lightAt(painted.layer, x, 10 + kSpan / 2), -254, 2) << kind << " " << x;
        }
    }
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
