#include "effect/filters/Fill.h"

#include "effect/filters/ColorRamp.h"
#include "raster/BlendCut.h"
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

// The mask's pixels have no negative place in the layer: only its right and lower end are cut.
kernels::BlendArea fillArea(const TextMask& text, const GxBitmap* layer) {
    return cutMaskOntoLayer(text.left + text.firstColumn, text.top + text.firstRow, layer,
                            text.row(text.firstRow), text.lastColumn - text.firstColumn,
                            text.lastRow - text.firstRow, text.stride);
}

kernels::GradientFill gradientFill(const TextMask& text, const GxBitmap* layer,
                                   const std::array<uint32_t, 256>& table,
                                   const WorkPlane<float>& columns) {
    kernels::GradientFill fill;
    fill.area = fillArea(text, layer);
    fill.firstColumn = text.firstColumn;
    fill.firstRow = text.firstRow;
    fill.centreX = static_cast<float>(text.width) * 0.5f;
    fill.centreY = static_cast<float>(text.height) * 0.5f;
    fill.table = table.data();
    fill.columns = columns.data();
    return fill;
}

}  // namespace GxFontEffect
