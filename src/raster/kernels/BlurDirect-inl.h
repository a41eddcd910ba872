// The blur over few cells, whose sums fit 16 bits or 17: every output by itself, row by row as the
// plane has them. Included once per target.
//
// The weights lie two by two against pairs of cells; a pair is one multiplication of bytes. Up to a
// radius of 2 all products add up in one 16-bit total. Beyond, each second pair goes to a total of
// its own; with A + B the sum and S the weights', which is even,
//     floor((A + B) / S) = floor(floor((A + B) / 2) / (S / 2)),
// and an average of the two complements, which rounds up, gives the complement of the half sum.
#if defined(GX_BLUR_DIRECT_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef GX_BLUR_DIRECT_INL_H
#undef GX_BLUR_DIRECT_INL_H
#else
#define GX_BLUR_DIRECT_INL_H
#endif

#include <hwy/highway.h>

#include "raster/kernels/BlurMeans-inl.h"
#include "raster/kernels/BlurScratch.h"

#if !GX_SIMD_IS_PLAIN

HWY_BEFORE_NAMESPACE();
namespace GxFontEffect::kernels::HWY_NAMESPACE {

// Cells are kept as kZero - cell, so that totals are kZero x weights - sum, on the way to the
// complement.
#if HWY_TARGET == HWY_NEON
constexpr uint8_t kZero = 255;
#else
// With sign: a pair of products stays in 16 bits for weights of 255 together.
constexpr uint8_t kZero = 127;
#endif

template <int kRadius>
class DirectTaps {
public:
    static constexpr int kPairs = kRadius + 1;
    static constexpr int kReach = 2 * kRadius;
    static constexpr bool kIsSplit = kRadius > 2;

    static bool takes(const BlurWeights& weights) {
        if (weights.radius != kRadius || weights.sum < 4 || weights.sum > (kIsSplit ? 512 : 256)) {
            return false;
        }
        if (weights.sum % 2 != 0) return false;
        for (int k = 0; k <= kReach; k += 2) {
            if (tap(weights, k) < 0 || tap(weights, k + 1) < 0) return false;
            if (tap(weights, k) + tap(weights, k + 1) > 255) return false;
        }
        const Shares shares(weights, 0);
        return shares.total[0] <= 256 && shares.total[1] <= 256;
    }

    DirectTaps(const BlurWeights& weights, BlurInput input)
        : flip(hn::Set(d8, static_cast<uint8_t>(kZero ^ (input == BlurInput::kDirect ? 0 : 255)))),
          reciprocal(static_cast<uint32_t>(kIsSplit ? weights.sum / 2 : weights.sum)),
          factor(hn::Set(d16, reciprocal.factor)) {
        for (int p = 0; p < kPairs; ++p) {
            even[p] = pair(weights, 2 * p);
            odd[p] = pair(weights, 2 * p - 1);
        }
        for (int skew = 0; skew < 2; ++skew) {
            const Shares shares(weights, skew);
            for (int i = 0; i < 2; ++i) {
                start[skew][i] =
                    static_cast<uint16_t>(kIsSplit ? 65535 - kZero * shares.total[i] : 0);
            }
        }
        top = hn::Set(
            d16, static_cast<uint16_t>((kIsSplit ? 65535 : kZero * weights.sum) + reciprocal.lift));
    }

    // --- columns ---

    // Means of two rows of outputs, from the rows `in` on; with their bits flipped as `flipped` has
    // them.
    HWY_INLINE void columnMeans(const uint8_t* in, int64_t stride, V8 flipped, uint8_t* out0,
                                uint8_t* out1) const {
        Total lower0(start[0]), upper0(start[0]), lower1(start[1]), upper1(start[1]);
        for (int p = 0; p < kPairs; ++p, in += 2 * stride) {
            const V8 a = hn::Xor(hn::LoadU(d8, in), flip);
            const V8 b = hn::Xor(hn::LoadU(d8, in + stride), flip);
            const V8 lower = hn::InterleaveLower(d8, a, b);
            const V8 upper = hn::InterleaveUpper(d8, a, b);
            const V8 w0 = weightsOf(even[p]);
            const V8 w1 = weightsOf(odd[p]);
            lower0.add(p, products(w0, lower));
            upper0.add(p, products(w0, upper));
            lower1.add(p, products(w1, lower));
            upper1.add(p, products(w1, upper));
        }
        hn::StoreU(hn::Xor(narrow(means(lower0), means(upper0)), flipped), d8, out0);
        hn::StoreU(hn::Xor(narrow(means(lower1), means(upper1)), flipped), d8, out1);
    }

    // --- rows ---

