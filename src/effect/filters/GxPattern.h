// The pattern: the glyphs filled with a tiled picture.
#pragma once

#include <memory>

#include "GxExport.h"
#include "effect/GxECore.h"
#include "effect/GxProperty.h"
#include "raster/GxBitmap.h"

namespace GxFontEffect {

// Fills the glyphs with a picture, scaled bilinearly and repeated from the top left of the text's
// box.
//
// Reads of the parameter block: `dst` (32-bit layer, premultiplied), `src` (8-bit mask) and
// `textRect`; `mode` and `other` are not read. Reads of the record: `pattern` (four bytes per pixel
// in the order A, R, G, B, straight, rows packed; anything else draws nothing), `scale` (output
// pixels per picture pixel, 0.1-10; below 0.1 draws nothing) and `opacity` (0-1, applied here). The
// core keeps its own copy of the picture, whose address enters the key.
//
// A tile is (int)(scale x extent) pixels; its last column and row blend over to the first. A tile
// that scales to nothing is not repeated, and sample coordinates past the picture are held at its
// last pixel. The filter's weights lose a little light: a plain 255 comes out as 253. Coverage only
// switches pixels on. No margin. Blend: destination over source; uncovered pixels are transparent
// and change nothing.
//
// Null inputs, a box the wrong way round and a failed allocation leave the layer as it was. Cost:
// a blend per covered pixel, and 12 products per pixel of the tile, or of what the text shows of
// it; work bytes: 13 per column and 16 per picture column, none per pixel.
class GXTEXT_API GxPattern : public GxPropertyCore<GxPatternProperty> {
public:
    GxPattern() : GxPropertyCore(GXE_STYLE_PATTERN) {}

    void setProperty(const GxProperty* source) override;
    int getReach() override { return 0; }
    void doPostProcessing(GxECore::ParamPostProcessing* param) override;

private:
    std::unique_ptr<GxBitmap> ownPattern;  // what the record's pattern points to
};

}  // namespace GxFontEffect
