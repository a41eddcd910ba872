#include "effect/filters/Shadow.h"

#include <math.h>  // sincosf, which <cmath> lacks

#include <algorithm>
#include <limits>

#include "raster/GxMath.h"

namespace GxFontEffect {

namespace {

// ln 100: the weight falls from 100 % at the centre to 1 % at the radius.
constexpr float kLn100 = 4.60517f;
// Five decimals of pi are part of the arithmetic: more would move shifts by a pixel.
constexpr float kPi = 3.14159f;

int roundHalfAway(float v) {
    return toInt(v > 0.0f ? v + 0.5f : v - 0.5f);
}

}  // namespace

void fillGaussianWeights(int* weights, int* sum, int radius, int centre, WeightRounding rounding) {
    if (!weights || !sum) return;
    weights[0] = centre;
    int64_t total = centre;
    const auto b = static_cast<float>(radius);
    for (int64_t i = 1; i <= radius; ++i) {
        const float exponent = static_cast<float>(-(i * i)) / (b * b / kLn100);
        const float weight = expf(exponent) * static_cast<float>(centre);
        weights[i] = rounding == WeightRounding::kDouble ? toInt(static_cast<double>(weight) + 0.5)
                                                         : toInt(weight + 0.5f);
        total += 2 * int64_t{weights[i]};
    }
    *sum = static_cast<int>(std::min<int64_t>(total, std::numeric_limits<int>::max()));
}

int64_t blurRadiusOf(float size) {
    return std::max(toInt(static_cast<double>(size) + 0.5), 0);
}

ShadowShift shadowShift(float degrees, float distance) {
    const float angle = degrees * kPi / 180.0f;
    float sine = 0.0f;
    float cosine = 0.0f;
    sincosf(angle, &sine, &cosine);
    return {roundHalfAway(distance * -cosine), roundHalfAway(distance * sine)};
}

}  // namespace GxFontEffect
