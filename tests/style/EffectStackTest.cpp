// Styles into effect stacks.
#include "style/EffectStack.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <memory>

#include "effect/GxEffect.h"
#include "style/FieldTable.h"

namespace gxtext {
namespace {

using namespace GxFontEffect;

// A pattern of one pixel whose shade is the name's length.
GxBitmap shadeOf(const std::filesystem::path& file) {
    const auto shade = static_cast<uint8_t>(20 * file.string().size());
    const uint8_t pixels[2][4] = {{255, shade, 0, 0}, {255, 0, shade, 0}};
    return {2, 1, pixels, 4};
}

struct Outcome {
    std::string key;
    std::vector<uint8_t> pixels;
    bool hasEffect = false;
    bool operator==(const Outcome&) const = default;
};

// A block of ink with a soft edge, drawn with the style.
Outcome drawn(const Style& style) {
    constexpr int kSide = 48;
    GxEffect stack;
    stack.addText(0xFF808080u);
    dress(stack, style, shadeOf);
    Outcome outcome;
    const std::unique_ptr<char[]> key(stack.getMapKey());
    outcome.key = key.get();
    outcome.hasEffect = stack.getEffect(GXE_STYLE_TEXT) != nullptr && stack.getNewEffectId() > 1;

    GxBitmap output(kSide, kSide, 4);
    std::vector<uint8_t> mask(20 * 20, 255);
    for (int i = 0; i < 20; i++) mask[static_cast<size_t>(i)] = 100;
    GxGlyph glyph;
    glyph.pixels = mask.data();
    glyph.width = glyph.height = 20;
    stack.setConfineInside(true);
    stack.initEffect(kSide, kSide);
    stack.setDstBitmap(&output);
    stack.renderEffectLayer(14, 14, &glyph);
    glyph.height = 6;  // another line
    stack.renderEffectLayer(8, 37, &glyph);
    stack.doEffectPostProcessing();
    stack.compositeLayers(&output);
    outcome.pixels.assign(output.data, output.data + size_t{kSide} * kSide * 4);
    return outcome;
}

Outcome drawn(const Effect& effect) {
    Style style;
    style.effects = {effect};
    return drawn(style);
}

Effect exampleOf(EffectType type) {
    Effect effect(type);
    effect.pattern = "p.png";
    effect.stops = {{Color{0xFFFF0000u}, 1, 0}, {Color{0xFF0000FFu}, 1, 1}};
    return effect;
}

// Another value of a field, which ought to show.
struct Change {
    Effect& effect;
    const Field<Effect>& field;

