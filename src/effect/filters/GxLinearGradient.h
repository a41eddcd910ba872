// The linear gradient: the glyphs filled with a colour ramp across the text's box.
#pragma once

#include "GxExport.h"
#include "effect/GxECore.h"
#include "effect/GxProperty.h"
#include "effect/filters/ColorRamp.h"

namespace GxFontEffect {

// Fills the glyphs with colours that change along one direction, centred on the box of the text.
//
// Reads of the parameter block: `dst` (32-bit layer, premultiplied), `src` (8-bit mask) and
// `textRect`; `mode` and `other` are not read. Reads of the record: `angle` (whole degrees,
// counter-clockwise: at 0 the ramp runs to the right, at 90 upwards), `scale` (length of the ramp
// as a multiple of the box's extent along it, 0.1-2; below 0.1 draws nothing), `stopCount` and of
// each stop `color` (0xAARRGGBB, straight) and `position` (0-1, ascending); the opacities are not
// read. Without stops nothing is drawn; the ramp stops moving at the last stop, wherever it lies.
// The core keeps its own copy of the stops.
//
// Coverage only switches pixels on: the stack's order and mix give the soft edges. No margin.
// Blend: destination over source. Pixels of the box outside the bitmap are not drawn.
//
// Null inputs, a box the wrong way round and a failed allocation leave the layer as it was. Cost:
// a sum, a table entry and a blend per covered pixel; work bytes: 4 per column, none per pixel.
class GXTEXT_API GxLinearGradient : public GxStopsCore<GxLinearGradientProperty> {
public:
    GxLinearGradient() : GxStopsCore(GXE_STYLE_LINEAR_GRADIENT) {}

    int getReach() override { return 0; }
    void doPostProcessing(GxECore::ParamPostProcessing* param) override;
};

}  // namespace GxFontEffect
