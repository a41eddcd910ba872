// The last step of the blur kernels: from the difference of neighbouring sums to means, in vectors.
// Included once per target.
//
// 16-bit lanes stand in pairs of vectors, in the order in which InterleaveLower and InterleaveUpper
// put a vector of bytes.
#if defined(GX_BLUR_MEANS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef GX_BLUR_MEANS_INL_H
#undef GX_BLUR_MEANS_INL_H
#else
#define GX_BLUR_MEANS_INL_H
#endif

#include <hwy/highway.h>

#include "raster/kernels/PixelVector-inl.h"
#include "raster/kernels/Reciprocal.h"
#include "raster/kernels/SeparableBlur.h"

#if !GX_SIMD_IS_PLAIN

HWY_BEFORE_NAMESPACE();
namespace GxFontEffect::kernels::HWY_NAMESPACE {

inline constexpr hn::ScalableTag<int16_t> dSigned16;
inline constexpr hn::ScalableTag<int32_t> dSigned32;
inline constexpr hn::ScalableTag<float> dFloat;
using S16 = hn::Vec<decltype(dSigned16)>;
using S32 = hn::Vec<decltype(dSigned32)>;
using F32 = hn::Vec<decltype(dFloat)>;

inline constexpr int64_t kLanes = hn::MaxLanes(d8);
static_assert(kLanes <= kBlurStripWidth);

// The lanes of a vector of bytes, widened.
struct Wide {
    V16 lower;
    V16 upper;
};

HWY_INLINE Wide widen(V8 v) {
    const V8 zero = hn::Zero(d8);
    return {lanes16(hn::InterleaveLower(d8, v, zero)), lanes16(hn::InterleaveUpper(d8, v, zero))};
}

HWY_INLINE V8 narrow(V16 lower, V16 upper) {
#if HWY_TARGET == HWY_AVX3
    return V8{_mm512_packus_epi16(lower.raw, upper.raw)};
#elif HWY_TARGET == HWY_AVX2
    return V8{_mm256_packus_epi16(lower.raw, upper.raw)};
#elif HWY_TARGET == HWY_NEON
    return V8(vcombine_u8(vmovn_u16(lower.raw), vmovn_u16(upper.raw)));
#else
    return V8{_mm_packus_epi16(lower.raw, upper.raw)};
#endif
}

#if HWY_TARGET == HWY_NEON

// Sums of neighbouring lanes, those of `a` first; they may wrap.
HWY_INLINE V16 sumsOfPairs(V16 a, V16 b) {
#if HWY_ARCH_ARM_A64
    return V16(vpaddq_u16(a.raw, b.raw));
#else
    return V16(vcombine_u16(vpadd_u16(vget_low_u16(a.raw), vget_high_u16(a.raw)),
                            vpadd_u16(vget_low_u16(b.raw), vget_high_u16(b.raw))));
#endif
}

#endif

// floor(a / S) for 0 <= a <= 255 S.
//
// Up to a sum S of 2^14, a + 0.5 is exact in single precision, and at least 0.5 / S away from S
// times any whole number; the errors of 1 / S and of the product add up to less than 256 x 2^-23,
// which is below 0.5 / S. So the product, truncated, is the quotient. Beyond, it is off by one at
// most, which the remainder shows.
class Quotient {
public:
    explicit HWY_INLINE Quotient(int32_t sum)
        : divisor(hn::Set(dSigned32, sum)),
          inverse(hn::Set(dFloat, 1.0f / static_cast<float>(sum))),
          isSmall(sum <= 1 << 14) {}

    HWY_INLINE S32 operator()(S32 a) const {
        const F32 lifted = hn::Add(hn::ConvertTo(dFloat, a), hn::Set(dFloat, 0.5f));
        const S32 quotient = hn::ConvertTo(dSigned32, hn::Mul(lifted, inverse));
        if (isSmall) return quotient;
        const S32 isBelow =
            hn::VecFromMask(dSigned32, hn::Lt(rest(a, quotient), hn::Zero(dSigned32)));
        const S32 isInside = hn::VecFromMask(dSigned32, hn::Lt(rest(a, quotient), divisor));
        // True is -1: of a quotient that is right, both cancel against the 1.
        return hn::Add(hn::Add(quotient, hn::Set(dSigned32, 1)), hn::Add(isBelow, isInside));
    }

    HWY_INLINE S32 rest(S32 a, S32 quotient) const {
        return hn::Sub(a, hn::Mul(quotient, divisor));
    }

private:
    S32 divisor;
    F32 inverse;
    bool isSmall;
};

// 32-bit totals of 16-bit lanes: those at even and at odd places.
struct Totals {
    S32 even;
    S32 odd;

    HWY_INLINE Totals() : even(hn::Zero(dSigned32)), odd(hn::Zero(dSigned32)) {}

    HWY_INLINE void add(S16 difference) {
        const S32 pairs = hn::BitCast(dSigned32, difference);
        even = hn::Add(even, hn::ShiftRight<16>(hn::ShiftLeft<16>(pairs)));
        odd = hn::Add(odd, hn::ShiftRight<16>(pairs));
    }
    // Products of cells and a weight of 257 at most.
    HWY_INLINE void addProducts(V16 cells, V16 weight) {
        const V32 pairs = hn::BitCast(d32, hn::Mul(cells, weight));
        even = hn::Add(even, hn::BitCast(dSigned32, hn::And(pairs, hn::Set(d32, 0xFFFF))));
        odd = hn::Add(odd, hn::BitCast(dSigned32, hn::ShiftRight<16>(pairs)));
    }
    HWY_INLINE void subtractFrom(S32 full) {
        even = hn::Sub(full, even);
        odd = hn::Sub(full, odd);
    }
    HWY_INLINE V16 means(const Quotient& quotient) const {
        return join(quotient(even), quotient(odd));
    }
    HWY_INLINE V16 rests(const Quotient& quotient) const {
        return join(quotient.rest(even, quotient(even)), quotient.rest(odd, quotient(odd)));
    }

private:
    static HWY_INLINE V16 join(S32 a, S32 b) {
        return hn::BitCast(d16, hn::Or(a, hn::ShiftLeft<16>(b)));
    }
};

// The weighted sums of a vector of windows.
struct Sums {
    Totals lower;
    Totals upper;

