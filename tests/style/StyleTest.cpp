// Styles as values and as files.
#include "style/Style.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cmath>
#include <fstream>

#include "support/TempFolder.h"

namespace gxtext {
namespace {

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

// What the reader says, a line for each mistake; empty for a good style.
std::vector<std::string> mistakesOf(const std::string& json, const std::string& source = "") {
    try {
        Style::fromJson(json, source);
        return {};
    } catch (const StyleError& error) {
        EXPECT_EQ(error.problems().size(), std::min<size_t>(error.total(), 20));
        return linesOf(error.what());
    }
}

// Every field of a style, and of each effect, away from its default.
const char* const kFullStyle = R"({
  "text": "a\nb",
  "font": "F.ttf",
  "fontIndex": 3,
  "size": 12.5,
  "bold": true,
  "italic": true,
  "letterSpacing": -0.1,
  "scaleX": 1.5,
  "skewX": -0.25,
  "fontFeatures": "'smcp' on, -kern",
  "fontVariations": "'wght' 650, wdth=80",
  "locale": "ja,sr-Cyrl",
  "color": "#80102030",
  "opacity": 0.3,
  "fillOpacity": 0.6,
  "emoji": "silhouette",
  "background": {
    "color": "#FFCC00",
    "radius": 8,
    "padding": 4,
    "span": "block"
  },
  "canvas": "#80FFFFFF",
  "width": 300,
  "align": "center",
  "padding": [
    1,
    2,
    3,
    4
  ],
  "lineSpacing": 1.25,
  "order": "listed",
  "effects": [
    {
      "type": "innerShadow",
      "enabled": false,
      "angle": -45,
      "distance": 6,
      "size": 7.5,
      "choke": 2,
      "color": "#123456",
      "opacity": 0.1
    },
    {
      "type": "emboss",
      "kind": "pillow",
      "size": 250,
      "depth": 2.5,
      "technique": "chiselSoft",
      "direction": "down",
      "soften": 16,
      "angle": 30,
      "altitude": 89,
      "highlightColor": "#FFFF00",
      "highlightOpacity": 0.1,
      "shadowColor": "#0000FF",
      "shadowOpacity": 0.2,
      "opacity": 0.5
    },
    {
      "type": "outerGlow",
      "spread": 1.5,
      "castFrom": "outline",
      "stops": [
        {
          "color": "#FF0000",
          "position": 0
        },
        {
          "color": "#00FF00",
          "opacity": 0.5,
          "position": 1
        }
      ]
    },
    {
      "type": "pattern",
      "pattern": "img/p.png",
      "scale": 2
    },
    {
      "type": "stroke",
      "fill": {
        "type": "pattern",
        "pattern": "q.png",
        "scale": 3
      }
    },
    {
      "type": "stroke",
      "fill": "#405060"
    }
  ]
}
)";

