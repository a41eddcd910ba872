#include "Effects.h"

#include "FileIo.h"
#include "PngIo.h"
#include "ToolError.h"
#include "effect/GxEffect.h"
#include "raster/GxBitmap.h"

namespace gxtool {

namespace {

using GxFontEffect::GxBitmap;
using GxFontEffect::GxEffect;
using GxFontEffect::GxGradient;

float faded(float opacity, Color color) {
    return opacity * (static_cast<float>(color.argb >> 24) / 255.0f);
}

std::vector<GxGradient> stopsOf(const EffectStyle& effect) {
    std::vector<GxGradient> stops;
    for (const Stop& stop : effect.stops) {
        stops.push_back({stop.color.argb, faded(stop.opacity, stop.color), stop.position});
    }
    return stops;
}

// Patterns are stored as the bytes alpha, red, green, blue.
GxBitmap loadPattern(const std::filesystem::path& path) {
    const Image image = decodePng(readInput(path.string(), kMaxImageBytes), path.string());
    std::vector<uint8_t> bytes;
    bytes.reserve(image.pixels.size() * 4);
    for (const uint32_t pixel : image.pixels) {
        for (const int shift : {24, 16, 8, 0})
            bytes.push_back(static_cast<uint8_t>(pixel >> shift));
    }
    GxBitmap bitmap(image.width, image.height, bytes.data(), 4);
    if (!bitmap.data) throw ToolError(path.string() + ": out of memory");
    return bitmap;
}

int addPattern(const EffectStyle& e, GxEffect& stack) {
    GxBitmap pattern = loadPattern(e.pattern);
    return stack.addPatternText(&pattern, e.scale, e.opacity);
}

using AddRelief = decltype(&GxEffect::addBevelText);

int addRelief(const EffectStyle& e, GxEffect& stack, AddRelief add) {
    return (stack.*add)(e.kind, e.size, e.depth, e.technique, e.direction, e.soften, e.opacity,
                        e.angle, e.altitude, e.highlightColor.argb,
                        faded(e.highlightOpacity, e.highlightColor), e.shadowColor.argb,
                        faded(e.shadowOpacity, e.shadowColor));
}

int addEffect(const EffectStyle& e, GxEffect& stack) {
    const uint32_t color = e.color.argb;
    const float opacity = faded(e.opacity, e.color);
    const std::vector<GxGradient> stops = stopsOf(e);
    const int stopCount = static_cast<int>(stops.size());
    switch (e.type) {
        case EffectType::kStroke:
            return stack.addStrokeText(e.size, color, opacity, e.cap, static_cast<int>(e.position));
        case EffectType::kOuterShadow:
            return stack.addOuterShadowText(e.angle, e.distance, e.size, color, opacity);
        case EffectType::kInnerShadow:
            return stack.addInnerShadowText(e.angle, e.distance, e.size, color, opacity);
        case EffectType::kOuterGlow:
            return stack.addOuterGlowText(e.size, color, opacity, stopCount, stops.data());
        case EffectType::kInnerGlow:
            return stack.addInnerGlowText(e.size, color, opacity, stopCount, stops.data());
        case EffectType::kLinearGradient:
            return stack.addLinearGradientText(e.angle, e.scale, e.opacity, stopCount,
                                               stops.data());
        case EffectType::kRadialGradient:
            return stack.addRadialGradientText(e.scale, e.opacity, stopCount, stops.data());
        case EffectType::kPattern:
            return addPattern(e, stack);
        case EffectType::kBevel:
            return addRelief(e, stack, &GxEffect::addBevelText);
        case EffectType::kEmboss:
            return addRelief(e, stack, &GxEffect::addEmbossText);
    }
    return -1;
}

}  // namespace

void addEffects(const std::vector<EffectStyle>& effects, GxEffect& stack) {
    for (size_t i = 0; i < effects.size(); i++) {
        if (addEffect(effects[i], stack) >= 0) continue;
        throw ToolError("effects[" + std::to_string(i) + "]: this build has no " +
                        std::string(effectName(effects[i].type)));
    }
}

}  // namespace gxtool
