// Colour models and blend modes.
#include <algorithm>
#include <cmath>

#include "style/LayerPaint.h"

namespace gxtext {

namespace {

// Red, green and blue, 0-255.
using Rgb = std::array<double, 3>;

Color packed(const Rgb& rgb, double alpha = 255) {
    const auto level = [](double value) {
        return static_cast<uint32_t>(std::lround(std::clamp(value, 0.0, 255.0)));
    };
    return {level(alpha) << 24 | level(rgb[0]) << 16 | level(rgb[1]) << 8 | level(rgb[2])};
}

// Each channel is that of the nearest hue, drawn towards white and then towards black.
Rgb rgbOfHsb(double hue, double saturation, double brightness) {
    Rgb rgb{};
    for (size_t i = 0; i < rgb.size(); i++) {
        const double distance = std::fabs(hue * 6 - 2 * static_cast<double>(i));
        const double around = std::min(distance, 6 - distance);
        const double pure = std::clamp(2 - around, 0.0, 1.0);
        rgb[i] = 255 * brightness * (1 - saturation * (1 - pure));
    }
    return rgb;
}

// CIE L*a*b* of illuminant D50 to sRGB (IEC 61966-2-1); the matrix takes XYZ of D50, adapted by
// Bradford's method, to linear sRGB.
Rgb rgbOfLab(double l, double a, double b) {
    const auto inverse = [](double t) {
        return t > 6.0 / 29 ? t * t * t : 3 * (6.0 / 29) * (6.0 / 29) * (t - 4.0 / 29);
    };
    const double fy = (l + 16) / 116;
    const double x = 0.96422 * inverse(fy + a / 500);
    const double y = inverse(fy);
    const double z = 0.82521 * inverse(fy - b / 200);
    const Rgb linear{3.1338561 * x - 1.6168667 * y - 0.4906146 * z,
                     -0.9787684 * x + 1.9161415 * y + 0.0334540 * z,
                     0.0719453 * x - 0.2289914 * y + 1.4052427 * z};
    Rgb rgb{};
    for (size_t i = 0; i < rgb.size(); i++) {
        const double v = std::clamp(linear[i], 0.0, 1.0);
        rgb[i] = 255 * (v <= 0.0031308 ? 12.92 * v : 1.055 * std::pow(v, 1 / 2.4) - 0.055);
    }
    return rgb;
}

// -1 to 1 stand for -128 to 127.
double labAxis(double value) {
    return value * (value < 0 ? 128 : 127);
}

double channel(LayerRecord& color, std::string_view name, double most, double least = 0) {
    return color.bounded(name, least, most).value_or(0);
}

// Modes that paint black, or white, over whatever lies below, as plain painting does.
constexpr std::string_view kPlainInBlack[] = {
    "multiply", "darken", "linear burn", "darker color", "hard light", "linear light", "pin light"};
constexpr std::string_view kPlainInWhite[] = {"screen",        "lighten",    "linear dodge",
                                              "lighter color", "hard light", "linear light",
                                              "pin light"};

bool isPlain(std::string_view mode, Color color) {
    const uint32_t rgb = color.argb & 0xFFFFFFu;
    const auto holds = [mode](const auto& modes) {
        return std::find(std::begin(modes), std::end(modes), mode) != std::end(modes);
    };
    return (rgb == 0 && holds(kPlainInBlack)) || (rgb == 0xFFFFFFu && holds(kPlainInWhite));
}

}  // namespace

Color readColor(LayerRecord& record, std::string_view name) {
    std::optional<LayerRecord> color = record.record(name);
    if (!color) return {};
    Color read;
    if (color->has("fr")) {
        read = packed({255 * channel(*color, "fr", 1), 255 * channel(*color, "fg", 1),
                       255 * channel(*color, "fb", 1)});
    } else if (color->has("h")) {
        const double hue = channel(*color, "h", 1);
        const double saturation = channel(*color, "s", 1);
        read = packed(rgbOfHsb(hue, saturation, channel(*color, "b", 1)));
    } else if (color->has("c")) {
        const double ink = 1 - channel(*color, "k", 255) / 255;
        read = packed({ink * (255 - channel(*color, "c", 255)),
                       ink * (255 - channel(*color, "m", 255)),
                       ink * (255 - channel(*color, "y", 255))});
        record.approximate(name, "inks are mixed without a colour profile");
    } else if (color->has("l")) {
        const double l = 100 * channel(*color, "l", 1);
        const double a = labAxis(channel(*color, "a", 1, -1));
        read = packed(rgbOfLab(l, a, labAxis(channel(*color, "b", 1, -1))));
        record.approximate(name, "the nearest colour of sRGB");
    } else if (color->has("k")) {
        const double gray = 255 - channel(*color, "k", 255);
        read = packed({gray, gray, gray});
        record.approximate(name, "taken for black ink, without a colour profile");
    } else if (color->has("r")) {
        const Rgb rgb{channel(*color, "r", 255), channel(*color, "g", 255),
                      channel(*color, "b", 255)};
        read = packed(rgb, color->bounded("a", 0, 255).value_or(255));
    } else {
        record.drop(name, "not a colour");
    }
    color->finish();
    return read;
}

void readBlendMode(LayerRecord& record, std::string_view name, const std::vector<Color>& colors) {
    const std::optional<std::string> mode = record.word(name);
    if (!mode || *mode == "normal") return;
    const bool plain =
        !colors.empty() && std::all_of(colors.begin(), colors.end(),
                                       [&mode](Color color) { return isPlain(*mode, color); });
    if (!plain) record.approximate(name, shown({*mode}) + " is painted as \"normal\"");
}

}  // namespace gxtext
