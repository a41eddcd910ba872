// What the two glows share.
#pragma once

#include <cstdint>

#include "effect/GxECore.h"
#include "effect/GxProperty.h"
#include "effect/filters/ColorRamp.h"
#include "raster/GxMath.h"

namespace GxFontEffect {

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

// Around the text, or from its edges inwards: the same on the inverse of the mask.
enum class GlowSide { kOuter, kInner };

// The whole of a glow's doPostProcessing.
void renderGlow(GxECore::ParamPostProcessing* param, const GxOuterGlowProperty* record,
                GlowSide side);

// Pixels around the text that a glow of `size` pixels works on.
int glowReach(float size);

// The operations that both glows offer.
template <typename Property>
class GxGlowCore : public GxStopsCore<Property> {
public:
    int getOffset() override { return this->property ? toInt(this->property->size + 0.5f) : 0; }
    int getReach() override { return this->property ? glowReach(this->property->size) : 0; }

    // Fills 257 straight colours; entry 256 - c is the glow's colour at coverage c. `spread` (0-1)
    // is the share of the table from which the alpha falls off linearly; `curve` is a GxRampCurve.
    // All zero for size 0 or without a record; null does nothing.
    void makeColorLUT(unsigned int* table, float spread, int curve) {
        makeGlowTable(this->property.get(), table, spread, curve);
    }

    // Grows a packed mask of width x height bytes in place, `passes` times: inner cells become
    // min(255, sum of the 3 x 3 neighbourhood / 4). The first and last row never change, the first
    // and last column become 0 in the rows between. Nothing happens on null, extents below 1 and a
    // failed allocation.
    static void increaseByBoxFilter(unsigned char* mask, int passes, int width, int height) {
        growWithOwnMemory(mask, passes, width, height);
    }

protected:
    explicit GxGlowCore(int effectStyle) : GxStopsCore<Property>(effectStyle) {}
};

}  // namespace GxFontEffect
