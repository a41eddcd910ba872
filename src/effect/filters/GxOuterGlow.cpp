#include "effect/filters/GxOuterGlow.h"

#include <array>

#include "effect/filters/Glow.h"
#include "raster/GxMath.h"
#include "raster/kernels/Growth.h"

namespace GxFontEffect {

// The glow in steps:
//   1. copy the mask into a plane with room for growth and blur;
//   2. grow it;
//   3. blur it;
//   4. map the coverage to colours and lay them beneath the layer.

int GxOuterGlow::getOffset() {
    return property ? toInt(property->size + 0.5f) : 0;
}

void GxOuterGlow::makeColorLUT(unsigned int* table, float spread, int curve) {
    makeGlowTable(property.get(), table, spread, curve);
}

void GxOuterGlow::increaseByBoxFilter(unsigned char* mask, int passes, int width, int height) {
    growWithOwnMemory(mask, passes, width, height);
}

void GxOuterGlow::computeGaussianWeights(int* weights, int* sum, int radius) {
    computeGlowWeights(weights, sum, radius);
}

void GxOuterGlow::doPostProcessing(GxECore::ParamPostProcessing* param) {
    const TextMask text(param);
    if (!property || !text.isValid()) return;
    const GlowGeometry geometry(text, property->size);
    if (geometry.reach < 1) return;
    const GlowPlanes planes(geometry);
    if (!planes) return;
    std::array<uint32_t, kernels::kColorTableSize> table;
    makeColorLUT(table.data(), kGlowSpread, GXE_CURVE_LINEAR);

    // 1. The mask.
    text.copyTo(planes.mask.row(geometry.padding) + geometry.padding, geometry.width);
    // 2. Growth.
    kernels::growMask(planes.mask.data(), geometry.width, geometry.height, geometry.passes,
                      planes.rows.data());
    // 3. Blur.
    kernels::blurPlane(planes.mask.data(), planes.blurred.data(), geometry.width, geometry.height,
                       planes.taps.compute(computeGaussianWeights), kernels::BlurInput::kDirect,
                       planes.rows.data());
    // 4. Colour.
    paintGlow(text, geometry, planes, table.data(), false, param->dst);
}

}  // namespace GxFontEffect
