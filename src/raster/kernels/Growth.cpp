// The fast growth of raster/kernels/Growth.h.
//
// A pass keeps the sums of three neighbours in a row, which three rows of output share, of the two
// rows that it read last. So each row is read once and may be overwritten as soon as it was read.
// Rows are taken two at a time, and a group of passes runs over the mask together, each two rows
// behind the one before, while the rows are in the nearest cache. What lies further from the ink
// than the passes reach is not touched.
#include "raster/kernels/Growth.h"

#include <algorithm>
#include <cstring>

#include "raster/kernels/Simd.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "raster/kernels/Growth.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "raster/kernels/PixelVector-inl.h"

HWY_BEFORE_NAMESPACE();
namespace GxFontEffect::kernels::HWY_NAMESPACE {

#if GX_SIMD_IS_PLAIN

void growAll(uint8_t* mask, int64_t width, int64_t height, int64_t passes, uint8_t* scratch) {
    plain::growMask(mask, width, height, passes, scratch);
}

#else

constexpr int64_t kLanes = hn::MaxLanes(d8);
static_assert(kLanes <= kGrowthRoom);

// --- sums ---

// Of a vector of cells, those at even and at odd places. Nine cells add up to 2,295 at most.
struct Sums {
    V16 even;
    V16 odd;
};

constexpr int64_t kSumsBytes = 2 * kLanes;

HWY_INLINE Sums operator+(Sums a, Sums b) {
    return {hn::Add(a.even, b.even), hn::Add(a.odd, b.odd)};
}

HWY_INLINE Sums loadSums(const uint8_t* from) {
    return {lanes16(hn::LoadU(d8, from)), lanes16(hn::LoadU(d8, from + kLanes))};
}

HWY_INLINE void storeSums(Sums s, uint8_t* to) {
    hn::StoreU(bytes(s.even), d8, to);
    hn::StoreU(bytes(s.odd), d8, to + kLanes);
}

// Each cell with its two neighbours: reads cells[-1] to cells[kLanes].
HWY_INLINE Sums sumsOfThree(const uint8_t* cells) {
    const V16 low = hn::Set(d16, 0x00FF);
    const V16 from = lanes16(hn::LoadU(d8, cells - 1));
    const V16 to = lanes16(hn::LoadU(d8, cells + 1));
    const V16 shared = hn::Add(hn::ShiftRight<8>(from), hn::And(to, low));
    return {hn::Add(hn::And(from, low), shared), hn::Add(shared, hn::ShiftRight<8>(to))};
}

// min(255, sum / 4) as bytes.
HWY_INLINE V8 quarters(Sums s) {
    const V16 most = hn::Set(d16, 4 * 255 + 3);
    const V16 even = hn::ShiftRight<2>(hn::Min(s.even, most));
    const V16 odd = hn::And(hn::ShiftLeft<6>(hn::Min(s.odd, most)), hn::Set(d16, 0xFF00));
    return bytes(hn::Or(even, odd));
}

// --- passes ---

// A half-open rectangle of cells.
struct Region {
    int64_t left, right, top, bottom;

    // With `by` cells more on each side, inside `limit`.
    Region grown(int64_t by, const Region& limit) const {
        return {std::max(left - by, limit.left), std::min(right + by, limit.right),
                std::max(top - by, limit.top), std::min(bottom + by, limit.bottom)};
    }
};

struct Plane {
    uint8_t* cells;
    int64_t width;
    int64_t height;

    uint8_t* row(int64_t y) const { return cells + y * width; }
    Region all() const { return {0, width, 0, height}; }
    Region inside() const { return {1, width - 1, 1, height - 1}; }
};

// One pass over a region of inner cells. `sums` holds two vectors of sums for each of cells: of the
// last two rows added up, and of the last one.
struct Pass {
    const Plane& plane;
    const Region& region;
    uint8_t* sums;
    uint8_t* spare;  // takes the place of a row that must stay

    // Reads rows y - 1 and y.
    void start(int64_t y) const {
        const uint8_t *above = plane.row(y - 1), *row = plane.row(y);
        forEachVector([&](int64_t x, int64_t count, uint8_t* kept) HWY_ATTR {
            const Around a(above + x, count), b(row + x, count);
            const Sums last = sumsOfThree(b.cells);
            storeSums(sumsOfThree(a.cells) + last, kept);
            storeSums(last, kept + kSumsBytes);
        });
    }

    // Reads rows y + 1 and y + 2, writes rows y and y + 1; true when that changed a cell and
    // `kWatch` asks for it.
    template <bool kWatch>
    bool advance(int64_t y) const {
        const bool hasTwo = y + 1 < plane.height - 1;
        const uint8_t* in[2] = {plane.row(y + 1), plane.row(hasTwo ? y + 2 : y + 1)};
        uint8_t* out[2] = {plane.row(y), hasTwo ? plane.row(y + 1) : spare};
        V8 change = hn::Zero(d8);
        // The second row of output is one of input: its cells are stored when the next vector has
        // been read.
        V8 second = change;
        uint8_t* to = spare;
        int64_t size = kLanes;
        forEachVector([&](int64_t x, int64_t count, uint8_t* kept) HWY_ATTR {
            const Around a(in[0] + x, count), b(in[1] + x, count);
            const Sums next = sumsOfThree(a.cells), last = sumsOfThree(b.cells);
            hn::StoreU(second, d8, to);
            const Sums pair = next + last;
            const V8 first = quarters(loadSums(kept) + next);
            second = quarters(loadSums(kept + kSumsBytes) + pair);
            to = out[1] + x;
            size = count;
            storeSums(pair, kept);
            storeSums(last, kept + kSumsBytes);
            if constexpr (kWatch) {
                change = hn::Or(change, difference(first, out[0] + x, count));
                if (hasTwo) change = hn::Or(change, difference(second, to, count));
            }
            store(first, out[0] + x, count);
        });
        store(second, to, size);
        for (uint8_t* row : out) row[0] = row[plane.width - 1] = 0;
        return !allBytesAre(change, 0);
    }

private:
    // `count` cells with their neighbours, where fewer than a vector are left as a copy with zeros
    // behind.
    struct Around {
        const uint8_t* cells;
        alignas(kLanes) uint8_t copy[kLanes + 2];

