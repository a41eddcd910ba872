// The outer glow: a soft halo around the text.
#pragma once

#include <cstdint>

#include "GxExport.h"
#include "effect/GxECore.h"
#include "effect/GxProperty.h"
#include "effect/filters/ColorRamp.h"

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
// pass, 4 x 0.9 size products of the blur, one colour; work bytes per padded pixel 2.
class GXTEXT_API GxOuterGlow : public GxStopsCore<GxOuterGlowProperty> {
public:
    GxOuterGlow() : GxStopsCore(GXE_STYLE_OUTER_GLOW) {}

    int getOffset() override;
    void doPostProcessing(GxECore::ParamPostProcessing* param) override;

    // Fills 257 straight colours; entry 256 - c is the glow's colour at coverage c. `spread` (0-1)
    // is the share of the table from which the alpha falls off linearly; `curve` is a GxRampCurve.
    // All zero for size 0 or without a record; null does nothing.
    void makeColorLUT(unsigned int* table, float spread, int curve);

    // Grows a packed mask of width x height bytes in place, `passes` times: inner cells become
    // min(255, sum of the 3 x 3 neighbourhood / 4). The first and last row never change, the first
    // and last column become 0 in the rows between. Nothing happens on null, extents below 1 and a
    // failed allocation.
    static void increaseByBoxFilter(unsigned char* mask, int passes, int width, int height);

    // As the outer shadow's weights with centre 128.
    static void computeGaussianWeights(int* weights, int* sum, int radius);
};

}  // namespace GxFontEffect