    void operator()(std::monostate) const {}
    void operator()(float Effect::*member) const {
        const auto [low, high] = field.range;
        effect.*member =
            static_cast<float>(low + (high - low) * (effect.*member > low ? 0.31 : 0.17));
    }
    void operator()(int Effect::*member) const { effect.*member += 3; }
    void operator()(bool Effect::*member) const { effect.*member = !(effect.*member); }
    void operator()(Color Effect::*member) const { (effect.*member).argb ^= 0x00336699u; }
    void operator()(std::string Effect::*member) const { effect.*member += "x"; }
    void operator()(std::vector<Stop> Effect::*member) const {
        (effect.*member)[0].color.argb = 0xFF00FF00u;
    }
    void operator()(Fill Effect::*member) const {
        (effect.*member).effects = {Effect(EffectType::kLinearGradient)};
        (effect.*member).effects[0].stops = {{Color{0xFF20A030u}, 1, 0}};
    }
    void operator()(const Choice<Effect>& choice) const {
        choice.set(effect, (choice.get(effect) + 1) % static_cast<int>(choice.names.size()));
    }
    template <typename Other>
    void operator()(Other /*no effect has one*/) const {
        ADD_FAILURE() << "change " << field.name << " somehow";
    }
};

TEST(EffectStack, EveryFieldOfAnEffectReachesThePicture) {
    int known = 0;
    for (int i = 0; i < kEffectTypeCount; i++) {
        const auto type = static_cast<EffectType>(i);
        const Effect effect = exampleOf(type);
        const Outcome before = drawn(effect);
        if (!before.hasEffect) continue;  // no filter in this build: dressed without a complaint
        known++;
        for (const Field<Effect>* field : effectFields(type)) {
            if (field->name == "type") continue;
            Effect changed = effect;
            // A ramp stands in for the colour of a glow.
            if (field->name == "color") changed.stops.clear();
            // And a stroke casts.
            Style style;
            style.effects = {changed};
            if (field->name == "castFrom") style.effects.push_back(exampleOf(EffectType::kStroke));
            const Outcome plain = drawn(style);
            std::visit(Change{style.effects[0], *field}, field->target);
            EXPECT_TRUE(drawn(style).pixels != plain.pixels)
                << field->name << " of " << effectName(type) << " is not seen";
        }
    }
    EXPECT_GE(known, 8);
}

std::string namesInOrder(const std::string& effects, const char* order) {
    std::string json(R"({"order": ")");
    json.append(order).append(R"(", "effects": [)").append(effects).append("]}");
    const Style style = Style::fromJson(json);
    std::string names;
    for (const size_t i : stackingOrder(style)) {
        names.append(names.empty() ? "" : " ").append(effectName(style.effects[i].type));
    }
    return names;
}

TEST(EffectStack, NaturalOrderIsThatOfLayerStyles) {
    const std::string stops = R"("stops": [{"color": "#FFFFFF", "position": 0}]})";
    const std::string most =
        R"({"type": "innerShadow"}, {"type": "innerGlow"}, {"type": "pattern", "pattern": "p"},
           {"type": "outerGlow"}, {"type": "linearGradient", )" +
        stops + R"(, {"type": "outerShadow"}, {"type": "emboss"}, )";
    EXPECT_EQ(
        namesInOrder(most + R"({"type": "bevel", "kind": "outside"}, {"type": "stroke"})",
                     "natural"),
        "outerShadow outerGlow stroke bevel pattern linearGradient innerGlow innerShadow emboss");
    EXPECT_EQ(namesInOrder(R"({"type": "stroke", "position": "center"}, {"type": "bevel"}, )" +
                               most + R"({"type": "radialGradient", )" + stops,
                           "natural"),
              "outerShadow outerGlow pattern linearGradient radialGradient innerGlow innerShadow "
              "bevel emboss stroke");
    EXPECT_EQ(namesInOrder(R"({"type": "stroke"}, {"type": "outerShadow"})", "listed"),
              "stroke outerShadow");
}

// With one layer and, for the centred stroke and the opacity, with two.
TEST(EffectStack, TheListsOrderMakesNoDifferenceInNaturalOrder) {
    for (const StrokePosition position :
         {StrokePosition::kOutside, StrokePosition::kInside, StrokePosition::kCenter}) {
        Style style;
        for (const EffectType type : {EffectType::kStroke, EffectType::kOuterShadow,
                                      EffectType::kInnerShadow, EffectType::kInnerGlow}) {
            style.effects.push_back(exampleOf(type));
        }
        style.effects[0].size = 6;
        style.effects[0].position = position;
        style.effects[1].color.argb = 0xFF00FF00u;
        Style turned = style;
        std::reverse(turned.effects.begin(), turned.effects.end());
        EXPECT_TRUE(drawn(style) == drawn(turned)) << static_cast<int>(position);
        style.order = turned.order = EffectOrder::kListed;
        EXPECT_TRUE(drawn(style).pixels != drawn(turned).pixels);
    }
}

// The shadow falls to the lower right; the outline, 4 pixels wide, hides it around the block.
TEST(EffectStack, AShadowLiesBeneathTheOutline) {
    for (const char* position : {"outside", "center"}) {
        Style style = Style::fromJson(R"({"effects": [
            {"type": "stroke", "size": 4, "color": "#0000FF", "position": ")" +
                                      std::string(position) + R"("},
            {"type": "outerShadow", "angle": 135, "distance": 9, "size": 0, "color": "#FF0000", "opacity": 1}]})");
        const auto pixelOf = [](const Outcome& outcome, size_t x, size_t y) {
            const uint8_t* p = &outcome.pixels[(y * 48 + x) * 4];
            return std::array<int, 4>{p[0], p[1], p[2], p[3]};
        };
        EXPECT_EQ(pixelOf(drawn(style), 34, 28), (std::array<int, 4>{0, 0, 255, 255})) << position;
        EXPECT_EQ(pixelOf(drawn(style), 39, 28), (std::array<int, 4>{255, 0, 0, 255})) << position;
        style.order = EffectOrder::kListed;
        EXPECT_EQ(pixelOf(drawn(style), 34, 28), (std::array<int, 4>{255, 0, 0, 255})) << position;
    }
}

// The narrow outline over the wide one, whichever is listed first of other effects.
TEST(EffectStack, RepeatedEffectsLieAsListedAndDisabledOnesNowhere) {
    Style style = Style::fromJson(R"({"effects": [
        {"type": "stroke", "size": 9, "color": "#0000FF"}, {"type": "outerShadow"},
        {"type": "stroke", "size": 4, "color": "#FF0000"}, {"type": "outerShadow", "distance": 12}]})");
    EXPECT_THAT(stackingOrder(style), testing::ElementsAre(1, 3, 0, 2));
    const Outcome both = drawn(style);
    const auto blueAt = [&](size_t x) { return int{both.pixels[(24 * 48 + x) * 4 + 2]}; };
    EXPECT_EQ(blueAt(36), 0);
    EXPECT_EQ(blueAt(41), 255);
    style.effects[2].enabled = style.effects[3].enabled = false;
    EXPECT_THAT(stackingOrder(style), testing::ElementsAre(1, 0));
    const Outcome one = drawn(style);
    style.effects.erase(style.effects.begin() + 2, style.effects.end());
    EXPECT_TRUE(one == drawn(style));
    EXPECT_TRUE(one.pixels != both.pixels);
}

