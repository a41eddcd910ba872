// Order, layers, margins and record conversions of the stack.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "effect/filters/FilterTesting.h"

namespace GxFontEffect {
namespace {

using gxtest::keyOf;
using gxtest::kInfinity;
using gxtest::kNaN;
using testing::ElementsAre;

constexpr uint32_t kRed = 0xFFFF0000;

class GxEffectStack : public testing::Test {
protected:
    // `detail` is the position of a stroke or the kind of a bevel.
    int add(int style, int detail = 1) {
        const GxGradient stop{kRed, 1, 0};
        switch (style) {
            case 1:
                return stack.addOuterShadowText(45, 10, 2, kRed, 1);
            case 2:
                return stack.addInnerShadowText(45, 1, 2, kRed, 1);
            case 3:
                return stack.addOuterGlowText(4, kRed, 1, 0, nullptr);
            case 4:
                return stack.addInnerGlowText(4, kRed, 1, 0, nullptr);
            case 5:
                return stack.addBevelText(detail, 3, 1, 0, 0, 0, 1, 0, 0, kRed, 1, kRed, 1);
            case 6:
                return stack.addEmbossText(1, 3, 1, 0, 0, 0, 1, 0, 0, kRed, 1, kRed, 1);
            case 7:
                return stack.addLinearGradientText(0, 1, 1, 1, &stop);
            case 8:
                return stack.addRadialGradientText(1, 1, 1, &stop);
            case 10:
                return stack.addStrokeText(2, kRed, 1, 0, detail);
            case 11:
                return stack.addPatternText(&pattern, 1, 1);
            default:
                return stack.addText(kRed);
        }
    }

    template <typename Property>
    const Property& record(int style) {
        return dynamic_cast<const Property&>(*stack.getEffect(style)->getProperty());
    }

    static std::string keyWithoutAddress(GxEffect& of) {
        std::string key = keyOf(of);
        const size_t letter = key.find('P');  // then where the core's copy lies
        return letter == std::string::npos ? key : key.erase(letter + 1, 8);
    }
    // What was added is an effect of this style with this record, and gone afterwards.
    void expectAs(int style, const GxProperty& wanted) {
        GxEffect other;
        ASSERT_EQ(other.addEffect(style, &wanted), 0);
        EXPECT_EQ(keyWithoutAddress(stack), keyWithoutAddress(other));
        const GxBitmap mask = gxtest::Scene({"####", "#94#", "####"}).mask;
        const GxBitmap expected = gxtest::renderStack(other, 24, 20, 8, 8, mask);
        const GxBitmap actual = gxtest::renderStack(stack, 24, 20, 8, 8, mask);
        EXPECT_EQ(gxtest::difference(expected, actual), "");
        stack.cleanAllEffect();
    }

