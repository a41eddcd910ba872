// The fast blur of raster/kernels/SeparableBlur.h, in three forms:
//
// * over few cells, directly (BlurDirect-inl.h);
// * from the places where cells change, where these are few, as in a mask of text
//   (BlurChanges-inl.h);
// * else from all cells (BlurTaps-inl.h).
//
// The last two work in strips: as many rows or columns side by side as a vector has bytes, so that
// a step along the blur is one vector. They find by how much each sum differs from the one before
// it: with g(t) = w(t) - w(t + 1),
//     F(y) - F(y - 1) = sum over t = 0 ... radius of g(t) (in(y + t) - in(y - 1 - t)).
// The g are not negative and add up to the centre's weight, so that for a weight of up to 128 the
// difference fits 16 bits whatever the radius. Inverse input turns the signs.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>

#include "raster/kernels/SeparableBlur.h"
#include "raster/kernels/Simd.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "raster/kernels/BlurStrips.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "raster/kernels/BlurChanges-inl.h"
#include "raster/kernels/BlurDirect-inl.h"
#include "raster/kernels/BlurTaps-inl.h"
#include "raster/kernels/BlurTranspose-inl.h"

HWY_BEFORE_NAMESPACE();
namespace GxFontEffect::kernels::HWY_NAMESPACE {

#if GX_SIMD_IS_PLAIN

void blurAll(const BlurPass& pass, const BlurWeights& weights, BlurInput input, bool alongRows,
             uint8_t* /*scratch*/) {
    (alongRows ? plain::blurRows : plain::blurColumns)(pass, weights, input);
}

void blurBoth(const uint8_t* in, uint8_t* out, int64_t width, int64_t height,
              const BlurWeights& weights, BlurInput input, uint8_t* scratch) {
    plain::blurPlane(in, out, width, height, weights, input, scratch);
}

void blurPadded(uint8_t* plane, int64_t width, int64_t height, const BlurWeights& weights,
                uint8_t* /*scratch*/) {
    plain::blurPaddedPlane(plane, width, height, weights);
}

#else

// --- strips ---

// Of the first window in a strip.
Sums firstSums(const uint8_t* strip, const BlurWeights& weights, BlurInput input) {
    Sums sums;
    for (int64_t i = 0; i <= 2 * int64_t{weights.radius}; ++i) {
        const uint8_t* pair = strip + i / 2 * 2 * kLanes;
        Wide cells = {lanes16(hn::LoadU(d8, pair)), lanes16(hn::LoadU(d8, pair + kLanes))};
        if (i % 2 != 0) {
            cells = {hn::ShiftRight<8>(cells.lower), hn::ShiftRight<8>(cells.upper)};
        } else {
            const V16 first = hn::Set(d16, 0x00FF);
            cells = {hn::And(cells.lower, first), hn::And(cells.upper, first)};
        }
        sums.add(cells, weights.taps[std::abs(i - weights.radius)]);
    }
    sums.finish(weights, input);
    return sums;
}

// Finds windows of a strip all of whose vectors are alike, one window after the other.
class EvenWindows {
public:
    EvenWindows(const uint8_t* strip, const BlurWeights& weights)
        : strip(strip), reach(2 * int64_t{weights.radius}) {}

    // The vectors y ... y + count - 1 and the window behind, y even. They may be overwritten
    // afterwards up to y + count.
    HWY_INLINE bool isEven(int64_t y, int64_t count) {
        const int64_t first = y / 2;
        const int64_t last = (y + count + reach) / 2;
        seen = std::max(seen, first);
        while (seen < last) {
            const int64_t end = std::min(seen + 4, last);
            V8 difference = hn::Zero(d8);
            for (; seen < end; ++seen) {
                const uint8_t* at = strip + 2 * seen * kLanes;
                difference = hn::Or(difference, differing(at, at + 2 * kLanes));
                difference = hn::Or(difference, differing(at + kLanes, at + 3 * kLanes));
            }
            if (!allBytesAre(difference, 0)) lastChange = end;
        }
        return lastChange <= first && isPairEven(strip + 2 * first * kLanes);
    }

private:
    static HWY_INLINE V8 differing(const uint8_t* a, const uint8_t* b) {
        return hn::Xor(hn::LoadU(d8, a), hn::LoadU(d8, b));
    }
    static HWY_INLINE bool isPairEven(const uint8_t* pair) {
        const V16 lower = lanes16(hn::LoadU(d8, pair));
        const V16 upper = lanes16(hn::LoadU(d8, pair + kLanes));
        const V16 differs = hn::Or(hn::Xor(lower, hn::ShiftRight<8>(lower)),
                                   hn::Xor(upper, hn::ShiftRight<8>(upper)));
        return allBytesAre(bytes(hn::And(differs, hn::Set(d16, 0x00FF))), 0);
    }

