// Layer effects of image editors as styles.
#include "style/LayerStyle.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <set>

#include "GeneratedText.h"

namespace gxtext {
namespace {

using nlohmann::json;

const std::string kFolder = GXTEXT_SOURCE_DIR "/tests/style/";

std::string lossesOf(const ImportedStyle& imported) {
    std::string text;
    for (const ImportLoss& loss : imported.losses) {
        text.append(loss.path).append(": ").append(lossName(loss.kind));
        text.append(": ").append(loss.reason).append("\n");
    }
    return text;
}

std::string outcomeOf(const json& effects) {
    const ImportedStyle imported = importLayerStyle(effects.dump());
    return lossesOf(imported) + imported.style.toJson();
}

// "/stroke/0/size" as "$.stroke[0].size".
std::string pathOf(json::json_pointer pointer) {
    if (pointer.empty()) return "$";
    const std::string last = pointer.back();
    pointer.pop_back();
    const bool isIndex = last.find_first_not_of("0123456789") == std::string::npos;
    return pathOf(pointer) + (isIndex ? "[" + last + "]" : "." + last);
}

// A record with all fields of the types, each away from what would change nothing.
class AllFields : public testing::Test {
protected:
    json record = json::parse(gxtest::readText(kFolder + "layer-effects.json"));
    ImportedStyle imported = importLayerStyle(record.dump());

