// The bevel: lit and shaded slopes along the text's edges.
#pragma once

#include "GxExport.h"
#include "effect/GxECore.h"
#include "effect/GxProperty.h"

namespace GxFontEffect {

// Makes the text look cut from thick stuff: slopes rise from its edges inwards (`kind` 1) or up to
// them from outside (any other value), and the sides that face the light are lit, the others
// shaded. Level ground keeps its colour.
//
// Reads of the parameter block: `dst` (32-bit layer, premultiplied), `src` (8-bit mask) and
// `textRect`; `mode` and `other` are not read. Reads of the record: `kind`, `size` (width of the
// slope in pixels, rounded, at most 250), `depth` (steepness, 0-10; 1 is a slope of 45 degrees for
// a chisel), `technique` (1 chisel hard: flat facets with crisp ridges; 2 chisel soft: rounded
// ridges; any other value smooth: round all over), `direction` (1 down, any other value up),
// `soften` (reach of the light's blur, 0-16 pixels), `angle` (where the light comes from,
// counter-clockwise: 0 right, 90 above), `altitude` (of the light above the picture, 0-89 degrees),
// `highlightColor` and `shadowColor` (0xAARRGGBB, straight, with their own opacities as alpha) and
// `opacity`, which both alphas are scaled by; `color` and the other opacities are not read. Size or
// depth 0: nothing.
//
// The slope lies over the text, where there is coverage, or beneath it, where that is not full.
// Margin: 0 inside, else the slope's width, the softening and 1. Colours are laid on normally,
// highlight first. Blend: destination over source.
//
// Null inputs, a box the wrong way round, work memory past its limit and failed allocations leave
// the layer as it was. Cost per padded pixel: some steps for each, a search for the nearest edge on
// the slope, and the light there: about twice as much for a slope of 250 pixels as for one of 3.
// Work bytes: a little over 9 per padded pixel, plus 64 per pixel of the longer side.
class GXTEXT_API GxBevel : public GxPropertyCore<GxBevelProperty> {
public:
    GxBevel() : GxPropertyCore(GXE_STYLE_BEVEL) {}

    int getOffset() override;
    int getReach() override { return getOffset(); }
    void doPostProcessing(GxECore::ParamPostProcessing* param) override;
};

}  // namespace GxFontEffect
