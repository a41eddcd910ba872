#include "StyleFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ToolError.h"

namespace gxtool {
namespace {

Style parse(const std::string& json) {
    return parseStyle(json, "s.json", "folder");
}

std::string errorOf(const std::string& json) {
    try {
        parse(json);
        return "";
    } catch (const ToolError& error) {
        EXPECT_EQ(error.status, kFailure);
        return error.what();
    }
}

TEST(StyleFile, ReadsEveryTopLevelField) {
    const Style s =
        parse(R"({"$schema": "x", "text": "a\nb", "font": "F.ttf", "fontIndex": 3, "size": 12.5,
        "bold": true, "italic": true, "letterSpacing": -0.5, "scaleX": 1.5, "skewX": -0.25,
        "fontFeatures": "'smcp' on", "locale": "ja,en", "color": "#80102030", "opacity": 0.25,
        "background": "#FFcc00", "width": 300, "align": "center", "padding": [1, 2, 3, 4], "lineSpacing": 1.25,
        "effects": []})");
    EXPECT_EQ(s.text, "a\nb");
    EXPECT_EQ(s.font, "F.ttf");
    EXPECT_EQ(s.fontBase, "folder");
    EXPECT_EQ(s.fontIndex, 3);
    EXPECT_EQ(s.size, 12.5f);
    EXPECT_TRUE(s.bold && s.italic);
    EXPECT_EQ(s.letterSpacing, -0.5f);
    EXPECT_EQ(s.scaleX, 1.5f);
    EXPECT_EQ(s.skewX, -0.25f);
    EXPECT_EQ(s.fontFeatures, "'smcp' on");
    EXPECT_EQ(s.locale, "ja,en");
    EXPECT_EQ(s.color.argb, 0x80102030u);
    EXPECT_EQ(s.opacity, 0.25f);
    EXPECT_EQ(s.background->argb, 0xFFFFCC00u);
    EXPECT_EQ(s.width, 300);
    EXPECT_EQ(s.align, Align::kCenter);
    EXPECT_EQ(s.padding.left * 1000 + s.padding.top * 100 + s.padding.right * 10 + s.padding.bottom,
              1234);
    EXPECT_EQ(s.lineSpacing, 1.25f);
    EXPECT_EQ(parse(R"({"padding": 7})").padding.bottom, 7);
    EXPECT_FALSE(parse("{}").text.has_value());
}

TEST(StyleFile, ReadsEffectsInOrder) {
    const Style s = parse(R"({"effects": [
        {"type": "stroke", "size": 3, "color": "#123456", "opacity": 0.5, "cap": 1, "position": "center"},
        {"type": "innerShadow", "angle": -45, "distance": 6, "size": 7},
        {"type": "outerGlow", "stops": [{"color": "#FF0000", "position": 0},
                                        {"color": "#00FF00", "position": 1, "opacity": 0.5}]},
        {"type": "pattern", "pattern": "img/p.png", "scale": 2},
        {"type": "bevel", "kind": 1, "size": 4, "depth": 2.5, "technique": 2, "direction": 1, "soften": 16,
         "opacity": 0.5, "angle": 30, "altitude": 89, "highlightColor": "#FFFF00", "highlightOpacity": 0.1,
         "shadowColor": "#0000FF", "shadowOpacity": 0.2}]})");
    ASSERT_EQ(s.effects.size(), 5u);
    EXPECT_EQ(s.effects[0].type, EffectType::kStroke);
    EXPECT_EQ(s.effects[0].size, 3);
    EXPECT_EQ(s.effects[0].color.argb, 0xFF123456u);
    EXPECT_EQ(s.effects[0].opacity, 0.5f);
    EXPECT_EQ(s.effects[0].cap, 1);
    EXPECT_EQ(s.effects[0].position, StrokePosition::kCenter);
    EXPECT_EQ(s.effects[1].angle, -45);
    EXPECT_EQ(s.effects[1].distance, 6);
    ASSERT_EQ(s.effects[2].stops.size(), 2u);
    EXPECT_EQ(s.effects[2].stops[1].color.argb, 0xFF00FF00u);
    EXPECT_EQ(s.effects[2].stops[1].opacity, 0.5f);
    EXPECT_EQ(s.effects[3].pattern, "folder/img/p.png");
    EXPECT_EQ(s.effects[4].kind, 1);
    EXPECT_EQ(s.effects[4].depth, 2.5f);
    EXPECT_EQ(s.effects[4].technique, 2);
    EXPECT_EQ(s.effects[4].direction, 1);
    EXPECT_EQ(s.effects[4].soften, 16);
    EXPECT_EQ(s.effects[4].altitude, 89);
    EXPECT_EQ(s.effects[4].highlightColor.argb, 0xFFFFFF00u);
    EXPECT_EQ(s.effects[4].shadowOpacity, 0.2f);
}

