// The fast heights of raster/kernels/ReliefHeight.h, a row at a time.
//
// The nearest point of all lies in the cell's own column or k columns aside, or in its own row or k
// rows off: the search goes outwards, for a group of cells together, and stops when k alone is
// further than the best so far of all of them. Where that is far, blocks of columns and rows whose
// smallest candidate is no nearer are passed over, many at a time.
#include "raster/kernels/ReliefHeight.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdlib>

#include "raster/kernels/Simd.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "raster/kernels/ReliefHeight.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "raster/kernels/ExactFloat-inl.h"
#include "raster/kernels/PixelVector-inl.h"

HWY_BEFORE_NAMESPACE();
namespace GxFontEffect::kernels::HWY_NAMESPACE {

#if GX_SIMD_IS_PLAIN

void raiseHeights(const ContourPlanes& planes, const ReliefSlope& slope, uint16_t* heights,
                  uint8_t* scratch) {
    reliefHeightsPlain(planes, slope, heights, scratch);
}

#else

constexpr int64_t kLanes = hn::MaxLanes(dWhole);
using Sides = hn::Mask<decltype(dWhole)>;  // cells inside

// No distance is larger, so a search ends before that many columns or rows.
constexpr int64_t kMaxSteps = 256;

HWY_INLINE Wholes loadWholes(const int32_t* cells) {
    return hn::LoadU(dWhole, cells);
}

HWY_INLINE bool anyIsMore(Wholes a, Wholes b) {
    return !hn::AllFalse(dWhole, hn::Gt(a, b));
}

// The cells whose nearest points are looked for together.
constexpr int64_t kGroup = 2 * kLanes;
static_assert(kReliefStep % kGroup == 0);

// Candidates whose smallest value is kept.
constexpr int64_t kBlock = 8;

// Up to this many columns and rows away the search goes one by one, further off by blocks.
constexpr int32_t kNearSteps = 24;

// Squared distance of columns or rows so many steps away. None is searched for beyond 254 pixels:
// that more steps count as 255 keeps sums of two squares in 32 bits.
constexpr int32_t kMostSteps = 255;
HWY_INLINE int32_t squareOfSteps(int64_t steps) {
    const auto near = static_cast<int32_t>(std::min<int64_t>(std::abs(steps), kMostSteps));
    return near * near * kContourUnits * kContourUnits;
}
HWY_INLINE Wholes squareOfSteps(Wholes steps) {
    const Wholes near = hn::Min(hn::Abs(steps), hn::Set(dWhole, kMostSteps));
    return hn::ShiftLeft<14>(hn::Mul(near, near));
}

HWY_INLINE int32_t largest(Wholes v) {
    return hn::GetLane(hn::MaxOfLanes(dWhole, v));
}
HWY_INLINE int32_t smallest(Wholes v) {
    return hn::GetLane(hn::MinOfLanes(dWhole, v));
}

// The smallest of each block of candidates, in lines, with kLanes blocks of none behind each.
struct BlockLines {
    int32_t* blocks;
    int64_t count;  // of blocks in a line

    int64_t stride() const { return count + kLanes; }
    int32_t* line(int64_t i) const { return blocks + i * stride(); }
    void close(int64_t i) const { std::fill_n(line(i) + count, kLanes, kFarthest * kFarthest); }
};

// Squared distances to the nearest points of a group of cells.
struct Nearest {
    Wholes a;
    Wholes b;

