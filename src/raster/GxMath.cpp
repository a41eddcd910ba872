#include "raster/GxMath.h"

#include <bit>

namespace GxFontEffect {

float fsqrt(float v) {
    // Arithmetic shift of the bits, then an unsigned subtraction: it may wrap for negative input.
    const auto bits = std::bit_cast<int32_t>(v);
    const auto y = std::bit_cast<float>(0x5F3759DFu - static_cast<uint32_t>(bits >> 1));
    return v * y * (1.5f - 0.5f * v * y * y);
}

namespace {

constexpr std::array<float, GX_INT_SQRT_TABLE_SIZE> makeSqrtTable() {
    std::array<float, GX_INT_SQRT_TABLE_SIZE> table{};
    // round(1000 sqrt(i)), found in integers: the largest t with (2t - 1)^2 <= 4,000,000 i.
    int64_t thousandths = 0;
    for (int i = 0; i < GX_INT_SQRT_TABLE_SIZE; ++i) {
        while ((2 * thousandths + 1) * (2 * thousandths + 1) <= int64_t{4000000} * i) ++thousandths;
        table[static_cast<size_t>(i)] =
            static_cast<float>(static_cast<double>(thousandths) / 1000.0);
    }
    return table;
}

}  // namespace

constinit const std::array<float, GX_INT_SQRT_TABLE_SIZE> GX_INT_SQRT_TABLE = makeSqrtTable();

}  // namespace GxFontEffect
