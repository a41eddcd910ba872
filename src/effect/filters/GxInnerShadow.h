// The inner shadow: the edges' shade within the glyphs, as if they were cut out of the paper.
#pragma once

#include "GxExport.h"
#include "effect/GxECore.h"
#include "effect/GxProperty.h"

namespace GxFontEffect {

// Shades the inside of the glyphs with the background around them: its inverse coverage, shifted
// away from the light, blurred and tinted.
//
// Reads of the parameter block: `dst` (32-bit layer, premultiplied), `src` (8-bit mask),
// `textRect` and `choked` (a mask whose background is blurred in place of `src`'s); `mode` and
// `other` are not read. Reads of the record: `angle` of the light (whole degrees; at 0 the shade
// moves to the left, at 90 down), `distance` (pixels), `size` (blur radius, pixels; below 0 acts as
// 0) and `color` (0xAARRGGBB, premultiplied by the stack); `opacity` is not read.
//
// Coverage decides inside or outside only, so partly covered edge pixels get the full shade. When
// the shift exceeds the blur, rows and columns of the box that see nothing but background are
// shaded whole, outside the glyphs too: the stack keeps that in the glyphs. A shift past the box
// shades every glyph pixel in proportion to its coverage.
//
// No margin. Blend: destination over source. Null inputs, a box the wrong way round, sizes past
// 65,535 or the work memory's limit and failed allocations leave the layer as it was. Cost as
// the outer shadow's, per pixel of the box; work bytes per pixel of the box 1, plus one per pixel
// of 2 radius rows, plus 128 per pixel of the longer side with twice the radius (192 from a radius
// of 32 on).
class GXTEXT_API GxInnerShadow : public GxPropertyCore<GxInnerShadowProperty> {
public:
    GxInnerShadow() : GxPropertyCore(GXE_STYLE_INNER_SHADOW) {}

    // Reduces the angle as the record's constructor does.
    void setProperty(const GxProperty* source) override;
    int getReach() override { return 0; }
    void doPostProcessing(GxECore::ParamPostProcessing* param) override;

    // As the outer shadow's, with the half of the rounding added in single precision.
    static void computeGaussianWeights(int* weights, int* sum, int radius);
};

}  // namespace GxFontEffect