    // Whether it lies within what is dropped as a whole.
    bool isWithinLoss(const std::string& path) const {
        return std::any_of(imported.losses.begin(), imported.losses.end(), [&](const auto& loss) {
            return loss.kind == LossKind::kDropped && path.starts_with(loss.path) &&
                   path.size() > loss.path.size();
        });
    }
};

TEST_F(AllFields, AreTakenOrNamed) {
    gxtest::expectFile(kFolder + "layer-effects.txt",
                       lossesOf(imported) + "\n" + imported.style.toJson());
}

TEST_F(AllFields, ChangeTheOutcome) {
    const std::set<std::string> withoutPicture{"showInDialog", "name", "id"};
    const std::string before = outcomeOf(record);
    int count = 0;
    const json leaves = record.flatten();
    for (const auto& [text, leaf] : leaves.items()) {
        const json::json_pointer pointer(text);
        const std::string path = pathOf(pointer);
        if (withoutPicture.contains(pointer.back()) || isWithinLoss(path)) continue;
        std::vector<json> changed(3, record);
        json& parent = changed[0][pointer.parent_pointer()];
        if (parent.is_object()) parent.erase(pointer.back());
        if (leaf.is_boolean()) changed[1][pointer] = !leaf.get<bool>();
        if (leaf.is_string()) changed[1][pointer] = "?";
        if (leaf.is_number()) changed[1][pointer] = leaf.get<double>() / 2;
        if (leaf.is_number()) changed[2][pointer] = leaf.get<double>() + 1;
        EXPECT_TRUE(std::any_of(changed.begin(), changed.end(), [&](const json& other) {
            return outcomeOf(other) != before;
        })) << path;
        count++;
    }
    EXPECT_GT(count, 150);
}

TEST_F(AllFields, AreNamedWhereTheyAreNotKnown) {
    std::set<std::string> objects;
    const json leaves = record.flatten();
    for (const auto& [text, leaf] : leaves.items()) {
        const json::json_pointer parent = json::json_pointer(text).parent_pointer();
        if (record[parent].is_object()) objects.insert(parent.to_string());
    }
    for (const std::string& text : objects) {
        const json::json_pointer pointer(text);
        const std::string path = pathOf(pointer) + ".novel";
        if (isWithinLoss(path)) continue;
        json changed = record;
        changed[pointer]["novel"] = 1;
        EXPECT_THAT(outcomeOf(changed), testing::HasSubstr(path + ": dropped: unknown field\n"));
    }
}

TEST(LayerStyle, IsExactWhereItCanBe) {
    const ImportedStyle imported = importLayerStyle(R"({
      "globalAngle": 45, "globalAltitude": 60,
      "dropShadow": [{"blendMode": "multiply", "useGlobalLight": true, "angle": 7,
                      "size": {"units": "Pixels", "value": 150}, "choke": {"units": "None", "value": 40}},
                     {"distance": 9, "size": 0, "noise": 0}],
      "outerGlow": {"blendMode": "screen", "size": 10, "range": 0.5},
      "bevel": {"style": "pillow emboss", "useGlobalLight": true, "strength": 1.5},
      "gradientOverlay": [{"type": "reflected", "reverse": true, "gradient": {"type": "solid",
        "colorStops": [{"color": {"r": 0, "g": 0, "b": 0}, "location": 0, "midpoint": 0.2},
                       {"color": {"r": 100, "g": 200, "b": 50}, "location": 1}],
        "opacityStops": [{"opacity": 0, "location": 0.5}, {"opacity": 1, "location": 0.5}]}}]
    })");
    EXPECT_EQ(lossesOf(imported), "");
    const std::vector<Effect>& effects = imported.style.effects;
    ASSERT_EQ(effects.size(), 5u);
    Effect near(EffectType::kOuterShadow);
    near.distance = 9;
    near.size = 0;
    EXPECT_EQ(effects[0], near);  // beneath the one listed before it
    Effect far(EffectType::kOuterShadow);
    far.angle = 45;
    far.spread = 60;
    far.size = 90;
    EXPECT_EQ(effects[1], far);
    Effect glow(EffectType::kOuterGlow);
    glow.size = 10;
    EXPECT_EQ(effects[2], glow);
    const Color half{0xFF326419u};
    const Color edge{0xFF458A22u};  // three eighths past the half
    Effect ramp(EffectType::kLinearGradient);
    ramp.stops = {{Color(), 0, 0},
                  {half, 0, 0.1f},
                  {edge, 0, 0.25f},
                  {edge, 1, 0.25f},
                  {Color{0xFF64C832u}, 1, 0.5f},
                  {edge, 1, 0.75f},
                  {edge, 0, 0.75f},
                  {half, 0, 0.9f},
                  {Color(), 0, 1}};
    EXPECT_EQ(effects[3], ramp) << imported.style.toJson();
    Effect relief(EffectType::kEmboss);
    relief.embossKind = EmbossKind::kPillow;
    relief.depth = 1.5;
    relief.angle = 45;
    relief.altitude = 60;
    EXPECT_EQ(effects[4], relief);
}

TEST(LayerStyle, WhatAFieldCannotHoldIsALoss) {
    std::string strokes;
    for (int i = 0; i < 258; i++) strokes += i == 0 ? "{}" : ", {}";
    const struct {
        std::string json;
        std::vector<std::string> losses;
    } cases[] = {
        {"{}", {}},
        {R"({"stroke": {"size": 3}})", {}},  // one by itself
        {R"({"stroke": [3, {"size": "3"}, {"size": {"units": 1}}]})",
         {"$.stroke[0]: dropped: 3 is no object",
          "$.stroke[1].size: dropped: \"3\" is not a number with a unit",
          "$.stroke[2].size.units: dropped: 1 is not a string"}},
        {R"({"bevel": {"strength": null, "direction": "left", "useTexture": 0, "contour": []}})",
         {"$.bevel.strength: dropped: null is not a number",
          "$.bevel.direction: approximated: \"left\" is not known; the default is taken",
          "$.bevel.contour: dropped: [] is not an object",
          "$.bevel.useTexture: dropped: 0 is not true or false"}},
        {R"({"dropShadow": {"distance": 1e308, "angle": -1e308, "size": -4, "color": {}},
             "dropShadow": {}})",
         {"$.dropShadow.size: approximated: out of range 0-100",
          "$.dropShadow.distance: approximated: out of range 0-100",
          "$.dropShadow.color: dropped: not a colour",
          "$.dropShadow: dropped: given twice; the first one counts"}},
        {R"({"gradientOverlay": [{}, {"gradient": {"type": "solid", "colorStops": 1}}]})",
         {"$.gradientOverlay[0]: dropped: a gradient without colours",
          "$.gradientOverlay[1].gradient.colorStops: dropped: 1 is not a list of objects",
          "$.gradientOverlay[1]: dropped: a gradient without colours"}},
        {R"({"dropShadow": {"useGlobalLight": true}, "bevel": {"useGlobalLight": true, "angle": 9}})",
         {"$.dropShadow.useGlobalLight: approximated: the global light is not in the file; its "
          "angle is assumed to be 120",
          "$.bevel.useGlobalLight: approximated: the global light is not in the file; its altitude "
          "is assumed to be 30"}},
        {R"({"innerGlow": {"size": 9, "choke": 100}})",
         {"$.innerGlow.choke: approximated: whole pixels, and one at least to fade over"}},
        {"{\"stroke\": [" + strokes + "]}",
         {"$.stroke[256]: dropped: more than 256 effects",
          "$.stroke[257]: dropped: more than 256 effects"}},
    };
    for (const auto& c : cases) {
        const ImportedStyle imported = importLayerStyle(c.json);
        std::string wanted;
        for (const std::string& line : c.losses) wanted += line + "\n";
        EXPECT_EQ(lossesOf(imported), wanted);
        const Style style = Style::fromJson(imported.style.toJson());
        EXPECT_EQ(style, imported.style);
    }
    EXPECT_THROW(importLayerStyle("[]", "a.json"), StyleError);
    EXPECT_THROW(importLayerStyle("{", "a.json"), StyleError);
}

}  // namespace
}  // namespace gxtext
