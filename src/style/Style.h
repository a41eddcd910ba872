// What a text is to look like, as a value: read from JSON, written to it, scaled, and put into an
// effect stack (style/EffectStack.h).
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "GxExport.h"
#include "style/Error.h"

namespace gxtext {

// 0xAARRGGBB, straight.
struct Color {
    uint32_t argb = 0xFF000000u;
    bool operator==(const Color&) const = default;
};

// "#RRGGBB" (opaque) or "#AARRGGBB"; nothing for anything else.
GXTEXT_API std::optional<Color> parseColor(std::string_view text);
// "#RRGGBB" when opaque, otherwise "#AARRGGBB".
GXTEXT_API std::string formatColor(Color color);

// Enumerators are numbered as the format's names are listed (style/FieldTable.cpp); where the
// effects' records hold an integer, by that integer.
enum class Align { kStart = 0, kLeft = 1, kCenter = 2, kRight = 3 };
enum class EffectOrder { kNatural = 0, kListed = 1 };
// Of a style. Screens multiply by their density, pictures have one pixel for each.
enum class LengthUnit { kPx = 0, kDp = 1 };
enum class StrokePosition { kCenter = 0, kOutside = 1, kInside = 2 };
enum class BevelKind { kOutside = 0, kInside = 1 };
enum class EmbossKind { kEmboss = 0, kPillow = 1 };
enum class Technique { kSmooth = 0, kChiselHard = 1, kChiselSoft = 2 };
enum class Direction { kUp = 0, kDown = 1 };
enum class Span { kText = 0, kLine = 1 };
enum class Emoji { kColor = 0, kSilhouette = 1 };
enum class CastFrom { kLetters = 0, kOutline = 1 };

// Pixels.
struct Padding {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
    bool operator==(const Padding&) const = default;
};
// "8" for all sides or "4,8,4,8" for left, top, right, bottom; nothing for anything else, values
// out of range included.
GXTEXT_API std::optional<Padding> parsePadding(std::string_view text);

// One colour of a ramp.
struct Stop {
    Color color;
    float opacity = 1.0f;   // 0-1, multiplied by the colour's alpha
    float position = 0.0f;  // 0-1 along the ramp
    bool operator==(const Stop&) const = default;
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
constexpr int kEffectTypeCount = static_cast<int>(EffectType::kEmboss) + 1;

// "stroke", "outerShadow", ...: the name in style files.
GXTEXT_API std::string_view effectName(EffectType type);
GXTEXT_API std::optional<EffectType> parseEffectType(std::string_view name);

enum class BackgroundSpan { kLine = 0, kBlock = 1 };

// A box behind each line, or one behind all.
struct GXTEXT_API Background {
    Background();
    Background(Color color);  // NOLINT(google-explicit-constructor): a colour is a plain one

    Color color;
    int radius = 0;   // pixels
    int padding = 0;  // pixels
    BackgroundSpan span = BackgroundSpan::kLine;

    bool operator==(const Background&) const = default;
};

struct Effect;

// What paints a stroke in place of its colour: nothing, another colour, or the one gradient or
// pattern in `effects`.
struct GXTEXT_API Fill {
    std::optional<Color> color;
    std::vector<Effect> effects;

    bool operator==(const Fill& other) const;
};

// One effect. Each type has some of the fields (style/FieldTable.h says which, and their ranges);
// the others are neither written nor compared.
struct GXTEXT_API Effect {
    // What a file gets that names the type and nothing else.
    explicit Effect(EffectType type);

    EffectType type;
    bool enabled = true;
    float angle = 0.0f;     // degrees
    float altitude = 0.0f;  // degrees
    float distance = 0.0f;  // pixels
    float size = 0.0f;      // pixels
    float spread = 0.0f;    // pixels; "choke" of the inner ones
    float depth = 0.0f;
    float scale = 0.0f;
    float opacity = 0.0f;
    float highlightOpacity = 0.0f;
    float shadowOpacity = 0.0f;
    int soften = 0;  // pixels
    StrokePosition position = StrokePosition::kCenter;
    BevelKind bevelKind = BevelKind::kOutside;    // "kind" of a bevel
    EmbossKind embossKind = EmbossKind::kEmboss;  // "kind" of an emboss
    Technique technique = Technique::kSmooth;
    Direction direction = Direction::kUp;
    CastFrom castFrom = CastFrom::kLetters;
    Span span = Span::kText;
    Color color;
    Color highlightColor;
    Color shadowColor;
    std::vector<Stop> stops;
    std::string pattern;  // picture file; relative ones start in the style's folder
    Fill fill;