        HWY_INLINE Around(const uint8_t* from, int64_t count) : cells(from) {
            if (count == kLanes) return;
            std::memset(copy, 0, sizeof(copy));
            std::memcpy(copy, from - 1, static_cast<size_t>(count + 2));
            cells = copy + 1;
        }
        Around(const Around&) = delete;
        Around& operator=(const Around&) = delete;
    };

    static HWY_INLINE void store(V8 v, uint8_t* to, int64_t count) {
        if (count == kLanes) {
            hn::StoreU(v, d8, to);
            return;
        }
        alignas(kLanes) uint8_t cells[kLanes];
        hn::Store(v, d8, cells);
        std::memcpy(to, cells, static_cast<size_t>(count));
    }

    static HWY_INLINE V8 difference(V8 v, const uint8_t* old, int64_t count) {
        if (count == kLanes) return hn::Xor(v, hn::LoadU(d8, old));
        alignas(kLanes) uint8_t cells[kLanes];
        hn::Store(v, d8, cells);
        std::memcpy(cells, old, static_cast<size_t>(count));
        return hn::Xor(v, hn::Load(d8, cells));
    }

    // Calls body(x, cells from x on, kept sums).
    template <class Body>
    HWY_INLINE void forEachVector(const Body& body) const {
        uint8_t* kept = sums;
        int64_t x = region.left;
        for (; x + kLanes <= region.right; x += kLanes, kept += 2 * kSumsBytes) {
            body(x, kLanes, kept);
        }
        if (x < region.right) body(x, region.right - x, kept);
    }
};

// Up to kGrowthGroup passes over a region of inner cells outside of which nothing changes. With
// `watches`, false when the first pass changed nothing; else true.
bool growGroup(const Plane& plane, const Region& region, int64_t passes, bool watches,
               uint8_t* scratch) {
    const int64_t rowBytes = plane.width + kGrowthRoom;
    uint8_t* spare = scratch + 4 * kGrowthGroup * rowBytes;
    bool changed = !watches;
    for (int64_t y = region.top; y < region.bottom + 2 * (passes - 1); y += 2) {
        for (int64_t i = 0; i < passes; ++i) {
            const int64_t row = y - 2 * i;
            if (row < region.top || row >= region.bottom) continue;
            const Pass pass{plane, region, scratch + 4 * i * rowBytes, spare};
            if (row == region.top) pass.start(row);
            if (i == 0 && watches) {
                changed |= pass.advance<true>(row);
            } else {
                pass.advance<false>(row);
            }
        }
    }
    return changed;
}

// --- ink ---

// The first cell in [begin, end) that is not 0, or `end`.
int64_t firstInk(const uint8_t* row, int64_t begin, int64_t end) {
    while (begin + kLanes <= end && allBytesAre(hn::LoadU(d8, row + begin), 0)) begin += kLanes;
    while (begin < end && row[begin] == 0) ++begin;
    return begin;
}

// Behind the last cell in [begin, end) that is not 0, or `begin`.
int64_t lastInk(const uint8_t* row, int64_t begin, int64_t end) {
    while (begin + kLanes <= end && allBytesAre(hn::LoadU(d8, row + end - kLanes), 0))
        end -= kLanes;
    while (begin < end && row[end - 1] == 0) --end;
    return end;
}

// The smallest region that holds all cells that are not 0.
Region inkOf(const Plane& plane) {
    const int64_t width = plane.width;
    Region ink{width, 0, 0, plane.height};
    const auto isEmpty = [&](int64_t y) { return firstInk(plane.row(y), 0, width) == width; };
    while (ink.top < ink.bottom && isEmpty(ink.top)) ++ink.top;
    while (ink.top < ink.bottom && isEmpty(ink.bottom - 1)) --ink.bottom;
    for (int64_t y = ink.top; y < ink.bottom; ++y) {
        ink.left = firstInk(plane.row(y), 0, ink.left);
        ink.right = lastInk(plane.row(y), ink.right, width);
    }
    return ink;
}

void growAll(uint8_t* mask, int64_t width, int64_t height, int64_t passes, uint8_t* scratch) {
    if (width < 1 || height < 3) return;
    const Plane plane{mask, width, height};
    Region ink = inkOf(plane);
    // A pass that changes nothing is followed by none that does.
    bool goesOn = ink.top < ink.bottom;
    for (bool isFirst = true; goesOn && passes > 0; isFirst = false) {
        const int64_t count = std::min(passes, kGrowthGroup);
        goesOn = growGroup(plane, ink.grown(count, plane.inside()), count, !isFirst, scratch);
        ink = ink.grown(count, plane.all());
        passes -= count;
    }
}

#endif  // GX_SIMD_IS_PLAIN

}  // namespace GxFontEffect::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace GxFontEffect::kernels {

GX_EXPORT(growAll);

void growMask(uint8_t* mask, int64_t width, int64_t height, int64_t passes, uint8_t* scratch) {
    GX_DISPATCH(growAll)(mask, width, height, passes, scratch);
}

}  // namespace GxFontEffect::kernels
#endif  // HWY_ONCE
