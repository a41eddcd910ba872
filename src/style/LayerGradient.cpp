// Ramps and how they lie.
#include <algorithm>
#include <cmath>
#include <numeric>

#include "style/FieldTable.h"
#include "style/LayerPaint.h"

namespace gxtext {

namespace {

// A value at a place of a ramp: alpha, red, green and blue (0-255), or an opacity (0-1).
template <size_t count>
struct Knot {
    double position;
    std::array<double, count> value;
};
template <size_t count>
using Knots = std::vector<Knot<count>>;
using ColorKnots = Knots<4>;
using OpacityKnots = Knots<1>;

template <size_t count>
std::array<double, count> mixed(const std::array<double, count>& a,
                                const std::array<double, count>& b, double part) {
    std::array<double, count> mix;
    for (size_t i = 0; i < count; i++) mix[i] = a[i] + (b[i] - a[i]) * part;
    return mix;
}

// The values that the ramp comes to and leaves with at a place: two where knots lie together.
template <size_t count>
std::pair<std::array<double, count>, std::array<double, count>> valuesAt(const Knots<count>& knots,
                                                                         double position) {
    const auto before = [](const Knot<count>& knot, double at) { return knot.position < at; };
    const auto after = [](double at, const Knot<count>& knot) { return at < knot.position; };
    const auto first = std::lower_bound(knots.begin(), knots.end(), position, before);
    const auto next = std::upper_bound(first, knots.end(), position, after);
    if (first != next) return {first->value, std::prev(next)->value};
    if (next == knots.end()) return {knots.back().value, knots.back().value};
    if (next == knots.begin()) return {next->value, next->value};
    const auto last = std::prev(next);
    const double part = (position - last->position) / (next->position - last->position);
    const auto value = mixed(last->value, next->value, part);
    return {value, value};
}

// Puts a knot where half of the way to the next value is said to be gone.
template <size_t count>
Knots<count> withMidpoints(const std::vector<std::pair<Knot<count>, double>>& stops) {
    Knots<count> knots;
    for (size_t i = 0; i < stops.size(); i++) {
        const auto& [knot, midpoint] = stops[i];
        knots.push_back(knot);
        if (i + 1 == stops.size() || midpoint == 0.5) continue;
        const Knot<count>& next = stops[i + 1].first;
        const double position = knot.position + (next.position - knot.position) * midpoint;
        knots.push_back({position, mixed(knot.value, next.value, 0.5)});
    }
    return knots;
}

template <size_t count, typename ReadValue>
Knots<count> readKnots(LayerRecord& gradient, std::string_view name, ReadValue readValue) {
    std::vector<std::pair<Knot<count>, double>> stops;
    for (LayerRecord& stop : gradient.records(name)) {
        const double position = stop.bounded("location", 0, 1).value_or(0);
        const double midpoint = stop.bounded("midpoint", 0, 1).value_or(0.5);
        stops.push_back({{position, readValue(stop)}, midpoint});
        stop.finish();
    }
    // Those at one place stay in the order of the file.
    std::vector<size_t> order(stops.size());
    std::iota(order.begin(), order.end(), size_t{0});
    std::sort(order.begin(), order.end(), [&stops](size_t a, size_t b) {
        const double ofA = stops[a].first.position, ofB = stops[b].first.position;
        return ofA != ofB ? ofA < ofB : a < b;
    });
    std::vector<std::pair<Knot<count>, double>> sorted;
    sorted.reserve(stops.size());
    for (const size_t i : order) sorted.push_back(stops[i]);
    return withMidpoints(sorted);
}

Stop stopAt(double position, const std::array<double, 4>& color, double opacity) {
    Stop stop;
    stop.color.argb = 0;
    for (const double level : color) {
        stop.color.argb = stop.color.argb << 8 | static_cast<uint32_t>(std::lround(level));
    }
    stop.opacity = static_cast<float>(opacity);
    stop.position = static_cast<float>(position);
    return stop;
}

// Stops wherever the one or the other has a knot.
std::vector<Stop> merged(const ColorKnots& colors, const OpacityKnots& opacities) {
    const bool isEven = std::all_of(opacities.begin(), opacities.end(), [&](const Knot<1>& knot) {
        return knot.value == opacities.front().value;
    });
    std::vector<double> positions;
    for (const auto& knot : colors) positions.push_back(knot.position);
    if (!isEven) {
        for (const auto& knot : opacities) positions.push_back(knot.position);
    }
    std::sort(positions.begin(), positions.end());
    positions.erase(std::unique(positions.begin(), positions.end()), positions.end());
    std::vector<Stop> stops;
    for (const double position : positions) {
        const auto [colorBefore, colorAfter] = valuesAt(colors, position);
        const auto [opacityBefore, opacityAfter] = valuesAt(opacities, position);
        stops.push_back(stopAt(position, colorBefore, opacityBefore[0]));
        const Stop after = stopAt(position, colorAfter, opacityAfter[0]);
        if (after != stops.back()) stops.push_back(after);
    }
    return stops;
}

std::array<double, 4> levelsOf(Color color) {
    const auto level = [color](int shift) {
        return static_cast<double>(color.argb >> shift & 0xFFu);
    };
    return {level(24), level(16), level(8), level(0)};
}

std::vector<Stop> readSolidStops(LayerRecord& gradient) {
    const ColorKnots colors = readKnots<4>(gradient, "colorStops", [](LayerRecord& stop) {
        return levelsOf(readColor(stop, "color"));
    });
    OpacityKnots opacities = readKnots<1>(gradient, "opacityStops", [](LayerRecord& stop) {
        return std::array<double, 1>{stop.bounded("opacity", 0, 1).value_or(1)};
    });
    if (opacities.empty()) opacities.push_back({0, {1}});
    gradient.dropUnless("smoothness", 0, "between its stops a ramp runs straight");
    return colors.empty() ? std::vector<Stop>() : merged(colors, opacities);
}

// Noise is left out: a ramp from the least to the most of each channel.
std::vector<Stop> readNoiseStops(LayerRecord& gradient) {
    gradient.approximateAll("noise is a plain ramp from its darkest to its lightest colour");
    gradient.dropUnless("roughness", 0, "there is no noise");
    gradient.dropUnless("randomSeed", 0, "there is no noise");
    if (gradient.flag("restrictColors", false))
        gradient.drop("restrictColors", "there is no noise");
    const bool fades = gradient.flag("addTransparency", false);
    const std::string model = gradient.word("colorModel").value_or("rgb");
    if (model != "rgb")
        gradient.approximate("colorModel", "its channels are taken for those of RGB");
    std::vector<Stop> stops;
    for (const char* end : {"min", "max"}) {
        const bool isMin = stops.empty();
        std::vector<double> levels = gradient.numbers(end);
        levels.resize(4, isMin ? 0 : 1);
        std::array<double, 4> color{255};
        for (size_t i = 0; i < 3; i++) color[i + 1] = 255 * std::clamp(levels[i], 0.0, 1.0);
        stops.push_back(stopAt(isMin ? 0 : 1, color, fades ? std::clamp(levels[3], 0.0, 1.0) : 1));
    }
    return stops;
}

// Ramps know places of whole per cents.
void settle(LayerRecord& gradient, std::vector<Stop>& stops) {
    // Half of the step between places in a file.
    constexpr double kNear = 0.5 / 4096;
    bool isMoved = false;
    for (Stop& stop : stops) {
        const double given = static_cast<double>(stop.position);
        const double kept = std::floor(given * 100 + 0.5) / 100;
        isMoved = isMoved || std::fabs(kept - given) > kNear;
        stop.position = static_cast<float>(kept);
    }
    if (isMoved) gradient.approximateAll("stops are moved to whole per cents");
    if (stops.size() <= kMaxStops) return;
    stops.erase(stops.begin() + kMaxStops - 1, stops.end() - 1);
    gradient.approximateAll("of its stops the first 255 and the last are kept");
}

void turnRound(std::vector<Stop>& stops) {
    std::reverse(stops.begin(), stops.end());
    for (Stop& stop : stops) stop.position = 1 - stop.position;
}

// From the middle to both ends.
std::vector<Stop> mirrored(const std::vector<Stop>& stops) {
    std::vector<Stop> both(stops.rbegin(), stops.rend());
    for (Stop& stop : both) stop.position = (1 - stop.position) / 2;
    for (Stop stop : stops) {
        stop.position = (1 + stop.position) / 2;
        if (stop != both.back()) both.push_back(stop);
    }
    return both;
}

enum class Form { kLinear, kRadial, kAngle, kReflected, kDiamond };

Form readForm(LayerRecord& place, std::string_view name) {
    static constexpr std::array<std::pair<std::string_view, Form>, 5> kForms{
        {{"linear", Form::kLinear},
         {"radial", Form::kRadial},
         {"angle", Form::kAngle},
         {"reflected", Form::kReflected},
         {"diamond", Form::kDiamond}}};
    const Form form = place.choice(name, kForms, Form::kLinear);
    if (form == Form::kAngle) place.approximate(name, "drawn as a linear ramp");
    if (form == Form::kDiamond) place.approximate(name, "drawn as a radial ramp");
    return form;
}

// What the ramps of a style have not.
void dropRest(LayerRecord& place) {
    if (place.flag("dither", false)) place.drop("dither", "ramps are not dithered");
    if (!place.flag("align", true)) {
        place.approximate("align", "the ramp runs over the text, not over the picture");
    }
    if (std::optional<LayerRecord> offset = place.record("offset")) {
        offset->dropUnless("x", 0, "the middle of a ramp is the middle of the text");
        offset->dropUnless("y", 0, "the middle of a ramp is the middle of the text");
        offset->finish();
    }
    const std::string method = place.word("interpolationMethod").value_or("classic");
    if (method != "classic") {
        place.approximate("interpolationMethod",
                          shown({method}) + " colours are mixed as \"classic\" ones");
    }
}

void readAngle(LayerRecord& place, Effect& effect) {
    const std::optional<double> angle = place.number("angle");
    if (!angle) return;
    if (effect.type == EffectType::kRadialGradient) {
        if (std::fmod(*angle, 180) != 0) {
            place.approximate("angle", "the radius is half of the text's width");
        }
        return;
    }
    const double turn = std::fmod(*angle, 360);
    const double whole = std::floor(turn + 0.5);
    if (whole != turn) place.approximate("angle", "drawn with whole degrees");
    effect.angle = static_cast<float>(whole);
}

std::vector<Stop> readStops(LayerRecord& gradient) {
    gradient.word("name");
    static constexpr std::array<std::pair<std::string_view, bool>, 2> kKinds{
        {{"solid", false}, {"noise", true}}};
    const bool isNoise = gradient.choice("type", kKinds, false);
    return isNoise ? readNoiseStops(gradient) : readSolidStops(gradient);
}

}  // namespace

std::vector<Stop> readRamp(LayerRecord& gradient) {
    std::vector<Stop> stops = readStops(gradient);
    settle(gradient, stops);
    return stops;
}

std::optional<Effect> readGradient(LayerRecord& place, std::string_view form,
                                   LayerRecord& gradient) {
    const Form drawn = readForm(place, form);
    const bool isRadial = drawn == Form::kRadial || drawn == Form::kDiamond;
    Effect effect(isRadial ? EffectType::kRadialGradient : EffectType::kLinearGradient);
    effect.stops = readStops(gradient);
    if (place.flag("reverse", false)) turnRound(effect.stops);
    if (drawn == Form::kReflected) effect.stops = mirrored(effect.stops);
    settle(gradient, effect.stops);
    effect.scale = static_cast<float>(place.bounded("scale", 0, 2).value_or(1));
    readAngle(place, effect);
    dropRest(place);
    if (effect.stops.empty()) return std::nullopt;
    return effect;
}

}  // namespace gxtext
