// The text fill.
#pragma once

#include "GxExport.h"
#include "effect/GxECore.h"
#include "effect/GxProperty.h"

namespace GxFontEffect {

// Fills the glyphs with the record's colour, which the stack has premultiplied; the record's
// opacity is not read.
//
// Reads `dst` (32-bit layer), `src` (8-bit mask, drawn whole at 0, 0) and `mode` of the parameter
// block. In single-layer mode it draws with GXE_BLEND_OTHER: soft edges weaken what effects over
// the text have painted there. With two layers every touched pixel gets the full colour
// (GXE_BLEND_DST_OVER_NSA), since the final mix applies the coverage. Needs no margin. Does nothing
// without a block, record or bitmap. Cost: one blend per pixel, no work memory.
class GXTEXT_API GxText : public GxPropertyCore<GxTextProperty> {
public:
    GxText() : GxPropertyCore(GXE_STYLE_TEXT) {}

    int getReach() override { return 0; }
    void doPostProcessing(GxECore::ParamPostProcessing* param) override;
};

}  // namespace GxFontEffect
