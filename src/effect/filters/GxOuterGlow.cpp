#include "effect/filters/GxOuterGlow.h"

namespace GxFontEffect {

void GxOuterGlow::doPostProcessing(GxECore::ParamPostProcessing* param) {
    renderGlow(param, property.get(), GlowSide::kOuter);
}

void GxOuterGlow::computeGaussianWeights(int* weights, int* sum, int radius) {
    computeGlowWeights(weights, sum, radius);
}

}  // namespace GxFontEffect
