// The difference of neighbouring sums of the blur, from the cells of a strip. Included once per
// target.
//
// A strip holds one vector of cells for each step along the blur. Two steps stand together: their
// cells interleaved in two vectors, the lower and the upper half of the lanes.
#if defined(GX_BLUR_TAPS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef GX_BLUR_TAPS_INL_H
#undef GX_BLUR_TAPS_INL_H
#else
#define GX_BLUR_TAPS_INL_H
#endif

#include <hwy/highway.h>

#include "raster/kernels/BlurMeans-inl.h"
#include "raster/kernels/BlurScratch.h"

#if !GX_SIMD_IS_PLAIN

HWY_BEFORE_NAMESPACE();
namespace GxFontEffect::kernels::HWY_NAMESPACE {

// The g(t) = w(t) - w(t + 1) of
//     F(y) - F(y - 1) = sum over t = 0 ... radius of g(t) (in(y + t) - in(y - 1 - t)).
HWY_INLINE int32_t weightStep(const BlurWeights& weights, int64_t t) {
    return weights.taps[t] - (t < weights.radius ? weights.taps[t + 1] : 0);
}

// --- products ---

// Adds up cells times coefficients, two by two: bytes without sign by bytes with sign. The products
// of a pair fit 16 bits; totals may wrap on the way.
#if HWY_TARGET == HWY_NEON

// The coefficients add up to 0, so that cells may be counted from 128.
HWY_INLINE S16 addProducts(S16 total, V8 cells, V32 taps) {
    const int8x16_t a = vreinterpretq_s8_u8(veorq_u8(cells.raw, vdupq_n_u8(0x80)));
    const int8x16_t b = vreinterpretq_s8_u32(taps.raw);
    const S16 low(vmull_s8(vget_low_s8(a), vget_low_s8(b)));
    const S16 high(vmull_s8(vget_high_s8(a), vget_high_s8(b)));
    const V16 sums = sumsOfPairs(hn::BitCast(d16, low), hn::BitCast(d16, high));
    return hn::Add(total, hn::BitCast(dSigned16, sums));
}

#elif HWY_TARGET == HWY_AVX3

HWY_INLINE S16 addProducts(S16 total, V8 cells, V32 taps) {
    return hn::Add(total, S16{_mm512_maddubs_epi16(cells.raw, taps.raw)});
}

#elif HWY_TARGET == HWY_AVX2

HWY_INLINE S16 addProducts(S16 total, V8 cells, V32 taps) {
    return hn::Add(total, S16{_mm256_maddubs_epi16(cells.raw, taps.raw)});
}

#else

HWY_INLINE S16 addProducts(S16 total, V8 cells, V32 taps) {
    return hn::Add(total, S16{_mm_maddubs_epi16(cells.raw, taps.raw)});
}

#endif

// Every tap, two by two: for any radius.
class PairedTaps {
public:
    // Outputs that are worked out together.
    static constexpr int64_t kSteps = 4;

    // Coefficients k = 0 ... 2 radius + 1 belong to in(y - 1 - radius + k). `even` holds the pairs
    // from an even k, `odd` those that start one earlier.
    PairedTaps(const BlurWeights& weights, BlurInput input, const BlurScratch& scratch)
        : pairs(scratch.strip + kLanes), count(weights.radius + 3), taps(scratch.taps + 2) {
        const int32_t sign = input == BlurInput::kDirect ? 1 : -1;
        for (int64_t p = -1; p < count; ++p) {
            taps[2 * p] = pair(weights, sign, 2 * p);
            taps[2 * p + 1] = pair(weights, sign, 2 * p - 1);
        }
    }

    void prepare(int64_t /*length*/) const {}