TEST(Style, ReadsWhatItWrites) {
    const Style style = Style::fromJson(kFullStyle, "styles/s.json");
    EXPECT_EQ(style.toJson(), kFullStyle);
    EXPECT_EQ(Style::fromJson(style.toJson(), style.source), style);
    EXPECT_EQ(style.folder(), "styles");
    EXPECT_EQ(style.text, "a\nb");
    EXPECT_EQ(style.letterSpacing, -0.1f);
    EXPECT_EQ(style.background->color.argb, 0xFFFFCC00u);
    EXPECT_EQ(style.with("background", "#102030").background, Color{0xFF102030u});
    EXPECT_EQ(Style().with("background", R"({"color": "#102030", "radius": 0})").toJson(),
              Style().with("background", "#102030").toJson());
    EXPECT_EQ(style.padding, (Padding{1, 2, 3, 4}));
    EXPECT_EQ(style.align, Align::kCenter);
    ASSERT_EQ(style.effects.size(), 6u);
    EXPECT_EQ(style.effects[1].embossKind, EmbossKind::kPillow);
    EXPECT_EQ(style.effects[1].technique, Technique::kChiselSoft);
    EXPECT_EQ(style.effects[1].direction, Direction::kDown);
    EXPECT_EQ(style.effects[2].stops[1], (Stop{Color{0xFF00FF00u}, 0.5f, 1.0f}));
    EXPECT_EQ(Style().toJson(), "{}\n");
    EXPECT_EQ(Style::fromJson("{}"), Style());
    EXPECT_EQ(Style::fromJson("\xEF\xBB\xBF{}\n"), Style());
}

TEST(Style, ComparesTheFieldsThatAnEffectHas) {
    Effect stroke(EffectType::kStroke);
    Effect other = stroke;
    other.distance = 3;
    EXPECT_EQ(stroke, other);
    other.position = StrokePosition::kInside;
    EXPECT_NE(stroke, other);
    EXPECT_NE(Effect(EffectType::kOuterShadow), Effect(EffectType::kInnerShadow));
}

TEST(Style, DoesNotWriteWhatCannotBeRead) {
    const auto errorOf = [](auto change) -> std::string {
        Style style;
        style.effects.emplace_back(EffectType::kStroke);
        change(style);
        try {
            return style.toJson();
        } catch (const StyleError& error) {
            return error.what();
        }
    };
    EXPECT_EQ(errorOf([](Style& s) { s.size = NAN; }), "$.size: null is not a number (1-4096)");
    EXPECT_EQ(errorOf([](Style& s) { s.effects[0].size = 101; }),
              "$.effects[0].size: 101 is out of range 0-100");
    EXPECT_EQ(errorOf([](Style& s) { s.effects[0].position = StrokePosition{7}; }),
              "$.effects[0].position: 7 is not one of \"center\", \"outside\", \"inside\"");
    EXPECT_EQ(errorOf([](Style& s) { s.effects.resize(257, s.effects[0]); }),
              "$.effects: 257 effects; at most 256");
    EXPECT_EQ(errorOf([](Style& s) { s.text = "\xFF"; }),
              "$: a string of the style is not valid UTF-8");
    EXPECT_EQ(errorOf([](Style& s) { s.text = std::string(1, '\0'); }),
              "$.text: the string contains U+0000");
}

// One style per line; what the reader says follows, each line after blanks.
TEST(Style, SaysAllThatIsWrong) {
    std::ifstream file(GXTEXT_SOURCE_DIR "/tests/style/wrong-styles.txt");
    std::string style;
    std::vector<std::string> expected;
    int cases = 0;
    const auto check = [&] {
        if (!style.empty()) {
            EXPECT_EQ(mistakesOf(style), expected) << style;
            cases++;
        }
        style.clear();
        expected.clear();
    };
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with("  ")) {
            expected.push_back(line.substr(2));
        } else {
            check();
            if (!line.starts_with('#')) style = line;
        }
    }
    check();
    EXPECT_GT(cases, 40);
}

TEST(Style, SaysWhereTheJsonBreaks) {
    const struct {
        std::string json;
        const char* start;
    } cases[] = {
        {"", "s: $: parse error at line 1, column 1: "},
        {"{", "s: $: parse error at line 1, column 2: "},
        {"{\"size\": 1,}", "s: $.size: parse error at line 1, column 12: "},
        {"{\n\"size\": NaN}", "s: $.size: parse error at line 2, column 9: "},
        {"{\"effects\": [{}, {\"type\": 'stroke'}]}",
         "s: $.effects[1].type: parse error at line 1"},
        {"{\"text\": \"\xFF\"}", "s: $.text: parse error at line 1, column "},
        {"{\"text\": \"\\uD800\"}", "s: $.text: parse error at line 1, column "},
        {"{} x", "s: $: parse error at line 1, column 4: "},
        {std::string("{}\n \0{", 6), "s: $: a NUL byte at line 2, column 2"},
        {"[[[[[[[[[[[[[[[[[",
         "s: $[0][0][0][0][0][0][0][0][0][0][0][0][0][0][0][0]: nested deeper than 16"},
    };
    for (const auto& c : cases) {
        const auto mistakes = mistakesOf(c.json, "s");
        ASSERT_EQ(mistakes.size(), 1u) << c.json;
        EXPECT_THAT(mistakes[0], testing::StartsWith(c.start)) << c.json;
    }
}