    HWY_INLINE int32_t worst() const { return largest(hn::Max(a, b)); }
    // From one row to the next the distance grows by a pixel at most. What it was before, in 1/256
    // pixel, is rounded.
    HWY_INLINE void limit(const int32_t* before) {
        const auto most = [&](const int32_t* distances) HWY_ATTR {
            const Wholes distance = hn::ShiftRight<1>(hn::Abs(loadWholes(distances)));
            const Wholes grown = hn::Add(distance, hn::Set(dWhole, kContourUnits + 1));
            return hn::Mul(grown, grown);
        };
        a = hn::Min(a, most(before));
        b = hn::Min(b, most(before + kLanes));
    }
    // Whether a candidate of at least these squares is nearer for some cell.
    HWY_INLINE bool mayBeLess(Wholes leastA, Wholes leastB) const {
        return !hn::AllFalse(dWhole, hn::Or(hn::Lt(leastA, a), hn::Lt(leastB, b)));
    }
    // A candidate for each cell, `across` away.
    HWY_INLINE void see(const int32_t* along, Wholes across) {
        a = hn::Min(a, hn::Add(across, loadWholes(along)));
        b = hn::Min(b, hn::Add(across, loadWholes(along + kLanes)));
    }
};

// Signed distances of one row after the other.
class DistanceRows {
public:
    DistanceRows(const ContourPlanes& contour, const ReliefSlope& slope, int32_t* scratch)
        : planes(contour),
          goesFar(std::max(slope.reachInside(), slope.reachOutside()) > kNearSteps * kContourUnits),
          inside(hn::Set(dWhole, slope.reachInside() * slope.reachInside())),
          outside(hn::Set(dWhole, slope.reachOutside() * slope.reachOutside())),
          columns(scratch + kMaxSteps),
          columnBlocks{columns + contour.width + kMaxSteps, contour.width / kBlock},
          rowBlocks{columnBlocks.line(1), (contour.height + kBlock - 1) / kBlock},
          atFirst(rowBlocks.line(contour.width / kGroup)),
          atLast(atFirst + contour.width / kGroup * rowBlocks.stride()) {
        std::fill_n(scratch, kMaxSteps, kFarthest * kFarthest);
        std::fill_n(columns + planes.width, kMaxSteps, kFarthest * kFarthest);
        if (!goesFar) return;
        columnBlocks.close(0);
        for (int64_t x = 0; x < planes.width; x += kGroup) summarizeRows(x);
    }

    // `before` holds the distances of the row above, null for the first row.
    void measure(int64_t y, const int32_t* before, int32_t* distances) const {
        const int64_t width = planes.width;
        squareColumns(planes.alongColumns + y * width);
        const uint8_t* coverage = planes.coverage + y * width;
        for (int64_t x = 0; x < width; x += kGroup) {
            const Sides a = isInside(coverage + x);
            const Sides b = isInside(coverage + x + kLanes);
            Nearest nearest{hn::IfThenElse(a, inside, outside), hn::IfThenElse(b, inside, outside)};
            if (goesFar && before) nearest.limit(before + x);
            search(x, y, nearest);
            hn::StoreU(signedDistance(nearest.a, a), dWhole, distances + x);
            hn::StoreU(signedDistance(nearest.b, b), dWhole, distances + x + kLanes);
        }
    }

private:
    static HWY_INLINE Sides isInside(const uint8_t* coverage) {
        constexpr hn::Rebind<uint8_t, decltype(dWhole)> dBytes;
        const Wholes wide = hn::PromoteTo(dWhole, hn::LoadU(dBytes, coverage));
        return hn::Gt(wide, hn::Set(dWhole, kInsideCoverage - 1));
    }

    static HWY_INLINE Wholes signedDistance(Wholes square, Sides isInside) {
        const Numbers root = exactRoot(hn::ConvertTo(dNumber, square));
        const Wholes distance =
            truncated(hn::Add(hn::Mul(root, hn::Set(dNumber, 2.0f)), hn::Set(dNumber, 0.5f)));
        return hn::IfThenElse(isInside, distance, hn::Neg(distance));
    }

    // The distances along the columns of a row of cells, squared.
    void squareColumns(const int16_t* alongColumns) const {
        constexpr hn::Rebind<int16_t, decltype(dWhole)> dShorts;
        const auto square = [&](int64_t x) HWY_ATTR {
            const Wholes along = hn::PromoteTo(dWhole, hn::LoadU(dShorts, alongColumns + x));
            const Wholes squares = hn::Mul(along, along);
            hn::StoreU(squares, dWhole, columns + x);
            return squares;
        };
        for (int64_t x = 0; x < planes.width; x += kBlock) {
            Wholes least = square(x);
            for (int64_t i = kLanes; i < kBlock; i += kLanes) least = hn::Min(least, square(x + i));
            if (goesFar) columnBlocks.blocks[x / kBlock] = smallest(least);
        }
    }

