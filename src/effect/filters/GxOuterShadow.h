// The outer shadow: a soft, tinted copy of the text beneath it, away from a light.
#pragma once

#include <cstdint>

#include "GxExport.h"
#include "effect/GxECore.h"
#include "effect/GxProperty.h"
#include "effect/filters/Shadow.h"

namespace GxFontEffect {

// Casts the text's shadow: the mask blurred, shifted away from the light and tinted.
//
// Reads of the parameter block: `dst` (32-bit layer, premultiplied), `src` (8-bit mask) and
// `textRect`; `mode` and `other` are not read. Reads of the record: `angle` of the light (degrees;
// at 0 the shadow lies to the left, at 90 below), `distance` (pixels), `size` (blur radius, pixels;
// below 0 acts as 0) and `color` (0xAARRGGBB, premultiplied by the stack); `opacity` is not read.
//
// Margins differ per side: the blur radius plus the shift towards that side; the opposite side
// needs that much less, not below 0. Blend: destination over source.
//
// Null inputs, a box the wrong way round, a shadow wholly beside the layer, sizes past 65,535 or
// the work memory's limit and failed allocations leave the layer as it was. Cost: 2
// radius + 2 byte products per pixel of the blurred ink, or some 80 additions where these are less
// (from a radius of 35 on); the columns' changes are few in text and add little. Work bytes per
// padded pixel 1, the padding being twice the radius on each side, plus 96 per pixel of the longer
// side (160 from a radius of 32 on).
class GXTEXT_API GxOuterShadow : public GxPropertyCore<GxOuterShadowProperty> {
public:
    GxOuterShadow() : GxPropertyCore(GXE_STYLE_OUTER_SHADOW) {}

    // Computes the shift, too.
    void setProperty(const GxProperty* source) override;

    int getLeftOffset() override;
    int getRightOffset() override;
    int getTopOffset() override;
    int getBottomOffset() override;

    int getReach() override;
    void doPostProcessing(GxECore::ParamPostProcessing* param) override;

    // Weights of a blur over `radius` pixels, centre 100, and their total over both sides; rounded
    // to nearest with the half added in double precision. `weights` holds max(radius, 0) + 1
    // entries; null does nothing.
    static void computeGaussianWeights(int* weights, int* sum, int radius);

private:
    ShadowShift shift;  // pixels
};

}  // namespace GxFontEffect
