// The blur from the places where cells change. Included once per target.
//
// With e(r) = in(r) - in(r - 1), sums of neighbouring windows differ by the blur of e:
//     F(y) - F(y - 1) = sum over k = 0 ... 2 radius of w(|k - radius|) e(y + k).
// Coverage is the same over long stretches, so that e is 0 nearly everywhere: each change adds its
// multiple of the weights to 2 radius + 1 differences, a few vectors of 16-bit lanes, whatever the
// rest of the line holds. Lines lie along the blur for that, and are turned to be summed up.
#if defined(GX_BLUR_CHANGES_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef GX_BLUR_CHANGES_INL_H
#undef GX_BLUR_CHANGES_INL_H
#else
#define GX_BLUR_CHANGES_INL_H
#endif

#include <hwy/highway.h>

#include <bit>
#include <type_traits>

#include "raster/kernels/BlurScratch.h"
#include "raster/kernels/BlurTranspose-inl.h"

#if !GX_SIMD_IS_PLAIN

HWY_BEFORE_NAMESPACE();
namespace GxFontEffect::kernels::HWY_NAMESPACE {

// Bit i: whether byte i of the vectors differs.
using LaneBits = std::conditional_t<(kLanes > 32), uint64_t, uint32_t>;
HWY_INLINE LaneBits differingBytes(V8 a, V8 b) {
    uint8_t bits[8] = {};
    hn::StoreMaskBits(d8, hn::Ne(a, b), bits);
    LaneBits differing = 0;
    std::memcpy(&differing, bits, sizeof(differing));
    return differing;
}

// Where neighbouring vectors of cells differ: up to a limit.
class ChangeList {
public:
    struct Entry {
        int32_t line;
        int32_t step;
        LaneBits differing;  // bit i: the cell of line + i, or of step + i
    };

    ChangeList(const BlurScratch& scratch, int64_t limit)
        : entries(reinterpret_cast<Entry*>(scratch.strip)), left(limit) {}

    // False when they are too many.
    HWY_INLINE bool add(int64_t line, int64_t step, V8 before, V8 here) {
        const LaneBits differing = differingBytes(before, here);
        if (differing == 0) return true;
        left -= std::popcount(differing);
        entries[count++] = {static_cast<int32_t>(line), static_cast<int32_t>(step), differing};
        return left >= 0;
    }

    const Entry* begin() const { return entries; }
    const Entry* end() const { return entries + count; }

private:
    Entry* const entries;
    int64_t count = 0;
    int64_t left;
};

// kLanes lines of differences of 16 bits each.
class ChangeLines {
public:
    // Outputs that are found together.
    static constexpr int64_t kSteps = 8;

    ChangeLines(const BlurWeights& weights, BlurInput input, int64_t steps,
                const BlurScratch& scratch)
        : reach(2 * int64_t{weights.radius}),
          sign(input == BlurInput::kDirect ? 1 : -1),
          steps(steps),
          vectors((reach + 1 + 2 * (kLanes16 - 1)) / kLanes16),
          stride(strideFor(steps + 2 * reach)),
          lines(scratch.wide),
          bell(reinterpret_cast<uint8_t*>(scratch.taps)) {
        const int64_t blank = kLanes16 - 1;
        std::memset(bell, 0, static_cast<size_t>(blank + vectors * kLanes16) * 2);
        for (int64_t k = 0; k <= reach; ++k) {
            const int64_t distance = std::abs(k - weights.radius);
            const auto tap = static_cast<uint16_t>(weights.taps[distance]);
            std::memcpy(bell + 2 * (blank + k), &tap, 2);
        }
    }

    // Changes up to which this is less work than every tap of all outputs, in instructions.
    int64_t limit() const {
        const int64_t perOutput = std::min<int64_t>(3 * reach, 200);
        return steps * perOutput / (4 * vectors + 20);
    }

    void clear() const {
        const V8 none = hn::Zero(d8);
        const int64_t begin = reach / kLanes16 * kLanes;
        const int64_t end = 2 * (steps + reach + 8);
        for (int64_t i = 0; i < kLanes; ++i) {
            uint8_t* line = lines + 2 * i * stride;
            for (int64_t at = begin; at < end; at += kLanes) hn::StoreU(none, d8, line + at);
        }
    }

