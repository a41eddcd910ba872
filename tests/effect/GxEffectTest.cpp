// The stack: adding, ids, the text fill end to end, compositing.
#include "effect/GxEffect.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "effect/filters/FilterTesting.h"
#include "effect/filters/GxText.h"
#include "support/LogCapture.h"

namespace GxFontEffect {
namespace {

using gxtest::keyOf;
using gxtest::LogCapture;
using gxtest::renderStack;
using Pixel = std::array<int, 4>;  // R, G, B, A

Pixel pixelAt(const GxBitmap& bitmap, int x, int y) {
    const uint8_t* p = bitmap.data + (size_t{bitmap.width} * y + x) * 4;
    return {p[0], p[1], p[2], p[3]};
}

// A mask from a picture.
GxBitmap maskOf(const std::vector<std::string>& rows) {
    return gxtest::Scene(rows).mask;
}

TEST(GxText, DoesNothingWithoutItsInputs) {
    gxtest::Scene scene({"##"});
    const GxTextProperty record(0xFFFFFFFF, 1.0f);
    for (int lost = 0; lost < 4; ++lost) {
        GxText core;
        if (lost != 0) core.setProperty(&record);
        auto param = scene.param();
        if (lost == 1) param.dst = nullptr;
        if (lost == 2) param.src = nullptr;
        core.doPostProcessing(lost == 3 ? nullptr : &param);
        EXPECT_EQ(scene.pixel(0, 0), 0u) << lost;
    }
}

TEST(GxEffect, StylesWithoutACoreAreRefused) {
    GxEffect stack;
    const GxTextProperty record(0, 1);
    for (int style : {INT32_MIN, -1, 0, 9, 13, 14, INT32_MAX}) {
        EXPECT_EQ(stack.addEffect(style, &record), -1) << style;
        EXPECT_EQ(stack.createEffect(3, style), nullptr) << style;
    }
    EXPECT_FALSE(stack.hasEffects());
    EXPECT_EQ(stack.addText(0xFFFFFFFF), 0) << "a refusal uses up no id";
}

TEST(GxEffect, IdsCountUpAndWrapToZero) {
    GxEffect stack;
    EXPECT_EQ(stack.getNewEffectId(), 0);
    EXPECT_EQ(stack.getNewEffectId(), 1);
    EXPECT_EQ(stack.addText(0xFF000000), 2);
    EXPECT_EQ(stack.addText(0xFFFFFFFF), 2) << "a style occurs once";
    EXPECT_FALSE(stack.removeEffect(7));
    EXPECT_TRUE(stack.removeEffect(2));
    EXPECT_EQ(stack.addText(0xFFFFFFFF), 3) << "ids are not reused";
    stack.cleanAllEffect();
    EXPECT_EQ(stack.getEffect(12), nullptr);
    EXPECT_EQ(stack.addText(0xFFFFFFFF), 0);
    EXPECT_EQ(stack.addEffect(42, 12, nullptr), 0) << "the core that is there keeps its id";
}

TEST(GxEffect, TextOpacityIsClampedAndCountsAsAnEffect) {
    GxEffect stack;
    EXPECT_FALSE(stack.hasEffects());
    for (const auto& [given, stored] :
         {std::pair{0.5f, 0.5f}, {-1.0f, 0.0f}, {2.0f, 1.0f}, {std::nanf(""), 0.0f}}) {
        stack.setTextOpacity(given);
        EXPECT_EQ(stack.getTextOpacity(), stored);
        EXPECT_EQ(stack.hasEffects(), stored < 1.0f);
    }
    stack.clearTextOpacity();
    EXPECT_EQ(stack.getTextOpacity(), 1.0f);
}

TEST(GxEffect, KeyWithAColourSetsTheFill) {
    GxEffect stack;
    EXPECT_EQ(keyOf(stack), "");
    const std::unique_ptr<char[]> key(stack.getMapKey(0x00336699));
    EXPECT_STREQ(key.get(), "T\x8F\x8F\x83\x83\x86\x86\x89\x89");
}

TEST(GxEffect, ReleasingACoreTakesItOutOfTheStack) {
    GxEffect stack;
    stack.addText(0xFFFFFFFF);
    stack.initEffect(4, 4);
    ASSERT_EQ(stack.getLayers().size(), 1u);
    stack.releaseEffect(stack.getEffect(12));
    EXPECT_TRUE(stack.getLayers().empty());
    EXPECT_FALSE(stack.hasEffect(12));
    stack.releaseEffect(nullptr);
    stack.releaseEffect(stack.createEffect(5, 12));  // one that was never added
}

// --- renders ---

// In one layer or two; the caller's addText decides the fill, the mode follows the text's opacity.
TEST(GxEffect, TheFillIsStraightAlpha) {
    for (const float opacity : {1.0f, 0.5f}) {
        GxEffect stack;
        stack.addText(0xFF4080C0);
        stack.setTextOpacity(opacity);
        const GxBitmap output = renderStack(stack, 5, 3, 1, 1, maskOf({"#9 4"}));
        EXPECT_EQ(pixelAt(output, 1, 1), (Pixel{0x40, 0x80, 0xC0, 255}));
        // m = 112: alpha 256 x 112 >> 8 = 112; R: 65 x 112 >> 8 = 28, straight again
        // 28 x 256 / 112 = 64.
        EXPECT_EQ(pixelAt(output, 4, 1), (Pixel{64, 128, 192, 112}));
        for (const auto& [x, y] : {std::pair{0, 0}, {3, 1}, {1, 0}, {1, 2}}) {
            EXPECT_EQ(pixelAt(output, x, y), (Pixel{0, 0, 0, 0}));
        }
    }
}

TEST(GxEffect, GlyphsUniteAndTheRectangleGrows) {
    GxEffect stack;
    stack.addText(0xFF000000);
    stack.initEffect(10, 10);
    const GxBitmap masks[] = {maskOf({"#9"}), maskOf({"9#"})};
    const GxGlyph first = gxtest::glyphOf(masks[0]), second = gxtest::glyphOf(masks[1]);
    stack.renderEffectLayer(4, 4, &first);
    stack.renderEffectLayer(4, 4, &second);
    stack.renderEffectLayer(-3, 7, &first);
    EXPECT_EQ(stack.getSrcBitmap()->data[44], 255);
    EXPECT_EQ(stack.getSrcBitmap()->data[45], 255);
    const GxRect* box = stack.getTextRect();
    EXPECT_THAT((std::array{box->left, box->top, box->right, box->bottom}),
                testing::ElementsAre(-3, 4, 6, 8));
    stack.doEffectPostProcessing();
    EXPECT_EQ(box->left, 0) << "clamped to the mask";
    // The next render starts a fresh rectangle.
    stack.initEffect(10, 10);
    stack.renderEffectLayer(8, 8, &first);
    EXPECT_EQ(box->left, 8);
}

TEST(GxEffect, NothingIsPaintedWithoutGlyphsInside) {
    GxEffect stack;
    stack.addText(0xFF000000);
    for (const auto& [x, y] : {std::pair{20, 0}, {-9, 0}, {0, INT32_MIN}, {INT32_MAX, INT32_MAX}}) {
        const GxBitmap output = renderStack(stack, 8, 4, x, y, maskOf({"##"}));
        EXPECT_EQ(gxtest::difference(GxBitmap(8, 4, 4), output), "") << x;
    }
}

// The fill's alpha weighs the layer, which then becomes straight.
TEST(GxEffect, CompositeEqualsItsFormulas) {
    gxtest::Random random(21);
    GX_TRACE_SEED(random);
    for (int t : {0, 1, 77, 128, 254, 255}) {
        GxEffect stack;
        if (t < 255) stack.addText(static_cast<uint32_t>(t) << 24);
        stack.initEffect(64, 16);
        const GxBitmap before(64, 16, random.edgeBytes(64 * 16 * 4).data(), 4);
        GxBitmap output(before);
        stack.compositeLayers(&output);
        for (int i = 0; i < 64 * 16 * 4; ++i) {
            const int alpha = (before.data[i | 3] + 1) * t >> 8;
            const int faded = (before.data[i] + 1) * t >> 8;
            const int straight = alpha == 0 ? 0 : std::min(255, faded * 256 / alpha);
            ASSERT_EQ(output.data[i], i % 4 == 3 ? alpha : straight) << t << " " << alpha;
        }
    }
}

TEST(GxEffect, StepsOutOfOrderDoNothing) {
    GxEffect stack;
    stack.addText(0xFFFFFFFF);
    const GxBitmap mask = maskOf({"#"});
    const GxGlyph glyph = gxtest::glyphOf(mask);
    GxBitmap output(3, 3, 4);
    const auto renderInto = [&](GxBitmap* destination) {
        stack.renderEffectLayer(0, 0, nullptr);
        stack.renderEffectLayer(0, 0, &glyph);
        stack.doEffectPostProcessing();
        stack.compositeLayers(destination);
    };
    renderInto(nullptr);
    renderInto(&output);
    stack.initEffect(3, 3);
    renderInto(&output);  // painted nowhere
    EXPECT_EQ(gxtest::difference(GxBitmap(3, 3, 4), output), "");
    // Destinations smaller and larger than the stack's size.
    stack.setTextOpacity(0.5f);
    for (const uint32_t stackSize : {3u, 0xFFFFFFFFu, 0u}) {
        for (const uint32_t size : {1u, 2u, 7u}) {
            GxBitmap other(size, size, 4);
            stack.initEffect(stackSize, stackSize);
            stack.setDstBitmap(&other);
            renderInto(&other);
        }
    }
}

TEST(GxEffect, LogsTheStepsOfARender) {
    LogCapture log;
    char self[32];
    {
        GxEffect stack;
        snprintf(self, sizeof(self), "(%p)", static_cast<void*>(&stack));
        stack.addText(0x80FF00AA);
        stack.addText(0x00000001, 0.5f);
        stack.initEffect(1, 1);
        stack.doEffectPostProcessing();
        GxBitmap output(1, 1, 4);
        stack.compositeLayers(&output);
    }
    std::vector<std::string> expected;
    for (const char* line :
         {"GxEffect*", "AddText* - (color:80ff00aa)", "AddText* - (color:1/opacity:0.500000)",
          "InitEffect*", "DoEffectPostProcessing* - start", "DoEffectPostProcessing* - end",
          "CompositeLayers* - start", "CompositeLayers* - end", "~GxEffect*"}) {
        expected.emplace_back(line);
        expected.back().replace(expected.back().find('*'), 1, self);
    }
    EXPECT_EQ(log.texts(), expected);
    for (const auto& line : log.lines()) {
        EXPECT_EQ(line.priority, 3);
        EXPECT_EQ(line.tag, "GxEffect");
    }
    log.clear();
    { GxEffect silent(&log); }
    ASSERT_EQ(log.lines().size(), 1u) << "only the end is logged";
}

}  // namespace
}  // namespace GxFontEffect
