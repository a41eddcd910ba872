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
    plain::reliefHeights(planes, slope, heights, scratch);
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
constexpr int64_t kBlock = std::max<int64_t>(8, kLanes);

// Blocks of columns before and after a group that a search may look at.
constexpr int64_t kColumnGaps = 2 * (kMaxSteps / kBlock + 2 * kLanes);

// Up to this many columns and rows away the search goes one by one, further off by blocks.
constexpr int32_t kNearSteps = 24;

// Squared distance of columns or rows so many steps away. None is searched for beyond 254 pixels:
// that more steps count as 255 keeps sums of two squares in 32 bits.
constexpr int32_t kMostSteps = 255;
HWY_INLINE int32_t squareOfSteps(int64_t steps) {
    const auto near = static_cast<int32_t>(std::min<int64_t>(std::abs(steps), kMostSteps));
    return near * near * kContourUnits * kContourUnits;
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

// Squared gaps of -kSpan to kSpan steps, for the far search to look up.
class GapTable {
public:
    // A search looks no further than some blocks past the largest distance.
    static constexpr int64_t kSpan = kMaxSteps + 2 * kLanes * kBlock;
    static constexpr int64_t kCells = 2 * kSpan + kLanes;

    explicit GapTable(int32_t* cells) : middle(cells + kSpan) {}

    // Steps of 0 to `free` count as none.
    void fill(int64_t free) const {
        for (int64_t i = -kSpan; i < kSpan + kLanes; ++i) {
            middle[i] = squareOfSteps(i < 0 ? i : std::max<int64_t>(i - free, 0));
        }
    }
    HWY_INLINE int32_t operator[](int64_t steps) const { return middle[steps]; }
    // Of as many steps and the next.
    HWY_INLINE Wholes from(int64_t steps) const { return loadWholes(middle + steps); }

private:
    int32_t* const middle;
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
          atLast(atFirst + contour.width / kGroup * rowBlocks.stride()),
          rowGaps(atLast + contour.width / kGroup * rowBlocks.stride()),
          columnGaps(rowGaps + rowBlocks.stride()),
          steps(columnGaps + kColumnGaps),
          stepsToBlock(columnGaps + kColumnGaps + GapTable::kCells) {
        std::fill_n(scratch, kMaxSteps, kFarthest * kFarthest);
        std::fill_n(columns + planes.width, kMaxSteps, kFarthest * kFarthest);
        if (!goesFar) return;
        columnBlocks.close(0);
        steps.fill(0);
        stepsToBlock.fill(kBlock - 1);
        for (int64_t i = 0; i < kColumnGaps; ++i) {
            columnGaps[i] = gapTo(i - kColumnGaps / 2, 0, kGroup);
        }
        for (int64_t x = 0; x < planes.width; x += kGroup) summarizeRows(x);
    }

    // `before` holds the distances of the row above, null for the first row.
    void measure(int64_t y, const int32_t* before, int32_t* distances) const {
        const int64_t width = planes.width;
        squareColumns(planes.alongColumns + y * width);
        for (int64_t i = 0; goesFar && i < rowBlocks.stride(); ++i) rowGaps[i] = gapTo(i, y, 1);
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

    // Visits the blocks of a line outwards from the one at `middle`, kLanes at a time, as long as
    // they may hold something nearer than `worst`: visit(block) returns what that is then. The
    // line's squared gaps stand in `gaps`.
    template <class Visit>
    HWY_INLINE void forEachOutwards(const int32_t* blocks, const int32_t* gaps, int64_t count,
                                    int64_t middle, int32_t worst, const Visit& visit) const {
        const auto look = [&](int64_t block) HWY_ATTR {
            const Wholes least = hn::Add(loadWholes(gaps + block), loadWholes(blocks + block));
            uint8_t bits[8] = {};
            hn::StoreMaskBits(dWhole, hn::Lt(least, hn::Set(dWhole, worst)), bits);
            uint32_t rest;
            for (std::memcpy(&rest, bits, sizeof(rest)); rest != 0; rest &= rest - 1) {
                worst = visit(block + std::countr_zero(rest));
            }
        };
        look(middle);
        for (int64_t away = kLanes;; away += kLanes) {
            const bool isBefore = middle - away + kLanes > 0, isAfter = middle + away < count;
            // A cell that has not been seen is further away than the blocks that have been.
            if ((!isBefore && !isAfter) || steps[(away - kLanes) * kBlock + 1] >= worst) return;
            if (isBefore) look(std::max<int64_t>(middle - away, 0));
            if (isAfter) look(middle + away);
        }
    }

    // Whether rows of a block may offer something nearer. From cell to cell the distance in a row
    // changes by a pixel at most, so that the group's ends tell about all.
    HWY_INLINE bool mayRowsBeNearer(int64_t at, int32_t across, const Nearest& nearest) const {
        const Wholes first = hn::Sub(hn::Set(dWhole, atFirst[at]), ramp);
        const int32_t atStart = atLast[at] - static_cast<int32_t>(kGroup - 1) * kContourUnits;
        const Wholes last = hn::Add(hn::Set(dWhole, atStart), ramp);
        const Wholes half = hn::Set(dWhole, static_cast<int32_t>(kLanes) * kContourUnits);
        const auto least = [&](Wholes fromFirst, Wholes fromLast) HWY_ATTR {
            const Wholes along = hn::Max(hn::Max(fromFirst, fromLast), hn::Zero(dWhole));
            return hn::Add(hn::Mul(along, along), hn::Set(dWhole, across));
        };
        return nearest.mayBeLess(least(first, last),
                                 least(hn::Sub(first, half), hn::Add(last, half)));
    }

    HWY_INLINE void searchRows(int64_t x, int64_t y, int32_t worst, Nearest& nearest) const {
        const int64_t line = x / kGroup * rowBlocks.stride();
        const int32_t* blocks = rowBlocks.blocks + line;
        const int32_t* alongRows = planes.alongRows + x;
        const auto visit = [&](int64_t block) HWY_ATTR {
            if (!mayRowsBeNearer(line + block, rowGaps[block], nearest)) return worst;
            const int64_t end = std::min((block + 1) * kBlock, planes.height);
            for (int64_t row = block * kBlock; row < end; ++row) {
                nearest.see(alongRows + row * planes.width, hn::Set(dWhole, steps[row - y]));
            }
            return worst = nearest.worst();
        };
        forEachOutwards(blocks, rowGaps, rowBlocks.count, y / kBlock, worst, visit);
    }

    HWY_INLINE void searchColumns(int64_t x, int32_t worst, Nearest& nearest) const {
        const auto visit = [&](int64_t block) HWY_ATTR {
            const int64_t first = block * kBlock;
            const auto see = [&](const GapTable& gaps, int64_t column, int32_t along) HWY_ATTR {
                const Wholes candidates = hn::Set(dWhole, along);
                return Nearest{hn::Add(gaps.from(x - column), candidates),
                               hn::Add(gaps.from(x - column + kLanes), candidates)};
            };
            const Nearest least = see(stepsToBlock, first, columnBlocks.blocks[block]);
            if (!nearest.mayBeLess(least.a, least.b)) return worst;
            for (int64_t column = first; column < first + kBlock; ++column) {
                const Nearest candidate = see(steps, column, columns[column]);
                nearest.a = hn::Min(nearest.a, candidate.a);
                nearest.b = hn::Min(nearest.b, candidate.b);
            }
            return worst = nearest.worst();
        };
        const int64_t middle = x / kBlock;
        forEachOutwards(columnBlocks.blocks, columnGaps + kColumnGaps / 2 - middle,
                        columnBlocks.count, middle, worst, visit);
    }

    // Squared, from [first, first + count) to a block.
    static int32_t gapTo(int64_t block, int64_t first, int64_t count) {
        const int64_t begin = block * kBlock;
        const int64_t gap = std::max(begin - (first + count - 1), first - (begin + kBlock - 1));
        return squareOfSteps(std::max<int64_t>(gap, 0));
    }

    const ContourPlanes& planes;
    const bool goesFar;
    const Wholes inside;
    const Wholes outside;
    int32_t* const columns;         // a row's, with kMaxSteps of none on either side
    const BlockLines columnBlocks;  // the row's
    const BlockLines rowBlocks;     // a line for each group of columns
    // Like the lines of rows: distances, not squared, of the group's first and last cell.
    int32_t* const atFirst;
    int32_t* const atLast;
    // Squared gaps: from the row to blocks of rows, from a group to the blocks before and after it,
    // from cell to cell and from a cell to a block.
    int32_t* const rowGaps;
    int32_t* const columnGaps;
    const GapTable steps;
    const GapTable stepsToBlock;
    const Wholes ramp = hn::ShiftLeft<7>(hn::Iota(dWhole, 0));
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

GX_EXPORT(raiseHeights);

void reliefHeights(const ContourPlanes& planes, const ReliefSlope& slope, uint16_t* heights,
                   uint8_t* scratch) {
    GX_DISPATCH(raiseHeights)(planes, slope, heights, scratch);
}

}  // namespace GxFontEffect::kernels
#endif  // HWY_ONCE
