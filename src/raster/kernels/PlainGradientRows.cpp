#include "raster/kernels/GradientRows.h"

#include <algorithm>
#include <cmath>

#include "raster/GxMath.h"

namespace GxFontEffect::kernels::plain {

namespace {

// entry(dx, dy) is the pixel's place in the table.
template <typename Entry>
void drawPixels(const GradientFill& fill, Entry entry) {
    const BlendArea& area = fill.area;
    for (int64_t y = 0; y < static_cast<int64_t>(area.height); ++y) {
        const uint8_t* mask = area.source + y * area.sourceStride;
        auto* out = reinterpret_cast<Rgba*>(area.destination + y * area.destinationStride);
        const float dy = static_cast<float>(fill.firstRow + y) - fill.centreY;
        for (int64_t x = 0; x < static_cast<int64_t>(area.width); ++x) {
            if (mask[x] == 0) continue;
            const float dx = static_cast<float>(fill.firstColumn + x) - fill.centreX;
            out[x] = dstOver32(out[x], fromWord(fill.table[entry(dx, dy)]));
        }
    }
}

}  // namespace

void linearGradientRows(const GradientFill& fill, float stepX, float stepY) {
    drawPixels(fill, [=](float dx, float dy) {
        return std::clamp(toInt(stepY * dy + stepX * dx), -128, 127) + 128;
    });
}

void radialGradientRows(const GradientFill& fill, float step) {
    drawPixels(fill, [=](float dx, float dy) {
        return std::clamp(toInt(step * std::sqrt(dy * dy + dx * dx)), 0, 255);
    });
}

}  // namespace GxFontEffect::kernels::plain
