#include "Style.h"

#include <charconv>
#include <cstdio>

namespace gxtool {

namespace {

constexpr std::array<std::string_view, kEffectTypeCount> kEffectNames{
    "stroke",         "outerShadow",    "innerShadow", "outerGlow", "innerGlow",
    "linearGradient", "radialGradient", "pattern",     "bevel",     "emboss"};

int hexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

}  // namespace

std::optional<Color> parseColor(std::string_view text) {
    if ((text.size() != 7 && text.size() != 9) || text[0] != '#') return std::nullopt;
    uint32_t value = text.size() == 7 ? 0xFFu : 0u;
    for (const char c : text.substr(1)) {
        const int digit = hexDigit(c);
        if (digit < 0) return std::nullopt;
        value = value << 4 | static_cast<uint32_t>(digit);
    }
    return Color{value};
}

std::string Range::text() const {
    char buffer[64];
    snprintf(buffer, sizeof(buffer), min < 0 ? "%g to %g" : "%g-%g", min, max);
    return buffer;
}

std::optional<Align> parseAlign(std::string_view name) {
    if (name == "start") return Align::kStart;
    if (name == "left") return Align::kLeft;
    if (name == "center") return Align::kCenter;
    if (name == "right") return Align::kRight;
    return std::nullopt;
}

std::optional<Padding> parsePadding(std::string_view text) {
    std::array<int, 4> sides{};
    size_t count = 0;
    const char* at = text.data();
    const char* const end = at + text.size();
    if (text.ends_with(',')) return std::nullopt;
    while (count < sides.size()) {
        const auto [next, error] = std::from_chars(at, end, sides[count]);
        if (error != std::errc() || !limits::kPadding.contains(sides[count])) return std::nullopt;
        count++;
        at = next;
        if (at == end || *at++ != ',') break;
    }
    if (at != end || (count != 1 && count != 4)) return std::nullopt;
    if (count == 1) sides.fill(sides[0]);
    return Padding{sides[0], sides[1], sides[2], sides[3]};
}

std::string_view effectName(EffectType type) {
    return kEffectNames[static_cast<size_t>(type)];
}

std::optional<EffectType> parseEffectType(std::string_view name) {
    for (size_t i = 0; i < kEffectNames.size(); i++) {
        if (kEffectNames[i] == name) return static_cast<EffectType>(i);
    }
    return std::nullopt;
}

}  // namespace gxtool
