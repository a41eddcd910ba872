#include "effect/filters/ColorRamp.h"

#include <algorithm>
#include <cmath>

#include "raster/GxMath.h"

namespace GxFontEffect {

namespace {

constexpr int kLast = kRampSize - 1;
constexpr float kStep = 0.00390625f;  // 1 / 256

float curved(float t, int curve) {
    switch (curve) {
        case GXE_CURVE_ROOT:
            return std::sqrt(t);
        case GXE_CURVE_SQUARE:
            return t * t;
        default:
            return t;
    }
}

// Two channels per multiplication; f is 1 to 255.
uint32_t mixColors(uint32_t c0, uint32_t c1, uint32_t f) {
    constexpr uint32_t kLanes = 0x00FF00FFu;
    const uint32_t redBlue = ((c1 & kLanes) * f + (c0 & kLanes) * (256 - f)) >> 8;
    const uint32_t alphaGreen = (c1 >> 8 & kLanes) * f + (c0 >> 8 & kLanes) * (256 - f);
    return (redBlue & kLanes) | (alphaGreen & ~kLanes);
}

}  // namespace

void fillColorRamp(uint32_t* table, const GxGradient* stops, int stopCount, float firstPosition,
                   int curve) {
    if (!table || !stops || stopCount < 1) return;
    if (stopCount == 1) {
        std::fill_n(table, kRampSize, stops[0].color);
        return;
    }
    table[0] = stops[0].color;
    table[kLast] = stops[stopCount - 1].color;
    float p0 = firstPosition;
    int next = 1;  // the stop that ends the segment
    for (int i = 1; i < kLast; ++i) {
        const float u = curved(static_cast<float>(i) * kStep, curve);
        if (stops[next].position < u && next + 1 < stopCount) {
            p0 = stops[next].position;
            ++next;
        }
        const float span = stops[next].position - p0;
        const int f = toInt((u - p0) / span * 256.0f);
        const uint32_t c0 = stops[next - 1].color;
        const uint32_t c1 = stops[next].color;
        table[i] = f < 1 ? c0 : f >= 256 ? c1 : mixColors(c0, c1, static_cast<uint32_t>(f));
    }
}

}  // namespace GxFontEffect
