// The fast blur of raster/kernels/SeparableBlur.h.
//
// Work goes in strips: as many rows or columns side by side as a vector has bytes, copied into a
// packed buffer in which a step along the blur is one vector. Rows are transposed on the way in and
// out, so that one loop serves both directions, and each cell of the plane is fetched once however
// wide the window is.
//
// With g(t) = w(t) - w(t + 1), the sums of neighbouring outputs differ by
//     F(y) - F(y - 1) = sum over t = 0 ... radius of g(t) (in(y + t) - in(y - 1 - t)).
// The g are not negative and add up to the centre's weight, so that for a weight of up to 128 the
// difference fits 16 bits whatever the radius: the loop over the taps multiplies bytes and adds up
// in 16 bits, and one 32-bit addition per output carries the sum on. Inverse input turns the
// signs.
#include <algorithm>
#include <cstring>

#include "raster/kernels/SeparableBlur.h"
#include "raster/kernels/Simd.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "raster/kernels/BlurStrips.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "raster/kernels/PixelVector-inl.h"

HWY_BEFORE_NAMESPACE();
namespace GxFontEffect::kernels::HWY_NAMESPACE {

#if GX_SIMD_IS_PLAIN

void blurAll(const BlurPass& pass, const BlurWeights& weights, BlurInput input, bool alongRows,
             uint8_t* /*scratch*/) {
    (alongRows ? blurRowsPlain : blurColumnsPlain)(pass, weights, input);
}

void blurBoth(const uint8_t* in, uint8_t* out, int64_t width, int64_t height,
              const BlurWeights& weights, BlurInput input, uint8_t* scratch) {
    blurPlanePlain(in, out, width, height, weights, input, scratch);
}

#else

constexpr int64_t kLanes = hn::MaxLanes(d8);
static_assert(kLanes <= kBlurStripWidth);

inline constexpr hn::ScalableTag<int8_t> dSigned8;
inline constexpr hn::ScalableTag<int16_t> dSigned16;
inline constexpr hn::ScalableTag<int32_t> dSigned32;
inline constexpr hn::ScalableTag<float> dFloat;
using S16 = hn::Vec<decltype(dSigned16)>;
using S32 = hn::Vec<decltype(dSigned32)>;
using F32 = hn::Vec<decltype(dFloat)>;

// --- taps of the difference
// -----------------------------------------------------------------------------------

// Outputs that are worked out together.
constexpr int64_t kSteps = 4;

// Coefficients of F(y) - F(y - 1), k = 0 ... 2 radius + 1 for in(y - 1 - radius + k), two by two as
// bytes of a word: those from an even k, and those that start one earlier. One empty entry before
// and two behind let a block of outputs share each pair of steps.
class DifferenceTaps {
public:
    struct Pairs {
        uint32_t even;  // k, k + 1, k, k + 1
        uint32_t odd;   // k - 1, k, k - 1, k
    };

    DifferenceTaps(const BlurWeights& weights, BlurInput input, uint8_t* memory)
        : count(weights.radius + 3), sign(input == BlurInput::kDirect ? 1 : -1), memory(memory) {
        for (int64_t p = -1; p < count; ++p) {
            const Pairs pairs = {pair(weights, 2 * p), pair(weights, 2 * p - 1)};
            std::memcpy(memory + (p + 1) * int64_t{sizeof(Pairs)}, &pairs, sizeof(Pairs));
        }
    }

    HWY_INLINE Pairs operator[](int64_t p) const {
        Pairs pairs;
        std::memcpy(&pairs, memory + (p + 1) * int64_t{sizeof(Pairs)}, sizeof(Pairs));
        return pairs;
    }

