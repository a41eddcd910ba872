// The effects through the whole stack: what stays in the glyphs, what a copy paints, what a failed
// allocation leaves.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "effect/filters/FilterTesting.h"
#include "support/AllocationFailure.h"

namespace GxFontEffect {
namespace {

using gxtest::difference;

constexpr int kSize = 64;
constexpr int kMargin = 24;

// A ring with soft edges: stems, a counter and curves.
std::vector<uint8_t> ringMask() {
    std::vector<uint8_t> mask;
    for (int i = 0; i < kSize * kSize; ++i) {
        const double x = i % kSize - 31.5, y = i / kSize - 31.5;
        const double inRing = 9.0 - std::abs(std::sqrt(x * x + y * y) - 20.0);
        mask.push_back(static_cast<uint8_t>(std::clamp(inRing * 255.0, 0.0, 255.0)));
    }
    return mask;
}

GxBitmap render(GxEffect& stack) {
    static const GxBitmap mask(kSize, kSize, ringMask().data(), 1);
    const uint32_t extent = kSize + 2 * kMargin;
    return gxtest::renderStack(stack, extent, extent, kMargin, kMargin, mask);
}

int coverageAt(size_t pixel) {
    static const std::vector<uint8_t> mask = ringMask();
    const size_t extent = kSize + 2 * kMargin;
    const size_t x = pixel % extent - kMargin, y = pixel / extent - kMargin;
    return x < kSize && y < kSize ? mask[y * kSize + x] : 0;
}

// What the inside effects leave around the glyphs by default, and in them however they are kept.
TEST(InsideEffects, BleedByDefaultAndStayInsideWhenConfined) {
    const std::function<void(GxEffect&)> adds[] = {
        [](GxEffect& stack) {
            stack.addBevelText(1, 6, 1, 0, 0, 0, 1, 120, 30, 0xFFFFFFFF, 1, 0xFF000000, 1);
        },
        [](GxEffect& stack) { stack.addStrokeText(4, 0xFFCC0000, 1, 0, 2); },
        [](GxEffect& stack) { stack.addInnerGlowText(5, 0xFFFFF000, 1, 0, nullptr); },
        [](GxEffect& stack) { stack.addInnerShadowText(120, 14, 3, 0xFF000000, 1); },
    };
    for (const auto& add : adds) {
        GxEffect stack;
        add(stack);
        stack.addText(0xFF2040A0);
        const GxBitmap literal = render(stack);
        stack.setConfineInside(true);
        const GxBitmap confined = render(stack);
        stack.setConfineInside(false);
        stack.setTextOpacity(0.5f);  // two layers, whatever the fill's own opacity
        const GxBitmap twoLayers = render(stack);
        size_t bled = 0, coloured = 0;
        for (size_t i = 0; i < literal.pixelCount(); ++i) {
            const uint8_t* free = literal.data + i * 4;
            const uint8_t* kept = confined.data + i * 4;
            const uint8_t* mixed = twoLayers.data + i * 4;
            const int m = coverageAt(i);
            bled += m == 0 && free[3] != 0;
            coloured += m == 255 && kept[0] != 0x20;
            ASSERT_TRUE(m == 0 ? kept[3] == 0 : std::memcmp(free, kept, 4) == 0) << i;
            ASSERT_TRUE(m < 255 || std::memcmp(kept, mixed, 4) == 0) << i;
            ASSERT_NEAR(mixed[3], m, m == 0 ? 0 : 2) << "edge at " << i;
        }
        EXPECT_EQ(bled > 0, &add != adds) << "the plain arithmetic of all but the bevel bleeds";
        EXPECT_GT(coloured, 100u);
    }
}

void addAll(GxEffect& stack, GxBitmap& pattern) {
    const GxGradient stops[] = {{0xFFFF0000, 1, 0}, {0xFF00FF00, 0.5f, 0.5f}, {0xFF0000FF, 1, 1}};
    stack.setSilhouette(stack.addOuterShadowText(120, 6, 4, 0xFF000000, 0.6f),
                        {GxSilhouette::kOutline, 2});
    stack.setSilhouette(stack.addInnerShadowText(300, 3, 2, 0xFFFFFFFF, 0.5f), {0, 1});
    stack.addOuterGlowText(8, 0, 1, 3, stops);
    stack.addInnerGlowText(2, 0xFFFFFF00, 0.4f, 0, nullptr);
    stack.addLinearGradientText(45, 1, 0.5f, 3, stops);
    stack.addRadialGradientText(1.5f, 0.5f, 3, stops);
    stack.addStrokeText(3, 0xFF101010, 0.9f, 0, GxStrokeProperty::kCenter);
    stack.addPatternText(&pattern, 2, 0.7f);
    stack.addBevelText(1, 4, 1, 0, 0, 1, 0.8f, 120, 30, 0xFFFFFFFF, 0.7f, 0xFF000000, 0.6f);
    stack.addEmbossText(1, 4, 2, 1, 1, 0, 0.8f, 45, 60, 0xFFFFFFFF, 0.7f, 0xFF000000, 0.6f);
    stack.addText(0xE0F0F0F0);
    stack.setRepeats(true);
    stack.addLinearGradientStrokeText(5, 0, 1, 60, 1, 0.8f, 3, stops);
    stack.addPatternStrokeText(2, 0, 2, &pattern, 2, 0.6f);
    stack.setSpan(4, GXE_SPAN_LINE);  // the linear gradient
    stack.setRepeats(false);
}

GxBitmap smallPattern() {
    GxBitmap pattern(3, 3, 4);
    for (int i = 0; i < 36; ++i) pattern.data[i] = static_cast<uint8_t>(i % 4 == 0 ? 255 : i * 7);
    return pattern;
}

// Every picture is right or known to be wrong, and the next one is right.
TEST(AllEffects, KnowOfEveryFailedAllocation) {
    GxBitmap pattern = smallPattern();
    for (const float opacity : {1.0f, 0.5f}) {
        GxEffect stack;
        addAll(stack, pattern);
        stack.setTextOpacity(opacity);
        stack.setConfineInside(opacity == 1.0f);
        EXPECT_EQ(stack.getLeftOffset(), 8);
        const GxBitmap expected = render(stack);
        ASSERT_FALSE(stack.hasFailed());
        std::unique_ptr<GxEffect> copy;
        std::unique_ptr<GxBitmap> picture;
        const auto copyAndRender = [&] {
            copy.reset();
            picture.reset();
            copy.reset(new (std::nothrow) GxEffect(stack));
            if (copy) picture.reset(new (std::nothrow) GxBitmap(render(*copy)));
            const std::unique_ptr<char[]> key(stack.getMapKey());
        };
        const auto check = [&](int n) {
            const bool isWhole = picture && picture->data && !copy->hasFailed();
            if (isWhole) {
                EXPECT_EQ(difference(expected, *picture), "") << "allocation " << n;
            }
            EXPECT_EQ(difference(expected, render(stack)), "") << "after allocation " << n;
        };
        for (const auto span : {gxtest::FailureSpan::kOne, gxtest::FailureSpan::kAllFromThere}) {
            EXPECT_GT(gxtest::failEachAllocation(copyAndRender, check, span), 40);
        }
    }
}

// As the effect's core paints them one after the other, also where lines overlap.
TEST(AllEffects, ASpanOfALineRunsOverEachMaskByItself) {
    gxtest::Random random(603);
    GX_TRACE_SEED(random);
    const GxGradient stops[] = {{0xFFFF0000, 1, 0}, {0x8000FF00, 1, 0.5f}, {0xFF0000FF, 1, 1}};
    for (int run = 0; run < 20; ++run) {
        GxEffect stack;
        const int id = run % 2 ? stack.addLinearGradientText(70, 1, 1, 3, stops)
                               : stack.addRadialGradientStrokeText(3, 0, 1, 0.5f, 1, 3, stops);
        EXPECT_FALSE(stack.setSpan(id + 1, GXE_SPAN_LINE));
        EXPECT_TRUE(stack.setSpan(id, GXE_SPAN_LINE));
        const std::string key = gxtest::keyOf(stack);
        EXPECT_EQ(key.substr(key.size() - 2), "R\x81");
        GxBitmap output(50, 40, 4), expected(50, 40, 4);
        stack.initEffect(50, 40);
        stack.setDstBitmap(&output);
        for (int line = 0; line < 3; ++line) {
            GxGlyph glyph;
            glyph.width = static_cast<uint16_t>(random.between(0, 30));
            glyph.height = static_cast<uint16_t>(random.between(0, 20));
            std::vector<uint8_t> pixels = random.edgeBytes(glyph.width * glyph.height);
            glyph.pixels = pixels.data();
            const int x = random.between(-10, 45), y = random.between(-10, 35);
            stack.renderEffectLayer(x, y, &glyph);

            gxtest::Scene scene(
                50, 40,
                GxRect(std::clamp(x, 0, 50), std::clamp(y, 0, 40),
                       std::clamp(x + glyph.width, 0, 50), std::clamp(y + glyph.height, 0, 40)));
            GxBlender().drawBitmap8To8(x, y, &scene.mask, pixels.data(), glyph.width, glyph.height);
            auto param = scene.param();
            param.dst = &expected;
            if (!scene.box.isEmpty()) stack.findEffect(id)->doPostProcessing(&param);
        }
        stack.doEffectPostProcessing();
        ASSERT_EQ(difference(expected, output), "") << run;
    }
}

TEST(AllEffects, SettingsThatAreNotKeptAreRefused) {
    GxBitmap pattern = smallPattern();
    GxEffect stack;
    addAll(stack, pattern);
    const GxBitmap expected = render(stack);
    const std::function<int()> adds[] = {
        [&] { return stack.addText(0x40FF0000); },
        [&] { return stack.addStrokeText(9, 0, 1, 0, 0); },
        [&] { return stack.addPatternText(&pattern, 3, 1); },
        [&] { return stack.addPatternStrokeText(9, 0, 0, &pattern, 3, 1); },
        [&] { return stack.addRadialGradientText(1, 1, 0, nullptr); },
    };
    for (const auto& add : adds) {
        const gxtest::AllocationFailure failure(1, gxtest::FailureSpan::kAllFromThere);
        EXPECT_LT(add(), 0);
    }
    EXPECT_EQ(difference(expected, render(stack)), "");
    EXPECT_GE(stack.addEffect(GXE_STYLE_STROKE, nullptr), 0);
}

}  // namespace
}  // namespace GxFontEffect
