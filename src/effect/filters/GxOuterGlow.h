// The outer glow: a soft halo around the text.
#pragma once

#include "GxExport.h"
#include "effect/GxECore.h"
#include "effect/GxProperty.h"
#include "effect/filters/Glow.h"

namespace GxFontEffect {

// Surrounds the text with light: the mask grown, blurred and coloured by coverage, from the ramp's
// first colour at the text to nothing where the coverage ends.
//
// Reads of the parameter block: `dst` (32-bit layer, premultiplied), `src` (8-bit mask) and
// `textRect`; `mode` and `other` are not read. Reads of the record: `size` (pixels; 0 draws nothing
// visible, -1 and less nothing), `color` (0xAARRGGBB, straight; used without stops), `stopCount`
// and of each stop `color` and `position` (0-1, ascending; the first one's counts as 0); the
// opacities are not read. The ramp stops moving at the last stop, wherever it lies. The core keeps
// its own copy of the stops.
//
// Margin: (int)(size + 0.5) on every side. Blend: destination over source.
//
// Null inputs, a box the wrong way round, work memory past its limit and failed allocations leave
// the layer as it was: the growth's rows are allocated with the rest, so that no half-made glow is
// drawn. Cost per padded pixel, the padding being 2 (size + 1) on each side: 9 additions per growth
// pass, at most 4 x 0.9 size products of the blur, one colour; work bytes per padded pixel 2, plus
// 96 per pixel of the longer side (160 from a size of 35 on).
class GXTEXT_API GxOuterGlow : public GxGlowCore<GxOuterGlowProperty> {
public:
    GxOuterGlow() : GxGlowCore(GXE_STYLE_OUTER_GLOW) {}

    void doPostProcessing(GxECore::ParamPostProcessing* param) override;

    // As the outer shadow's weights with centre 128.
    static void computeGaussianWeights(int* weights, int* sum, int radius);
};

}  // namespace GxFontEffect
