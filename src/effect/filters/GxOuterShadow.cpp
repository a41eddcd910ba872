#include "effect/filters/GxOuterShadow.h"

#include <algorithm>
#include <cstdlib>

#include "effect/filters/TextMask.h"
#include "effect/filters/WorkPlane.h"
#include "raster/GxBlender.h"
#include "raster/GxMath.h"

namespace GxFontEffect {

// The shadow in steps:
//   1. leave when it falls wholly beside the layer;
//   2. copy the mask into a plane padded by twice the radius, so that every cell that the blur
//      reaches has a full window;
//   3. blur columns, then rows;
//   4. tint the layer through the result, shifted.

namespace {

bool missesLayer(const TextMask& text, const ShadowShift& shift, int64_t padding,
                 const GxBitmap& layer) {
    return text.left + text.width + padding + shift.x < 0 ||
           text.left - padding + shift.x >= int64_t{layer.width} ||
           text.top + text.height + padding + shift.y < 0 ||
           text.top - padding + shift.y >= int64_t{layer.height};
}

// Margins on the side that a positive shift moves away from, and on the one it moves to.
int marginAgainst(int64_t blur, int64_t shift) {
    return saturateInt(shift < 0 ? blur - shift : std::max<int64_t>(blur - shift, 0));
}

int marginTowards(int64_t blur, int64_t shift) {
    return saturateInt(shift < 0 ? std::max<int64_t>(blur + shift, 0) : blur + shift);
}

// Not the blur's radius: rounded in single precision, and below 0 for a negative size.
int32_t marginBlur(const GxOuterShadowProperty* record) {
    return record ? toInt(record->size + 0.5f) : 0;
}

}  // namespace

void GxOuterShadow::computeGaussianWeights(int* weights, int* sum, int radius) {
    fillGaussianWeights(weights, sum, radius, kShadowCentreWeight, WeightRounding::kDouble);
}

void GxOuterShadow::setProperty(const GxProperty* source) {
    GxPropertyCore::setProperty(source);
    if (property) shift = shadowShift(property->angle, property->distance);
}

int GxOuterShadow::getLeftOffset() {
    return marginAgainst(marginBlur(property.get()), shift.x);
}
int GxOuterShadow::getRightOffset() {
    return marginTowards(marginBlur(property.get()), shift.x);
}
int GxOuterShadow::getTopOffset() {
    return marginAgainst(marginBlur(property.get()), shift.y);
}
int GxOuterShadow::getBottomOffset() {
    return marginTowards(marginBlur(property.get()), shift.y);
}

int GxOuterShadow::getReach() {
    if (!property) return 0;
    const int64_t shifted = std::max(std::abs(int64_t{shift.x}), std::abs(int64_t{shift.y}));
    return saturateInt(blurRadiusOf(property->size) + shifted);
}

void GxOuterShadow::doPostProcessing(GxECore::ParamPostProcessing* param) {
    const TextMask text(param);
    if (!property || !text.isValid()) return;
    const int64_t radius = blurRadiusOf(property->size);
    const int64_t padding = 2 * radius;

    // 1. Nothing to see.
    if (missesLayer(text, shift, padding, *param->dst)) return;

    // 2. The padded mask.
    const int64_t evenHeight = text.height + text.height % 2;
    const WorkPlane<uint8_t> plane(text.width + 2 * padding, evenHeight + 2 * padding);
    const WorkPlane<uint8_t> scratch(kernels::blurScratchBytes(plane.width, plane.height, radius),
                                     1, Contents::kAny);
    const BlurTaps taps(radius);
    if (!isAllocated(*param, plane, scratch, taps)) return;
    text.copyTo(plane.row(padding) + padding, plane.width);

    // 3. The blur, in place: its first cell is the one `radius` left of and above the text's.
    kernels::blurPaddedPlane(plane.data(), plane.width, plane.height,
                             taps.compute(computeGaussianWeights), scratch.data());

    // 4. The tint.
    drawTinted(text.left - radius + shift.x, text.top - radius + shift.y, param->dst, plane.data(),
               plane.width - padding, text.height + padding, plane.width, property->color,
               GXE_BLEND_DST_OVER);
}

}  // namespace GxFontEffect