    HWY_INLINE Sums() : lower(), upper() {}

    HWY_INLINE void add(const Wide& cells, int32_t tap) {
        const V16 weight = hn::Set(d16, static_cast<uint16_t>(tap));
        lower.addProducts(cells.lower, weight);
        upper.addProducts(cells.upper, weight);
    }
    HWY_INLINE void finish(const BlurWeights& weights, BlurInput input) {
        if (input == BlurInput::kDirect) return;
        const S32 full = hn::Set(dSigned32, 255 * weights.sum);
        lower.subtractFrom(full);
        upper.subtractFrom(full);
    }
};

// What one output's sum has more than the one before it, at most 255 times the centre's weight.
struct Difference {
    // Spelled out: generated, they would not be compiled for the target that the vectors need.
    HWY_INLINE Difference() {}
    HWY_INLINE Difference(S16 low, S16 high) : lower(low), upper(high) {}

    S16 lower;
    S16 upper;
};

// Means of one output after the other, from sums of 32 bits: for sums of the weights that the class
// below cannot take.
class WideMeans {
public:
    HWY_INLINE WideMeans(const BlurWeights& weights, const Sums& first)
        : quotient(weights.sum), sums(first) {}

    HWY_INLINE void add(const Difference& difference) {
        sums.lower.add(difference.lower);
        sums.upper.add(difference.upper);
    }
    HWY_INLINE V8 means() const {
        return narrow(sums.lower.means(quotient), sums.upper.means(quotient));
    }

private:
    const Quotient quotient;
    Sums sums;
};

// The same in 16 bits: instead of the sum, its mean and the remainder are kept. A difference moves
// the remainder; what fills the divisor goes over to the mean. An offset of some divisors keeps the
// moved remainder from going below 0.
//
// kHalved counts in twos, with the last bit aside: half the range does for sums or weights twice as
// large. Sums of the weights are even then.
template <bool kHalved>
class NarrowMeans {
public:
    static bool takes(const BlurWeights& weights) {
        if (weights.sum < 4 || (kHalved && weights.sum % 2 != 0)) return false;
        const Scale scale(weights);
        return scale.divisor - 1 + scale.step + scale.lead * scale.divisor <= 65534;
    }

    HWY_INLINE NarrowMeans(const BlurWeights& weights, const Sums& first)
        : NarrowMeans(Scale(weights)) {
        const Quotient quotient(weights.sum);
        start(first.lower, quotient, lower);
        start(first.upper, quotient, upper);
    }

    HWY_INLINE void add(const Difference& difference) {
        move(difference.lower, lower);
        move(difference.upper, upper);
    }
    HWY_INLINE V8 means() const { return narrow(lower.mean, upper.mean); }

private:
    // In 64 bits: the weights may be anything until takes() has answered.
    struct Scale {
        explicit Scale(const BlurWeights& weights)
            : divisor(kHalved ? weights.sum / 2 : weights.sum),
              step(255 * int64_t{weights.taps[0]} / (kHalved ? 2 : 1) + 1),
              lead((step + divisor - 1) / divisor) {}
        int64_t divisor;
        int64_t step;  // the most that a difference moves
        int64_t lead;  // divisors that the remainder is ahead
    };
    struct State {
        HWY_INLINE State() {}  // for the target, as above

        V16 mean;
        V16 rest;  // offset by lead x divisor + lift
        V16 bit;
    };

    explicit HWY_INLINE NarrowMeans(const Scale& scale)
        : reciprocal(static_cast<uint32_t>(scale.divisor)),
          factor(hn::Set(d16, reciprocal.factor)),
          divisor(hn::Set(d16, static_cast<uint16_t>(scale.divisor))),
          lead(hn::Set(d16, static_cast<uint16_t>(scale.lead))),
          offset(static_cast<uint16_t>(scale.lead * scale.divisor + reciprocal.lift)) {}

    HWY_INLINE void start(const Totals& totals, const Quotient& quotient, State& state) const {
        state.mean = totals.means(quotient);
        const V16 rest = totals.rests(quotient);
        state.bit = hn::And(rest, hn::Set(d16, 1));
        state.rest = hn::Add(kHalved ? hn::ShiftRight<1>(rest) : rest, hn::Set(d16, offset));
    }

    HWY_INLINE void move(S16 difference, State& state) const {
        V16 step = hn::BitCast(d16, difference);
        if (kHalved) {
            step = hn::Add(step, state.bit);
            state.bit = hn::And(step, hn::Set(d16, 1));
            step = hn::BitCast(d16, hn::ShiftRight<1>(hn::BitCast(dSigned16, step)));
        }
        const V16 moved = hn::Add(state.rest, step);
        const V16 whole = hn::ShiftRightSame(hn::MulHigh(moved, factor), reciprocal.shift);
        const V16 carry = hn::Sub(whole, lead);
        state.mean = hn::Add(state.mean, carry);
        state.rest = hn::Sub(moved, hn::Mul(carry, divisor));
    }

    const Reciprocal reciprocal;
    const V16 factor;
    const V16 divisor;
    const V16 lead;
    const uint16_t offset;
    State lower;
    State upper;
};

}  // namespace GxFontEffect::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // !GX_SIMD_IS_PLAIN
#endif  // per target