    // Of a square of whole numbers.
    static int32_t rootOf(int32_t square) {
        return static_cast<int32_t>(std::sqrt(static_cast<double>(square)));
    }

    // The rows' candidates for the cells of a group.
    void summarizeRows(int64_t x) const {
        const int64_t line = x / kGroup * rowBlocks.stride();
        for (int64_t y = 0; y < planes.height; y += kBlock) {
            const int64_t end = std::min(y + kBlock, planes.height);
            const Wholes none = hn::Set(dWhole, kFarthest * kFarthest);
            Nearest least{none, none};
            int32_t first = kFarthest * kFarthest, last = first;
            for (int64_t row = y; row < end; ++row) {
                const int32_t* along = planes.alongRows + row * planes.width + x;
                least.see(along, hn::Zero(dWhole));
                first = std::min(first, along[0]);
                last = std::min(last, along[kGroup - 1]);
            }
            const int64_t block = line + y / kBlock;
            rowBlocks.blocks[block] = smallest(hn::Min(least.a, least.b));
            atFirst[block] = rootOf(first);
            atLast[block] = rootOf(last);
        }
        rowBlocks.close(x / kGroup);
    }

    HWY_INLINE void search(int64_t x, int64_t y, Nearest& nearest) const {
        nearest.see(columns + x, hn::Zero(dWhole));
        nearest.see(planes.alongRows + y * planes.width + x, hn::Zero(dWhole));
        if (goesFar) {
            const int32_t worst = nearest.worst();
            if (worst > squareOfSteps(kNearSteps)) {
                searchRows(x, y, worst, nearest);
                searchColumns(x, nearest.worst(), nearest);
                return;
            }
        }
        searchNear(x, y, nearest);
    }

    HWY_INLINE void searchNear(int64_t x, int64_t y, Nearest& nearest) const {
        const int64_t width = planes.width;
        const int32_t* column = columns + x;
        const int32_t* row = planes.alongRows + y * width + x;
        const int64_t above = y, below = planes.height - 1 - y;
        for (int32_t k = 1; k < kMaxSteps; ++k) {
            const Wholes across = hn::Set(dWhole, squareOfSteps(k));
            if (!anyIsMore(hn::Max(nearest.a, nearest.b), across)) return;
            // Past the plane the cell's own row stands in, which is nearer than it seems there.
            const int32_t* up = row - (k <= above ? k : 0) * width;
            const int32_t* down = row + (k <= below ? k : 0) * width;
            const auto along = [&](int64_t i) HWY_ATTR {
                return hn::Min(hn::Min(loadWholes(column + i - k), loadWholes(column + i + k)),
                               hn::Min(loadWholes(up + i), loadWholes(down + i)));
            };
            nearest.a = hn::Min(nearest.a, hn::Add(across, along(0)));
            nearest.b = hn::Min(nearest.b, hn::Add(across, along(kLanes)));
        }
    }

    // Calls visit(block) for those of kLanes blocks of a line whose smallest candidates may be
    // nearer than `worst`, at `gaps` cells or more.
    template <class Visit>
    HWY_INLINE void forEachNearer(const int32_t* blocks, Wholes gaps, int32_t worst,
                                  const Visit& visit) const {
        const Wholes least = hn::Add(squareOfSteps(gaps), loadWholes(blocks));
        uint8_t bits[8] = {};
        hn::StoreMaskBits(dWhole, hn::Lt(least, hn::Set(dWhole, worst)), bits);
        for (uint32_t rest = bits[0]; rest != 0; rest &= rest - 1) visit(std::countr_zero(rest));
    }

    static int64_t gapTo(int64_t block, int64_t y) {
        return std::max<int64_t>({block * kBlock - y, y - block * kBlock - (kBlock - 1), 0});
    }

    // Cells from [first, first + count) to each of kLanes blocks from `block` on.
    HWY_INLINE Wholes gapsTo(int64_t block, int64_t first, int64_t count) const {
        const Wholes begins = hn::ShiftLeft<3>(lanes);
        const Wholes after = hn::Add(begins, whole(block * kBlock - (first + count - 1)));
        const Wholes before = hn::Sub(whole(first - block * kBlock - (kBlock - 1)), begins);
        return hn::Max(hn::Max(after, before), hn::Zero(dWhole));
    }