TEST(Style, LimitsWhatIsReadAndReported) {
    const std::string most(Style::kMaxBytes - 2, ' ');
    EXPECT_EQ(Style::fromJson("{}" + most), Style());
    EXPECT_THAT(mistakesOf("{}" + most + " "),
                testing::ElementsAre("$: the style is longer than 1048576 bytes"));

    std::string many = "{\"effects\": [{}";
    for (int i = 1; i < 256; i++) many += ",{}";
    const auto mistakes = mistakesOf(many + "]}", "s");
    ASSERT_EQ(mistakes.size(), 21u);
    EXPECT_EQ(mistakes[19], "s: $.effects[19]: \"type\" is missing");
    EXPECT_EQ(mistakes[20], "s: and 236 more mistakes");
    EXPECT_THAT(mistakesOf(many + ",{}]}"),
                testing::ElementsAre("$.effects: 257 effects; at most 256"));

    std::string stops = R"({"color": "#000000", "position": 0})";
    for (int i = 1; i < 257; i++) stops += R"(,{"color": "#000000", "position": 0})";
    EXPECT_THAT(mistakesOf(R"({"effects": [{"type": "outerGlow", "stops": [)" + stops + "]}]}"),
                testing::ElementsAre("$.effects[0].stops: 257 stops; at most 256"));
    const std::string longText(100000, '1');
    for (const std::string& json :
         {"{\"size\": " + longText + "}", "{\"size\": \"" + longText,
          "{\"locale\": \"" + longText + "\"}", "{\"color\": \"" + longText + "\"}"}) {
        EXPECT_LT(mistakesOf(json)[0].size(), 400u);
    }
    EXPECT_THAT(mistakesOf("{\"" + std::string(100000, 'x') + "\\n\": 1}")[0],
                testing::MatchesRegex("\\$\\[\"x{39}\\.\\.\\.\\]: unknown field; allowed: .*"));
}

template <typename Call>
std::string errorOf(Call call) {
    try {
        call();
        return "";
    } catch (const Error& error) {
        return error.what();
    }
}

TEST(Style, ScalesAllLengthsAndNothingElse) {
    const Style style = Style::fromJson(kFullStyle);
    const Style twice = style.scaled(0.5f);
    EXPECT_EQ(twice.size, 6.25f);
    EXPECT_EQ(twice.width, 150);
    EXPECT_EQ(twice.padding, (Padding{1, 1, 2, 2}));
    EXPECT_EQ(twice.background->radius, 4);
    EXPECT_EQ(twice.background->padding, 2);
    EXPECT_EQ(twice.letterSpacing, style.letterSpacing);
    EXPECT_EQ(twice.effects[0].distance, 3);
    EXPECT_EQ(twice.effects[0].size, 3.75f);
    EXPECT_EQ(twice.effects[0].spread, 1);
    EXPECT_EQ(twice.effects[0].angle, -45);
    EXPECT_EQ(twice.effects[1].size, 125);
    EXPECT_EQ(twice.effects[1].soften, 8);
    EXPECT_EQ(twice.effects[1].depth, 2.5f);
    EXPECT_EQ(twice.effects[3].scale, 1);
    EXPECT_EQ(twice.effects[4].fill.effects[0].scale, 1.5f);
    EXPECT_EQ(style.scaled(1), style);
    EXPECT_EQ(Style::fromJson(R"({"size": 40.96})").scaled(100).size, 4096);
    const Style outlined = Style::fromJson(R"({"effects": [{"type": "stroke", "size": 100}]})");
    EXPECT_EQ(outlined.scaled(10).effects[0].size, 1000);

    EXPECT_EQ(errorOf([&] { style.scaled(2); }),
              "$.effects[1].size: 500 (250 scaled by 2) is out of range 0-250\n"
              "$.effects[1].soften: 32 (16 scaled by 2) is out of range 0-16");
    for (const float bad : {0.0f, -1.0f, 101.0f, NAN, INFINITY}) {
        EXPECT_NE(errorOf([&] { style.scaled(bad); }), "") << bad;
    }
}

TEST(Style, SetsOneValueByItsPath) {
    const Style style = Style::fromJson(kFullStyle, "a/s.json");
    EXPECT_EQ(style.with("effects[0].size", "6").effects[0].size, 6);
    EXPECT_EQ(style.with("$.effects[2].stops[1].color", "#0000FF").effects[2].stops[1].color.argb,
              0xFF0000FFu);
    EXPECT_EQ(style.with("padding[2]", "9").padding.right, 9);
    EXPECT_EQ(style.with("text", "two words").text, "two words");
    EXPECT_EQ(style.with("text", "\"12\"").text, "12");
    EXPECT_EQ(style.with("background", "null").background, std::nullopt);
    EXPECT_EQ(style.with("size", "null").size, 64);
    EXPECT_EQ(style.with("size", "20").source, "a/s.json");
    EXPECT_EQ(Style().with("effects[0].type", "stroke"),
              Style().with("effects", R"([{"type": "stroke"}])"));
    EXPECT_EQ(style.with("effects[6]", R"({"type": "stroke", "size": 3})").effects[6].size, 3);

    const auto saying = [&](const char* path, const char* value) {
        return errorOf([&] { return style.with(path, value); });
    };
    EXPECT_EQ(saying("effects[0].size", "140"), "$.effects[0].size: 140 is out of range 0-100");
    EXPECT_EQ(saying("effects[0].sise", "1"),
              "$.effects[0].sise: unknown field; did you mean \"size\"?");
    EXPECT_EQ(saying("effects[7].size", "1"), "effects[7].size: the list has 6 entries");
    EXPECT_EQ(saying("size[0]", "1"), "size[0]: there is no list at this place");
    EXPECT_EQ(saying("size.x", "1"), "size.x: there is no object at this place");
    EXPECT_EQ(saying("effects[", "1"), "effects[: this is not a path like effects[0].size");
    EXPECT_EQ(saying("effects[0]..size", "1"),
              "effects[0]..size: this is not a path like effects[0].size");
    EXPECT_EQ(saying("", "1"), ": the path is empty");
    EXPECT_EQ(saying("text", "\xFF"), "$: a string of the style is not valid UTF-8");
}

