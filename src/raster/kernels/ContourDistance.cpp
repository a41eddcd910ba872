// The fast distances of raster/kernels/ContourDistance.h.
//
// Few neighbours lie on different sides of the contour: one comparison finds them for many cells,
// the points between them are computed one by one. Along a row the distances between two points
// rise and fall, a vector of cells at a time; down the columns each row follows from the one above,
// and upwards from the one below.
#include "raster/kernels/ContourDistance.h"

#include <algorithm>
#include <bit>

#define GX_WITHOUT_AVX3
#include "raster/kernels/Simd.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "raster/kernels/ContourDistance.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "raster/kernels/PixelVector-inl.h"

HWY_BEFORE_NAMESPACE();
namespace GxFontEffect::kernels::HWY_NAMESPACE {

#if GX_SIMD_IS_PLAIN

void measureContour(const ContourPlanes& planes) {
    plain::contourDistances(planes);
}

#else

inline constexpr hn::RebindToSigned<decltype(d16)> dShort;
using Shorts = hn::Vec<decltype(dShort)>;

constexpr int64_t kByteLanes = hn::MaxLanes(d8);
constexpr int64_t kShortLanes = hn::MaxLanes(dShort);
constexpr int64_t kWholeLanes = hn::MaxLanes(dWhole);
static_assert(kReliefStep % kByteLanes == 0);

// One bit for each of kReliefStep cells that differ in side from those at `other`, the first one
// lowest.
HWY_INLINE uint32_t crossings(const uint8_t* cells, const uint8_t* other) {
    static_assert(kInsideCoverage == 128, "the top bit tells");
    constexpr hn::RebindToSigned<decltype(d8)> dSigned;
    uint8_t bits[8 + kReliefStep / 8] = {};
    for (int64_t i = 0; i < kReliefStep; i += kByteLanes) {
        const V8 differing = hn::Xor(hn::LoadU(d8, cells + i), hn::LoadU(d8, other + i));
        const auto crossed = hn::Lt(hn::BitCast(dSigned, differing), hn::Zero(dSigned));
        hn::StoreMaskBits(dSigned, crossed, bits + i / 8);
    }
    uint32_t word;
    std::memcpy(&word, bits, sizeof(word));
    return word;
}

// Calls visit(index) for each bit.
template <class Visit>
HWY_INLINE void forEachBit(uint32_t bits, const Visit& visit) {
    for (; bits != 0; bits &= bits - 1) visit(int64_t{std::countr_zero(bits)});
}

// --- along rows ---

// Fills a row with squared distances from point to point.
class RowOfSquares {
public:
    RowOfSquares(int32_t* squares, int64_t cells) : row(squares), width(cells) {}

    // The next point, at a position in contour units.
    HWY_INLINE void addPoint(int64_t position) {
        fillTo(position / kContourUnits + 1, position);
        last = position;
    }
    void finish() { fillTo(width, kContourUnits * width + kFarthest); }

private:
    // Cells up to `end`, which lie between the last point and one at `position`. Cells behind them
    // are filled again.
    HWY_INLINE void fillTo(int64_t end, int64_t position) {
        const Wholes farthest = hn::Set(dWhole, kFarthest);
        for (int64_t x = next; x < end; x += kWholeLanes) {
            const auto rise = static_cast<int32_t>(kContourUnits * x - last);
            const auto fall = static_cast<int32_t>(position - kContourUnits * x);
            const Wholes nearer =
                hn::Min(hn::Add(hn::Set(dWhole, rise), ramp), hn::Sub(hn::Set(dWhole, fall), ramp));
            const Wholes distance = hn::Min(nearer, farthest);
            hn::StoreU(hn::Mul(distance, distance), dWhole, row + x);
        }
        next = end;
    }

    int32_t* const row;
    const int64_t width;
    const Wholes ramp = hn::ShiftLeft<7>(hn::Iota(dWhole, 0));
    int64_t next = 0;
    int64_t last = -kFarthest;
};

void measureRow(const uint8_t* coverage, int64_t width, int32_t* squares) {
    RowOfSquares row(squares, width);
    for (int64_t x = 0; x < width; x += kReliefStep) {
        uint32_t bits = crossings(coverage + x, coverage + x + 1);
        if (x + kReliefStep == width) bits &= ~uint32_t{0} >> 1;
        forEachBit(bits, [&](int64_t i) HWY_ATTR {
            const int64_t at = x + i;
            const int before = at > 0 ? coverage[at - 1] : 0;
            const int after = at + 2 < width ? coverage[at + 2] : 0;
            row.addPoint(kContourUnits * at +
                         contourPointFrom(before, coverage[at], coverage[at + 1], after));
        });
    }
    row.finish();
}

// --- along columns ---

HWY_INLINE Shorts loadShorts(const int16_t* cells) {
    return hn::LoadU(dShort, cells);
}

HWY_INLINE Shorts oneFurther(Shorts distances) {
    static_assert(kFarthest == 32767, "sums stay at the end of their range");
    return hn::SaturatedAdd(distances, hn::Set(dShort, kContourUnits));
}

// Row y and the next, from the first down to the row before the last.
void stepDown(const ContourPlanes& planes, int64_t y) {
    const int64_t width = planes.width;
    const uint8_t* coverage = planes.coverage + y * width;
    int16_t* here = planes.alongColumns + y * width;
    int16_t* below = here + width;
    for (int64_t x = 0; x < width; x += kReliefStep) {
        for (int64_t i = x; i < x + kReliefStep; i += kShortLanes) {
            hn::StoreU(oneFurther(loadShorts(here + i)), dShort, below + i);
        }
        forEachBit(crossings(coverage + x, coverage + width + x), [&](int64_t i) HWY_ATTR {
            const uint8_t* cell = coverage + x + i;
            const int before = y > 0 ? cell[-width] : 0;
            const int after = y + 2 < planes.height ? cell[2 * width] : 0;
            const int point = contourPointFrom(before, cell[0], cell[width], after);
            const auto lower = [&](int16_t& distance, int to) {
                distance = static_cast<int16_t>(std::min<int>(distance, to));
            };
            lower(here[x + i], point);
            lower(below[x + i], kContourUnits - point);
        });
    }
}

void stepUp(int16_t* row, int64_t width) {
    for (int64_t x = 0; x < width; x += kShortLanes) {
        const Shorts fromBelow = oneFurther(loadShorts(row + width + x));
        hn::StoreU(hn::Min(loadShorts(row + x), fromBelow), dShort, row + x);
    }
}

void measureContour(const ContourPlanes& planes) {
    const int64_t width = planes.width;
    if (width < 1 || planes.height < 1) return;
    std::fill_n(planes.alongColumns, width, static_cast<int16_t>(kFarthest));
    for (int64_t y = 0; y < planes.height; ++y) {
        measureRow(planes.coverage + y * width, width, planes.alongRows + y * width);
        if (y + 1 < planes.height) stepDown(planes, y);
    }
    for (int64_t y = planes.height - 2; y >= 0; --y) {
        stepUp(planes.alongColumns + y * width, width);
    }
}

#endif  // GX_SIMD_IS_PLAIN

}  // namespace GxFontEffect::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace GxFontEffect::kernels {

GX_EXPORT(measureContour);

void contourDistances(const ContourPlanes& planes) {
    GX_DISPATCH(measureContour)(planes);
}

}  // namespace GxFontEffect::kernels
#endif  // HWY_ONCE
