// The inner glow: light from the glyphs' edges inwards.
#pragma once

#include "GxExport.h"
#include "effect/GxECore.h"
#include "effect/GxProperty.h"
#include "effect/filters/Glow.h"

namespace GxFontEffect {

// Lights the text from its edges inwards: the outer glow of the background around the glyphs, from
// the ramp's first colour at the edges to nothing deep inside.
//
// Reads of the parameter block: `dst` (32-bit layer, premultiplied), `src` (8-bit mask) and
// `textRect`; `mode` and `other` are not read. Reads of the record: `size` (pixels; 0 leaves only
// the white frame below, -1 and less draws nothing), `color` (0xAARRGGBB, straight; used without
// stops), `stopCount` and of each stop `color` and `position` (0-1, ascending; the first one's
// counts as 0); the opacities are not read. The ramp stops moving at the last stop, wherever it
// lies. The core keeps its own copy of the stops.
//
// The background of the work area, 2 (size + 1) pixels around the box, is coloured as well, and the
// pixels of its border that the blur does not reach (0.9 (size + 1) on each side) are opaque white,
// deliberately: the stack keeps the glow in the glyphs. The margin is (int)(size + 0.5) on every
// side although nothing is meant to show there. Blend: destination over source.
//
// Null inputs, a box the wrong way round, work memory past its limit and failed allocations leave
// the layer as it was. Cost and work bytes as the outer glow's.
class GXTEXT_API GxInnerGlow : public GxGlowCore<GxInnerGlowProperty> {
public:
    GxInnerGlow() : GxGlowCore(GXE_STYLE_INNER_GLOW) {}

    void doPostProcessing(GxECore::ParamPostProcessing* param) override;
};

}  // namespace GxFontEffect