struct BadCase {
    const char* json;
    const char* error;
};

TEST(StyleFile, NamesPlaceReasonAndRange) {
    const BadCase cases[] = {
        {R"({"effects": [{"type": "stroke"}, {"type": "outerGlow"}, {"type": "innerGlow", "size": 140}]})",
         "s.json: $.effects[2].size: 140 is out of range 0-100"},
        {R"({"size": "12"})", "s.json: $.size: \"12\" is not a number (1-4096)"},
        {R"({"size": 0.5})", "s.json: $.size: 0.5 is out of range 1-4096"},
        {R"({"size": null})", "s.json: $.size: null is not a number (1-4096)"},
        {R"({"width": 10.5})", "s.json: $.width: 10.5 is not an integer (1-65535)"},
        {R"({"width": -1})", "s.json: $.width: -1 is out of range 1-65535"},
        {R"({"width": 18446744073709551615})",
         "s.json: $.width: 18446744073709551615 is out of range 1-65535"},
        {R"({"letterSpacing": 11})", "s.json: $.letterSpacing: 11 is out of range -1 to 10"},
        {R"({"bold": 1})", "s.json: $.bold: 1 is not true or false"},
        {R"({"text": ["a"]})", "s.json: $.text: [...] is not a string"},
        {R"({"text": "a\u0000b"})", "s.json: $.text: the string contains U+0000"},
        {R"({"color": "red"})",
         "s.json: $.color: \"red\" is not a colour (\"#RRGGBB\" or \"#AARRGGBB\")"},
        {R"({"color": "#12345"})",
         "s.json: $.color: \"#12345\" is not a colour (\"#RRGGBB\" or \"#AARRGGBB\")"},
        {R"({"color": "#12345G"})",
         "s.json: $.color: \"#12345G\" is not a colour (\"#RRGGBB\" or \"#AARRGGBB\")"},
        {R"({"align": "middle"})",
         "s.json: $.align: \"middle\" is not one of \"start\", \"left\", \"center\", \"right\""},
        {R"({"padding": [1, 2]})",
         "s.json: $.padding: a list of padding has 4 entries: left, top, right, bottom"},
        {R"({"padding": [1, 2, 3, -4]})", "s.json: $.padding[3]: -4 is out of range 0-4096"},
        {R"({"colour": "#000000"})", "s.json: $.colour: unknown field; did you mean \"color\"?"},
        {R"({"effects": {}})", "s.json: $.effects: {} is not a list of effects"},
        {R"({"effects": [3]})", "s.json: $.effects[0]: 3 is not an object"},
        {R"({"effects": [{"size": 3}]})", "s.json: $.effects[0]: \"type\" is missing"},
        {R"({"effects": [{"type": 10}]})", "s.json: $.effects[0].type: 10 is not a string"},
        {R"({"effects": [{"type": "outershadow"}]})",
         "s.json: $.effects[0].type: no effect is called \"outershadow\"; did you mean "
         "\"outerShadow\"?"},
        {R"({"effects": [{"type": "stroke", "distance": 3}]})",
         "s.json: $.effects[0].distance: unknown field; allowed: size, color, opacity, cap, "
         "position, type"},
        {R"({"effects": [{"type": "stroke", "position": "centre"}]})",
         "s.json: $.effects[0].position: \"centre\" is not one of \"outside\", \"center\", "
         "\"inside\""},
        {R"({"effects": [{"type": "stroke"}, {"type": "stroke"}]})",
         "s.json: $.effects[1].type: a second stroke; a text has each effect at most once"},
        {R"({"effects": [{"type": "linearGradient"}]})",
         "s.json: $.effects[0]: \"stops\" is missing"},
        {R"({"effects": [{"type": "linearGradient", "stops": []}]})",
         "s.json: $.effects[0].stops: the list of stops is empty; 1-256 are allowed"},
        {R"({"effects": [{"type": "linearGradient", "stops": [{"position": 0}]}]})",
         "s.json: $.effects[0].stops[0]: \"color\" is missing"},
        {R"({"effects": [{"type": "radialGradient", "stops": [{"color": "#000000", "position": 0.5},
                                                              {"color": "#000000", "position": 0.4}]}]})",
         "s.json: $.effects[0].stops[1].position: stops must be in order of position"},
        {R"({"effects": [{"type": "pattern", "pattern": ""}]})",
         "s.json: $.effects[0].pattern: the path of the pattern image is empty"},
        {R"({"effects": [{"type": "bevel", "altitude": 90}]})",
         "s.json: $.effects[0].altitude: 90 is out of range 0-89"},
        {R"({"size": 1, "size": 2})", "s.json: the field \"size\" is given twice"},
        {"[]", "s.json: $: [] is not an object"},
        {R"({"size": 1e999})", "s.json: number overflow parsing '1e999'"},
    };
    for (const BadCase& c : cases) EXPECT_EQ(errorOf(c.json), c.error) << c.json;
}

