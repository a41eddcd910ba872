// The fast gradients of raster/kernels/GradientRows.h.
//
// What a column adds to the position is worked out once for all rows. Along a row the position
// rises or falls; falling ones are negated and look into a table that runs backwards, so that the
// first pixel of a vector has the lowest entry. Where a pixel moves on by less than an entry, all
// entries of a vector lie in the vector of the table that starts there, and a shuffle picks them:
// only steeper gradients gather.
#include "raster/kernels/GradientRows.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "raster/kernels/Simd.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "raster/kernels/GradientRows.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "raster/kernels/ExactFloat-inl.h"
#include "raster/kernels/PixelVector-inl.h"

HWY_BEFORE_NAMESPACE();
namespace GxFontEffect::kernels::HWY_NAMESPACE {

#if GX_SIMD_IS_PLAIN

void linearRows(const GradientFill& fill, float stepX, float stepY) {
    plain::linearGradientRows(fill, stepX, stepY);
}

void radialRows(const GradientFill& fill, float step) {
    plain::radialGradientRows(fill, step);
}

#else

// The colours as pixels, in both directions, with a vector to read behind the last ones.
class Colors {
public:
    explicit Colors(const uint32_t* table) {
        for (size_t i = 0; i < kCount; ++i) {
            forwards[i] = backwards[kCount - 1 - i] = std::bit_cast<uint32_t>(fromWord(table[i]));
        }
    }
    // Index 0 is colour i; indices go up from it, or down.
    const uint32_t* upFrom(size_t i) const { return forwards + i; }
    const uint32_t* downFrom(size_t i) const { return backwards + kCount - 1 - i; }

private:
    static constexpr size_t kCount = 256;
    uint32_t forwards[kCount + kVectorPixels] = {};
    uint32_t backwards[kCount + kVectorPixels] = {};
};

// Indices of a table in a direction, from lowest to highest.
struct Range {
    const uint32_t* zero;  // the colour of index 0
    float lowest;
    float highest;
};

// --- positions, from the numbers of the columns ---

struct AlongLine {
    Numbers rowTerm;
    HWY_INLINE Numbers operator()(Numbers column) const { return hn::Add(rowTerm, column); }
};

struct AroundCentre {
    Numbers step;
    Numbers squareOfRow;
    HWY_INLINE Numbers operator()(Numbers squareOfColumn) const {
        return hn::Mul(step, exactRoot(hn::Add(squareOfRow, squareOfColumn)));
    }
};

// --- pixels ---

// The largest step for which a vector's entries are neighbours: positions that differ by less than
// a vector less one, rounding included.
constexpr float kShortStep = 0.9f;
// Numbers below it are exact to an eighth of an entry or better.
constexpr float kLargestShort = 1 << 20;

// An operation through a mask for blendRow.
template <bool kShort, class Position>
struct Gradient {
    Position position;
    const uint32_t* zero;
    Numbers lowest;
    Numbers highest;

    HWY_INLINE Gradient(const Position& at, const Range& range)
        : position(at),
          zero(range.zero),
          lowest(hn::Set(dNumber, range.lowest)),
          highest(hn::Set(dNumber, range.highest)) {}

