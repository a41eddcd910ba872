// A picture of a text that every contender draws: ours from its style, the others from what follows
// from it, so that text, place, sizes and colours are the same.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "scene/Arrangement.h"
#include "style/Style.h"

namespace gxbench {

struct Point {
    double x = 0;
    double y = 0;
};

// Straight, 0-1 each.
struct TitlePaint {
    double red = 0, green = 0, blue = 0, alpha = 1;
};

// One effect in the terms of other painters. What a kind does not name is not looked at.
struct TitleLayer {
    enum class Kind {
        kShadow,       // the text, blurred by `deviation`, moved by `shift`, under it
        kGlow,         // the text, widened by `width`, blurred, under it
        kStroke,       // an outline of `width` on both sides of the edge, under the fill
        kLinear,       // `stops` from `from` to `to`, over the fill
        kRadial,       // `stops` from the point `from` to the distance `width`, over the fill
        kPattern,      // the picture file `pattern`, repeated, over the fill
        kInnerGlow,    // what surrounds the text, blurred, within it
        kInnerShadow,  // the same, moved
    };
    struct Stop {
        double position;  // 0-1
        TitlePaint paint;
    };

    Kind kind;
    Point shift;
    double deviation = 0;  // of the Gaussian, pixels
    double width = 0;      // pixels
    TitlePaint paint;
    Point from, to;
    std::vector<Stop> stops;
    std::string pattern;
    double opacity = 1;  // of a pattern
};

// Whether the text's own fill is under the layer.
constexpr bool isOverFill(TitleLayer::Kind kind) {
    return kind > TitleLayer::Kind::kStroke;
}

constexpr bool isBlurred(TitleLayer::Kind kind) {
    using Kind = TitleLayer::Kind;
    return kind == Kind::kShadow || kind == Kind::kGlow || kind == Kind::kInnerGlow ||
           kind == Kind::kInnerShadow;
}

struct TitleGlyph {
    uint32_t id;
    double x, y;  // of its origin, pixels
};

struct TitleLine {
    std::string text;  // UTF-8
    double x, baseline;
    bool rightToLeft;
    std::vector<TitleGlyph> glyphs;  // shaped by HarfBuzz, without hinting, from the origin 0, 0
};

struct TitlePicture {
    gxtext::Style style;
    std::string fontFile;
    int fontIndex = 0;
    std::string family;
    int weight = 400;
    int width = 0, height = 0;
    double size = 0;  // pixels per em
    TitlePaint paint;
    std::vector<TitleLine> lines;
    std::vector<TitleLayer> layers;  // from the bottom, in the order of Kind

    // One line of JSON, as bench/peers/README.md describes it.
    std::string job() const;
};

// The style `name` of bench/pictures with lengths `scale` times as long, laid out with the one
// font. Throws gxtext::Error.
TitlePicture titlePicture(const std::string& name, const std::string& fontFile, int fontIndex,
                          float scale = 1);

}  // namespace gxbench
