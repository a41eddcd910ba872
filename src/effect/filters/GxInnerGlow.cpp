#include "effect/filters/GxInnerGlow.h"

namespace GxFontEffect {

void GxInnerGlow::doPostProcessing(GxECore::ParamPostProcessing* param) {
    renderGlow(param, property.get(), GlowSide::kInner);
}

}  // namespace GxFontEffect