    bool operator==(const Effect& other) const;
};

// A whole style. Plain fields; what is put into them is checked by toJson() and scaled(), and
// clamped by the effects.
//
//   gxtext::Style style = gxtext::Style::fromFile("gold.json");
//   style.effects.emplace_back(gxtext::EffectType::kStroke).size = 4;
//   save(style.toJson());
struct GXTEXT_API Style {
    // The longest text of a style file, in bytes, and how deep its lists and objects may nest.
    static constexpr size_t kMaxBytes = size_t{1} << 20;
    static constexpr int kMaxDepth = 16;

    // The defaults of the format: black text of 64 pixels without effects.
    Style();

    // Reads JSON (UTF-8). `source` is what messages call the text, usually its file; relative
    // paths in the style start in that file's folder. Throws StyleError with all mistakes: wrong
    // JSON, unknown fields, wrong types, values out of range, fields given twice, and a text
    // longer than kMaxBytes, which is not looked into.
    static Style fromJson(std::string_view json, const std::filesystem::path& source = {});
    // Reads a file. Throws Error when it cannot be read, else as fromJson().
    static Style fromFile(const std::filesystem::path& file);

    // The canonical text: what differs from the defaults, in the order of the field table, with
    // the shortest numbers. fromJson(toJson(), source) is equal to this style. Throws StyleError
    // when a value is not one that a file can hold.
    std::string toJson() const;

    // A copy with every length `factor` times as long: font size, padding, width, the effects'
    // sizes, distances and soften, and a pattern's tiles; whole ones are rounded to nearest. The
    // effects may reach further than a file allows, up to what their filters take; such a style can
    // be drawn but not written. Throws Error for a factor outside kMinScale to kMaxScale and
    // StyleError for lengths past what can be drawn.
    Style scaled(float factor) const;
    static constexpr float kMinScale = 0.01f;
    static constexpr float kMaxScale = 100.0f;

    // A copy with one value set, checked as a file is. `path` leads to it: "size",
    // "effects[0].stops[1].color"; the index after a list's last element appends. `value` is JSON,
    // or stands for itself as a string when it is not; null makes a field what it is by default.
    // Throws StyleError.
    Style with(std::string_view path, std::string_view value) const;

    // The folder that relative font files and patterns start in; empty for the working folder.
    std::filesystem::path folder() const { return source.parent_path(); }

    std::filesystem::path source;       // where it was read from; not written
    std::optional<std::string> text;    // UTF-8; line breaks start new lines
    std::string font;                   // file, or family name; empty means the system's sans-serif
    int fontIndex = 0;                  // inside a collection file
    LengthUnit unit = LengthUnit::kPx;  // of all lengths, for whoever draws on a screen
    float size = 0.0f;                  // pixels
    bool bold = false;
    bool italic = false;
    float letterSpacing = 0.0f;  // em
    float scaleX = 0.0f;
    float skewX = 0.0f;
    std::string fontFeatures;
    std::string fontVariations;
    std::string locale;  // BCP 47 tags, comma-separated
    Color color;
    float opacity = 0.0f;
    float fillOpacity = 0.0f;
    Emoji emoji = Emoji::kColor;
    std::optional<Background> background;
    std::optional<Color> canvas;
    std::optional<int> width;  // pixels, padding included; unset means as wide as the text
    Align align = Align::kStart;
    Padding padding;
    float lineSpacing = 0.0f;
    EffectOrder order = EffectOrder::kNatural;  // that effects are stacked in
    std::vector<Effect> effects;

    bool operator==(const Style&) const = default;
};

}  // namespace gxtext
