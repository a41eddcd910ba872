// Puts a style's effects into an effect stack.
#pragma once

#include <vector>

#include "Style.h"

namespace GxFontEffect {
class GxEffect;
}

namespace gxtool {

// Adds the effects in order, through the stack's typed add operations. A colour's alpha, which
// those ignore, multiplies the opacity. Throws ToolError when the stack does not know an effect
// ("effects[0]: this build has no bevel") and when a pattern image cannot be read.
void addEffects(const std::vector<EffectStyle>& effects, GxFontEffect::GxEffect& stack);

}  // namespace gxtool