    const int64_t count;

private:
    static int32_t tap(const BlurWeights& weights, int64_t t) {
        return t <= weights.radius ? weights.taps[t] : 0;
    }
    uint32_t coefficient(const BlurWeights& weights, int64_t k) const {
        const int64_t t = k - weights.radius - 1;
        if (k < 0 || t > weights.radius) return 0;
        const int64_t distance = t < 0 ? -1 - t : t;
        const int32_t g = tap(weights, distance) - tap(weights, distance + 1);
        return static_cast<uint32_t>(t < 0 ? -g * sign : g * sign) & 0xFFu;
    }
    uint32_t pair(const BlurWeights& weights, int64_t k) const {
        return (coefficient(weights, k) | coefficient(weights, k + 1) << 8) * 0x10001u;
    }

    const int32_t sign;
    const uint8_t* memory;
};

// Totals of one output's lanes, in the order of InterleaveLower and InterleaveUpper of bytes.
struct Difference {
    S16 lower;
    S16 upper;
};

// Two vectors next to one another along the blur. The products fit 16 bits, the sum of a pair too;
// totals may wrap on the way.
#if HWY_TARGET == HWY_NEON

// The coefficients add up to 0, so that cells may be counted from 128.
class CellPair {
public:
    HWY_INLINE CellPair(V8 a, V8 b)
        : first(hn::BitCast(dSigned8, hn::Xor(a, hn::Set(d8, 0x80)))),
          second(hn::BitCast(dSigned8, hn::Xor(b, hn::Set(d8, 0x80)))) {}

    HWY_INLINE void addTo(Difference& total, uint32_t pair) const {
        const int8x8_t g = vdup_n_s8(static_cast<int8_t>(pair));
        const int8x8_t h = vdup_n_s8(static_cast<int8_t>(pair >> 8));
        total.lower = S16(vmlal_s8(total.lower.raw, vget_low_s8(first.raw), g));
        total.upper = S16(vmlal_s8(total.upper.raw, vget_high_s8(first.raw), g));
        total.lower = S16(vmlal_s8(total.lower.raw, vget_low_s8(second.raw), h));
        total.upper = S16(vmlal_s8(total.upper.raw, vget_high_s8(second.raw), h));
    }

private:
    hn::Vec<decltype(dSigned8)> first;
    hn::Vec<decltype(dSigned8)> second;
};

#else

class CellPair {
public:
    HWY_INLINE CellPair(V8 a, V8 b)
        : lower(hn::InterleaveLower(d8, a, b)), upper(hn::InterleaveUpper(d8, a, b)) {}

    HWY_INLINE void addTo(Difference& total, uint32_t pair) const {
        const V32 taps = hn::Set(d32, pair);
        total.lower = hn::Add(total.lower, products(lower, taps));
        total.upper = hn::Add(total.upper, products(upper, taps));
    }

private:
    // Bytes without sign by bytes with sign, neighbours added.
    static HWY_INLINE S16 products(V8 cells, V32 taps) {
#if HWY_TARGET == HWY_AVX2
        return S16{_mm256_maddubs_epi16(cells.raw, taps.raw)};
#else
        return S16{_mm_maddubs_epi16(cells.raw, taps.raw)};
#endif
    }

    V8 lower;
    V8 upper;
};

#endif

// --- sums and quotients
// ---------------------------------------------------------------------------------------

// floor(a / S) for 0 <= a <= 255 S.
//
// Up to a sum S of 2^14, a + 0.5 is exact in single precision, and at least 0.5 / S away from S
// times any whole number; the errors of 1 / S and of the product add up to less than 256 x 2^-23 <
// 0.5 / S. So the product, truncated, is the quotient. Beyond, it is off by one at most, which the
// remainder shows.
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
        const S32 rest = hn::Sub(a, hn::Mul(quotient, divisor));
        const S32 isBelow = hn::VecFromMask(dSigned32, hn::Lt(rest, hn::Zero(dSigned32)));
        const S32 isInside = hn::VecFromMask(dSigned32, hn::Lt(rest, divisor));
        // True is -1: of a quotient that is right, both cancel against the 1.
        return hn::Add(hn::Add(quotient, hn::Set(dSigned32, 1)), hn::Add(isBelow, isInside));
    }