    GxBitmap pattern = gxtest::Scene(2, 2).layer;
    GxEffect stack;
};

// --- order ---

TEST_F(GxEffectStack, LayerOrders) {
    struct Added {
        int style;
        int detail = 1;  // stroke position, bevel kind
    };
    struct Case {
        std::vector<Added> added;
        float opacity;
        uint32_t mode;
        std::vector<int> layers;
    };
    const Case cases[] = {
        {{{12}, {1}}, 1, 0, {12, 1}},
        {{{1}, {12}}, 1, 0, {12, 1}},
        // Over the text newest first, the text, beneath it newest first.
        {{{2}, {1}, {7}, {12}, {3}, {4}}, 1, 0, {4, 7, 2, 12, 3, 1}},
        {{{12}, {10, 1}, {1}}, 1, 0, {12, 1, 10}},  // outside stroke: beneath
        {{{12}, {10, 2}, {1}}, 1, 0, {10, 12, 1}},  // inside stroke: over
        {{{12}, {10, 9}, {1}}, 1, 0, {10, 12, 1}},  // unknown position: over
        {{{12}, {5, 1}, {8}}, 1, 0, {8, 5, 12}},    // inside bevel: over
        {{{12}, {5, 0}, {11}}, 1, 0, {11, 12, 5}},  // other bevels: beneath
        // Two layers: newest first, the text last.
        {{{12}, {1}, {2}}, 0.5f, 1, {2, 1, 12}},
        {{{1}, {12}, {2}, {3}}, 0.0f, 1, {3, 2, 1, 12}},
        {{{12}, {10, 0}, {1}}, 1, 1, {1, 10, 12}},  // a centred stroke asks for them
        {{{6}, {12}, {1}}, 1, 1, {1, 6, 12}},       // and so does an emboss
        {{{1}, {2}}, 0.5f, 1, {2, 1}},
        {{}, 1, 0, {}},
    };
    for (const Case& c : cases) {
        stack.cleanAllEffect();
        for (const Added& added : c.added) add(added.style, added.detail);
        stack.setTextOpacity(c.opacity);
        stack.initEffect(4, 4);
        EXPECT_EQ(stack.getMode(), c.mode);
        std::vector<int> layers;
        for (GxECoreBase* core : stack.getLayers()) layers.push_back(core->getStyle());
        EXPECT_EQ(layers, c.layers);
    }
}

// Newest on top within a style as between styles, in both modes; the text fill stays one.
TEST_F(GxEffectStack, RepeatsAreEffectsOfTheirOwn) {
    stack.setRepeats(true);
    const auto ids = [&] {
        std::vector<int> list;
        for (GxECoreBase* core : stack.getLayers()) list.push_back(core->getId());
        return list;
    };
    for (const int style : {1, 10, 12, 2, 1, 10, 2, 12}) add(style);
    stack.initEffect(4, 4);
    EXPECT_THAT(ids(), ElementsAre(6, 3, 2, 5, 4, 1, 0));
    stack.setTextOpacity(0.5f);
    stack.initEffect(4, 4);
    EXPECT_THAT(ids(), ElementsAre(6, 5, 4, 3, 1, 0, 2));

    const GxStrokeProperty wide(9, 0, 1, 0, 1);
    EXPECT_EQ(stack.addEffect(40, 10, &wide), 40);
    EXPECT_EQ(stack.addEffect(40, 10, &wide), 7) << "an id that is taken";
    EXPECT_EQ(stack.addEffect(8, 10, &wide), 8);
    EXPECT_EQ(stack.addEffect(10, &wide), 9) << "ids in use are skipped";
    EXPECT_EQ(stack.getEffect(10)->getId(), 1) << "the first of its style";
    EXPECT_TRUE(stack.removeEffect(1));
    EXPECT_EQ(stack.getEffect(10)->getId(), 5);
    EXPECT_EQ(stack.findEffect(1), nullptr);

    GxEffect copy(stack);
    EXPECT_EQ(keyOf(stack), keyOf(copy));
    const std::string key = keyOf(stack);
    EXPECT_EQ(std::count(key.begin(), key.end(), 'K'), 5);
    EXPECT_EQ(copy.addStrokeText(1, 0, 1, 0, 1), 10) << "a copy repeats too";
    stack.setRepeats(false);
    EXPECT_EQ(stack.addStrokeText(1, 0, 1, 0, 1), 5) << "the first one's settings";
    EXPECT_EQ(GxEffect(stack).findEffect(40)->getId(), 40);
}

// Without a fill: what lies in the front layer shows in the glyphs, what lies in the back around.
TEST_F(GxEffectStack, TargetsInTwoLayerMode) {
    struct Case {
        int style, detail;
        bool front, back;
    };
    const Case cases[] = {
        {1, 1, false, true},  {2, 1, true, false},   {3, 1, false, true},  {4, 1, true, false},
        {5, 0, false, true},  {5, 1, true, false},   {5, 2, false, true},  {6, 1, true, true},
        {7, 1, true, false},  {8, 1, true, false},   {10, 0, true, true},  {10, 1, false, true},
        {10, 2, true, false}, {10, 77, false, true}, {11, 1, true, false}, {12, 1, true, false},
    };
    const gxtest::Scene scene({"####    ", "####    ", "####    ", "####    "});
    std::memset(pattern.data, 255, 16);
    for (const Case& c : cases) {
        stack.cleanAllEffect();
        add(c.style, c.detail);
        stack.setTextOpacity(0.5f);
        const GxBitmap output = gxtest::renderStack(stack, 24, 20, 8, 8, scene.mask);
        bool front = false, back = false;
        for (uint32_t i = 0; i < output.pixelCount(); ++i) {
            const uint32_t x = i % 24 - 8, y = i / 24 - 8;
            const bool isInGlyph = x < 4 && y < 4;
            const bool isPainted = output.data[i * 4 + 3] != 0;
            (isInGlyph ? front : back) |= isPainted;
        }
        EXPECT_EQ(front, c.front) << c.style << " " << c.detail;
        EXPECT_EQ(back, c.back) << c.style << " " << c.detail;
        EXPECT_EQ(stack.getMode(), 0u);
        EXPECT_EQ(stack.getSrcBitmap(), nullptr);
    }
}

// --- margins and key ---

TEST_F(GxEffectStack, TheWidestEffectDecidesEachMargin) {
    const GxOuterShadowProperty narrow(0, 6, -3, 0, 1);
    stack.addEffect(1, &narrow);
    const auto margins = [&] {
        return std::array{stack.getLeftOffset(), stack.getTopOffset(), stack.getRightOffset(),
                          stack.getBottomOffset()};
    };
    EXPECT_THAT(margins(), ElementsAre(4, 0, 0, 0)) << "never below 0";
    add(3);
    add(1);
    add(12);
    EXPECT_THAT(margins(), ElementsAre(9, 4, 4, 9));
}

TEST_F(GxEffectStack, SilhouettesShowInMarginsAndKeys) {
    stack.setRepeats(true);
    for (const int style : {1, 2, 3, 4, 10, 12}) add(style);
    const std::string plain = keyOf(stack);
    const GxSilhouette outline{GxSilhouette::kOutline, 0};
    EXPECT_FALSE(stack.setSilhouette(6, outline));
    EXPECT_EQ(stack.getBottomOffset(), 9);
    for (const int other : {4, 5}) EXPECT_TRUE(stack.setSilhouette(other, {1, 50}));
    EXPECT_TRUE(stack.setSilhouette(1, {1, 0.9f}));
    EXPECT_EQ(keyOf(stack), plain) << "neither stroke nor fill casts; inner ones only choke";
    EXPECT_TRUE(stack.setSilhouette(0, outline));
    EXPECT_EQ(stack.getLeftOffset(), 9 + 2) << "the stroke around the letters";
    EXPECT_TRUE(stack.setSilhouette(0, {GxSilhouette::kOutline, 3.9f}));
    EXPECT_EQ(stack.getBottomOffset(), 9 + 2 + 3);
    EXPECT_TRUE(stack.setSilhouette(2, {7, kNaN}));
    EXPECT_TRUE(stack.setSilhouette(3, {1, kInfinity}));
    EXPECT_EQ(stack.getBottomOffset(), 14) << "what chokes needs no room";
    std::string key = plain;
    key.insert(plain.find('I'), "C\x81\x83");
    key.insert(key.find('K'), "C\x80\xE4");
    EXPECT_EQ(keyOf(stack), key);
    GxEffect copy(stack);
    EXPECT_EQ(keyOf(copy), key);
    EXPECT_EQ(copy.getBottomOffset(), 14);
    EXPECT_TRUE(stack.setSilhouette(0, {}));
    EXPECT_TRUE(stack.setSilhouette(3, {}));
    EXPECT_EQ(keyOf(stack), plain);
}

// --- conversions of the add operations ---

TEST_F(GxEffectStack, AnglesAndPercentages) {
    struct Case {
        float angle, wrapped, size, clamped;
    };
    const Case cases[] = {{-30, 330, 5.9f, 5},
                          {725.9f, 5, -3, 0},
                          {-0.9f, 0, 100.5f, 100},
                          {360, 0, 1e30f, 100},
                          {kNaN, 0, kNaN, 0},
                          {-359.5f, 1, 0.99f, 0},
                          {kInfinity, static_cast<float>(INT32_MAX % 360), kInfinity, 100}};
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.angle << " degrees, " << c.size << " pixels");
        stack.addOuterShadowText(c.angle, c.size, c.size, kRed, 1);
        expectAs(1, GxOuterShadowProperty(c.wrapped, c.clamped, c.clamped, kRed, 1));
        stack.addInnerShadowText(c.angle, c.size, c.size, kRed, 1);
        expectAs(2, GxInnerShadowProperty(c.wrapped, c.clamped, c.clamped, kRed, 1));
        stack.addStrokeText(c.size, kRed, 1, 7, -8);
        expectAs(10, GxStrokeProperty(c.clamped, kRed, 1, 7, -8));
    }
}