    const uint8_t* const strip;
    const int64_t reach;
    int64_t seen = 0;        // pairs up to here are compared with the ones before
    int64_t lastChange = 0;  // none behind it, up to `seen`, differs
};

// Where the vectors of outputs go, `step` bytes apart.
struct Outputs {
    uint8_t* first;
    int64_t step;
    HWY_INLINE void store(int64_t y, V8 means) const { hn::StoreU(means, d8, first + y * step); }
};

// Outputs y to y + count: by their differences, or like the one before when there are none.
template <class Means>
HWY_INLINE void blurBlock(int64_t y, int64_t count, const Difference* differences, Means& means,
                          const Outputs& out) {
    for (int64_t j = 0; j < count; ++j) {
        if (differences) means.add(differences[j]);
        out.store(y + j, means.means());
    }
}

// The strip of `steps` + 2 radius vectors in scratch.strip + kLanes. Outputs may go to
// scratch.strip.
template <class Means, class Taps>
void blurStrip(const BlurScratch& scratch, const BlurWeights& weights, BlurInput input,
               const Taps& taps, int64_t steps, const Outputs& out) {
    const uint8_t* strip = scratch.strip + kLanes;
    taps.prepare(steps + 2 * int64_t{weights.radius});
    EvenWindows windows(strip, weights);
    Means means(weights, firstSums(strip, weights, input));
    out.store(0, means.means());
    Difference differences[Taps::kSteps];
    for (int64_t y = 1; y < steps; y += Taps::kSteps) {
        const bool isEven = windows.isEven(y - 1, Taps::kSteps);
        if (!isEven) taps.find(y, differences);
        blurBlock(y, std::min(Taps::kSteps, steps - y), isEven ? nullptr : differences, means, out);
    }
}

// The outputs of the lines of changes. The first window stands in the strip.
template <class Means>
void blurChanges(const BlurScratch& scratch, const BlurWeights& weights, BlurInput input,
                 const ChangeLines& changes, int64_t steps, const Outputs& out) {
    Means means(weights, firstSums(scratch.strip + kLanes, weights, input));
    out.store(0, means.means());
    Difference differences[ChangeLines::kSteps];
    for (int64_t y = 1; y < steps; y += ChangeLines::kSteps) {
        const bool isEven = !changes.find(y, differences);
        blurBlock(y, std::min(ChangeLines::kSteps, steps - y), isEven ? nullptr : differences,
                  means, out);
    }
}

// What steps behind a strip hold changes no output: windows that end before have no weight for it,
// and where it differs from the last cell, a block is worked out that might have been passed on.
// But it is to be something, the same on every run.
void clearReadAhead(uint8_t* strip, int64_t length) {
    const int64_t begin = length / 2 * 2;
    std::memset(strip + begin * kLanes, 0,
                static_cast<size_t>((length + kBlurReadAhead - begin) * kLanes));
}

// --- single passes ---

// What a pass is likely to see: few changes, or so many that it is not worth a look.
enum class Content { kAny, kDense };

template <class Means, class Taps>
void blurStrips(const BlurPass& pass, const BlurWeights& weights, BlurInput input, bool alongRows,
                Content content, uint8_t* memory) {
    const int64_t across = alongRows ? pass.rows : pass.columns;
    const int64_t steps = alongRows ? pass.columns : pass.rows;
    const int64_t reach = 2 * int64_t{weights.radius};
    const int64_t length = steps + reach;
    const BlurScratch scratch(memory, length, weights.radius);
    uint8_t* strip = scratch.strip + kLanes;
    const auto load = alongRows ? loadRows : loadColumns;
    const auto addChanges = alongRows ? addRowChanges : addColumnChanges;
    const auto store = alongRows ? storeRows : storeColumns;
    for (int64_t i = 0; i < across; i += kLanes) {
        const int64_t count = std::min(across - i, kLanes);
        const uint8_t* in = pass.in + i * (alongRows ? pass.inStride : 1);
        uint8_t* to = pass.out + i * (alongRows ? pass.outStride : 1);
        const bool isWhole = !alongRows && count == kLanes;
        const Outputs out = isWhole ? Outputs{to, pass.outStride} : Outputs{scratch.strip, kLanes};
        bool isSparse = false;
        if (content == Content::kAny) {
            const ChangeLines changes(weights, input, steps, scratch);
            isSparse = addChanges(in, pass.inStride, count, length, scratch, changes);
            if (isSparse) {
                load(in, pass.inStride, count, reach + 1, strip);
                blurChanges<Means>(scratch, weights, input, changes, steps, out);
            }
        }
        if (!isSparse) {
            const Taps taps(weights, input, scratch);
            clearReadAhead(strip, length);
            load(in, pass.inStride, count, length, strip);
            blurStrip<Means>(scratch, weights, input, taps, steps, out);
        }
        if (!isWhole) store(scratch.strip, to, pass.outStride, count, steps);
    }
}

template <class Taps>
void blurWith(const BlurPass& pass, const BlurWeights& weights, BlurInput input, bool alongRows,
              Content content, uint8_t* scratch) {
    if (NarrowMeans<false>::takes(weights)) {
        blurStrips<NarrowMeans<false>, Taps>(pass, weights, input, alongRows, content, scratch);
    } else if (NarrowMeans<true>::takes(weights)) {
        blurStrips<NarrowMeans<true>, Taps>(pass, weights, input, alongRows, content, scratch);
    } else {
        blurStrips<WideMeans, Taps>(pass, weights, input, alongRows, content, scratch);
    }
}

// Rows may be blurred onto their own first cells: a strip is read whole before it is written.
void blurAny(const BlurPass& pass, const BlurWeights& weights, BlurInput input, bool alongRows,
             Content content, uint8_t* scratch) {
    if (pass.columns <= 0 || pass.rows <= 0) return;
    if (RunTaps::pays(weights)) {
        blurWith<RunTaps>(pass, weights, input, alongRows, content, scratch);
    } else {
        blurWith<PairedTaps>(pass, weights, input, alongRows, content, scratch);
    }
}

template <int kRadius>
bool blurDirect(const BlurPass& pass, const BlurWeights& weights, BlurInput input, bool alongRows,
                uint8_t* memory) {
    using Taps = DirectTaps<kRadius>;
    if (pass.columns < kLanes || pass.rows < 2 || !Taps::takes(weights)) return false;
    const int64_t length = std::max(pass.columns, pass.rows) + Taps::kReach;
    const BlurScratch scratch(memory, length, kRadius);
    const Taps taps(weights, input);
    (alongRows ? blurRowsDirect<kRadius> : blurColumnsDirect<kRadius>)(pass, taps, scratch);
    return true;
}

void blurAll(const BlurPass& pass, const BlurWeights& weights, BlurInput input, bool alongRows,
             uint8_t* scratch) {
    if (blurDirect<1>(pass, weights, input, alongRows, scratch) ||
        blurDirect<2>(pass, weights, input, alongRows, scratch) ||
        blurDirect<3>(pass, weights, input, alongRows, scratch) ||
        blurDirect<4>(pass, weights, input, alongRows, scratch) ||
        blurDirect<5>(pass, weights, input, alongRows, scratch) ||
        blurDirect<6>(pass, weights, input, alongRows, scratch)) {
        return;
    }
    blurAny(pass, weights, input, alongRows, Content::kAny, scratch);
}

// --- both passes ---

struct Box {
    int64_t left;
    int64_t top;
    int64_t right;
    int64_t bottom;
};

HWY_INLINE bool isBlank(const uint8_t* cells, int64_t step, int64_t count) {
    V8 any = hn::Zero(d8);
    for (int64_t i = 0; i < count; ++i, cells += step) any = hn::Or(any, hn::LoadU(d8, cells));
    return allBytesAre(any, 0);
}

HWY_INLINE bool isRowBlank(const uint8_t* row, int64_t width) {
    return isBlank(row, kLanes, width / kLanes) && isBlank(row + width - kLanes, kLanes, 1);
}

// What is not blank, in columns to the next vector; at least one of them wide and a row high.
Box inkOf(const uint8_t* in, int64_t width, int64_t height) {
    Box box = {0, 0, width, height};
    while (box.top + 1 < box.bottom && isRowBlank(in + box.top * width, width)) ++box.top;
    while (box.bottom - 1 > box.top && isRowBlank(in + (box.bottom - 1) * width, width))
        --box.bottom;
    const uint8_t* first = in + box.top * width;
    const int64_t rows = box.bottom - box.top;
    while (box.left + 2 * kLanes <= box.right && isBlank(first + box.left, width, rows)) {
        box.left += kLanes;
    }
    while (box.right - 2 * kLanes >= box.left && isBlank(first + box.right - kLanes, width, rows)) {
        box.right -= kLanes;
    }
    return box;
}

// All cells but those of the area's rows and the ink's columns.
void fillAround(uint8_t* out, int64_t width, int64_t height, const Box& ink, const Box& area,
                uint8_t value) {
    std::memset(out, value, static_cast<size_t>(area.top * width));
    uint8_t* row = out + area.top * width;
    for (int64_t y = area.top; y < area.bottom; ++y, row += width) {
        std::memset(row, value, static_cast<size_t>(ink.left));
        std::memset(row + ink.right, value, static_cast<size_t>(width - ink.right));
    }
    std::memset(row, value, static_cast<size_t>((height - area.bottom) * width));
}

template <int kRadius>
bool blurBothDirect(const BlurPass& area, const BlurWeights& weights, BlurInput input,
                    uint8_t* memory) {
    using Taps = DirectTaps<kRadius>;
    if (area.columns < kLanes || area.rows < 2 || !Taps::takes(weights)) return false;
    const int64_t length = std::max(area.columns, area.rows) + Taps::kReach;
    const BlurScratch scratch(memory, length, kRadius);
    const Taps taps(weights, input);
    blurBothDirect<kRadius>(area, taps, scratch);
    return true;
}

// The cells of a plane that have a whole window around them.
Box innerOf(int64_t width, int64_t height, int64_t radius) {
    return {radius, radius, width - radius, height - radius};
}

// What is not blank, and what it reaches, in columns to the next vector. Blank paper stays blank.
struct Reach {
    Reach(const uint8_t* in, int64_t width, int64_t height, int64_t radius, bool isBlankKept)
        : ink(innerOf(width, height, radius)), area(ink) {
        if (!isBlankKept) return;
        if (area.right - area.left < kLanes || area.top >= area.bottom) return;
        const Box all = inkOf(in, width, height);
        ink.left = std::max(ink.left, all.left);
        ink.right = std::min(ink.right, all.right);
        area = {std::max(area.left, all.left - radius), std::max(area.top, all.top - radius),
                std::min(area.right, all.right + radius),
                std::min(area.bottom, all.bottom + radius)};
    }
    bool isEmpty() const { return ink.left >= ink.right || area.top >= area.bottom; }

