#include "effect/filters/GxInnerGlow.h"

#include <array>

#include "effect/filters/Glow.h"
#include "raster/GxMath.h"
#include "raster/kernels/Growth.h"

namespace GxFontEffect {

// The glow in steps:
//   1. copy the inverse of the mask into a plane with room for growth and blur;
//   2. grow it: the background pushes into the glyphs;
//   3. blur it, each direction on the inverse of its input: what falls off the plane is background;
//   4. map to colours, frame in white, and lay the result beneath the layer.

namespace {

void invert(const WorkPlane<uint8_t>& plane) {
    uint8_t* cells = plane.data();
    for (int64_t i = 0, count = plane.count(); i < count; ++i) {
        cells[i] = static_cast<uint8_t>(255 - cells[i]);
    }
}

}  // namespace

int GxInnerGlow::getOffset() {
    return property ? toInt(property->size + 0.5f) : 0;
}

void GxInnerGlow::makeColorLUT(unsigned int* table, float spread, int curve) {
    makeGlowTable(property.get(), table, spread, curve);
}

void GxInnerGlow::increaseByBoxFilter(unsigned char* mask, int passes, int width, int height) {
    growWithOwnMemory(mask, passes, width, height);
}

void GxInnerGlow::doPostProcessing(GxECore::ParamPostProcessing* param) {
    const TextMask text(param);
    if (!property || !text.isValid()) return;
    const GlowGeometry geometry(text, property->size);
    if (geometry.reach < 1) return;
    const GlowPlanes planes(geometry);
    if (!planes) return;
    std::array<uint32_t, kernels::kColorTableSize> table;
    makeColorLUT(table.data(), kGlowSpread, GXE_CURVE_LINEAR);

    // 1. The inverse mask.
    text.copyTo(planes.mask.row(geometry.padding) + geometry.padding, geometry.width);
    invert(planes.mask);
    // 2. Growth.
    kernels::growMask(planes.mask.data(), geometry.width, geometry.height, geometry.passes,
                      planes.rows.data());
    // 3. Blur.
    kernels::blurPlane(planes.mask.data(), planes.blurred.data(), geometry.width, geometry.height,
                       planes.taps.compute(computeGlowWeights), kernels::BlurInput::kInverse,
                       planes.rows.data());
    // 4. Colour.
    paintGlow(text, geometry, planes, table.data(), true, param->dst);
}

}  // namespace GxFontEffect