    // Means of kLanes outputs of a row whose cells, as kZero - cell, start at `line`; reads kLanes
    // + kReach + 2 cells.
    HWY_INLINE V8 rowMeans(const uint8_t* line) const {
#if HWY_TARGET == HWY_NEON
        Total lower(start[0]), upper(start[0]);
        for (int k = 0; k <= kReach; ++k) {
            const V8 cells = hn::LoadU(d8, line + k);
            const auto weight = static_cast<uint8_t>(even[k / 2] >> k % 2 * 8);
            const uint8x8_t w = vdup_n_u8(weight);
            lower.add(k / 2, V16(vmull_u8(vget_low_u8(cells.raw), w)));
            upper.add(k / 2, V16(vmull_u8(vget_high_u8(cells.raw), w)));
        }
        return narrow(means(lower), means(upper));
#else
        // Pairs that start at even places give the outputs there, the others those between.
        Total atEven(start[0]), atOdd(start[0]);
        for (int p = 0; p < kPairs; ++p) {
            const V8 weights = weightsOf(even[p]);
            atEven.add(p, products(weights, hn::LoadU(d8, line + 2 * p)));
            atOdd.add(p, products(weights, hn::LoadU(d8, line + 2 * p + 1)));
        }
        return bytes(hn::Or(means(atEven), hn::ShiftLeft<8>(means(atOdd))));
#endif
    }

    // For `count` outputs; the line goes on for kLanes + 2 cells behind the last that they see.
    HWY_INLINE void blurLine(const uint8_t* line, uint8_t* out, int64_t count) const {
        for (int64_t i = 0; i < count; i += kLanes) {
            const int64_t x = std::min(i, count - kLanes);
            const V8 first = hn::Set(d8, line[x]);
            const V8 differs = hn::Or(hn::Xor(hn::LoadU(d8, line + x), first),
                                      hn::Xor(hn::LoadU(d8, line + x + kReach), first));
            if (allBytesAre(differs, 0)) {
                hn::StoreU(hn::Xor(first, hn::Set(d8, kZero)), d8, out + x);
            } else {
                hn::StoreU(rowMeans(line + x), d8, out + x);
            }
        }
    }

    // kZero - cell of direct input, kZero - 255 + cell of inverse input, is `cell` with these bits
    // flipped.
    const V8 flip;

private:
    static int32_t tap(const BlurWeights& weights, int k) {
        return k < 0 || k > kReach ? 0 : weights.taps[std::abs(k - kRadius)];
    }
    static uint16_t pair(const BlurWeights& weights, int k) {
        return static_cast<uint16_t>(tap(weights, k) | tap(weights, k + 1) << 8);
    }
    static HWY_INLINE V8 weightsOf(uint16_t pair) {
        return bytes(hn::Set(d16, pair));
    }

    // Of all weights, what each total has; pairs start at `-skew`.
    struct Shares {
        Shares(const BlurWeights& weights, int skew) {
            for (int p = 0; p < kPairs; ++p) {
                total[kIsSplit ? p % 2 : 0] +=
                    tap(weights, 2 * p - skew) + tap(weights, 2 * p + 1 - skew);
            }
        }
        int32_t total[2] = {0, 0};
    };

    struct Total {
        explicit HWY_INLINE Total(const uint16_t (&start)[2])
            : first(hn::Set(d16, start[0])), second(hn::Set(d16, start[1])) {}
        HWY_INLINE void add(int p, V16 products) {
            if (kIsSplit && p % 2 != 0) {
                second = hn::Add(second, products);
            } else {
                first = hn::Add(first, products);
            }
        }
        V16 first;
        V16 second;
    };

    static HWY_INLINE V16 products(V8 weights, V8 cells) {
#if HWY_TARGET == HWY_NEON
        return sumsOfPairs(V16(vmull_u8(vget_low_u8(cells.raw), vget_low_u8(weights.raw))),
                           V16(vmull_u8(vget_high_u8(cells.raw), vget_high_u8(weights.raw))));
#elif HWY_TARGET == HWY_AVX3
        return V16{_mm512_maddubs_epi16(weights.raw, cells.raw)};
#elif HWY_TARGET == HWY_AVX2
        return V16{_mm256_maddubs_epi16(weights.raw, cells.raw)};
#else
        return V16{_mm_maddubs_epi16(weights.raw, cells.raw)};
#endif
    }

    HWY_INLINE V16 means(const Total& total) const {
        const V16 rest = kIsSplit ? hn::AverageRound(total.first, total.second) : total.first;
        return hn::ShiftRightSame(hn::MulHigh(hn::Sub(top, rest), factor), reciprocal.shift);
    }

    uint16_t even[kPairs];  // k, k + 1 from even k on, the first in the low byte
    uint16_t odd[kPairs];   // k - 1, k
    uint16_t start[2][2];
    const Reciprocal reciprocal;
    const V16 factor;
    V16 top;
};

// Rows of outputs of the columns' blur, two at a time. A vector of cells that are the same over the
// whole window is its own mean.
template <int kRadius>
class DirectColumns {
public:
    DirectColumns(const BlurPass& pass, const DirectTaps<kRadius>& taps, const BlurScratch& scratch)
        : pass(pass), taps(taps), lastChange(reinterpret_cast<int32_t*>(scratch.wide)) {
        int32_t* last = lastChange;
        for (int64_t i = 0; i < pass.columns; i += kLanes) {
            *last = 0;
            const uint8_t* in = pass.in + vectorStart(i);
            for (int32_t y = 1; y < kReach; ++y) {
                if (differ(in + (y - 1) * pass.inStride, in + y * pass.inStride)) *last = y;
            }
            ++last;
        }
    }