    Box ink;
    Box area;
};

// Both passes over the area. The columns' means go to rows that start at `means`, with the area's
// top, and the rows' to those at `out`; the rows' windows start at means - radius.
void blurArea(const uint8_t* in, int64_t width, const Reach& reach, uint8_t* means, uint8_t* out,
              const BlurWeights& weights, BlurInput input, uint8_t* scratch) {
    const Box& area = reach.area;
    const int64_t rows = area.bottom - area.top;
    const int64_t columns = area.right - area.left;
    const uint8_t* firstWindows = in + (area.top - weights.radius) * width;
    const BlurPass both = {firstWindows + area.left, width, out + area.left, width, columns, rows};
    if (blurBothDirect<1>(both, weights, input, scratch) ||
        blurBothDirect<2>(both, weights, input, scratch) ||
        blurBothDirect<3>(both, weights, input, scratch) ||
        blurBothDirect<4>(both, weights, input, scratch) ||
        blurBothDirect<5>(both, weights, input, scratch) ||
        blurBothDirect<6>(both, weights, input, scratch)) {
        return;
    }
    const int64_t inkLeft = reach.ink.left;
    blurAny(
        {firstWindows + inkLeft, width, means + inkLeft, width, reach.ink.right - inkLeft, rows},
        weights, input, false, Content::kAny, scratch);
    blurAny({means + area.left - weights.radius, width, out + area.left, width, columns, rows},
            weights, input, true, Content::kDense, scratch);
}

void blurBoth(const uint8_t* in, uint8_t* out, int64_t width, int64_t height,
              const BlurWeights& weights, BlurInput input, uint8_t* scratch) {
    const int64_t radius = weights.radius;
    if (width < 2 * radius || height < 2 * radius) return;
    const bool isDirect = input == BlurInput::kDirect;
    const Reach reach(in, width, height, radius, isDirect);
    const uint8_t border = isDirect ? 0 : 255;
    if (reach.isEmpty()) {
        std::memset(out, border, static_cast<size_t>(width * height));
        return;
    }
    fillAround(out, width, height, reach.ink, reach.area, border);
    // The columns' means go where the rows' means replace them.
    uint8_t* firstRow = out + reach.area.top * width;
    blurArea(in, width, reach, firstRow, firstRow, weights, input, scratch);
}

void blurPadded(uint8_t* plane, int64_t width, int64_t height, const BlurWeights& weights,
                uint8_t* scratch) {
    const int64_t radius = weights.radius;
    Reach reach(plane, width, height, radius, true);
    if (reach.isEmpty()) return;
    // Rows two by two: none is read again after its means have replaced it.
    if ((reach.area.bottom - reach.area.top) % 2 != 0) {
        if (reach.area.bottom < height - radius) {
            ++reach.area.bottom;
        } else {
            --reach.area.top;
        }
    }
    uint8_t* firstRow = plane + (reach.area.top - radius) * width;
    blurArea(plane, width, reach, firstRow, firstRow - radius, weights, BlurInput::kDirect,
             scratch);
}

#endif  // GX_SIMD_IS_PLAIN

}  // namespace GxFontEffect::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace GxFontEffect::kernels {

