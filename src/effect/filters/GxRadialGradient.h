// The radial gradient: the glyphs filled with a colour ramp in circles around the text's centre.
#pragma once

#include "GxExport.h"
#include "effect/GxECore.h"
#include "effect/GxProperty.h"
#include "effect/filters/ColorRamp.h"

namespace GxFontEffect {

// Fills the glyphs with colours that change with the distance from the centre of the text's box.
//
// Reads of the parameter block: `dst` (32-bit layer, premultiplied), `src` (8-bit mask) and
// `textRect`; `mode` and `other` are not read. Reads of the record: `scale` (radius of the ramp in
// halves of the box's width, 0.1-2; below 0.1 draws nothing), `stopCount` and of each stop `color`
// (0xAARRGGBB, straight) and `position` (0-1, ascending); the angle and the opacities are not read.
// Without stops nothing is drawn; the ramp stops moving at the last stop, wherever it lies. The
// core keeps its own copy of the stops.
//
// The circles are circles in pixels whatever the box's shape; beyond the ramp its last entry holds.
// Coverage only switches pixels on. No margin. Blend: destination over source; uncovered pixels are
// transparent and change nothing.
//
// Null inputs, a box the wrong way round and a failed allocation leave the layer as it was. Cost: a
// square root, a table entry and a blend per covered pixel; work bytes: 4 per column, none per
// pixel.
class GXTEXT_API GxRadialGradient : public GxStopsCore<GxRadialGradientProperty> {
public:
    GxRadialGradient() : GxStopsCore(GXE_STYLE_RADIAL_GRADIENT) {}

    int getReach() override { return 0; }
    void doPostProcessing(GxECore::ParamPostProcessing* param) override;
};

}  // namespace GxFontEffect
