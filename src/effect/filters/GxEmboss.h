// The emboss: the text raised from its background, or stitched into it.
#pragma once

#include "GxExport.h"
#include "effect/GxECore.h"
#include "effect/GxProperty.h"

namespace GxFontEffect {

// Makes the text look pressed out of its background: one slope across the edge (any other `kind`
// than 1), or a pillow (`kind` 1), whose edge is a groove from which both sides rise. Half of the
// slope lies on each side. The sides that face the light are lit, the others shaded.
//
// Reads of the parameter block: `dst` and `other` (32-bit layers, premultiplied), `src` (8-bit
// mask) and `textRect`; `mode` is not read. Reads of the record: `kind`, `size` (width of the slope
// in pixels, rounded, at most 250), `depth` (steepness, 0-10; 1 is a slope of 45 degrees for a
// chisel), `technique` (1 chisel hard: flat facets with crisp ridges; 2 chisel soft: rounded
// ridges; any other value smooth: round all over), `direction` (1 down, any other value up),
// `soften` (reach of the light's blur, 0-16 pixels), `angle` (where the light comes from,
// counter-clockwise: 0 right, 90 above), `altitude` (of the light above the picture, 0-89 degrees),
// `highlightColor` and `shadowColor` (0xAARRGGBB, straight, with their own opacities as alpha) and
// `opacity`, which both alphas are scaled by; `color` and the other opacities are not read. Size or
// depth 0: nothing.
//
// With two layers `dst` gets what lies beneath the text, where coverage is not full, and `other`
// what lies over it, where there is coverage; without `other` all of it goes into `dst`. Margin:
// half of the slope's width, rounded up, the softening and 1. Colours are laid on normally,
// highlight first. Blend: destination over source.
//
// Null inputs, a box the wrong way round, work memory past its limit and failed allocations leave
// the layers as they were. Cost per padded pixel: some steps for each, a search for the nearest
// edge on the slope, and the light there: about twice as much for a slope of 250 pixels as for one
// of 3. Work bytes: a little over 9 per padded pixel, plus 64 per pixel of the longer side.
class GXTEXT_API GxEmboss : public GxPropertyCore<GxEmbossProperty> {
public:
    GxEmboss() : GxPropertyCore(GXE_STYLE_EMBOSS) {}

    int getOffset() override;
    int getReach() override { return getOffset(); }
    void doPostProcessing(GxECore::ParamPostProcessing* param) override;
};

}  // namespace GxFontEffect
