// The list of effects that exist, and where each lies: a new filter adds one line to the .cpp.
#pragma once

#include "effect/GxECore.h"

namespace GxFontEffect {

// New core of that style, owned by the caller; null for a style without one and when memory runs
// out.
GxECoreBase* makeEffectCore(int style);

// With one layer: which effects are rendered first, so that they come out on top.
enum class EffectRank { kOver, kText, kBeneath };

// With two layers: what an effect paints into. One that paints both asks for two layers.
enum class EffectTarget { kOutput, kBack, kBoth };

struct EffectPlace {
    EffectRank rank = EffectRank::kOver;
    EffectTarget target = EffectTarget::kOutput;
};

// By the core's style and, of bevels and strokes, its record. Styles that nobody knows lie over the
// text.
EffectPlace placeOf(GxECoreBase& core);

}  // namespace GxFontEffect
