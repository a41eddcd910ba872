#include "Effects.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "StyleFile.h"
#include "ToolError.h"
#include "effect/GxEffect.h"

namespace gxtool {
namespace {

using namespace GxFontEffect;

EffectStyle effectOf(const std::string& json) {
    return parseStyle("{\"effects\": [" + json + "]}", "s",
                      GXTEXT_SOURCE_DIR "/examples/styles/patterns")
        .effects.at(0);
}

// Adds the effect to a fresh stack; false, with the right message, when this build has no such
// filter.
bool addTo(GxEffect& stack, const EffectStyle& effect) {
    try {
        addEffects({effect}, stack);
        return true;
    } catch (const ToolError& error) {
        EXPECT_EQ(error.what(),
                  "effects[0]: this build has no " + std::string(effectName(effect.type)));
        EXPECT_FALSE(stack.hasEffects());
        return false;
    }
}

template <typename Record>
const Record& recordOf(const GxEffect& stack, int style) {
    return dynamic_cast<const Record&>(*stack.getEffect(style)->getProperty());
}

TEST(Effects, StrokeCarriesItsFields) {
    GxEffect stack;
    if (!addTo(
            stack,
            effectOf(
                R"({"type": "stroke", "size": 3, "color": "#80FF0000", "position": "inside"})"))) {
        GTEST_SKIP() << "no stroke in this build";
    }
    const auto& record = recordOf<GxStrokeProperty>(stack, GXE_STYLE_STROKE);
    EXPECT_EQ(record.size, 3);
    EXPECT_EQ(record.position, GxStrokeProperty::kInside);
    // Alpha 0x80 is an opacity of 128/255: premultiplied red.
    EXPECT_EQ(record.color, 0x80800000u);
}

TEST(Effects, ShadowsCarryTheirFields) {
    GxEffect stack;
    if (!addTo(stack,
               effectOf(R"({"type": "outerShadow", "angle": -30, "distance": 7, "size": 9})"))) {
        GTEST_SKIP() << "no outer shadow in this build";
    }
    const auto& record = recordOf<GxOuterShadowProperty>(stack, GXE_STYLE_OUTER_SHADOW);
    EXPECT_EQ(record.angle, 330);
    EXPECT_EQ(record.distance, 7);
    EXPECT_EQ(record.size, 9);
}

TEST(Effects, GradientStopsKeepOrderAndFade) {
    GxEffect stack;
    if (!addTo(stack, effectOf(R"({"type": "linearGradient", "angle": 45, "opacity": 0.5, "stops": [
            {"color": "#FF0000", "position": 0}, {"color": "#8000FF00", "position": 1}]})"))) {
        GTEST_SKIP() << "no linear gradient in this build";
    }
    const auto& record = recordOf<GxLinearGradientProperty>(stack, GXE_STYLE_LINEAR_GRADIENT);
    ASSERT_EQ(record.stopCount, 2);
    EXPECT_EQ(record.stops[0].color, 0x80FF0000u);
    EXPECT_EQ(record.stops[1].color, 0x4000FF00u);
    EXPECT_EQ(record.stops[1].position, 1.0f);
}

TEST(Effects, EveryTypeIsAddedOrRefusedByName) {
    for (const char* json :
         {R"({"type": "stroke"})", R"({"type": "outerShadow"})", R"({"type": "innerShadow"})",
          R"({"type": "outerGlow"})", R"({"type": "innerGlow"})", R"({"type": "bevel"})",
          R"({"type": "emboss"})",
          R"({"type": "linearGradient", "stops": [{"color": "#000000", "position": 0}]})",
          R"({"type": "radialGradient", "stops": [{"color": "#000000", "position": 0}]})",
          R"({"type": "pattern", "pattern": "checks.png"})"}) {
        GxEffect stack;
        const bool added = addTo(stack, effectOf(json));
        EXPECT_EQ(added, stack.hasEffects()) << json;
    }
}

TEST(Effects, UnreadablePatternsAreErrors) {
    for (const char* file : {"missing.png", ".", "latin.json"}) {
        GxEffect stack;
        EXPECT_THROW(addEffects({effectOf(R"({"type": "pattern", "pattern": ")" +
                                          std::string(file) + "\"}")},
                                stack),
                     ToolError)
            << file;
    }
}

}  // namespace
}  // namespace gxtool