TEST_F(GxEffectStack, ColoursTakeTheOpacity) {
    // Premultiplied: shadows and stroke. Opacity 0.2: a = trunc(51.5) = 51; 0xFF: 51 x 256 >> 8 =
    // 51; 0x80: 51 x 129 >> 8 = 25.
    stack.addOuterShadowText(0, 0, 0, 0x00FF8000, 0.2f);
    expectAs(1, GxOuterShadowProperty(0, 0, 0, 0x33331900, 0));
    stack.addStrokeText(3, 0x77FF8000, 0.2f, 0, 0);
    expectAs(10, GxStrokeProperty(3, 0x33331900, 0, 0, 0));
    stack.addOuterShadowText(0, 0, 0, 0xFFFFFFFF, 7.0f);
    expectAs(1, GxOuterShadowProperty(0, 0, 0, 0xFFFFFFFF, 0));
    // As alpha: glows and bevels.
    stack.addOuterGlowText(3, 0x00FF8000, 0.2f, 0, nullptr);
    expectAs(3, GxOuterGlowProperty(3, 0x33FF8000, 0.2f, 0, nullptr));
    stack.addBevelText(1, 2, 99, 3, 4, 99, 1, -30, -30, 0x00FF8000, 0.2f, 0xFF123456, kNaN);
    expectAs(5, GxBevelProperty(1, 2, 10, 3, 4, 16, 1, 330, 60, 0x33FF8000, 0, 0x00123456, 0));
}