    // Visits blocks of a line outwards from [first, first + count), kLanes at a time, with
    // visit(block) returning the new `worst`, as long as they may hold something nearer.
    template <class Visit>
    HWY_INLINE void forEachOutwards(const BlockLines& lines, int64_t line, int64_t first,
                                    int64_t count, int32_t worst, const Visit& visit) const {
        const int32_t* blocks = lines.line(line);
        const auto look = [&](int64_t block) HWY_ATTR {
            forEachNearer(blocks + block, gapsTo(block, first, count), worst,
                          [&](int64_t i) HWY_ATTR { worst = visit(block + i); });
        };
        const int64_t middle = first / kBlock;
        look(middle);
        for (int64_t away = kLanes;; away += kLanes) {
            // Of the nearest cell that has not been seen.
            const int64_t gap = (away - kLanes) * kBlock + 1;
            const bool isBefore = middle - away + kLanes > 0, isAfter = middle + away < lines.count;
            if ((!isBefore && !isAfter) || squareOfSteps(gap) >= worst) return;
            if (isBefore) look(std::max<int64_t>(middle - away, 0));
            if (isAfter) look(middle + away);
        }
    }

    // The least that rows of a block offer the cells of a group. From cell to cell the distance in
    // a row changes by a pixel at most, so that the group's ends tell about all.
    HWY_INLINE bool mayRowsBeNearer(int64_t group, int64_t block, int64_t y,
                                    const Nearest& nearest) const {
        const int64_t i = group * rowBlocks.stride() + block;
        const Wholes across = hn::Set(dWhole, squareOfSteps(gapTo(block, y)));
        const Wholes ramp = hn::ShiftLeft<7>(lanes);
        const Wholes first = hn::Sub(hn::Set(dWhole, atFirst[i]), ramp);
        const Wholes last =
            hn::Add(hn::Set(dWhole, atLast[i] - (kGroup - 1) * kContourUnits), ramp);
        const Wholes half = hn::Set(dWhole, kLanes * kContourUnits);
        const auto least = [&](Wholes fromFirst, Wholes fromLast) HWY_ATTR {
            const Wholes along = hn::Max(hn::Max(fromFirst, fromLast), hn::Zero(dWhole));
            return hn::Add(hn::Mul(along, along), across);
        };
        return nearest.mayBeLess(least(first, last),
                                 least(hn::Sub(first, half), hn::Add(last, half)));
    }

    HWY_INLINE void searchRows(int64_t x, int64_t y, int32_t worst, Nearest& nearest) const {
        const int32_t* alongRows = planes.alongRows + x;
        forEachOutwards(rowBlocks, x / kGroup, y, 1, worst, [&](int64_t block) HWY_ATTR {
            if (!mayRowsBeNearer(x / kGroup, block, y, nearest)) return worst;
            const int64_t end = std::min((block + 1) * kBlock, planes.height);
            for (int64_t row = block * kBlock; row < end; ++row) {
                nearest.see(alongRows + row * planes.width,
                            hn::Set(dWhole, squareOfSteps(row - y)));
            }
            return worst = nearest.worst();
        });
    }

    // The same of the columns of a block.
    HWY_INLINE bool mayColumnsBeNearer(int64_t x, int64_t block, const Nearest& nearest) const {
        const Wholes along = hn::Set(dWhole, columnBlocks.blocks[block]);
        const Wholes after = hn::Add(lanes, whole(x - block * kBlock));
        const auto least = [&](Wholes cells) HWY_ATTR {
            const Wholes gaps =
                hn::Max(hn::Max(hn::Sub(cells, hn::Set(dWhole, kBlock - 1)), hn::Neg(cells)),
                        hn::Zero(dWhole));
            return hn::Add(squareOfSteps(gaps), along);
        };
        return nearest.mayBeLess(least(after), least(hn::Add(after, hn::Set(dWhole, kLanes))));
    }

