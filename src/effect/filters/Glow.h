// What the two glows share.
#pragma once

#include <cstdint>

#include "effect/GxProperty.h"
#include "effect/filters/ColorRamp.h"
#include "effect/filters/Shadow.h"
#include "effect/filters/TextMask.h"
#include "effect/filters/WorkPlane.h"

namespace GxFontEffect {

// The coverage from which the glow's alpha falls, as a share of the table.
inline constexpr float kGlowSpread = 0.3f;

// Work figures of a glow of `size` pixels over a text.
struct GlowGeometry {
    GlowGeometry(const TextMask& text, float size);

    int64_t reach;    // size truncated, plus 1; 0 or less: nothing to draw
    int64_t padding;  // pixels around the text on each side: 2 reach
    int64_t width;    // of the work planes
    int64_t height;
    int64_t passes;  // of growth: 0.475 reach, at least 1
    int64_t radius;  // of the blur: 0.9 reach
};

// All memory of one glow; test it before use.
struct GlowPlanes {
    explicit GlowPlanes(const GlowGeometry& geometry);
    explicit operator bool() const {
        return mask && blurred && rows && pixels && static_cast<bool>(taps);
    }

    WorkPlane<uint8_t> mask;
    WorkPlane<uint8_t> blurred;
    WorkPlane<uint8_t> rows;     // two, for the growth and the blur
    WorkPlane<uint32_t> pixels;  // one row of the result
    BlurTaps taps;
};

// Weights with centre 128, the half of the rounding added in double precision.
void computeGlowWeights(int* weights, int* sum, int radius);

// Fills the 257 entries of `table` with the glow's straight colours, 256 - coverage being the
// index: the ramp of the record's stops (its colour without stops, from position 0 whatever the
// first stop's), the alpha falling from entry s = (int)(256 spread) to nothing at 256 by the factor
// (int)((256 - i) x 256 / (256 - s)) >> 8. A spread of 1 and more acts as 0.99, of 0 and less or
// NaN as 0.01. Size 0 or no record: all transparent. A null table does nothing.
void makeGlowTable(const GxOuterGlowProperty* record, uint32_t* table, float spread, int curve);

// Growth in place with memory of its own: when there is none the mask stays as it is. Null and
// extents below 1 do nothing.
void growWithOwnMemory(unsigned char* mask, int passes, int width, int height);

// Lays the blurred coverage, in the colours of `table`, beneath what the layer holds. With
// `whiteFrame` the cells that the blur did not reach, `radius` on each side, are opaque white.
void paintGlow(const TextMask& text, const GlowGeometry& geometry, const GlowPlanes& planes,
               const uint32_t* table, bool whiteFrame, const GxBitmap* layer);

}  // namespace GxFontEffect