    // Differences of the outputs y ... y + 3, y odd.
    HWY_INLINE void find(int64_t y, Difference* d) const {
        const S16 none = hn::Zero(dSigned16);
        Difference d0{none, none}, d1 = d0, d2 = d0, d3 = d0;
        const uint8_t* in = pairs + (y - 1) * kLanes;
        for (int64_t p = 0; p < count; ++p, in += 2 * kLanes) {
            const V8 lower = hn::LoadU(d8, in);
            const V8 upper = hn::LoadU(d8, in + kLanes);
            const V32 even = hn::Set(d32, taps[2 * p]);
            const V32 odd = hn::Set(d32, taps[2 * p + 1]);
            const V32 evenBefore = hn::Set(d32, taps[2 * p - 2]);
            const V32 oddBefore = hn::Set(d32, taps[2 * p - 1]);
            d0 = {addProducts(d0.lower, lower, even), addProducts(d0.upper, upper, even)};
            d1 = {addProducts(d1.lower, lower, odd), addProducts(d1.upper, upper, odd)};
            d2 = {addProducts(d2.lower, lower, evenBefore),
                  addProducts(d2.upper, upper, evenBefore)};
            d3 = {addProducts(d3.lower, lower, oddBefore), addProducts(d3.upper, upper, oddBefore)};
        }
        d[0] = d0;
        d[1] = d1;
        d[2] = d2;
        d[3] = d3;
    }

private:
    static uint32_t coefficient(const BlurWeights& weights, int32_t sign, int64_t k) {
        const int64_t t = k - weights.radius - 1;
        if (k < 0 || t > weights.radius) return 0;
        const int32_t g = weightStep(weights, t < 0 ? -1 - t : t);
        return static_cast<uint32_t>(t < 0 ? -g * sign : g * sign) & 0xFFu;
    }
    static uint32_t pair(const BlurWeights& weights, int32_t sign, int64_t k) {
        return (coefficient(weights, sign, k) | coefficient(weights, sign, k + 1) << 8) * 0x10001u;
    }

    const uint8_t* const pairs;
    const int64_t count;
    uint32_t* const taps;
};

// --- runs ---

// For wide radii. The steps of the weights are small then, 0 to 5, and hardly change over eight
// taps: sums of eight cells stand for the level of each eight taps, single cells for what differs.
// Some 70 additions give an output of any radius from 35 to 100.
class RunTaps {
public:
    static constexpr int64_t kSteps = 8;

    // Whether that is less work than every tap by itself.
    static bool pays(const BlurWeights& weights) {
        if (weights.radius < kBlurRunRadius) return false;
        int64_t terms = 0;
        forEachTerm(weights,
                    [&](int64_t, int64_t, int32_t times) { terms += 2 * std::abs(times); });
        return terms < 2 * int64_t{weights.radius} && terms <= int64_t{kMaxTerms};
    }

    RunTaps(const BlurWeights& weights, BlurInput input, const BlurScratch& scratch)
        : pairs(scratch.strip + kLanes), wide(scratch.wide) {
        const int64_t radius = weights.radius;
        const bool isDirect = input == BlurInput::kDirect;
        // Terms as distances in `wide` from the cell that output y - 1 starts with.
        const auto add = [&](int64_t place, int64_t run, bool isPositive) {
            const auto distance =
                static_cast<int32_t>((place + 1) * kWideBytes + (run > 1 ? 2 * kLanes : 0));
            (isPositive == isDirect ? added : taken).push(distance);
        };
        forEachTerm(weights, [&](int64_t t, int64_t run, int32_t times) {
            for (int32_t i = 0; i < std::abs(times); ++i) {
                add(radius + t, run, times > 0);
                add(radius - t - run, run, times < 0);
            }
        });
    }

    // Widens the cells of a strip and adds them up by eight.
    void prepare(int64_t length) const {
        const int64_t end = length + kBlurReadAhead;
        for (int64_t i = 0; i < end; i += 2) {
            for (int64_t half = 0; half < 2 * kLanes; half += kLanes) {
                const V16 both = lanes16(hn::LoadU(d8, pairs + i * kLanes + half));
                store(hn::And(both, hn::Set(d16, 0x00FF)), wide + i * kWideBytes + half);
                store(hn::ShiftRight<8>(both), wide + (i + 1) * kWideBytes + half);
            }
        }
        for (int64_t half = 0; half < 2 * kLanes; half += kLanes) {
            uint8_t* cell = wide + half;
            V16 total = hn::Zero(d16);
            for (int64_t i = 0; i < kRun; ++i) total = hn::Add(total, load(cell + i * kWideBytes));
            for (int64_t i = 0; i + kRun < end; ++i, cell += kWideBytes) {
                store(total, cell + 2 * kLanes);
                total = hn::Add(total, hn::Sub(load(cell + kRun * kWideBytes), load(cell)));
            }
        }
    }