    // Rows y and y + 1, after all before.
    HWY_INLINE void blur(int64_t y, V8 flipped, uint8_t* out0, uint8_t* out1) {
        const int64_t stride = pass.inStride;
        const uint8_t* rows = pass.in + y * stride;
        const V8 atMean = hn::Xor(hn::Xor(taps.flip, hn::Set(d8, kZero)), flipped);
        int32_t* last = lastChange;
        for (int64_t i = 0; i < pass.columns; i += kLanes, ++last) {
            const int64_t x = vectorStart(i);
            const V8 before = hn::LoadU(d8, rows + x + (kReach - 1) * stride);
            const V8 here = hn::LoadU(d8, rows + x + kReach * stride);
            const V8 after = hn::LoadU(d8, rows + x + (kReach + 1) * stride);
            if (!allBytesAre(hn::Or(hn::Xor(before, here), hn::Xor(here, after)), 0)) {
                *last = static_cast<int32_t>(y + kReach + 1);
            }
            if (*last <= y) {
                const V8 mean = hn::Xor(after, atMean);
                hn::StoreU(mean, d8, out0 + x);
                hn::StoreU(mean, d8, out1 + x);
            } else {
                taps.columnMeans(rows + x, stride, flipped, out0 + x, out1 + x);
            }
        }
    }

private:
    static constexpr int64_t kReach = DirectTaps<kRadius>::kReach;

    HWY_INLINE int64_t vectorStart(int64_t x) const { return std::min(x, pass.columns - kLanes); }
    static HWY_INLINE bool differ(const uint8_t* a, const uint8_t* b) {
        return !allBytesAre(hn::Xor(hn::LoadU(d8, a), hn::LoadU(d8, b)), 0);
    }

    const BlurPass& pass;
    const DirectTaps<kRadius>& taps;
    int32_t* const
        lastChange;  // of each vector, the last row so far that differs from the one before
};

// Where the pair of rows that starts at y has to start to end with the last.
HWY_INLINE int64_t rowPairStart(int64_t y, int64_t rows) {
    return std::min(y, rows - 2);
}

template <int kRadius>
void blurColumnsDirect(const BlurPass& pass, const DirectTaps<kRadius>& taps,
                       const BlurScratch& scratch) {
    DirectColumns<kRadius> columns(pass, taps, scratch);
    for (int64_t i = 0; i < pass.rows; i += 2) {
        const int64_t y = rowPairStart(i, pass.rows);
        uint8_t* out = pass.out + y * pass.outStride;
        columns.blur(y, hn::Zero(d8), out, out + pass.outStride);
    }
}

template <int kRadius>
void blurRowsDirect(const BlurPass& pass, const DirectTaps<kRadius>& taps,
                    const BlurScratch& scratch) {
    const int64_t length = pass.columns + DirectTaps<kRadius>::kReach;
    for (int64_t y = 0; y < pass.rows; ++y) {
        const uint8_t* in = pass.in + y * pass.inStride;
        for (int64_t i = 0; i < length; i += kLanes) {
            const int64_t x = std::min(i, length - kLanes);
            hn::StoreU(hn::Xor(hn::LoadU(d8, in + x), taps.flip), d8, scratch.strip + x);
        }
        taps.blurLine(scratch.strip, pass.out + y * pass.outStride, pass.columns);
    }
}

// Both: the columns' means of two rows go into lines with the border around them, and from there
// into the plane. `columns` reads the plane from its column `radius` on.
template <int kRadius>
void blurBothDirect(const BlurPass& area, const DirectTaps<kRadius>& taps,
                    const BlurScratch& scratch) {
    const int64_t lineBytes = area.columns + 2 * kRadius + kLanes + 2;
    uint8_t* lines[2] = {scratch.strip, scratch.strip + lineBytes};
    std::memset(scratch.strip, kZero, static_cast<size_t>(2 * lineBytes));
    DirectColumns<kRadius> columns(area, taps, scratch);
    for (int64_t i = 0; i < area.rows; i += 2) {
        const int64_t y = rowPairStart(i, area.rows);
        columns.blur(y, taps.flip, lines[0] + kRadius, lines[1] + kRadius);
        for (int64_t j = 0; j < 2; ++j) {
            taps.blurLine(lines[j], area.out + (y + j) * area.outStride, area.columns);
        }
    }
}

}  // namespace GxFontEffect::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // !GX_SIMD_IS_PLAIN
#endif  // per target
