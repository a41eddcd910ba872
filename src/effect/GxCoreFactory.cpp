#include "effect/GxCoreFactory.h"

#include <algorithm>
#include <iterator>
#include <new>

#include "effect/filters/GxBevel.h"
#include "effect/filters/GxEmboss.h"
#include "effect/filters/GxInnerGlow.h"
#include "effect/filters/GxInnerShadow.h"
#include "effect/filters/GxLinearGradient.h"
#include "effect/filters/GxOuterGlow.h"
#include "effect/filters/GxOuterShadow.h"
#include "effect/filters/GxPattern.h"
#include "effect/filters/GxRadialGradient.h"
#include "effect/filters/GxStroke.h"
#include "effect/filters/GxText.h"

namespace GxFontEffect {

namespace {

template <typename Core>
GxECoreBase* make() {
    return new (std::nothrow) Core();
}

constexpr EffectPlace kOver = {EffectRank::kOver, EffectTarget::kOutput};
constexpr EffectPlace kText = {EffectRank::kText, EffectTarget::kOutput};
constexpr EffectPlace kBeneath = {EffectRank::kBeneath, EffectTarget::kBack};
constexpr EffectPlace kBoth = {EffectRank::kBeneath, EffectTarget::kBoth};

template <EffectPlace kPlace>
EffectPlace always(GxECoreBase& /*core*/) {
    return kPlace;
}

EffectPlace bevel(GxECoreBase& core) {
    const auto* record = dynamic_cast<const GxBevelProperty*>(core.getProperty());
    return record && record->kind == 1 ? kOver : kBeneath;
}

// A position that no stroke has paints inside the glyphs, but into the back layer if there is one;
// so does a stroke without a record.
EffectPlace stroke(GxECoreBase& core) {
    const auto* record = dynamic_cast<const GxStrokeProperty*>(core.getProperty());
    if (record && record->position == GxStrokeProperty::kCenter) return kBoth;
    if (record && record->position == GxStrokeProperty::kOutside) return kBeneath;
    if (record && record->position == GxStrokeProperty::kInside) return kOver;
    return {EffectRank::kOver, EffectTarget::kBack};
}

struct Entry {
    GxEffectStyle style;
    GxECoreBase* (*make)();  // null for a style without a core of ours
    EffectPlace (*place)(GxECoreBase& core);
};

// One line per effect.
constexpr Entry kEffects[] = {
    {GXE_STYLE_OUTER_SHADOW, make<GxOuterShadow>, always<kBeneath>},
    {GXE_STYLE_INNER_SHADOW, make<GxInnerShadow>, always<kOver>},
    {GXE_STYLE_OUTER_GLOW, make<GxOuterGlow>, always<kBeneath>},
    {GXE_STYLE_INNER_GLOW, make<GxInnerGlow>, always<kOver>},
    {GXE_STYLE_BEVEL, make<GxBevel>, bevel},
    {GXE_STYLE_EMBOSS, make<GxEmboss>, always<kBoth>},
    {GXE_STYLE_LINEAR_GRADIENT, make<GxLinearGradient>, always<kOver>},
    {GXE_STYLE_RADIAL_GRADIENT, make<GxRadialGradient>, always<kOver>},
    {GXE_STYLE_UNUSED_STROKE, nullptr, stroke},
    {GXE_STYLE_STROKE, make<GxStroke>, stroke},
    {GXE_STYLE_PATTERN, make<GxPattern>, always<kOver>},
    {GXE_STYLE_TEXT, make<GxText>, always<kText>},
    {GXE_STYLE_BASE, nullptr, always<kBeneath>},
};

const Entry* entryOf(int style) {
    const auto* entry = std::find_if(std::begin(kEffects), std::end(kEffects),
                                     [&](const Entry& e) { return e.style == style; });
    return entry == std::end(kEffects) ? nullptr : entry;
}

}  // namespace

GxECoreBase* makeEffectCore(int style) {
    const Entry* entry = entryOf(style);
    return entry && entry->make ? entry->make() : nullptr;
}

EffectPlace placeOf(GxECoreBase& core) {
    const Entry* entry = entryOf(core.getStyle());
    return entry ? entry->place(core) : EffectPlace();
}

}  // namespace GxFontEffect