private:
    S32 divisor;
    F32 inverse;
    bool isSmall;
};

// 32-bit totals of the lanes of S16: those at even and at odd places.
struct WideTotals {
    S32 even;
    S32 odd;

    HWY_INLINE void add(S16 difference) {
        const S32 pairs = hn::BitCast(dSigned32, difference);
        even = hn::Add(even, hn::ShiftRight<16>(hn::ShiftLeft<16>(pairs)));
        odd = hn::Add(odd, hn::ShiftRight<16>(pairs));
    }
    HWY_INLINE S16 means(const Quotient& quotient) const {
        return hn::BitCast(dSigned16, hn::Or(quotient(even), hn::ShiftLeft<16>(quotient(odd))));
    }
};

// The running sums of a strip.
class Sums {
public:
    // Of the first output: the window starts at `cells`.
    HWY_INLINE Sums(const uint8_t* cells, const BlurWeights& weights, BlurInput input)
        : lower{hn::Zero(dSigned32), hn::Zero(dSigned32)}, upper(lower) {
        const int64_t radius = weights.radius;
        for (int64_t i = -radius; i <= radius; ++i) {
            const V8 row = hn::LoadU(d8, cells + (radius + i) * kLanes);
            const S32 tap = hn::Set(dSigned32, weights.taps[i < 0 ? -i : i]);
            addProducts(lower, hn::InterleaveLower(d8, row, hn::Zero(d8)), tap);
            addProducts(upper, hn::InterleaveUpper(d8, row, hn::Zero(d8)), tap);
        }
        if (input == BlurInput::kDirect) return;
        const S32 full = hn::Set(dSigned32, 255 * weights.sum);
        for (WideTotals* totals : {&lower, &upper}) {
            totals->even = hn::Sub(full, totals->even);
            totals->odd = hn::Sub(full, totals->odd);
        }
    }

    HWY_INLINE void add(const Difference& difference) {
        lower.add(difference.lower);
        upper.add(difference.upper);
    }

    HWY_INLINE void storeMeans(const Quotient& quotient, uint8_t* out) const {
        const S16 low = lower.means(quotient);
        const S16 high = upper.means(quotient);
#if HWY_TARGET == HWY_AVX2
        // Packs within blocks of 16 bytes, which is how the lanes were drawn apart.
        const V8 means{_mm256_packus_epi16(low.raw, high.raw)};
#else
        const hn::Half<decltype(d8)> half;
        const V8 means = hn::Combine(d8, hn::DemoteTo(half, high), hn::DemoteTo(half, low));
#endif
        hn::StoreU(means, d8, out);
    }

private:
    static HWY_INLINE void addProducts(WideTotals& totals, V8 cells, S32 tap) {
        const V32 pairs = hn::BitCast(d32, cells);
        const S32 even = hn::BitCast(dSigned32, hn::And(pairs, hn::Set(d32, 0xFFFF)));
        const S32 odd = hn::BitCast(dSigned32, hn::ShiftRight<16>(pairs));
        totals.even = hn::Add(totals.even, hn::Mul(even, tap));
        totals.odd = hn::Add(totals.odd, hn::Mul(odd, tap));
    }

    WideTotals lower;
    WideTotals upper;
};

// --- one strip
// ------------------------------------------------------------------------------------------------

// The vectors behind a strip's last one that a block of outputs reads.
constexpr int64_t kReadAhead = kSteps + 1;

// The strip in place: the vectors 1 ... steps + 2 radius hold the cells, outputs come out from
// vector 0 on. Up to kSteps - 1 vectors behind the outputs are overwritten.
class Strip {
public:
    Strip(uint8_t* memory, const BlurWeights& weights, BlurInput input, const DifferenceTaps& taps)
        : vectors(memory), weights(weights), input(input), taps(taps), quotient(weights.sum) {}