TEST(EffectStack, SizesAreWholePixels) {
    for (const EffectType type :
         {EffectType::kStroke, EffectType::kOuterShadow, EffectType::kInnerGlow}) {
        Effect fraction = exampleOf(type);
        Effect whole = exampleOf(type);
        fraction.size = 2.5f;
        whole.size = 3;
        fraction.distance = 3.49f;
        whole.distance = 3;
        fraction.angle = -45.6f;
        whole.angle = -46;
        EXPECT_TRUE(drawn(fraction) == drawn(whole)) << effectName(type);
    }
}

TEST(EffectStack, ScaledEffectsReachFurtherThanAFileAllows) {
    for (const EffectType type :
         {EffectType::kStroke, EffectType::kOuterShadow, EffectType::kInnerShadow,
          EffectType::kOuterGlow, EffectType::kInnerGlow}) {
        Style style;
        style.effects = {exampleOf(type)};
        style.effects[0].size = 60;
        style.effects[0].distance = 70;
        GxEffect stack;
        dress(stack, style.scaled(2), {});
        GxEffect plain;
        dress(plain, style, {});
        if (type == EffectType::kInnerShadow) {  // asks for no margin
            GxProperty* property = stack.getEffect(GXE_STYLE_INNER_SHADOW)->getProperty();
            const auto& record = dynamic_cast<GxInnerShadowProperty&>(*property);
            EXPECT_EQ(record.size, 120);
            EXPECT_EQ(record.distance, 140);
        } else {
            EXPECT_NEAR(stack.getRightOffset(), 2 * plain.getRightOffset(), 1) << effectName(type);
            EXPECT_GT(stack.getRightOffset(), 100) << effectName(type);
        }
    }
}

TEST(EffectStack, AlphaOfAColourMultipliesTheOpacity) {
    for (const EffectType type : {EffectType::kStroke, EffectType::kOuterShadow,
                                  EffectType::kInnerShadow, EffectType::kOuterGlow}) {
        Effect faded(type);
        faded.color.argb = 0x80FF0000u;
        faded.opacity = 0.5f;
        Effect plain(type);
        plain.color.argb = 0xFFFF0000u;
        plain.opacity = 0.5f * (128.0f / 255.0f);
        EXPECT_TRUE(drawn(faded) == drawn(plain)) << effectName(type);
    }
    Effect faded = exampleOf(EffectType::kLinearGradient);
    faded.opacity = 0.5f;
    faded.stops[1] = {Color{0x8000FF00u}, 1, 1};
    Effect plain = exampleOf(EffectType::kLinearGradient);
    plain.stops[0].opacity = 0.5f;
    plain.stops[1] = {Color{0xFF00FF00u}, 0.5f * (128.0f / 255.0f), 1};
    EXPECT_TRUE(drawn(faded) == drawn(plain));
}

// The alpha of a fill's colours and both opacities count once each.
TEST(EffectStack, AFillPaintsTheStroke) {
    const auto stroke = [](const std::string& rest) {
        return drawn(
            Style::fromJson(R"({"effects": [{"type": "stroke", "size": 5, )" + rest + "}]}"));
    };
    const Outcome plain = stroke(R"("color": "#80FF0000", "opacity": 0.5)");
    EXPECT_TRUE(plain == stroke(R"("fill": "#80FF0000", "color": "#00FF00", "opacity": 0.5)"));
    EXPECT_TRUE(plain.pixels == stroke(R"("opacity": 0.5, "fill": {"type": "radialGradient", )"
                                       R"("stops": [{"color": "#80FF0000", "position": 0}]})")
                                    .pixels);
    EXPECT_TRUE(plain == stroke(R"("color": "#80FF0000", "opacity": 0.5, "fill":
        {"type": "pattern", "pattern": "none", "enabled": false})"));
    EXPECT_TRUE(plain.pixels != stroke(R"("fill": {"type": "pattern", "pattern": "p"})").pixels);
}

TEST(EffectStack, NamesThePlaceOfAPatternThatIsMissing) {
    const Style style = Style::fromJson(
        R"({"effects": [{"type": "stroke"}, {"type": "pattern", "pattern": "p.png"}]})",
        "a/s.json");
    const auto errorOf = [&](const PatternLoader& loader) -> std::string {
        GxEffect stack;
        try {
            dress(stack, style, loader);
            return "";
        } catch (const StyleError& error) {
            return error.what();
        }
    };
    EXPECT_EQ(errorOf([](const auto& file) -> GxBitmap { throw Error("no " + file.string()); }),
              "a/s.json: $.effects[1].pattern: no a/p.png");
    EXPECT_EQ(errorOf({}), "a/s.json: $.effects[1].pattern: there is nothing that loads patterns");
    EXPECT_EQ(errorOf(shadeOf), "");
    const Style filled = Style::fromJson(
        R"({"effects": [{"type": "stroke", "fill": {"type": "pattern", "pattern": "p.png"}}]})");
    GxEffect stack;
    try {
        dress(stack, filled, {});
        FAIL();
    } catch (const StyleError& error) {
        EXPECT_EQ(error.problems()[0].path, "$.effects[0].fill.pattern");
    }
}

}  // namespace
}  // namespace gxtext
