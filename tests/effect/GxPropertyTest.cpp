#include "effect/GxProperty.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "raster/GxBitmap.h"
#include "support/NotFinite.h"

namespace GxFontEffect {
namespace {

using gxtest::kInfinity;
using gxtest::kNaN;

// The key as hexadecimal text, the letter as itself: "S 82 CA ...".
std::string keyOf(const GxProperty& property) {
    std::vector<char> buffer(static_cast<size_t>(property.getSequentialCharLength()) + 1, 'x');
    char* cursor = buffer.data();
    EXPECT_TRUE(property.toSequentialChar(&cursor));
    EXPECT_EQ(*cursor, 0) << "a zero follows what was written";
    std::string text(1, buffer[0]);
    for (const char* p = buffer.data() + 1; p < cursor; ++p) {
        char digits[4];
        snprintf(digits, sizeof(digits), " %02X", static_cast<unsigned char>(*p));
        text += digits;
    }
    return text;
}

const GxGradient kStops[] = {
    {0x80FF0000, 1.0f, 0.0f}, {0xFF00FF00, 0.5f, 0.25f}, {0xFF0000FF, 0.0f, 1.0f}};

// One line per record: letter, fields, colour digits each as 0x80 | digit.
TEST(GxProperty, KeyBytes) {
    const std::string color = " 8F 8F 83 83 86 86 89 89";  // 0xFF336699
    struct Case {
        std::shared_ptr<GxProperty> record;
        int reserved;
        std::string key;
    };
    const Case cases[] = {
        {std::make_shared<GxTextProperty>(0xFF336699u, 0.3f), 9, "T" + color},
        // -30 is 330 = 0x14A: 2 and 0x4A.
        {std::make_shared<GxOuterShadowProperty>(-30.0f, 5.9f, 7.0f, 0xFF336699u, 1.0f), 13,
         "S 82 CA 85 87" + color},
        {std::make_shared<GxOuterShadowProperty>(-750.9f, 130.0f, -1.0f, 0xFF336699u, 1.0f), 13,
         "S 82 CA 82 FF" + color},
        {std::make_shared<GxInnerShadowProperty>(359.0f, 0.0f, 100.0f, 0xFF336699u, 1.0f), 13,
         "I 82 E7 80 E4" + color},
        {std::make_shared<GxStrokeProperty>(12.0f, 0xFF336699u, 1.0f, 3, 2), 12,
         "K 8C" + color + " 83 82"},
        {std::make_shared<GxStrokeProperty>(0.0f, 0xFF336699u, 1.0f, -1, 1), 12,
         "K 80" + color + " FF 81"},
        {std::make_shared<GxOuterGlowProperty>(9.0f, 0xFF336699u, 1.0f, 3, kStops), 40,
         "G 89" + color + " 88 80 8F 8F 80 80 80 80 80" + " 8F 8F 80 80 8F 8F 80 80 99" +
             " 8F 8F 80 80 80 80 8F 8F E4"},
        {std::make_shared<GxInnerGlowProperty>(9.0f, 0xFF336699u, 1.0f, 0, nullptr), 10,
         "N 89" + color},
        {std::make_shared<GxInnerGlowProperty>(9.0f, 0xFF336699u, 1.0f, 2, nullptr), 30,
         "N 89" + color},
        {std::make_shared<GxLinearGradientProperty>(90.0f, 1.5f, 1.0f, 1, kStops), 15,
         "L 80 DA 89 86 88 80 8F 8F 80 80 80 80 80"},
        {std::make_shared<GxRadialGradientProperty>(0.0f, 2.5f, 1.0f, 0, kStops), 5,
         "D 80 80 8C 88"},  // scale 2: 200 = 0xC8
        // depth 9.5: 950 = 0x03B6; soften 20 -> 16; altitude 100 -> 10.
        {std::make_shared<GxBevelProperty>(2, 18.0f, 9.5f, 1, 0, 20, 1.0f, 120.0f, 100.0f,
                                           0xFF336699u, 1.0f, 0xFF336699u, 1.0f),
         30, "B 82 81 82 80 83 8B 86 81 80 90 80 F8 8A" + color + color},
        {std::make_shared<GxEmbossProperty>(1, 0.0f, 0.0f, 0, 1, -3, 1.0f, 0.0f, 0.0f, 0xFF336699u,
                                            1.0f, 0xFF336699u, 1.0f),
         30, "E 81 80 80 80 80 80 80 80 81 80 80 80 80" + color + color},
        // scale 10: 1000 = 0x03E8; opacity 0.5: 50 = 0x32.
        {std::make_shared<GxPatternProperty>(reinterpret_cast<GxBitmap*>(uintptr_t{0xFF336699}),
                                             11.0f, 0.5f),
         17, "P" + color + " 80 83 8E 88 80 80 83 82"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(c.record->getSequentialCharLength(), c.reserved) << c.key;
        EXPECT_EQ(keyOf(*c.record), c.key);
    }
}

TEST(GxProperty, ConstructorsConvertAndClamp) {
    EXPECT_EQ(GxOuterShadowProperty(-400.5f, 1, 2, 3, 4).angle, -400.5f) << "stored as given";
    EXPECT_EQ(GxInnerShadowProperty(-400.5f, 1, 2, 3, 4).angle, -40.0f) << "sign kept";
    EXPECT_EQ(GxInnerShadowProperty(kNaN, 1, 2, 3, 4).angle, 0.0f);
    EXPECT_EQ(GxLinearGradientProperty(725.0f, 3.0f, 1.0f, 0, nullptr).angle, 5.0f);
    EXPECT_EQ(GxLinearGradientProperty(0, 3.0f, 1.0f, 0, nullptr).scale, 2.0f);
    EXPECT_EQ(GxLinearGradientProperty(0, kNaN, 1.0f, 0, nullptr).scale, 0.0f);
    EXPECT_EQ(GxLinearGradientProperty(0, 1, 1, 0, nullptr).color, 0u);
    EXPECT_EQ(GxPatternProperty(nullptr, kInfinity, 1.0f).scale, 10.0f);
    const GxBevelProperty bevel(0, 1, 20.0f, 0, 0, 99, 1, -400.0f, -100.0f, 0, 0, 0, 0);
    EXPECT_EQ(std::tuple(bevel.depth, bevel.soften, bevel.angle, bevel.altitude),
              std::tuple(10.0f, 16, -40.0f, -10.0f));
}

TEST(GxProperty, HostileRecordsWriteWithinTheirReserve) {
    for (float v : {kNaN, kInfinity, -kInfinity, 1e30f, -1e30f}) {
        keyOf(GxOuterShadowProperty(v, v, v, 0, v));
        keyOf(GxStrokeProperty(v, 0, v, INT32_MIN, INT32_MAX));
        keyOf(
            GxBevelProperty(INT32_MIN, v, v, INT32_MAX, INT32_MIN, INT32_MIN, v, v, v, 0, v, 0, v));
        keyOf(GxPatternProperty(nullptr, v, v));
        const GxGradient stop{0, v, v};
        keyOf(GxOuterGlowProperty(v, 0, v, 1, &stop));
    }
    EXPECT_EQ(GxOuterGlowProperty(1, 0, 1, -5, kStops).getSequentialCharLength(), 10);
    // More stops than a key can hold: no bytes at all.
    const GxOuterGlowProperty huge(1, 0, 1, INT32_MAX, kStops);
    EXPECT_EQ(huge.getSequentialCharLength(), 0);
    char byte = 'x';
    char* cursor = &byte;
    EXPECT_FALSE(huge.toSequentialChar(&cursor));
    EXPECT_EQ(cursor, &byte);
    EXPECT_FALSE(GxTextProperty(0, 1).toSequentialChar(nullptr));
    cursor = nullptr;
    EXPECT_FALSE(GxTextProperty(0, 1).toSequentialChar(&cursor));
}

}  // namespace
}  // namespace GxFontEffect
