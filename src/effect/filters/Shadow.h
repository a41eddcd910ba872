// What shadows and glows share: Gaussian weights, blur radii and the shift away from the light.
#pragma once

#include <cstdint>

#include "effect/filters/WorkPlane.h"
#include "raster/kernels/SeparableBlur.h"

namespace GxFontEffect {

// Blurs beyond it are refused like a failed allocation: up to here 255 x the sum of the weights
// fits 32 bits.
inline constexpr int64_t kMaxBlurRadius = 65535;

// Of the Gaussian weights of both shadows.
inline constexpr int kShadowCentreWeight = 100;

// Where the 0.5 of the rounding is added. The results differ only where the product is within a
// single-precision step of a half.
enum class WeightRounding { kDouble, kSingle };

// weights[0] = centre; weights[i] = round(centre x exp(-i^2 ln 100 / radius^2)), i = 1 ... radius:
// from the centre's weight down to its hundredth. *sum gets the centre plus twice the rest, the
// total of both sides. `weights` holds radius + 1 entries, one for a radius below 1. Null does
// nothing.
void fillGaussianWeights(int* weights, int* sum, int radius, int centre, WeightRounding rounding);

// (int)(size + 0.5) in double precision, not below 0.
int64_t blurRadiusOf(float size);

// Pixels by which a shadow lies away from the light: to the left at 0 degrees, below at 90.
struct ShadowShift {
    int32_t x = 0;
    int32_t y = 0;
};
ShadowShift shadowShift(float degrees, float distance);

// Memory for the weights of one blur; without memory for a radius past kMaxBlurRadius.
class BlurTaps {
public:
    explicit BlurTaps(int64_t blurRadius)
        : taps(blurRadius <= kMaxBlurRadius ? blurRadius + 1 : -1) {}

    explicit operator bool() const { return static_cast<bool>(taps); }
    // `fill` is one of the filters' computeGaussianWeights.
    kernels::BlurWeights compute(void (*fill)(int*, int*, int)) const {
        kernels::BlurWeights weights;
        weights.taps = taps.data();
        weights.radius = static_cast<int32_t>(taps.width - 1);
        fill(taps.data(), &weights.sum, weights.radius);
        return weights;
    }

private:
    WorkPlane<int> taps;
};

}  // namespace GxFontEffect
