#include "effect/filters/ColorRamp.h"

#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "effect/filters/FilterTesting.h"

namespace GxFontEffect {
namespace {

using Table = std::array<uint32_t, 257>;

Table rampOf(const std::vector<GxGradient>& stops, int curve = 0, float first = -1) {
    Table table;
    table.fill(0xDEADBEEF);
    const float position = first < 0 && !stops.empty() ? stops[0].position : first;
    fillColorRamp(table.data(), stops.data(), static_cast<int>(stops.size()), position, curve);
    return table;
}

TEST(ColorRamp, CountsBelowTwo) {
    EXPECT_EQ(rampOf({})[128], 0xDEADBEEFu);
    const Table one = rampOf({{0x12345678, 1, 0.7f}});
    for (int i : {0, 1, 128, 256}) EXPECT_EQ(one[i], 0x12345678u);
    fillColorRamp(nullptr, nullptr, 3, 0, 0);
}

TEST(ColorRamp, EndsHoldAndHardEdgesAreSharp) {
    const Table table = rampOf({{0xFF000001, 1, 0.25f},
                                {0xFF000002, 1, 0.5f},
                                {0xFF00F000, 1, 0.5f},
                                {0xFF00F000, 1, 0.75f}});
    EXPECT_EQ(table[1], 0xFF000001u);
    EXPECT_EQ(table[64], 0xFF000001u);
    EXPECT_EQ(table[128], 0xFF000002u);
    // Entry 129 moves on by one stop, onto the hard edge, whose second colour holds from there.
    EXPECT_EQ(table[129], 0xFF00F000u);
    EXPECT_EQ(table[130], 0xFF00F000u);
    EXPECT_EQ(table[255], 0xFF00F000u) << "past the last stop";
}

TEST(ColorRamp, MovesOnByOneStopPerEntry) {
    // Stops 1/1024 apart: the ramp is one stop late per entry, whatever it should have skipped.
    std::vector<GxGradient> stops;
    for (uint32_t i = 0; i < 40; ++i) {
        stops.push_back({0xFF000000 | i, 1, static_cast<float>(i) / 1024.0f});
    }
    const Table table = rampOf(stops);
    for (uint32_t i = 1; i < 39; ++i) EXPECT_EQ(table[i], 0xFF000000u | (i + 1)) << i;
    EXPECT_EQ(table[39], 0xFF000027u) << "never past the last stop";
    EXPECT_EQ(table[255], 0xFF000027u);
}

TEST(ColorRamp, Curves) {
    // On a ramp that counts in its blue channel, entry i is trunc(256 u(i / 256)) x 255 >> 8.
    const std::vector<GxGradient> stops = {{0xFF000000, 1, 0}, {0xFF0000FF, 1, 1}};
    struct Case {
        int curve, index;
        uint32_t f;
    };
    for (const Case& c : std::vector<Case>{
             {0, 64, 64}, {1, 64, 128}, {2, 64, 16}, {1, 4, 32}, {2, 240, 225}, {9, 64, 64}}) {
        EXPECT_EQ(rampOf(stops, c.curve)[c.index], 0xFF000000u | (c.f * 255 >> 8)) << c.curve;
    }
}

}  // namespace
}  // namespace GxFontEffect
