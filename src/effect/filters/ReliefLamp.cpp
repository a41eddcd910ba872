#include "effect/filters/ReliefLamp.h"

#include <algorithm>
#include <array>
#include <numeric>

#include "raster/GxMath.h"

namespace GxFontEffect {

namespace {

constexpr int32_t kOne = 16384;  // of sines

// 16384 sin(i degrees), rounded to nearest, i = 0 ... 90. By the series in double precision: no
// value lies near a half.
constexpr std::array<int32_t, 91> makeSines() {
    std::array<int32_t, 91> sines{};
    for (size_t i = 0; i < sines.size(); ++i) {
        const double angle = static_cast<double>(i) * 3.14159265358979323846 / 180.0;
        double term = angle;
        double sine = 0.0;
        for (int n = 1; n < 30; n += 2) {
            sine += term;
            term *= -angle * angle / ((n + 1) * (n + 2));
        }
        sines[i] = toInt(sine * kOne + 0.5);
    }
    return sines;
}

constexpr std::array<int32_t, 91> kSines = makeSines();
static_assert(kSines[1] == 286 && kSines[30] == 8192 && kSines[90] == kOne);
static_assert(std::accumulate(kSines.begin(), kSines.end(), 0) == 946903);

// Of 0 to 449 degrees.
int32_t sine(int degrees) {
    degrees %= 360;
    const int folded = degrees % 180 > 90 ? 180 - degrees % 180 : degrees % 180;
    const int32_t value = kSines[static_cast<size_t>(folded)];
    return degrees < 180 ? value : -value;
}

int32_t cosine(int degrees) {
    return sine(degrees + 90);
}

// Whole degrees of 0 to period - 1.
int wrapped(float degrees, int period) {
    const int remainder = toInt(degrees) % period;
    return remainder < 0 ? remainder + period : remainder;
}

// Of a product of two sines.
float component(int32_t product) {
    return static_cast<float>(product) * (1.0f / (float{kOne} * kOne));
}

// Steps of light, from level ground to the whole range. Shade takes three quarters of the range
// for the first unlit slope, so that facets turned away further stay apart; light that comes from
// high up, and leaves little to catch, is amplified four times at most.
constexpr float kShaded = 21760.0f;
constexpr float kLeastHeadroom = 0.25f;

}  // namespace

kernels::ReliefLighting reliefLighting(const GxBevelProperty& record, const ReliefShape& shape) {
    const int angle = wrapped(record.angle, 360);
    const int altitude = wrapped(record.altitude, 90);
    const bool isDown = record.direction == GXE_RELIEF_DOWN;
    // The blur of a smooth relief takes about a third of the slope away.
    const int32_t steepness = shape.depth * (isSmooth(record) ? 3 : 2);

    kernels::ReliefLighting light;
    light.steepness = static_cast<float>(isDown ? steepness : -steepness);
    light.x = component(cosine(angle) * cosine(altitude));
    light.y = component(-sine(angle) * cosine(altitude));
    light.z = component(sine(altitude) * kOne);
    const float nz = kernels::kNormalHeight;
    light.flat = (nz * light.z) / fsqrt(nz * nz);
    light.lit = kernels::kMostLight / std::max(1.0f - light.z, kLeastHeadroom);
    light.shaded = kShaded;
    return light;
}

}  // namespace GxFontEffect
