// Blending as it is written down, pixel by pixel.
#pragma once

#include <array>
#include <cmath>
#include <cstdint>

namespace gxtest {

// Text of an alpha over a byte of a mask, by its coverage: what is there moves towards 255.
inline uint8_t overMask(uint8_t dest, uint8_t coverage, int alpha) {
    const auto div255 = [](int v) { return (v + 127) / 255; };
    if (alpha == 255) return static_cast<uint8_t>(div255(dest * (255 - coverage) + 255 * coverage));
    const int source = div255(alpha * coverage);
    return static_cast<uint8_t>(source + div255(dest * (255 - source)));
}

// Unpremultiplied.
using Pixel = std::array<uint8_t, 4>;

// Source over, channel by channel in single precision, before the one rounding: 0 to 255.
inline std::array<float, 4> sourceOverExactly(const Pixel& source, const Pixel& dest) {
    constexpr float kUnit = 1 / 255.0f;
    const float sa = source[3] * kUnit;
    const float da = dest[3] * kUnit;
    const float a = sa + da * (1 - sa);
    const float inverse = a == 0 ? 0 : 1 / a;
    std::array<float, 4> out;
    for (int i = 0; i < 4; ++i) {
        const float s = source[i] * kUnit * sa;
        const float d = dest[i] * kUnit * da;
        const float v = i == 3 ? a : (s + d * (1 - sa)) * inverse;
        out[i] = std::fmin(std::fmax(v, 0.0f), 1.0f) * 255;
    }
    return out;
}

inline Pixel sourceOver(const Pixel& source, const Pixel& dest) {
    const std::array<float, 4> exact = sourceOverExactly(source, dest);
    Pixel out;
    for (int i = 0; i < 4; ++i) out[i] = static_cast<uint8_t>(std::nearbyint(exact[i]));
    return out;
}

}  // namespace gxtest