TEST_F(GxEffectStack, TextsTakeTheOpacityForTheirAlpha) {
    stack.addText(0x80336699);
    EXPECT_EQ(record<GxTextProperty>(12).color, 0xFF336699u);  // whatever its own alpha
    // Opacity 0.5: a = trunc(0.5 x 255 + 0.5) = 128; 0x33: 128 x 52 >> 8 = 26 = 0x1A;
    // 0x66: 128 x 103 >> 8 = 51 = 0x33; 0x99: 128 x 154 >> 8 = 77 = 0x4D.
    stack.addText(0x12336699, 0.5f);
    EXPECT_EQ(record<GxTextProperty>(12).color, 0x801A334Du);
    stack.addText(0xFF336699, kNaN);
    EXPECT_EQ(record<GxTextProperty>(12).color, 0u);
}

TEST_F(GxEffectStack, StopsFoldTheOpacityIn) {
    const GxGradient stops[] = {{0x12345678, 0.5f, 0.999f},
                                {0xFFFFFFFF, 3.0f, -0.5f},
                                {0xFFFFFFFF, -1.0f, kInfinity},
                                {0xFF000000, kNaN, kNaN}};
    // 0.5 x 0.5 x 255 + 0.5 = 64.25. A stop's opacity counts as given: 3 x 0.5 is clamped to 1.
    // Positions have two decimals.
    const GxGradient folded[] = {
        {0x40345678, 0.5f, 0.99f}, {0xFFFFFFFF, 1, 0}, {0x00FFFFFF, 0, 1}, {0, 0, 0}};
    stack.addLinearGradientText(0, 1, 0.5f, 4, stops);
    expectAs(7, GxLinearGradientProperty(0, 1, 0.5f, 4, folded));
    stack.addRadialGradientText(9, 0.5f, 4, stops);
    expectAs(8, GxRadialGradientProperty(0, 2, 0.5f, 4, folded));
    stack.addRadialGradientText(9, 1, -4, stops);
    expectAs(8, GxRadialGradientProperty(0, 2, 1, 0, nullptr));
    const std::vector<GxGradient> many(300);
    stack.addInnerGlowText(1, 0, 1, 300, many.data());
    EXPECT_EQ(record<GxInnerGlowProperty>(4).stopCount, 256);
}