    void blur(int64_t steps) {
        Sums sums(at(1), weights, input);
        sums.storeMeans(quotient, at(0));
        seen = 1;
        lastChange = 0;
        for (int64_t y = 1; y < steps; y += kSteps) {
            if (isEven(y)) {
                const V8 same = hn::LoadU(d8, at(y - 1));
                for (int64_t j = 0; j < kSteps; ++j) hn::StoreU(same, d8, at(y + j));
            } else {
                blurBlock(y, sums);
            }
        }
    }

private:
    HWY_INLINE uint8_t* at(int64_t i) const { return vectors + i * kLanes; }
    HWY_INLINE V8 cells(int64_t i) const { return hn::LoadU(d8, at(i)); }

    // Whether all vectors that the block from y reads are alike: its outputs are those before.
    HWY_INLINE bool isEven(int64_t y) {
        const int64_t last = y + 2 * taps.count - 1;
        seen = HWY_MAX(seen, y);
        while (seen < last) {
            const int64_t end = HWY_MIN(seen + kSteps, last);
            V8 difference = hn::Zero(d8);
            V8 before = cells(seen);
            for (int64_t i = seen + 1; i <= end; ++i) {
                const V8 here = cells(i);
                difference = hn::Or(difference, hn::Xor(before, here));
                before = here;
            }
            if (!allBytesAre(difference, 0)) lastChange = end;
            seen = end;
        }
        return lastChange <= y;
    }

    HWY_INLINE void blurBlock(int64_t y, Sums& sums) const {
        const S16 zero = hn::Zero(dSigned16);
        Difference d0{zero, zero}, d1 = d0, d2 = d0, d3 = d0;
        const uint8_t* in = at(y);
        DifferenceTaps::Pairs before = taps[-1];
        for (int64_t p = 0; p < taps.count; ++p, in += 2 * kLanes) {
            const DifferenceTaps::Pairs pairs = taps[p];
            const CellPair pair(hn::LoadU(d8, in), hn::LoadU(d8, in + kLanes));
            pair.addTo(d0, pairs.even);
            pair.addTo(d1, pairs.odd);
            pair.addTo(d2, before.even);
            pair.addTo(d3, before.odd);
            before = pairs;
        }
        uint8_t* out = at(y);
        for (const Difference* d : {&d0, &d1, &d2, &d3}) {
            sums.add(*d);
            sums.storeMeans(quotient, out);
            out += kLanes;
        }
    }

    uint8_t* const vectors;
    const BlurWeights& weights;
    const BlurInput input;
    const DifferenceTaps& taps;
    const Quotient quotient;
    int64_t seen = 0;        // vectors up to here are compared with the ones before
    int64_t lastChange = 0;  // none behind it, up to `seen`, differs
};

// --- to and from strips
// ---------------------------------------------------------------------------------------

// Blocks of 16 rows of 16 bytes, turned.
HWY_INLINE void transpose(V8 (&v)[16]) {
    for (int stage = 0; stage < 4; ++stage) {
        V8 turned[16];
        for (int i = 0; i < 8; ++i) {
            turned[2 * i] = hn::InterleaveLower(d8, v[i], v[i + 8]);
            turned[2 * i + 1] = hn::InterleaveUpper(d8, v[i], v[i + 8]);
        }
        std::memcpy(v, turned, sizeof(turned));
    }
}

constexpr int64_t kBlock = 16;
inline constexpr hn::CappedTag<uint8_t, kBlock> dBlock;

// Row i of a strip of `count` rows; rows beyond stand in as the last.
HWY_INLINE int64_t rowOf(int64_t i, int64_t count) {
    return HWY_MIN(i, count - 1);
}

// Where the block that starts at x has to start to end with the row.
HWY_INLINE int64_t blockStart(int64_t x, int64_t length) {
    return HWY_MIN(x, length - kBlock);
}

