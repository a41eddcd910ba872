#include "style/FieldTable.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <type_traits>

#include "style/TextSettings.h"

namespace gxtext {

namespace {

using enum EffectType;

// What an enumeration is called in files, in the order of its values.
constexpr std::string_view kAlignNames[] = {"start", "left", "center", "right"};
constexpr std::string_view kOrderNames[] = {"natural", "listed"};
constexpr std::string_view kUnitNames[] = {"px", "dp"};
constexpr std::string_view kPositionNames[] = {"center", "outside", "inside"};
constexpr std::string_view kBevelKindNames[] = {"outside", "inside"};
constexpr std::string_view kEmbossKindNames[] = {"emboss", "pillow"};
constexpr std::string_view kTechniqueNames[] = {"smooth", "chiselHard", "chiselSoft"};
constexpr std::string_view kDirectionNames[] = {"up", "down"};
constexpr std::string_view kEmojiNames[] = {"color", "silhouette"};
constexpr std::string_view kCastFromNames[] = {"letters", "outline"};
constexpr std::string_view kSpanNames[] = {"text", "line"};
constexpr std::string_view kBoxSpanNames[] = {"line", "block"};

template <auto member, typename T>
Choice<T> choiceOf(std::span<const std::string_view> names) {
    return {names, [](const T& object) { return static_cast<int>(object.*member); },
            [](T& object, int value) {
                object.*member =
                    static_cast<std::remove_reference_t<decltype(object.*member)>>(value);
            }};
}

constexpr Range kUnitRange{0, 1};  // opacities and stop positions
constexpr Range kAngleRange{-360, 360};

// Lengths after scaling, in pixels. On a title strokes of 1,000 take some 0.02 seconds and blurs of
// 1,000 some 0.1.
constexpr double kLongestStroke = 1000;
constexpr double kLongestBlur = 1000;
constexpr double kLongestSpread = 100;

constexpr EffectSet kShadows{kOuterShadow, kInnerShadow};
constexpr EffectSet kOuterCasts{kOuterShadow, kOuterGlow};
constexpr EffectSet kInnerCasts{kInnerShadow, kInnerGlow};
constexpr EffectSet kGlows{kOuterGlow, kInnerGlow};
constexpr EffectSet kReliefs{kBevel, kEmboss};

}  // namespace

std::string shortText(double value) {
    char text[32];
    const auto result = std::to_chars(text, text + sizeof(text), static_cast<float>(value));
    return {text, result.ptr};
}

std::string Range::text() const {
    return shortText(min).append(min < 0 ? " to " : "-").append(shortText(max));
}

const std::vector<Field<Style>>& styleFields() {
    static const std::vector<Field<Style>> rows{
        {.name = "$schema", .meaning = "Location of this schema, for editors"},
        {.name = "text",
         .target = &Style::text,
         .control = Control::kText,
         .meaning = "The text; line breaks start new lines"},
        {.name = "font",
         .target = &Style::font,
         .initial = "",
         .control = Control::kFont,
         .meaning = "Font file, relative to the style file, or name of an installed family; the "
                    "system's sans-serif when absent or empty"},
        {.name = "fontIndex",
         .target = &Style::fontIndex,
         .range = {0, 99},
         .initial = 0.0,
         .control = Control::kNumber,
         .meaning = "Font inside a collection file"},
        {.name = "unit",
         .target = choiceOf<&Style::unit, Style>(kUnitNames),
         .initial = "px",
         .control = Control::kMenu,
         .meaning = "What lengths are in: pixels, or what a screen multiplies by its density; "
                    "pictures have one pixel for either"},
        {.name = "size",
         .target = &Style::size,
         .range = {1, 4096},
         .initial = 64.0,
         .unit = Unit::kPixels,
         .control = Control::kSlider,
         .meaning = "Font size",
         .longest = 4096},
        {.name = "bold",
         .target = &Style::bold,
         .initial = false,
         .control = Control::kSwitch,
         .meaning = "Bold; faked when the font is not"},
        {.name = "italic",
         .target = &Style::italic,
         .initial = false,
         .control = Control::kSwitch,
         .meaning = "Italic; faked when the font is not"},
        {.name = "letterSpacing",
         .target = &Style::letterSpacing,
         .range = {-1, 10},
         .initial = 0.0,
         .unit = Unit::kEm,
         .control = Control::kSlider,
         .meaning = "Extra space between letters"},
        {.name = "scaleX",
         .target = &Style::scaleX,
         .range = {0.1, 10},
         .initial = 1.0,
         .control = Control::kSlider,
         .meaning = "Horizontal stretch of the glyphs"},
        {.name = "skewX",
         .target = &Style::skewX,
         .range = {-2, 2},
         .initial = 0.0,
         .control = Control::kSlider,
         .meaning = "Horizontal shear of the glyphs; -0.25 is an ordinary slant"},
        {.name = "fontFeatures",
         .target = &Style::fontFeatures,
         .initial = "",
         .control = Control::kText,
         .meaning = "OpenType features, comma-separated: \"'smcp' on, 'kern' off\"",
         .check = checkFontFeatures},
        {.name = "fontVariations",
         .target = &Style::fontVariations,
         .initial = "",
         .control = Control::kText,
         .meaning = "Axis settings of a variable font, comma-separated: \"'wght' 650, 'wdth' 80\"",
         .check = checkFontVariations},
        {.name = "locale",
         .target = &Style::locale,
         .initial = "",
         .control = Control::kText,
         .meaning = "Languages of the text, BCP 47 tags, comma-separated",
         .check = checkLocale},
        {.name = "color",
         .target = &Style::color,
         .initial = Color{0xFF000000u},
         .control = Control::kColor,
         .meaning = "Text colour; its alpha fades the whole picture, effects included"},
        {.name = "opacity",
         .target = &Style::opacity,
         .range = kUnitRange,
         .initial = 1.0,
         .control = Control::kSlider,
         .meaning = "Opacity of the whole picture, on top of the colour's alpha; below 1 it is "
                    "composed of two layers"},
        {.name = "fillOpacity",
         .target = &Style::fillOpacity,
         .range = kUnitRange,
         .initial = 1.0,
         .control = Control::kSlider,
         .meaning =
             "Opacity of the letters' own colour; 0 leaves the effects around hollow letters"},
        {.name = "emoji",
         .target = choiceOf<&Style::emoji, Style>(kEmojiNames),
         .initial = "color",
         .control = Control::kMenu,
         .meaning = "Whether glyphs with colours of their own are painted in them, or are letters "
                    "in the shape of their silhouettes"},
        {.name = "background",
         .target = &Style::background,
         .control = Control::kBox,
         .meaning = "Box behind each line, or one behind all; none when absent"},
        {.name = "canvas",
         .target = &Style::canvas,
         .control = Control::kColor,
         .meaning = "Colour of the whole picture, beneath everything; transparent when absent"},
        {.name = "width",
         .target = &Style::width,
         .range = {1, 65535},
         .unit = Unit::kPixels,
         .control = Control::kNumber,
         .meaning = "Width to wrap at, padding included; as wide as the text when absent",
         .longest = 65535},
        {.name = "align",
         .target = choiceOf<&Style::align, Style>(kAlignNames),
         .initial = "start",
         .control = Control::kMenu,
         .meaning = "Side that lines stand at; start is left, or right for right-to-left "
                    "paragraphs"},
        {.name = "padding",
         .target = &Style::padding,
         .range = {0, 4096},
         .initial = 0.0,
         .unit = Unit::kPixels,
         .control = Control::kSides,
         .meaning = "Space around the text: all sides, or left, top, right, bottom",
         .longest = 4096},
        {.name = "lineSpacing",
         .target = &Style::lineSpacing,
         .range = {0.1, 10},
         .initial = 1.0,
         .control = Control::kSlider,
         .meaning = "Distance between lines relative to the fonts' line height"},
        {.name = "order",
         .target = choiceOf<&Style::order, Style>(kOrderNames),
         .initial = "natural",
         .control = Control::kMenu,
         .meaning = "How effects are stacked: the same for every list, or each over those listed "
                    "before it"},
        {.name = "effects",
         .target = &Style::effects,
         .control = Control::kEffects,
         .meaning = "What is drawn of the text and around it; a type may repeat"},
    };
    return rows;
}

const std::vector<Field<Effect>>& effectFields() {
    static const std::vector<Field<Effect>> rows{
        {.name = "type",
         .effects = EffectSet::all(),
         .meaning = "Which effect this is",
         .required = true},
        {.name = "enabled",
         .target = &Effect::enabled,
         .effects = EffectSet::all(),
         .initial = true,
         .control = Control::kSwitch,
         .meaning = "Whether it is drawn"},
        {.name = "pattern",
         .target = &Effect::pattern,
         .effects = {kPattern},
         .control = Control::kFile,
         .meaning = "PNG file, relative to the style file",
         .required = true,
         .check = checkPatternPath},
        {.name = "kind",
         .target = choiceOf<&Effect::bevelKind, Effect>(kBevelKindNames),
         .effects = {kBevel},
         .initial = "inside",
         .control = Control::kMenu,
         .meaning = "Side of the glyphs' edges that the slope lies on: over the text, or around "
                    "it and beneath it"},
        {.name = "kind",
         .target = choiceOf<&Effect::embossKind, Effect>(kEmbossKindNames),
         .effects = {kEmboss},
         .initial = "emboss",
         .control = Control::kMenu,
         .meaning = "One slope across the edges, or a pillow: the edges are a groove from which "
                    "both sides rise"},
        {.name = "size",
         .target = &Effect::size,
         .effects = {kStroke},
         .range = {0, 100},
         .initial = 2.0,
         .unit = Unit::kPixels,
         .control = Control::kSlider,
         .meaning = "Width",
         .longest = kLongestStroke},
        {.name = "angle",
         .target = &Effect::angle,
         .effects = kShadows,
         .range = kAngleRange,
         .initial = 120.0,
         .unit = Unit::kDegrees,
         .control = Control::kAngle,
         .meaning = "Where the light comes from, counter-clockwise from the right"},
        {.name = "distance",
         .target = &Effect::distance,
         .effects = kShadows,
         .range = {0, 100},
         .initial = 5.0,
         .unit = Unit::kPixels,
         .control = Control::kSlider,
         .meaning = "Shift away from the light",
         .longest = kLongestBlur},
        {.name = "size",
         .target = &Effect::size,
         .effects = kShadows,
         .range = {0, 100},
         .initial = 5.0,
         .unit = Unit::kPixels,
         .control = Control::kSlider,
         .meaning = "Blur",
         .longest = kLongestBlur},
        {.name = "size",
         .target = &Effect::size,
         .effects = kGlows,
         .range = {0, 100},
         .initial = 5.0,
         .unit = Unit::kPixels,
         .control = Control::kSlider,
         .meaning = "Reach",
         .longest = kLongestBlur},
        {.name = "spread",
         .target = &Effect::spread,
         .effects = kOuterCasts,
         .range = {0, 100},
         .initial = 0.0,
         .unit = Unit::kPixels,
         .control = Control::kSlider,
         .meaning = "How much wider than the letters it starts",
         .longest = kLongestSpread},
        {.name = "choke",
         .target = &Effect::spread,
         .effects = kInnerCasts,
         .range = {0, 100},
         .initial = 0.0,
         .unit = Unit::kPixels,
         .control = Control::kSlider,
         .meaning = "How far inside the letters' edges it starts",
         .longest = kLongestSpread},
        {.name = "castFrom",
         .target = choiceOf<&Effect::castFrom, Effect>(kCastFromNames),
         .effects = kOuterCasts,
         .initial = "letters",
         .control = Control::kMenu,
         .meaning = "What casts it: the bare letters, or they and all outside and centred strokes"},
        {.name = "size",
         .target = &Effect::size,
         .effects = kReliefs,
         .range = {0, 250},
         .initial = 5.0,
         .unit = Unit::kPixels,
         .control = Control::kSlider,
         .meaning = "Width of the slope; an emboss has half of it on each side of the edge",
         .longest = 250},
        {.name = "depth",
         .target = &Effect::depth,
         .effects = kReliefs,
         .range = {0, 10},
         .initial = 1.0,
         .control = Control::kSlider,
         .meaning = "Steepness; 1 is a slope of 45 degrees for a chisel"},
        {.name = "technique",
         .target = choiceOf<&Effect::technique, Effect>(kTechniqueNames),
         .effects = kReliefs,
         .initial = "smooth",
         .control = Control::kMenu,
         .meaning = "Round all over, flat facets that meet in crisp ridges, or facets with "
                    "rounded ridges"},
        {.name = "direction",
         .target = choiceOf<&Effect::direction, Effect>(kDirectionNames),
         .effects = kReliefs,
         .initial = "up",
         .control = Control::kMenu,
         .meaning = "Raised, or pressed in"},
        {.name = "soften",
         .target = &Effect::soften,
         .effects = kReliefs,
         .range = {0, 16},
         .initial = 0.0,
         .unit = Unit::kPixels,
         .control = Control::kSlider,
         .meaning = "Blur of the shading",
         .longest = 16},
        {.name = "angle",
         .target = &Effect::angle,
         .effects = {kLinearGradient},
         .range = kAngleRange,
         .initial = 90.0,
         .unit = Unit::kDegrees,
         .control = Control::kAngle,
         .meaning = "Direction, counter-clockwise from the right"},
        {.name = "angle",
         .target = &Effect::angle,
         .effects = kReliefs,
         .range = kAngleRange,
         .initial = 120.0,
         .unit = Unit::kDegrees,
         .control = Control::kAngle,
         .meaning = "Where the light comes from, counter-clockwise from the right"},
        {.name = "altitude",
         .target = &Effect::altitude,
         .effects = kReliefs,
         .range = {0, 89},
         .initial = 30.0,
         .unit = Unit::kDegrees,
         .control = Control::kSlider,
         .meaning = "Height of the light above the picture"},
        {.name = "scale",
         .target = &Effect::scale,
         .effects = {kLinearGradient},
         .range = {0, 2},
         .initial = 1.0,
         .control = Control::kSlider,
         .meaning = "Length of the ramp relative to the text"},
        {.name = "scale",
         .target = &Effect::scale,
         .effects = {kRadialGradient},
         .range = {0, 2},
         .initial = 1.0,
         .control = Control::kSlider,
         .meaning = "Radius of the ramp relative to the text"},
        {.name = "scale",
         .target = &Effect::scale,
         .effects = {kPattern},
         .range = {0, 10},
         .initial = 1.0,
         .control = Control::kSlider,
         .meaning = "Size of a tile relative to the picture",
         .longest = 10},
        {.name = "span",
         .target = choiceOf<&Effect::span, Effect>(kSpanNames),
         .effects = {kLinearGradient, kRadialGradient},
         .initial = "text",
         .control = Control::kMenu,
         .meaning = "What the ramp runs over: all lines together, or each by itself"},
        {.name = "color",
         .target = &Effect::color,
         .effects = {kStroke, kOuterShadow, kInnerShadow},
         .initial = Color{0xFF000000u},
         .control = Control::kColor,
         .meaning = "Colour"},
        {.name = "color",
         .target = &Effect::color,
         .effects = kGlows,
         .initial = Color{0xFFFFFFFFu},
         .control = Control::kColor,
         .meaning = "Colour, used when there are no stops"},
        {.name = "fill",
         .target = &Effect::fill,
         .effects = {kStroke},
         .control = Control::kFill,
         .meaning = "What paints it in place of the colour; a ramp runs over the outline's box"},
        {.name = "position",
         .target = choiceOf<&Effect::position, Effect>(kPositionNames),
         .effects = {kStroke},
         .initial = "outside",
         .control = Control::kMenu,
         .meaning = "Side of the glyphs' edges that the outline lies on"},
        {.name = "stops",
         .target = &Effect::stops,
         .effects = kGlows,
         .control = Control::kRamp,
         .meaning = "Colours from the glyphs' edges to the end of the glow"},
        {.name = "stops",
         .target = &Effect::stops,
         .effects = {kLinearGradient, kRadialGradient},
         .control = Control::kRamp,
         .meaning = "Colours along the ramp",
         .required = true},
        {.name = "highlightColor",
         .target = &Effect::highlightColor,
         .effects = kReliefs,
         .initial = Color{0xFFFFFFFFu},
         .control = Control::kColor,
         .meaning = "Colour of the lit sides"},
        {.name = "highlightOpacity",
         .target = &Effect::highlightOpacity,
         .effects = kReliefs,
         .range = kUnitRange,
         .initial = 0.75,
         .control = Control::kSlider,
         .meaning = "Opacity of the lit sides"},
        {.name = "shadowColor",
         .target = &Effect::shadowColor,
         .effects = kReliefs,
         .initial = Color{0xFF000000u},
         .control = Control::kColor,
         .meaning = "Colour of the sides in shadow"},
        {.name = "shadowOpacity",
         .target = &Effect::shadowOpacity,
         .effects = kReliefs,
         .range = kUnitRange,
         .initial = 0.75,
         .control = Control::kSlider,
         .meaning = "Opacity of the sides in shadow"},
        {.name = "opacity",
         .target = &Effect::opacity,
         .effects = {kOuterShadow, kInnerShadow, kOuterGlow, kInnerGlow},
         .range = kUnitRange,
         .initial = 0.75,
         .control = Control::kSlider,
         .meaning = "Opacity"},
        {.name = "opacity",
         .target = &Effect::opacity,
         .effects = {kStroke, kLinearGradient, kRadialGradient, kPattern, kBevel, kEmboss},
         .range = kUnitRange,
         .initial = 1.0,
         .control = Control::kSlider,
         .meaning = "Opacity"},
    };
    return rows;
}

const std::vector<Field<Stop>>& stopFields() {
    static const std::vector<Field<Stop>> rows{
        {.name = "color",
         .target = &Stop::color,
         .control = Control::kColor,
         .meaning = "Colour of the stop",
         .required = true},
        {.name = "opacity",
         .target = &Stop::opacity,
         .range = kUnitRange,
         .initial = 1.0,
         .control = Control::kSlider,
         .meaning = "Opacity"},
        {.name = "position",
         .target = &Stop::position,
         .range = kUnitRange,
         .control = Control::kSlider,
         .meaning = "Place along the ramp",
         .required = true},
    };
    return rows;
}

const std::vector<Field<Background>>& backgroundFields() {
    static const std::vector<Field<Background>> rows{
        {.name = "color",
         .target = &Background::color,
         .control = Control::kColor,
         .meaning = "Colour",
         .required = true},
        {.name = "radius",
         .target = &Background::radius,
         .range = {0, 4096},
         .initial = 0.0,
         .unit = Unit::kPixels,
         .control = Control::kSlider,
         .meaning = "Radius of the corners, at most half of the shorter side",
         .longest = 4096},
        {.name = "padding",
         .target = &Background::padding,
         .range = {0, 4096},
         .initial = 0.0,
         .unit = Unit::kPixels,
         .control = Control::kSlider,
         .meaning = "How much larger than the line it is, on each side",
         .longest = 4096},
        {.name = "span",
         .target = choiceOf<&Background::span, Background>(kBoxSpanNames),
         .initial = "line",
         .control = Control::kMenu,
         .meaning = "What has a box: each line, or all together"},
    };
    return rows;
}

const std::vector<const Field<Effect>*>& effectFields(EffectType type) {
    static const auto byType = [] {
        std::array<std::vector<const Field<Effect>*>, kEffectTypeCount> lists;
        for (const Field<Effect>& field : effectFields()) {
            for (int i = 0; i < kEffectTypeCount; i++) {
                if (field.effects.contains(static_cast<EffectType>(i))) lists[i].push_back(&field);
            }
        }
        return lists;
    }();
    return byType[static_cast<size_t>(type)];
}

const Field<Style>& styleField(std::string_view name) {
    const auto& rows = styleFields();
    return *std::find_if(rows.begin(), rows.end(), [name](auto& row) { return row.name == name; });
}

std::string_view effectMeaning(EffectType type) {
    switch (type) {
        case kStroke:
            return "Outline along the glyphs' edges";
        case kOuterShadow:
            return "Soft shadow behind the text";
        case kInnerShadow:
            return "Soft shadow inside the glyphs";
        case kOuterGlow:
            return "Glow around the glyphs";
        case kInnerGlow:
            return "Glow inside the glyphs, from their edges inwards";
        case kLinearGradient:
            return "Colours running across the text";
        case kRadialGradient:
            return "Colours running outwards from the middle of the text";
        case kPattern:
            return "A picture tiled over the glyphs";
        case kBevel:
            return "Lit and shaded edges";
        case kEmboss:
            return "Relief pressed out of the ground";
    }
    return {};
}

}  // namespace gxtext
