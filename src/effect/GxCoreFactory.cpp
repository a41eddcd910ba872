#include "effect/GxCoreFactory.h"

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

struct Entry {
    GxEffectStyle style;
    GxECoreBase* (*make)();
};

// One line per effect.
constexpr Entry kEffects[] = {
    {GXE_STYLE_OUTER_SHADOW, make<GxOuterShadow>},
    {GXE_STYLE_INNER_SHADOW, make<GxInnerShadow>},
    {GXE_STYLE_OUTER_GLOW, make<GxOuterGlow>},
    {GXE_STYLE_INNER_GLOW, make<GxInnerGlow>},
    {GXE_STYLE_BEVEL, make<GxBevel>},
    {GXE_STYLE_EMBOSS, make<GxEmboss>},
    {GXE_STYLE_LINEAR_GRADIENT, make<GxLinearGradient>},
    {GXE_STYLE_RADIAL_GRADIENT, make<GxRadialGradient>},
    {GXE_STYLE_STROKE, make<GxStroke>},
    {GXE_STYLE_PATTERN, make<GxPattern>},
    {GXE_STYLE_TEXT, make<GxText>},
};

}  // namespace

GxECoreBase* makeEffectCore(int style) {
    for (const Entry& entry : kEffects) {
        if (entry.style == style) return entry.make();
    }
    return nullptr;
}

}  // namespace GxFontEffect