// Vector x of the strip gets column x of up to kLanes rows.
void loadTransposed(const uint8_t* rows, int64_t stride, int64_t count, int64_t length,
                    uint8_t* strip) {
    if (length < kBlock) {
        for (int64_t x = 0; x < length; ++x) {
            for (int64_t i = 0; i < kLanes; ++i) {
                strip[x * kLanes + i] = rows[rowOf(i, count) * stride + x];
            }
        }
        return;
    }
    for (int64_t x = 0; x < length; x += kBlock) {
        const int64_t start = blockStart(x, length);
        V8 v[16];
        for (int64_t i = 0; i < kBlock; ++i) {
            const uint8_t* from = rows + start;
            const auto low = hn::LoadU(dBlock, from + rowOf(i, count) * stride);
#if HWY_TARGET == HWY_AVX2
            v[i] =
                hn::Combine(d8, hn::LoadU(dBlock, from + rowOf(i + kBlock, count) * stride), low);
#else
            v[i] = low;
#endif
        }
        transpose(v);
        for (int64_t i = 0; i < kBlock; ++i) hn::StoreU(v[i], d8, strip + (start + i) * kLanes);
    }
}

void storeTransposed(const uint8_t* strip, uint8_t* rows, int64_t stride, int64_t count,
                     int64_t length) {
    if (length < kBlock) {
        for (int64_t x = 0; x < length; ++x) {
            for (int64_t i = 0; i < count; ++i) rows[i * stride + x] = strip[x * kLanes + i];
        }
        return;
    }
    for (int64_t x = 0; x < length; x += kBlock) {
        const int64_t start = blockStart(x, length);
        V8 v[16];
        for (int64_t i = 0; i < kBlock; ++i) v[i] = hn::LoadU(d8, strip + (start + i) * kLanes);
        transpose(v);
        for (int64_t i = 0; i < kBlock; ++i) {
            uint8_t* to = rows + start + i * stride;
#if HWY_TARGET == HWY_AVX2
            if (i < count) hn::StoreU(hn::LowerHalf(dBlock, v[i]), dBlock, to);
            if (i + kBlock < count) {
                hn::StoreU(hn::UpperHalf(dBlock, v[i]), dBlock, to + kBlock * stride);
            }
#else
            if (i < count) hn::StoreU(v[i], dBlock, to);
#endif
        }
    }
}

// The same for `count` columns, which lie as a strip has them.
void loadColumns(const uint8_t* columns, int64_t stride, int64_t count, int64_t length,
                 uint8_t* strip) {
    for (int64_t y = 0; y < length; ++y, columns += stride, strip += kLanes) {
        if (count == kLanes) {
            hn::StoreU(hn::LoadU(d8, columns), d8, strip);
        } else {
            std::memcpy(strip, columns, static_cast<size_t>(count));
        }
    }
}

void storeColumns(const uint8_t* strip, uint8_t* columns, int64_t stride, int64_t count,
                  int64_t length) {
    for (int64_t y = 0; y < length; ++y, columns += stride, strip += kLanes) {
        if (count == kLanes) {
            hn::StoreU(hn::LoadU(d8, strip), d8, columns);
        } else {
            std::memcpy(columns, strip, static_cast<size_t>(count));
        }
    }
}

// --- whole passes
// ---------------------------------------------------------------------------------------------

// Rows may be blurred onto their own first cells: a strip is read whole before it is written.
void blurAll(const BlurPass& pass, const BlurWeights& weights, BlurInput input, bool alongRows,
             uint8_t* scratch) {
    const int64_t across = alongRows ? pass.rows : pass.columns;
    const int64_t steps = alongRows ? pass.columns : pass.rows;
    if (across <= 0 || steps <= 0) return;
    const int64_t length = steps + 2 * int64_t{weights.radius};
    const DifferenceTaps taps(weights, input, scratch + (1 + length + kReadAhead) * kLanes);
    Strip strip(scratch, weights, input, taps);
    for (int64_t i = 0; i < across; i += kLanes) {
        const int64_t count = HWY_MIN(across - i, kLanes);
        uint8_t* cells = scratch + kLanes;
        if (alongRows) {
            loadTransposed(pass.in + i * pass.inStride, pass.inStride, count, length, cells);
            strip.blur(steps);
            storeTransposed(scratch, pass.out + i * pass.outStride, pass.outStride, count, steps);
        } else {
            loadColumns(pass.in + i, pass.inStride, count, length, cells);
            strip.blur(steps);
            storeColumns(scratch, pass.out + i, pass.outStride, count, steps);
        }
    }
}

