#include "raster/kernels/GradientRows.h"

#include <algorithm>
#include <cmath>

#include "raster/GxMath.h"

namespace GxFontEffect::kernels {

namespace {

template <typename Index>
void fillRow(const GradientRow& row, float centre, Index index) {
    for (int64_t i = 0; i < row.count; ++i) {
        const float dx = static_cast<float>(row.first + i) - centre;
        row.out[i] = row.mask[i] == 0 ? 0 : row.table[index(dx)];
    }
}

}  // namespace

void linearGradientRowPlain(const GradientRow& row, float rowTerm, float step, float centre) {
    fillRow(row, centre,
            [&](float dx) { return std::clamp(toInt(rowTerm + step * dx), -128, 127) + 128; });
}

void radialGradientRowPlain(const GradientRow& row, float dy, float step, float centre) {
    fillRow(row, centre, [&](float dx) {
        return std::clamp(toInt(step * std::sqrt(dy * dy + dx * dx)), 0, 255);
    });
}

void linearGradientRow(const GradientRow& row, float rowTerm, float step, float centre) {
    linearGradientRowPlain(row, rowTerm, step, centre);
}

void radialGradientRow(const GradientRow& row, float dy, float step, float centre) {
    radialGradientRowPlain(row, dy, step, centre);
}

}  // namespace GxFontEffect::kernels