    // Cell r of a line is more than the one before it by `change`, r = 1 ... steps + reach - 1.
    HWY_INLINE void add(int64_t line, int64_t r, int32_t change) const {
        const int64_t skew = r & (kLanes16 - 1);
        uint8_t* to = lines + 2 * (line * stride + r - skew);
        const uint8_t* weight = bell + 2 * (kLanes16 - 1 - skew);
        const V16 factor = hn::Set(d16, static_cast<uint16_t>(change * sign));
        for (int64_t i = 0; i < vectors * kLanes; i += kLanes) {
            const V16 product = hn::Mul(lanes16(hn::LoadU(d8, weight + i)), factor);
            hn::StoreU(bytes(hn::Add(lanes16(hn::LoadU(d8, to + i)), product)), d8, to + i);
        }
    }

    // Differences of the outputs y ... y + 7; false when all are 0.
    HWY_INLINE bool find(int64_t y, Difference* d) const {
        const uint8_t* at = lines + 2 * (y + reach);
        V16 lower[8], upper[8];
        V16 any = hn::Zero(d16);
        for (int64_t i = 0; i < 8; ++i) {
            lower[i] = load(at, i);
            upper[i] = load(at, i + 8);
            any = hn::Or(any, hn::Or(lower[i], upper[i]));
        }
        if (allBytesAre(bytes(any), 0)) return false;
        transpose(d16, lower);
        transpose(d16, upper);
        for (int64_t i = 0; i < 8; ++i) {
            d[i] = {hn::BitCast(dSigned16, lower[i]), hn::BitCast(dSigned16, upper[i])};
        }
        return true;
    }

private:
    static constexpr int64_t kLanes16 = kLanes / 2;

    // Whole cache lines, an odd number of them: the lines would share few places in the cache else.
    static int64_t strideFor(int64_t count) { return ((count + 2 * kLanes16 + 30) / 32 | 1) * 32; }
    HWY_INLINE V16 load(const uint8_t* at, int64_t line) const {
        return lanes16(loadBlocks(
            [&](int64_t block) HWY_ATTR { return at + 2 * (line + block * kBlock) * stride; }));
    }

    const int64_t reach;
    const int32_t sign;
    const int64_t steps;
    const int64_t vectors;  // that a change touches, wherever in its first one it starts
    const int64_t stride;
    uint8_t* const lines;
    uint8_t* const bell;  // the weights of a window, blank on both sides
};

// Adds the changes along kLanes columns of `length` cells to the lines and returns true, or leaves
// them when there are too many.
inline bool addColumnChanges(const uint8_t* in, int64_t stride, int64_t columns, int64_t length,
                             const BlurScratch& scratch, const ChangeLines& changes) {
    if (columns < kLanes) return false;
    ChangeList list(scratch, changes.limit());
    V8 before = hn::LoadU(d8, in);
    for (int64_t y = 1; y < length; ++y) {
        const V8 here = hn::LoadU(d8, in + y * stride);
        if (!list.add(0, y, before, here)) return false;
        before = here;
    }
    changes.clear();
    const ChangeLines lines = changes;  // a copy stays in registers
    for (const ChangeList::Entry& entry : list) {
        const uint8_t* cells = in + entry.step * stride;
        for (LaneBits differing = entry.differing; differing != 0; differing &= differing - 1) {
            const int i = std::countr_zero(differing);
            lines.add(i, entry.step, cells[i] - cells[i - stride]);
        }
    }
    return true;
}

// The same along up to kLanes rows, of more than kLanes cells.
inline bool addRowChanges(const uint8_t* in, int64_t stride, int64_t rows, int64_t length,
                          const BlurScratch& scratch, const ChangeLines& changes) {
    if (length <= kLanes) return false;
    ChangeList list(scratch, changes.limit());
    for (int64_t i = 0; i < rows; ++i) {
        const uint8_t* row = in + i * stride;
        for (int64_t x = 1; x < length; x += kLanes) {
            // The last vector of a row ends with it: what it has twice is dropped.
            const int64_t start = std::min(x, length - kLanes);
            V8 before = hn::LoadU(d8, row + start - 1);
            const V8 here = hn::LoadU(d8, row + start);
            if (start < x)
                before =
                    hn::IfThenElse(hn::FirstN(d8, static_cast<size_t>(x - start)), here, before);
            if (!list.add(i, start, before, here)) return false;
        }
    }
    changes.clear();
    const ChangeLines lines = changes;
    for (const ChangeList::Entry& entry : list) {
        const uint8_t* cells = in + entry.line * stride + entry.step;
        for (LaneBits differing = entry.differing; differing != 0; differing &= differing - 1) {
            const int i = std::countr_zero(differing);
            lines.add(entry.line, entry.step + i, cells[i] - cells[i - 1]);
        }
    }
    return true;
}

}  // namespace GxFontEffect::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // !GX_SIMD_IS_PLAIN
#endif  // per target
