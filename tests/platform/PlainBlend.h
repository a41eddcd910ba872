// Source over on unpremultiplied pixels, channel by channel in single precision.
#pragma once

#include <array>
#include <cmath>
#include <cstdint>

namespace gxtest {

using Pixel = std::array<uint8_t, 4>;

// Before the one rounding: 0 to 255.
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