    HWY_INLINE V8 weights(V8 mask) const { return onOrOff(mask); }
    HWY_INLINE V8 operator()(V8 d, V16 factor, Numbers column) const {
        return dstOver(d, colors(column), factor);
    }
    HWY_INLINE V8 onto(V8 d, Numbers column) const { return dstOver(d, colors(column)); }

private:
    // Truncated after the clamp, which comes to the same.
    HWY_INLINE V8 colors(Numbers column) const {
        const Numbers clamped = hn::Min(hn::Max(position(column), lowest), highest);
        const Wholes index = truncated(clamped);
        if constexpr (kShort) {
            const Wholes first =
                hn::TableLookupLanes(index, hn::IndicesFromVec(dWhole, hn::Zero(dWhole)));
            // Pixels behind the row's end may have any entry.
            const Wholes places =
                hn::And(hn::Sub(index, first), hn::Set(dWhole, int32_t{kVectorPixels} - 1));
            const V32 entries = hn::LoadU(d32, zero + hn::GetLane(index));
            return hn::BitCast(d8, hn::TableLookupLanes(entries, hn::IndicesFromVec(d32, places)));
        } else {
            return hn::BitCast(d8, hn::GatherIndex(d32, zero, index));
        }
    }
};

// Columns [from, to) of row y.
template <bool kShort, class Position>
HWY_INLINE void drawRow(const GradientFill& fill, int64_t y, size_t from, size_t to,
                        const Position& position, const Range& range) {
    const BlendArea& area = fill.area;
    auto* out = reinterpret_cast<Rgba*>(area.destination + y * area.destinationStride);
    const uint8_t* mask = area.source + y * area.sourceStride;
    blendRow(to - from, Gradient<kShort, Position>(position, range), out + from, mask + from,
             fill.columns + from);
}

HWY_INLINE float offsetX(const GradientFill& fill, size_t x) {
    return static_cast<float>(fill.firstColumn + static_cast<int64_t>(x)) - fill.centreX;
}

HWY_INLINE float offsetY(const GradientFill& fill, int64_t y) {
    return static_cast<float>(fill.firstRow + y) - fill.centreY;
}

// --- linear ---

template <bool kShort>
void drawLinear(const GradientFill& fill, float stepY, const Range& range) {
    for (int64_t y = 0; y < static_cast<int64_t>(fill.area.height); ++y) {
        const AlongLine line{hn::Set(dNumber, stepY * offsetY(fill, y))};
        drawRow<kShort>(fill, y, 0, fill.area.width, line, range);
    }
}

void linearRows(const GradientFill& fill, float stepX, float stepY) {
    const BlendArea& area = fill.area;
    if (area.width == 0 || area.height == 0) return;
    const Colors colors(fill.table);
    const bool falls = stepX < 0;
    const Range range =
        falls ? Range{colors.downFrom(128), -127, 128} : Range{colors.upFrom(128), -128, 127};
    if (falls) {
        stepX = -stepX;
        stepY = -stepY;
    }
    for (size_t x = 0; x < area.width; ++x) fill.columns[x] = stepX * offsetX(fill, x);
    const float largest =
        std::max({std::abs(fill.columns[0]), std::abs(fill.columns[area.width - 1]),
                  std::abs(stepY * offsetY(fill, 0)),
                  std::abs(stepY * offsetY(fill, static_cast<int64_t>(area.height) - 1))});
    if (stepX <= kShortStep && largest < kLargestShort) {
        drawLinear<true>(fill, stepY, range);
    } else {
        drawLinear<false>(fill, stepY, range);
    }
}

// --- radial ---

template <bool kShort>
void drawRadial(const GradientFill& fill, float step, size_t centre, const Range& towards,
                const Range& away) {
    const Numbers rising = hn::Set(dNumber, step);
    const Numbers falling = hn::Set(dNumber, -step);
    for (int64_t y = 0; y < static_cast<int64_t>(fill.area.height); ++y) {
        const float dy = offsetY(fill, y);
        const Numbers square = hn::Set(dNumber, dy * dy);
        drawRow<kShort>(fill, y, 0, centre, AroundCentre{falling, square}, towards);
        drawRow<kShort>(fill, y, centre, fill.area.width, AroundCentre{rising, square}, away);
    }
}

void radialRows(const GradientFill& fill, float step) {
    if (fill.area.width == 0 || fill.area.height == 0) return;
    const Colors colors(fill.table);
    size_t centre = 0;  // the first column from which the distance rises
    for (size_t x = 0; x < fill.area.width; ++x) {
        const float dx = offsetX(fill, x);
        fill.columns[x] = dx * dx;
        if (dx < 0) centre = x + 1;
    }
    const Range towards = {colors.downFrom(0), -255, 0};
    const Range away = {colors.upFrom(0), 0, 255};
    if (step <= kShortStep) {
        drawRadial<true>(fill, step, centre, towards, away);
    } else {
        drawRadial<false>(fill, step, centre, towards, away);
    }
}

#endif  // GX_SIMD_IS_PLAIN

}  // namespace GxFontEffect::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace GxFontEffect::kernels {

GX_EXPORT(linearRows);
GX_EXPORT(radialRows);

namespace {

// Below it no sum of products over 32-bit columns and rows leaves the range of floats, and none of
// the vectors' clamps meets something that is not a number. Squares of 2^-100 or less give entry 0:
// vectors of 32-bit ARM take those below 2^-126 for 0.
constexpr float kLargestStep = 0x1p50f;

bool isSmall(float step) {
    return std::abs(step) < kLargestStep;  // not if it is not a number
}

}  // namespace

void linearGradientRows(const GradientFill& fill, float stepX, float stepY) {
    if (isSmall(stepX) && isSmall(stepY)) {
        GX_DISPATCH(linearRows)(fill, stepX, stepY);
    } else {
        plain::linearGradientRows(fill, stepX, stepY);
    }
}

void radialGradientRows(const GradientFill& fill, float step) {
    if (step >= 0 && isSmall(step)) {
        GX_DISPATCH(radialRows)(fill, step);
    } else {
        plain::radialGradientRows(fill, step);
    }
}

}  // namespace GxFontEffect::kernels
#endif  // HWY_ONCE
