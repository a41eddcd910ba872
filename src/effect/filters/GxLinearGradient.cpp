#include "effect/filters/GxLinearGradient.h"

#include <math.h>  // sincosf, which <cmath> lacks

#include "effect/filters/Fill.h"
#include "raster/kernels/GradientRows.h"

namespace GxFontEffect {

// The fill in steps:
//   1. turn the stops into a table of 256 colours;
//   2. find the direction and the length of the ramp in the box;
//   3. project every covered pixel onto it and lay its colour beneath the layer.

namespace {

// Radians per degree, negated: angles turn counter-clockwise on a screen whose y grows downwards.
constexpr float kRadians = -0.01745328f;

// Table entries per pixel along each axis.
struct Steps {
    float x;
    float y;
};

Steps stepsOf(float degrees, float scale, float width, float height) {
    const float angle = degrees * kRadians;
    float sine = 0.0f;
    float cosine = 0.0f;
    sincosf(angle, &sine, &cosine);
    // The direction leaves the box through its sides, or through top and bottom.
    const bool throughSides = fabsf(tanf(angle)) < height / width;
    const float length = throughSides ? width / fabsf(cosine) : height / fabsf(sine);
    const float step = 256.0f / scale / length;
    return {cosine * step, sine * step};
}

}  // namespace

void GxLinearGradient::doPostProcessing(GxECore::ParamPostProcessing* param) {
    const TextMask text(param);
    if (!property || !text.isValid()) return;
    if (!(property->scale >= kMinFillScale) || !property->stops || property->stopCount < 1) return;

    const WorkPlane<float> columns(text.lastColumn - text.firstColumn, 1, Contents::kAny);
    if (!isAllocated(*param, columns)) return;

    // 1. Colours.
    const auto table = makeGradientTable(*property);
    // 2. Direction.
    const Steps steps = stepsOf(property->angle, property->scale, static_cast<float>(text.width),
                                static_cast<float>(text.height));
    // 3. Pixels.
    kernels::linearGradientRows(gradientFill(text, param->dst, table, columns), steps.x, steps.y);
}

}  // namespace GxFontEffect