TEST_F(GxEffectStack, StrokesAreFilledWithWhatTheOthersPaint) {
    const GxGradient stops[] = {{0x12345678, 0.5f, 0.999f}, {0xFFFFFFFF, 3.0f, 1}};
    const GxGradient folded[] = {{0x33345678, 0.4f, 0.99f}, {0xFFFFFFFF, 1, 1}};
    const auto expectFilled = [&](const GxProperty& fill) {
        GxStrokeProperty stroke(3, 0, 1, 2, 1);
        stroke.fill = &fill;
        expectAs(10, stroke);
    };
    stack.addLinearGradientStrokeText(3.5f, 2, 1, -30, 0.7f, 0.4f, 2, stops);
    expectFilled(GxLinearGradientProperty(330, 0.7f, 0.4f, 2, folded));
    stack.addRadialGradientStrokeText(3.5f, 2, 1, 9, 0.4f, 2, stops);
    expectFilled(GxRadialGradientProperty(0, 2, 0.4f, 2, folded));
    std::memset(pattern.data, 200, 16);
    stack.addPatternStrokeText(3.5f, 2, 1, &pattern, 2, 7);
    expectFilled(GxPatternProperty(&pattern, 2, 1));
    stack.addPatternText(&pattern, 11, -1);
    expectAs(11, GxPatternProperty(&pattern, 10, 0));
}

TEST_F(GxEffectStack, MissingStopsAndPatternsAreRefused) {
    EXPECT_EQ(stack.addOuterGlowText(1, 0, 1, 2, nullptr), -1);
    EXPECT_EQ(stack.addInnerGlowText(1, 0, 1, 2, nullptr), -1);
    EXPECT_EQ(stack.addLinearGradientText(0, 1, 1, 2, nullptr), -1);
    EXPECT_EQ(stack.addRadialGradientText(1, 1, 2, nullptr), -1);
    EXPECT_EQ(stack.addRadialGradientStrokeText(1, 0, 1, 1, 1, 2, nullptr), -1);
    EXPECT_EQ(stack.addPatternText(nullptr, 1, 1), -1);
    EXPECT_EQ(stack.addPatternStrokeText(1, 0, 1, nullptr, 1, 1), -1);
    EXPECT_FALSE(stack.hasEffects());
}

TEST_F(GxEffectStack, RecordsOfAnotherEffectAreIgnored) {
    const GxTextProperty wrong(0, 1);
    EXPECT_EQ(stack.addEffect(10, &wrong), -1) << "no stroke without a stroke's record";
    EXPECT_EQ(stack.addEffect(10, nullptr), 0) << "but one without any";
    stack.initEffect(4, 4);
    EXPECT_EQ(stack.getMode(), 0u);
    EXPECT_EQ(keyOf(stack), "");
}

}  // namespace
}  // namespace GxFontEffect