    HWY_INLINE void searchColumns(int64_t x, int32_t worst, Nearest& nearest) const {
        forEachOutwards(columnBlocks, 0, x, kGroup, worst, [&](int64_t block) HWY_ATTR {
            if (!mayColumnsBeNearer(x, block, nearest)) return worst;
            for (int64_t column = block * kBlock; column < (block + 1) * kBlock; ++column) {
                const Wholes along = hn::Set(dWhole, columns[column]);
                const Wholes gaps = hn::Add(lanes, whole(x - column));
                const auto see = [&](Wholes& least, Wholes steps) HWY_ATTR {
                    least = hn::Min(least, hn::Add(squareOfSteps(steps), along));
                };
                see(nearest.a, gaps);
                see(nearest.b, hn::Add(gaps, hn::Set(dWhole, kLanes)));
            }
            return worst = nearest.worst();
        });
    }

    static HWY_INLINE Wholes whole(int64_t value) {
        return hn::Set(dWhole, static_cast<int32_t>(value));
    }

    const ContourPlanes& planes;
    const bool goesFar;
    const Wholes lanes = hn::Iota(dWhole, 0);
    const Wholes inside;
    const Wholes outside;
    int32_t* const columns;         // a row's, with kMaxSteps of none on either side
    const BlockLines columnBlocks;  // the row's
    const BlockLines rowBlocks;     // a line for each group of columns
    // Like the lines of rows: distances, not squared, of the group's first and last cell.
    int32_t* const atFirst;
    int32_t* const atLast;
};

HWY_INLINE Wholes weightedThree(Wholes a, Wholes b, Wholes c) {
    return hn::Add(hn::Add(a, c), hn::Add(b, b));
}

// The means of three rows of distances, as heights. `sums` is a row of work memory.
void raiseRow(const int32_t* const (&rows)[3], int64_t width, const ReliefSlope& slope,
              int32_t* sums, uint16_t* heights) {
    for (int64_t x = 0; x < width; x += kLanes) {
        hn::StoreU(weightedThree(loadWholes(rows[0] + x), loadWholes(rows[1] + x),
                                 loadWholes(rows[2] + x)),
                   dWhole, sums + x);
    }
    constexpr hn::Rebind<uint16_t, decltype(dWhole)> dHeights;
    const Wholes low = hn::Set(dWhole, slope.low);
    const Wholes high = hn::Set(dWhole, slope.high);
    const Wholes half = hn::Set(dWhole, 8);
    for (int64_t x = 0; x < width; x += kLanes) {
        const Wholes sum =
            weightedThree(loadWholes(sums + x), loadWholes(sums + x + 1), loadWholes(sums + x + 2));
        const Wholes mean = hn::ShiftRight<4>(hn::Add(sum, half));
        const Wholes height = hn::Sub(hn::Min(hn::Max(mean, low), high), low);
        hn::StoreU(hn::DemoteTo(dHeights, height), dHeights, heights + x);
    }
}

void raiseHeights(const ContourPlanes& planes, const ReliefSlope& slope, uint16_t* heights,
                  uint8_t* scratch) {
    const int64_t width = planes.width;
    auto* rows = reinterpret_cast<int32_t*>(scratch);
    int32_t* sums = rows + 3 * width;
    const DistanceRows distances(planes, slope, sums + width + kReliefStep);
    const auto row = [&](int64_t y) { return rows + y % 3 * width; };
    for (int64_t y = 0; y < planes.height; ++y) {
        distances.measure(y, y > 0 ? row(y - 1) : nullptr, row(y));
        if (y < 2) continue;
        raiseRow({row(y - 2), row(y - 1), row(y)}, width, slope, sums, heights + (y - 2) * width);
    }
}

#endif  // GX_SIMD_IS_PLAIN

}  // namespace GxFontEffect::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace GxFontEffect::kernels {

HWY_EXPORT(raiseHeights);

void reliefHeights(const ContourPlanes& planes, const ReliefSlope& slope, uint16_t* heights,
                   uint8_t* scratch) {
    HWY_DYNAMIC_DISPATCH(raiseHeights)(planes, slope, heights, scratch);
}

}  // namespace GxFontEffect::kernels
#endif  // HWY_ONCE