    HWY_INLINE void find(int64_t y, Difference* d) const {
        const uint8_t* in = wide + (y - 1) * kWideBytes;
        V16 totals[kSteps];
        addUp(in, totals);
        for (int64_t j = 0; j < kSteps; ++j) d[j].lower = hn::BitCast(dSigned16, totals[j]);
        addUp(in + kLanes, totals);
        for (int64_t j = 0; j < kSteps; ++j) d[j].upper = hn::BitCast(dSigned16, totals[j]);
    }

private:
    static constexpr int64_t kRun = 8;
    static constexpr size_t kMaxTerms = 256;
    // Of a step: the cells widened and the sums of the eight from there on.
    static constexpr int64_t kWideBytes = 4 * kLanes;

    struct Terms {
        int32_t distances[kMaxTerms];
        size_t count = 0;
        void push(int32_t distance) { distances[count++] = distance; }
    };

    static HWY_INLINE V16 load(const uint8_t* at) { return lanes16(hn::LoadU(d8, at)); }
    static HWY_INLINE void store(V16 v, uint8_t* at) { hn::StoreU(bytes(v), d8, at); }

    // Calls visit(t, run, times) for each sum of `run` taps from t on that is needed, the steps of
    // the weights being the total.
    template <class Visit>
    static void forEachTerm(const BlurWeights& weights, const Visit& visit) {
        const int64_t count = weights.radius + 1;
        for (int64_t t = 0; t < count; t += kRun) {
            const int64_t run = std::min(kRun, count - t);
            const int32_t level = run == kRun ? levelOf(weights, t) : 0;
            if (level > 0) visit(t, kRun, level);
            for (int64_t i = t; i < t + run; ++i) visit(i, 1, weightStep(weights, i) - level);
        }
    }
    // That leaves the fewest terms.
    static int32_t levelOf(const BlurWeights& weights, int64_t t) {
        int32_t best = 0;
        int32_t fewest = std::numeric_limits<int32_t>::max();
        for (int32_t level = 0; level < 8; ++level) {
            int32_t terms = level;
            for (int64_t i = t; i < t + kRun; ++i)
                terms += std::abs(weightStep(weights, i) - level);
            if (terms >= fewest) continue;
            fewest = terms;
            best = level;
        }
        return best;
    }

    HWY_INLINE void addUp(const uint8_t* in, V16* totals) const {
        V16 t0 = hn::Zero(d16);
        V16 t1 = t0, t2 = t0, t3 = t0, t4 = t0, t5 = t0, t6 = t0, t7 = t0;
        for (size_t i = 0; i < added.count; ++i) {
            const uint8_t* at = in + added.distances[i];
            t0 = hn::Add(t0, load(at));
            t1 = hn::Add(t1, load(at + kWideBytes));
            t2 = hn::Add(t2, load(at + 2 * kWideBytes));
            t3 = hn::Add(t3, load(at + 3 * kWideBytes));
            t4 = hn::Add(t4, load(at + 4 * kWideBytes));
            t5 = hn::Add(t5, load(at + 5 * kWideBytes));
            t6 = hn::Add(t6, load(at + 6 * kWideBytes));
            t7 = hn::Add(t7, load(at + 7 * kWideBytes));
        }
        for (size_t i = 0; i < taken.count; ++i) {
            const uint8_t* at = in + taken.distances[i];
            t0 = hn::Sub(t0, load(at));
            t1 = hn::Sub(t1, load(at + kWideBytes));
            t2 = hn::Sub(t2, load(at + 2 * kWideBytes));
            t3 = hn::Sub(t3, load(at + 3 * kWideBytes));
            t4 = hn::Sub(t4, load(at + 4 * kWideBytes));
            t5 = hn::Sub(t5, load(at + 5 * kWideBytes));
            t6 = hn::Sub(t6, load(at + 6 * kWideBytes));
            t7 = hn::Sub(t7, load(at + 7 * kWideBytes));
        }
        const V16 all[] = {t0, t1, t2, t3, t4, t5, t6, t7};
        for (int64_t j = 0; j < kSteps; ++j) totals[j] = all[j];
    }

    const uint8_t* const pairs;
    uint8_t* const wide;
    Terms added;
    Terms taken;
};

}  // namespace GxFontEffect::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // !GX_SIMD_IS_PLAIN
#endif  // per target