void blurBoth(const uint8_t* in, uint8_t* out, int64_t width, int64_t height,
              const BlurWeights& weights, BlurInput input, uint8_t* scratch) {
    const int64_t radius = weights.radius;
    const int64_t columns = width - 2 * radius;
    const int64_t rows = height - 2 * radius;
    if (columns < 0 || rows < 0) return;
    std::memset(out, input == BlurInput::kDirect ? 0 : 255, static_cast<size_t>(width * height));
    // The columns' means go where the rows' means replace them.
    uint8_t* firstRow = out + radius * width;
    uint8_t* means = firstRow + radius;
    blurAll({in + radius, width, means, width, columns, rows}, weights, input, false, scratch);
    blurAll({firstRow, width, means, width, columns, rows}, weights, input, true, scratch);
}

#endif  // GX_SIMD_IS_PLAIN

}  // namespace GxFontEffect::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace GxFontEffect::kernels {

HWY_EXPORT(blurAll);
HWY_EXPORT(blurBoth);

namespace {

// What the differences need: weights that do not rise outwards, from 128 at most, each less than
// 128 below the one before. Gaussian weights with a radius have that.
bool suitsDifferences(const BlurWeights& weights) {
    if (weights.radius < 1 || weights.taps[0] > 128) return false;
    for (int32_t i = 0; i <= weights.radius; ++i) {
        const int32_t next = i < weights.radius ? weights.taps[i + 1] : 0;
        if (next < 0 || next > weights.taps[i] || weights.taps[i] - next > 127) return false;
    }
    return true;
}

void copyPass(const BlurPass& pass, BlurInput input) {
    const auto flip = static_cast<uint8_t>(input == BlurInput::kDirect ? 0 : 255);
    for (int64_t y = 0; y < pass.rows; ++y) {
        const uint8_t* in = pass.in + y * pass.inStride;
        uint8_t* out = pass.out + y * pass.outStride;
        for (int64_t x = 0; x < pass.columns; ++x) out[x] = in[x] ^ flip;
    }
}

}  // namespace

void blurRows(const BlurPass& pass, const BlurWeights& weights, BlurInput input, uint8_t* scratch) {
    if (weights.radius == 0) {
        copyPass(pass, input);
        return;
    }
    if (!suitsDifferences(weights)) {
        blurRowsPlain(pass, weights, input);
        return;
    }
    HWY_DYNAMIC_DISPATCH(blurAll)(pass, weights, input, true, scratch);
}

void blurColumns(const BlurPass& pass, const BlurWeights& weights, BlurInput input,
                 uint8_t* scratch) {
    if (weights.radius == 0) {
        copyPass(pass, input);
        return;
    }
    if (!suitsDifferences(weights)) {
        blurColumnsPlain(pass, weights, input);
        return;
    }
    HWY_DYNAMIC_DISPATCH(blurAll)(pass, weights, input, false, scratch);
}

void blurPlane(const uint8_t* in, uint8_t* out, int64_t width, int64_t height,
               const BlurWeights& weights, BlurInput input, uint8_t* scratch) {
    if (weights.radius == 0) {
        if (width > 0 && height > 0) std::memcpy(out, in, static_cast<size_t>(width * height));
    } else if (suitsDifferences(weights)) {
        HWY_DYNAMIC_DISPATCH(blurBoth)(in, out, width, height, weights, input, scratch);
    } else {
        blurPlanePlain(in, out, width, height, weights, input, scratch);
    }
}

}  // namespace GxFontEffect::kernels
#endif  // HWY_ONCE