GX_EXPORT(blurAll);
GX_EXPORT(blurBoth);
GX_EXPORT(blurPadded);

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
        plain::blurRows(pass, weights, input);
        return;
    }
    GX_DISPATCH(blurAll)(pass, weights, input, true, scratch);
}

void blurColumns(const BlurPass& pass, const BlurWeights& weights, BlurInput input,
                 uint8_t* scratch) {
    if (weights.radius == 0) {
        copyPass(pass, input);
        return;
    }
    if (!suitsDifferences(weights)) {
        plain::blurColumns(pass, weights, input);
        return;
    }
    GX_DISPATCH(blurAll)(pass, weights, input, false, scratch);
}

void blurPlane(const uint8_t* in, uint8_t* out, int64_t width, int64_t height,
               const BlurWeights& weights, BlurInput input, uint8_t* scratch) {
    if (weights.radius == 0) {
        if (width > 0 && height > 0) std::memcpy(out, in, static_cast<size_t>(width * height));
    } else if (suitsDifferences(weights)) {
        GX_DISPATCH(blurBoth)(in, out, width, height, weights, input, scratch);
    } else {
        plain::blurPlane(in, out, width, height, weights, input, scratch);
    }
}

void blurPaddedPlane(uint8_t* plane, int64_t width, int64_t height, const BlurWeights& weights,
                     uint8_t* scratch) {
    if (width < 2 * int64_t{weights.radius} || height < 2 * int64_t{weights.radius}) return;
    if (suitsDifferences(weights)) {
        GX_DISPATCH(blurPadded)(plane, width, height, weights, scratch);
    } else {
        plain::blurPaddedPlane(plane, width, height, weights);
    }
}

}  // namespace GxFontEffect::kernels
#endif  // HWY_ONCE
