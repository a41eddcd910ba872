#include "effect/filters/Fill.h"

#include "effect/filters/ColorRamp.h"
#include "raster/kernels/BlendPixel.h"

namespace GxFontEffect {

std::array<uint32_t, 256> makeGradientTable(const GxLinearGradientProperty& gradient) {
    std::array<uint32_t, kRampSize> ramp{};
    fillColorRamp(ramp.data(), gradient.stops, gradient.stopCount,
                  gradient.stops ? gradient.stops[0].position : 0.0f, GXE_CURVE_LINEAR);
    std::array<uint32_t, 256> table;
    for (size_t i = 0; i < table.size(); ++i) table[i] = kernels::premultiplied(ramp[i]);
    return table;
}

}  // namespace GxFontEffect
