// A style: everything that says how a text is to look, from a style file, the command line or both.
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace gxtool {

// 0xAARRGGBB.
struct Color {
    uint32_t argb = 0xFF000000u;
    bool operator==(const Color&) const = default;
};

// "#RRGGBB" (opaque) or "#AARRGGBB"; nothing for anything else.
std::optional<Color> parseColor(std::string_view text);

// Closed interval of accepted values. The style file, the command line and its help share these.
struct Range {
    double min;
    double max;

    // False for NaN.
    bool contains(double value) const { return value >= min && value <= max; }
    // "0-100", or "-360 to 360" when a sign would blur into the dash.
    std::string text() const;
};

namespace limits {
constexpr Range kFontIndex{0, 99};
constexpr Range kFontSize{1, 4096};      // pixels
constexpr Range kLetterSpacing{-1, 10};  // em
constexpr Range kScaleX{0.1, 10};
constexpr Range kSkewX{-2, 2};
constexpr Range kUnit{0, 1};        // opacities and stop positions
constexpr Range kWidth{1, 65535};   // pixels
constexpr Range kPadding{0, 4096};  // pixels
constexpr Range kLineSpacing{0.1, 10};
constexpr Range kPercent{0, 100};   // effect sizes and distances, pixels
constexpr Range kAngle{-360, 360};  // degrees
constexpr Range kAltitude{0, 89};   // degrees
constexpr Range kGradientScale{0, 2};
constexpr Range kPatternScale{0, 10};
constexpr Range kDepth{0, 10};
constexpr Range kSoften{0, 16};
constexpr Range kSmallInt{0, 127};  // integers that the effect key keeps seven bits of
constexpr size_t kMaxStops = 256;
}  // namespace limits

enum class Align { kStart, kLeft, kCenter, kRight };
std::optional<Align> parseAlign(std::string_view name);

// Values are those of GxStrokeProperty::Position.
enum class StrokePosition { kCenter = 0, kOutside = 1, kInside = 2 };

struct Padding {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
};
// "8" for all sides or "4,8,4,8" for left, top, right, bottom; nothing for anything else.
std::optional<Padding> parsePadding(std::string_view text);

struct Stop {
    Color color;
    float opacity = 1.0f;
    float position = 0.0f;
};

enum class EffectType {
    kStroke,
    kOuterShadow,
    kInnerShadow,
    kOuterGlow,
    kInnerGlow,
    kLinearGradient,
    kRadialGradient,
    kPattern,
    kBevel,
    kEmboss,
};

// "stroke", "outerShadow", ...: the name in style files.
std::string_view effectName(EffectType type);
std::optional<EffectType> parseEffectType(std::string_view name);
constexpr int kEffectTypeCount = static_cast<int>(EffectType::kEmboss) + 1;

// One effect. Each type reads the fields that its property record has (effect/GxProperty.h), under
// the same names; the others keep their defaults.
struct EffectStyle {
    EffectType type = EffectType::kStroke;
    float angle = 0.0f;
    float distance = 0.0f;
    float size = 0.0f;
    float scale = 1.0f;
    float depth = 1.0f;
    float altitude = 30.0f;
    float opacity = 1.0f;
    float highlightOpacity = 0.75f;
    float shadowOpacity = 0.75f;
    Color color;
    Color highlightColor{0xFFFFFFFFu};
    Color shadowColor;
    int cap = 0;
    int kind = 0;
    int technique = 0;
    int direction = 0;
    int soften = 0;
    StrokePosition position = StrokePosition::kOutside;
    std::vector<Stop> stops;
    std::filesystem::path pattern;  // resolved against the style file's folder
};

struct Style {
    std::optional<std::string> text;  // UTF-8
    std::string font;                 // file, or family name; empty means the system's sans-serif
    std::filesystem::path fontBase;   // folder that a relative font file is looked up in
    int fontIndex = 0;
    float size = 64.0f;
    bool bold = false;
    bool italic = false;
    float letterSpacing = 0.0f;
    float scaleX = 1.0f;
    float skewX = 0.0f;
    std::string fontFeatures;
    std::string locale;  // BCP 47 tags, comma-separated
    Color color;
    float opacity = 1.0f;
    std::optional<Color> background;
    std::optional<int> width;  // of the view, padding included; unset means as wide as the text
    Align align = Align::kStart;
    Padding padding;
    float lineSpacing = 1.0f;
    std::vector<EffectStyle> effects;
};

}  // namespace gxtool