TEST(StyleFile, SaysWhereTheJsonBreaks) {
    for (const char* bad : {"", "{", "{\"size\": 1,}", "{\"size\": NaN}", "{\"text\": \"\xFF\"}",
                            "{\"text\": \"\\uD800\"}", "{} x"}) {
        EXPECT_THAT(errorOf(bad), testing::StartsWith("s.json: parse error at line 1, column "))
            << bad;
    }
    const std::string deep =
        "{\"text\": " + std::string(200000, '[') + std::string(200000, ']') + "}";
    EXPECT_THAT(errorOf(deep), testing::HasSubstr("is not a string"));
}

TEST(StyleFile, LimitsTheStops) {
    std::string stops = R"({"color": "#000000", "position": 0})";
    for (int i = 1; i < 257; i++) stops += R"(,{"color": "#000000", "position": 0})";
    EXPECT_EQ(errorOf(R"({"effects": [{"type": "outerGlow", "stops": [)" + stops + "]}]}"),
              "s.json: $.effects[0].stops: 257 stops; at most 256");
}

TEST(StyleFile, FailsOnFilesThatCannotBeRead) {
    EXPECT_THROW(loadStyle(GXTEXT_SOURCE_DIR "/no/such/file.json"), ToolError);
    EXPECT_THROW(loadStyle(GXTEXT_SOURCE_DIR), ToolError);
}

TEST(Padding, TakesOneOrFourNumbers) {
    EXPECT_EQ(parsePadding("8")->top, 8);
    EXPECT_EQ(parsePadding("1,2,3,4")->right, 3);
    for (const char* bad : {"", "1,2", "1,2,3,4,5", "1,2,3,4,", "-1", "5000", "a", "1.5", " 1"}) {
        EXPECT_FALSE(parsePadding(bad)) << bad;
    }
}

}  // namespace
}  // namespace gxtool
