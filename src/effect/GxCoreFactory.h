// The list of effects that exist: a new filter adds one line to the .cpp.
#pragma once

#include "effect/GxECore.h"

namespace GxFontEffect {

// New core of that style, owned by the caller; null for a style without one and when memory runs
// out.
GxECoreBase* makeEffectCore(int style);

}  // namespace GxFontEffect
