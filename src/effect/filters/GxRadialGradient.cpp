#include "effect/filters/GxRadialGradient.h"

#include "effect/filters/Fill.h"
#include "raster/kernels/GradientRows.h"

namespace GxFontEffect {

// The fill in steps:
//   1. turn the stops into a table of 256 colours;
//   2. look up every covered pixel by its distance from the centre and lay the colour beneath the
//      layer.

void GxRadialGradient::doPostProcessing(GxECore::ParamPostProcessing* param) {
    const TextMask text(param);
    if (!property || !text.isValid()) return;
    if (!(property->scale >= kMinFillScale) || !property->stops || property->stopCount < 1) return;

    const WorkPlane<float> columns(text.lastColumn - text.firstColumn, 1, Contents::kAny);
    if (!isAllocated(*param, columns)) return;

    // 1. Colours.
    const auto table = makeGradientTable(*property);
    // 2. Pixels: entry 256 lies half a width from the centre.
    const auto width = static_cast<float>(text.width);
    const float step = (256.0f / width + 256.0f / width) / property->scale;
    kernels::radialGradientRows(gradientFill(text, param->dst, table, columns), step);
}

}  // namespace GxFontEffect
