// Division of 16-bit numbers by a constant, as a product.
#pragma once

#include <bit>
#include <cstdint>

namespace GxFontEffect::kernels {

// floor(a / divisor) == ((a + lift) x factor) >> (16 + shift), for a <= 65534 and divisors from 2
// to 65535.
//
// With 2^s <= d < 2^(s + 1), let 2^(16 + s) = f d + rest. A factor f + 1 is too large by at most
// (d - rest) / d; that does not reach the next quotient for any 16-bit a when d - rest <= 2^s. Else
// rest < 2^s, and f is too small by so little that one more in `a` makes up for it and never passes
// the next multiple of d.
struct Reciprocal {
    explicit constexpr Reciprocal(uint32_t divisor) {
        const auto bits = static_cast<uint32_t>(std::bit_width(divisor)) - 1;
        if (std::has_single_bit(divisor)) {
            factor = 1 << 15;
            shift = static_cast<int>(bits) - 1;
            return;
        }
        shift = static_cast<int>(bits);
        const uint32_t dividend = uint32_t{1} << (16 + bits);
        const uint32_t below = dividend / divisor;
        const bool roundsUp = (below + 1) * divisor - dividend <= uint32_t{1} << bits;
        factor = static_cast<uint16_t>(roundsUp ? below + 1 : below);
        lift = roundsUp ? 0 : 1;
    }

    uint16_t factor = 0;
    int shift = 0;
    uint16_t lift = 0;
};

}  // namespace GxFontEffect::kernels
