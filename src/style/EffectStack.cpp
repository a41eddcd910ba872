#include "style/EffectStack.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <vector>

#include "effect/GxEffect.h"
#include "style/FieldTable.h"

namespace gxtext {

namespace {

using namespace GxFontEffect;

constexpr int kNoCap = 0;  // no filter reads it

float faded(float opacity, Color color) {
    return opacity * (static_cast<float>(color.argb >> 24) / 255.0f);
}

// To nearest, halves upwards. The stack cuts fractions off.
float whole(float value) {
    return static_cast<float>(std::floor(static_cast<double>(value) + 0.5));
}

std::vector<GxGradient> stopsOf(const Effect& effect) {
    std::vector<GxGradient> stops;
    for (const Stop& stop : effect.stops) {
        stops.push_back({stop.color.argb, faded(stop.opacity, stop.color), stop.position});
    }
    return stops;
}

using AddRelief = decltype(&GxEffect::addBevelText);

int addRelief(const Effect& e, int kind, GxEffect& stack, AddRelief add) {
    return (stack.*add)(kind, whole(e.size), e.depth, static_cast<int>(e.technique),
                        static_cast<int>(e.direction), e.soften, e.opacity, whole(e.angle),
                        whole(e.altitude), e.highlightColor.argb,
                        faded(e.highlightOpacity, e.highlightColor), e.shadowColor.argb,
                        faded(e.shadowOpacity, e.shadowColor));
}

// The gradient or pattern that fills a stroke, or null.
const Effect* fillOf(const Effect& stroke) {
    const auto& fills = stroke.fill.effects;
    return fills.empty() || !fills.front().enabled ? nullptr : &fills.front();
}

// The effect that has a pattern: it or its fill; null for neither.
const Effect* patternOf(const Effect& effect) {
    const Effect* painter = effect.type == EffectType::kStroke ? fillOf(effect) : &effect;
    return painter && painter->type == EffectType::kPattern ? painter : nullptr;
}

// `pattern` is the fill's picture.
int addStroke(const Effect& e, GxBitmap* pattern, GxEffect& stack) {
    const int position = static_cast<int>(e.position);
    const Effect* fill = fillOf(e);
    if (!fill) {
        const Color color = e.fill.color.value_or(e.color);
        return stack.addStrokeText(whole(e.size), color.argb, faded(e.opacity, color), kNoCap,
                                   position);
    }
    const float opacity = fill->opacity * e.opacity;
    const std::vector<GxGradient> stops = stopsOf(*fill);
    const int count = static_cast<int>(stops.size());
    switch (fill->type) {
        case EffectType::kLinearGradient:
            return stack.addLinearGradientStrokeText(whole(e.size), kNoCap, position,
                                                     whole(fill->angle), fill->scale, opacity,
                                                     count, stops.data());
        case EffectType::kRadialGradient:
            return stack.addRadialGradientStrokeText(whole(e.size), kNoCap, position, fill->scale,
                                                     opacity, count, stops.data());
        default:
            return stack.addPatternStrokeText(whole(e.size), kNoCap, position, pattern, fill->scale,
                                              opacity);
    }
}

// `pattern` is the picture of patternOf(e).
int add(const Effect& e, GxBitmap* pattern, GxEffect& stack) {
    const uint32_t color = e.color.argb;
    const float opacity = faded(e.opacity, e.color);
    const std::vector<GxGradient> stops = stopsOf(e);
    const int stopCount = static_cast<int>(stops.size());
    switch (e.type) {
        case EffectType::kStroke:
            return addStroke(e, pattern, stack);
        case EffectType::kOuterShadow:
            return stack.addOuterShadowText(whole(e.angle), whole(e.distance), whole(e.size), color,
                                            opacity);
        case EffectType::kInnerShadow:
            return stack.addInnerShadowText(whole(e.angle), whole(e.distance), whole(e.size), color,
                                            opacity);
        case EffectType::kOuterGlow:
            return stack.addOuterGlowText(whole(e.size), color, opacity, stopCount, stops.data());
        case EffectType::kInnerGlow:
            return stack.addInnerGlowText(whole(e.size), color, opacity, stopCount, stops.data());
        case EffectType::kLinearGradient:
            return stack.addLinearGradientText(whole(e.angle), e.scale, e.opacity, stopCount,
                                               stops.data());
        case EffectType::kRadialGradient:
            return stack.addRadialGradientText(e.scale, e.opacity, stopCount, stops.data());
        case EffectType::kBevel:
            return addRelief(e, static_cast<int>(e.bevelKind), stack, &GxEffect::addBevelText);
        case EffectType::kEmboss:
            return addRelief(e, static_cast<int>(e.embossKind), stack, &GxEffect::addEmbossText);
        case EffectType::kPattern:
            return stack.addPatternText(pattern, e.scale, e.opacity);
    }
    return -1;
}

// Whole pixels, as far as the filter takes them.
float lengthOf(const Effect& e, float Effect::*length) {
    for (const Field<Effect>* field : effectFields(e.type)) {
        const auto* target = std::get_if<float Effect::*>(&field->target);
        if (target && *target == length) {
            return std::min(whole(e.*length), static_cast<float>(field->longest));
        }
    }
    return 0.0f;
}

template <typename Record>
bool setLengths(const Effect& e, GxECoreBase& core) {
    const auto* current = dynamic_cast<const Record*>(core.getProperty());
    if (!current) return false;
    Record record = *current;
    record.size = lengthOf(e, &Effect::size);
    if constexpr (requires { record.distance; }) record.distance = lengthOf(e, &Effect::distance);
    core.setProperty(&record);
    return core.keptLastProperty();
}

// The add operations keep lengths to what a file allows; a scaled style has longer ones. False when
// memory ran out.
bool setLongLengths(const Effect& e, GxECoreBase& core) {
    constexpr float kLongestAdded = 100.0f;
    if (std::max(lengthOf(e, &Effect::size), lengthOf(e, &Effect::distance)) <= kLongestAdded) {
        return true;
    }
    switch (e.type) {
        case EffectType::kStroke:
            return setLengths<GxStrokeProperty>(e, core);
        case EffectType::kOuterShadow:
            return setLengths<GxOuterShadowProperty>(e, core);
        case EffectType::kInnerShadow:
            return setLengths<GxInnerShadowProperty>(e, core);
        case EffectType::kOuterGlow:
            return setLengths<GxOuterGlowProperty>(e, core);
        case EffectType::kInnerGlow:
            return setLengths<GxInnerGlowProperty>(e, core);
        default:
            return true;  // their operations keep nothing back
    }
}

// The picture that the effect needs; none for most.
GxBitmap loadFor(const Style& style, size_t index, const PatternLoader& loadPattern) {
    const Effect& effect = style.effects[index];
    const Effect* painter = patternOf(effect);
    if (!painter) return {};
    try {
        if (!loadPattern) throw Error("there is nothing that loads patterns");
        return loadPattern(style.folder() / painter->pattern);
    } catch (const Error& error) {
        std::string place = "$.effects[" + std::to_string(index) + "]";
        place.append(painter == &effect ? ".pattern" : ".fill.pattern");
        throw StyleError(style.source.string(), {place, error.what(), ""});
    }
}

// Style numbers of the stack (GXE_STYLE_...).
int stackStyle(EffectType type) {
    switch (type) {
        case EffectType::kStroke:
            return GXE_STYLE_STROKE;
        case EffectType::kOuterShadow:
            return GXE_STYLE_OUTER_SHADOW;
        case EffectType::kInnerShadow:
            return GXE_STYLE_INNER_SHADOW;
        case EffectType::kOuterGlow:
            return GXE_STYLE_OUTER_GLOW;
        case EffectType::kInnerGlow:
            return GXE_STYLE_INNER_GLOW;
        case EffectType::kLinearGradient:
            return GXE_STYLE_LINEAR_GRADIENT;
        case EffectType::kRadialGradient:
            return GXE_STYLE_RADIAL_GRADIENT;
        case EffectType::kPattern:
            return GXE_STYLE_PATTERN;
        case EffectType::kBevel:
            return GXE_STYLE_BEVEL;
        case EffectType::kEmboss:
            return GXE_STYLE_EMBOSS;
    }
    return GXE_STYLE_BASE;
}

bool hasFilter(GxEffect& stack, EffectType type) {
    GxECoreBase* core = stack.createEffect(0, stackStyle(type));
    const bool has = core != nullptr;
    stack.releaseEffect(core);
    return has;
}

// Higher ones lie on top.
int naturalRank(const Effect& effect) {
    switch (effect.type) {
        case EffectType::kOuterShadow:
            return 0;
        case EffectType::kOuterGlow:
            return 1;
        case EffectType::kStroke:
            return effect.position == StrokePosition::kOutside ? 2 : 8;
        case EffectType::kBevel:
            return effect.bevelKind == BevelKind::kOutside ? 3 : 7;
        // Here lies the text.
        case EffectType::kLinearGradient:
        case EffectType::kRadialGradient:
        case EffectType::kPattern:
            return 4;
        case EffectType::kInnerGlow:
            return 5;
        case EffectType::kInnerShadow:
            return 6;
        case EffectType::kEmboss:
            return 7;
    }
    return 0;
}

}  // namespace

std::vector<size_t> stackingOrder(const Style& style) {
    std::vector<size_t> order;
    for (size_t i = 0; i < style.effects.size(); i++) {
        if (style.effects[i].enabled) order.push_back(i);
    }
    if (style.order == EffectOrder::kNatural) {
        std::sort(order.begin(), order.end(), [&style](size_t a, size_t b) {
            const int rankOfA = naturalRank(style.effects[a]);
            const int rankOfB = naturalRank(style.effects[b]);
            return rankOfA != rankOfB ? rankOfA < rankOfB : a < b;
        });
    }
    return order;
}

void dress(GxEffect& stack, const Style& style, const PatternLoader& loadPattern) {
    stack.setRepeats(true);
    for (const size_t i : stackingOrder(style)) {
        const Effect& effect = style.effects[i];
        GxBitmap pattern = loadFor(style, i, loadPattern);
        const int id = add(effect, &pattern, stack);
        if (id < 0 && hasFilter(stack, effect.type)) throw std::bad_alloc();
        if (id < 0) continue;
        if (!setLongLengths(effect, *stack.findEffect(id))) throw std::bad_alloc();
        const Effect* fill = effect.type == EffectType::kStroke ? fillOf(effect) : nullptr;
        stack.setSpan(id, static_cast<int>((fill ? *fill : effect).span));
        stack.setSilhouette(id, {static_cast<int>(effect.castFrom), whole(effect.spread)});
    }
}

}  // namespace gxtext
