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

    // 1. Colours.
    const auto table = makeGradientTable(*property);
    // 2. Rows: entry 256 lies half a width from the centre.
    const auto width = static_cast<float>(text.width);
    const auto height = static_cast<float>(text.height);
    const float step = (256.0f / width + 256.0f / width) / property->scale;
    paintFill(text, param->dst,
              [&](int64_t y, int64_t first, int64_t count, const uint8_t* mask, uint32_t* out) {
                  const float dy = static_cast<float>(y) - height * 0.5f;
                  kernels::radialGradientRow({mask, out, first, count, table.data()}, dy, step,
                                             width * 0.5f);
              });
}

}  // namespace GxFontEffect