TEST(Style, ReadsFiles) {
    const gxtest::TempFolder folder;
    const std::string file = folder.write("s.json", R"({"size": 9000})");
    try {
        Style::fromFile(file);
        FAIL();
    } catch (const StyleError& error) {
        EXPECT_EQ(error.what(), file + ": $.size: 9000 is out of range 1-4096");
        EXPECT_EQ(error.problems()[0].path, "$.size");
        EXPECT_EQ(error.problems()[0].allowed, "1-4096");
    }
    EXPECT_EQ(Style::fromFile(folder.write("t.json", "{}")).folder() / "", folder.path(""));
    ASSERT_EQ(mkfifo(folder.path("pipe.json").c_str(), 0600), 0);
    EXPECT_THROW(Style::fromFile(folder.path("pipe.json")), Error) << "waited for a pipe";
    for (const std::string& bad : {folder.path("none.json"), folder.path("")}) {
        EXPECT_THROW(Style::fromFile(bad), Error) << bad;
    }
}

TEST(Style, KnowsTheGrammarsOfItsStrings) {
    const auto accepts = [](const char* field, const char* value) {
        Style style;
        std::string& target = std::string_view(field) == "locale"           ? style.locale
                              : std::string_view(field) == "fontVariations" ? style.fontVariations
                                                                            : style.fontFeatures;
        target = value;
        try {
            return !style.toJson().empty();
        } catch (const StyleError&) {
            return false;
        }
    };
    for (const char* good : {"", "kern", "-kern", "+liga , smcp=2", "'smcp' on", "\"smcp\" OFF",
                             " ss01 1 ", "aalt = 4294967295"}) {
        EXPECT_TRUE(accepts("fontFeatures", good)) << good;
    }
    for (const char* bad :
         {" ", "kern,", "kerns", "'sc' on", "'smcp\" on", "kern=", "kern=-1", "kern maybe",
          "kern 4294967296", "kern on off", "kern[1]", "k\xC3\xA9rn"}) {
        EXPECT_FALSE(accepts("fontFeatures", bad)) << bad;
    }
    for (const char* good : {"", "'wght' 650", " wdth=80 ,\"slnt\" -12.5", "XTRA 1e3"}) {
        EXPECT_TRUE(accepts("fontVariations", good)) << good;
    }
    for (const char* bad : {"wght", "'wgh' 1", "'wght 1", "wght 1,", "wght nan", "wght inf",
                            "wght 40000", "wght 1 2", "wght=", "w\xC3\xA9g 1"}) {
        EXPECT_FALSE(accepts("fontVariations", bad)) << bad;
    }
    for (const char* good : {"ja", "zh-Hant-TW", "sr-Cyrl,en", "sl-rozaj-biske-1994", "de-CH-1901",
                             "es-419", "zh-yue-HK", "en-u-em-emoji-x-a", "en-a-bbb-x-a-ccc"}) {
        EXPECT_TRUE(accepts("locale", good)) << good;
    }
    for (const char* bad : {"j", "ja,", " ja", "ja_JP", "japanese", "en-", "en-Latn-Latn", "en-u",
                            "en-u-x-a", "12", "en-abcdefghi", "x-private"}) {
        EXPECT_FALSE(accepts("locale", bad)) << bad;
    }
}

TEST(Padding, TakesOneOrFourNumbers) {
    EXPECT_EQ(parsePadding("8"), (Padding{8, 8, 8, 8}));
    EXPECT_EQ(parsePadding("1,2,3,4"), (Padding{1, 2, 3, 4}));
    for (const char* bad : {"", "1,2", "1,2,3,4,5", "1,2,3,4,", "-1", "5000", "a", "1.5", " 1"}) {
        EXPECT_FALSE(parsePadding(bad)) << bad;
    }
}

}  // namespace
}  // namespace gxtext
