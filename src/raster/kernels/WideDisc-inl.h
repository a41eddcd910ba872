// The dilation by wide discs. Included once per target.
//
// What a disc reaches is a matter of distance nearly everywhere: the output is full where a full
// pixel lies no further than the disc's full cells go, and blank where no ink lies within the disc.
// Only on the rim between, two or three pixels wide, do the mask's values count. So:
//
// 1. Along each row, the distance to the nearest ink and to the nearest full pixel tells how many
//    rows up and down that row reaches in each column.
// 2. Down the columns and back up, these reaches count down from row to row: what is left of the
//    furthest one tells full, rim and blank apart.
// 3. Each pixel of the rim looks at the rows around it, those alone whose nearest ink may give more
//    than it has.
//
// The distances are those of the kernel's own cells: nothing is rounded, whatever the disc.
#if defined(GX_WIDE_DISC_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef GX_WIDE_DISC_INL_H
#undef GX_WIDE_DISC_INL_H
#else
#define GX_WIDE_DISC_INL_H
#endif

#include <hwy/highway.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>

#include "raster/kernels/DiscDilation.h"
#include "raster/kernels/PixelVector-inl.h"
#include "raster/kernels/Transpose-inl.h"
#include "raster/kernels/WideDisc.h"

#if !GX_SIMD_IS_PLAIN

HWY_BEFORE_NAMESPACE();
namespace GxFontEffect::kernels::HWY_NAMESPACE {

// Of all lanes.
template <class V>
HWY_INLINE uint8_t largestByte(V v) {
    constexpr hn::DFromV<V> d;
    if constexpr (hn::MaxLanes(d) > 16) {
        constexpr hn::Half<decltype(d)> dHalf;
        return largestByte(hn::Max(hn::LowerHalf(dHalf, v), hn::UpperHalf(dHalf, v)));
    } else {
        constexpr hn::Repartition<uint16_t, decltype(d)> dPairs;
        const auto pairs = hn::BitCast(dPairs, v);
        const auto lower = hn::And(pairs, hn::Set(dPairs, 0x00FF));
        const auto larger = hn::Max(hn::ShiftRight<8>(pairs), lower);
        return static_cast<uint8_t>(hn::GetLane(hn::MaxOfLanes(dPairs, larger)));
    }
}

// One bit for each lane that is not 0, the first one lowest.
template <class D>
HWY_INLINE uint64_t setLanes(D d, hn::Vec<D> v) {
    uint8_t stored[8] = {};
    hn::StoreMaskBits(d, hn::Ne(v, hn::Zero(d)), stored);
    uint64_t bits = 0;
    std::memcpy(&bits, stored, sizeof(bits));
    return bits;
}

// Dilates a band in tiles. Reach is wide enough for the radius and one.
template <class Reach>
class WideDisc {
public:
    WideDisc(const DilationBand& band, const WideDiscMemory& memory, bool inverted)
        : band_(band),
          memory_(memory),
          radius_(band.kernelSize / 2),
          inversion_(inverted ? 255 : 0),
          centre_(band.kernel + radius_ * band.kernelSize + radius_) {}

    // False when the rims are so long that every pixel's rows had better be gone through; the
    // output then has a part of what it gets.
    bool dilate(int64_t mostLooks) {
        looksLeft_ = mostLooks;
        const int64_t outColumns = band_.columns + 2 * radius_;
        const int64_t width = std::min(memory_.tileColumns, outColumns);
        for (int64_t y = 0; y < band_.rows; y += memory_.tileRows) {
            for (int64_t x = 0; x < outColumns; x += width) {
                if (!loadTile(std::min(x, outColumns - width), width, y)) continue;
                measureRows();
                if (!spread()) return false;
            }
        }
        return true;
    }

private:
    static constexpr hn::ScalableTag<Reach> dReach{};
    using Reaches = hn::Vec<decltype(dReach)>;
    static constexpr int64_t kLanes = hn::MaxLanes(d8);
    static constexpr int64_t kReachLanes = hn::MaxLanes(dReach);
    static constexpr int64_t kShortLanes = hn::MaxLanes(d16);
    static constexpr int kUnits = WideDiscMemory::kUnits;

    // --- 1: rows ---

    // The ink that reaches columns [x, x + width) of the output from a tile's rows on from `y`.
    // False when there is none.
    bool loadTile(int64_t x, int64_t width, int64_t y) {
        x_ = x;
        width_ = width;
        const int64_t rows = std::min(memory_.tileRows, band_.rows - y);
        const int64_t first = x - 2 * radius_;
        const int64_t begin = std::max<int64_t>(0, first);
        const int64_t end = std::min(band_.columns, x + width);
        rows_ = 0;
        for (int64_t i = 0; i < rows && begin < end; ++i) {
            uint8_t* out = inkRow(rows_);
            std::memset(out, 0, static_cast<size_t>(memory_.inkStride));
            const uint8_t* mask = band_.mask + (y + i) * band_.maskStride;
            const uint8_t inversion = inversion_;
            uint8_t any = 0;
            for (int64_t c = begin; c < end; ++c) {
                const uint8_t ink = mask[c] ^ inversion;
                out[c - first] = ink;
                any |= ink;
            }
            if (rows_ == 0 && any == 0) continue;
            if (rows_ == 0) y_ = y + i;
            ++rows_;
            if (any != 0) inkRows_ = rows_;
        }
        if (rows_ == 0) return false;
        rows_ = inkRows_;
        return true;
    }

    void measureRows() {
        for (int64_t y = 0; y < rows_; ++y) {
            measureFull(y);
            measureInk(y);
            if (y % kBlockRows == kBlockRows - 1) turnCloseness(y - y % kBlockRows);
        }
        const int64_t rest = rows_ % kBlockRows;
        for (int64_t y = rest; rest != 0 && y < kBlockRows; ++y) {
            std::fill_n(closenessRow(y), width_ + kLanes, uint16_t{0});
        }
        if (rest != 0) turnCloseness(rows_ - rest);
        for (int64_t x = 0; x < width_; ++x) {
            uint16_t* end = closenessColumn(x) + (rows_ + kBlockRows - 1) / kBlockRows * kBlockRows;
            std::fill_n(end, memory_.kPad, uint16_t{0});
        }
    }

    // Calls visit(begin, end) for the stretches of ink in a row of it that hold(vector).
    template <class Hold, class Visit>
    HWY_INLINE void forEachRun(const uint8_t* ink, const Hold& hold, const Visit& visit) const {
        const int64_t columns = width_ + 2 * radius_;
        uint64_t before = 0;
        int64_t begin = -1;
        for (int64_t x = 0; x < columns; x += 64) {
            uint64_t word = 0;
            for (int64_t i = 0; i < 64; i += kLanes) {
                word |= setLanes(d8, hold(hn::LoadU(d8, ink + x + i))) << i;
            }
            uint64_t changes = word ^ (word << 1 | before);
            before = word >> 63;
            for (; changes != 0; changes &= changes - 1) {
                const int64_t at = x + std::countr_zero(changes);
                if (begin < 0) {
                    begin = at;
                } else {
                    visit(begin - radius_, at - radius_);
                    begin = -1;
                }
            }
        }
        if (begin >= 0) visit(begin - radius_, columns - radius_);
    }

    // Fills a row of numbers by distance from the last run and to the next one: tables around 0.
    template <typename T>
    class RowByDistance {
    public:
        RowByDistance(T* cells, int64_t count, int64_t reach, T atRun)
            : row(cells), width(count), end(reach + 1), inside(atRun) {}

        HWY_INLINE void addRun(int64_t from, int64_t to, const T* before, const T* after) {
            fillTo(std::min(from, width), from, before);
            const auto v = hn::Set(d, inside);
            for (int64_t x = next; x < std::min(to, width); x += kCount) hn::StoreU(v, d, row + x);
            next = std::max<int64_t>(0, to);
            last = to - 1;
            behind = after;
        }
        HWY_INLINE void finish(const T* none) { fillTo(width, width + end + kCount, none); }

    private:
        static constexpr hn::ScalableTag<T> d{};
        static constexpr int64_t kCount = hn::MaxLanes(d);

        // Cells up to `to`, which lie between the last run and one at `from`. Cells behind them are
        // filled again.
        HWY_INLINE void fillTo(int64_t to, int64_t from, const T* ahead) {
            if (behind == nullptr) behind = ahead;
            for (int64_t x = next; x < to; x += kCount) {
                const int64_t rise = std::min(x - last, end);
                const int64_t fall = std::max(x - from, -(end + kCount));
                hn::StoreU(hn::Max(hn::LoadU(d, behind + rise), hn::LoadU(d, ahead + fall)), d,
                           row + x);
            }
            next = std::max(next, to);
        }

        T* const row;
        const int64_t width;
        const int64_t end;
        const T inside;
        int64_t next = 0;
        int64_t last = std::numeric_limits<int32_t>::min();
        const T* behind = nullptr;
    };

    void measureFull(int64_t y) {
        const Reach* reaches = memory_.fullReaches<Reach>();
        RowByDistance<Reach> row(fullRow(y), width_, radius_, reaches[0]);
        const auto isFull = [](V8 ink) HWY_ATTR { return hn::SaturatedSub(ink, hn::Set(d8, 254)); };
        forEachRun(inkRow(y), isFull, [&](int64_t from, int64_t to) HWY_ATTR {
            row.addRun(from, to, reaches, reaches);
        });
        row.finish(reaches);
    }

    void measureInk(int64_t y) {
        const uint8_t* ink = inkRow(y) + radius_;
        const Reach* reaches = memory_.inkReaches<Reach>();
        RowByDistance<Reach> reach(inkReachRow(y), width_, radius_, reaches[0]);
        RowByDistance<uint16_t> closeness(closenessRow(y % kBlockRows), width_, radius_,
                                          WideDiscMemory::shortOf((radius_ + 1) * kUnits));
        const auto around = [&](int64_t x) HWY_ATTR {
            return memory_.closenessAround((255 - ink[x]) * kUnits / 256);
        };
        forEachRun(
            inkRow(y), [](V8 v) HWY_ATTR { return v; },
            [&](int64_t from, int64_t to) HWY_ATTR {
                reach.addRun(from, to, reaches, reaches);
                closeness.addRun(from, to, around(from), around(to - 1));
            });
        reach.finish(reaches);
        closeness.finish(memory_.closenessAround(0));
    }

    // Eight rows of closeness into columns.
    void turnCloseness(int64_t y) const {
        constexpr hn::CappedTag<uint16_t, kBlockRows> d;
        for (int64_t x = 0; x < width_; x += kBlockRows) {
            hn::Vec<decltype(d)> v[kBlockRows];
            for (int64_t i = 0; i < kBlockRows; ++i) v[i] = hn::LoadU(d, closenessRow(i) + x);
            transpose(d, v);
            for (int64_t i = 0; i < kBlockRows; ++i) {
                hn::StoreU(v[i], d, closenessColumn(x + i) + y);
            }
        }
    }

    // --- 2: columns ---

    bool spread() {
        for (int64_t x = 0; x < width_; x += kReachLanes) {
            const int64_t column = std::min(x, width_ - kReachLanes);
            sweepDown(column);
            const int64_t stretches = sweepUp(column);
            for (int64_t i = 0; i < stretches; ++i) {
                const WideDiscMemory::Stretch& stretch = memory_.rim[i];
                for (uint64_t bits = stretch.columns; bits != 0; bits &= bits - 1) {
                    raiseRim(column + std::countr_zero(bits), stretch.row);
                }
                if (looksLeft_ < 0) return false;
            }
        }
        return true;
    }

    // What is left of the furthest reach of full pixels, and of any ink.
    struct Left {
        Reaches full = hn::Zero(dReach);
        Reaches ink = hn::Zero(dReach);

        HWY_INLINE Left() {}
        HWY_INLINE void step() {
            full = hn::SaturatedSub(full, hn::Set(dReach, 1));
            ink = hn::SaturatedSub(ink, hn::Set(dReach, 1));
        }
        HWY_INLINE void see(const Reach* fullReaches, const Reach* inkReaches) {
            full = hn::Max(full, hn::LoadU(dReach, fullReaches));
            ink = hn::Max(ink, hn::LoadU(dReach, inkReaches));
        }
    };

    // Rows of output lie `radius` rows further up than those of the mask.
    HWY_INLINE bool isMaskRow(int64_t y) const { return y >= radius_ && y < rows_ + radius_; }

    HWY_INLINE void see(int64_t y, int64_t column, Left& left) const {
        left.step();
        if (!isMaskRow(y)) return;
        left.see(fullRow(y - radius_) + column, inkReachRow(y - radius_) + column);
    }

    // What the rows above reach.
    void sweepDown(int64_t column) const {
        Left left;
        auto* out = reinterpret_cast<Reach*>(memory_.fromAbove);
        for (int64_t y = radius_; y < rows_ + 2 * radius_; ++y) {
            see(y, column, left);
            hn::StoreU(left.full, dReach, out + 2 * y * kReachLanes);
            hn::StoreU(left.ink, dReach, out + (2 * y + 1) * kReachLanes);
        }
    }

    // What the rows below reach, with that from above: raises the full pixels and lists the rim.
    // Returns how many stretches it has.
    int64_t sweepUp(int64_t column) const {
        Left left;
        const auto* fromAbove = reinterpret_cast<const Reach*>(memory_.fromAbove);
        int64_t stretches = 0;
        for (int64_t y = rows_ + 2 * radius_ - 1; y >= 0; --y) {
            see(y, column, left);
            Reaches full = left.full;
            Reaches ink = left.ink;
            if (y >= radius_) {
                full = hn::Or(full, hn::LoadU(dReach, fromAbove + 2 * y * kReachLanes));
                ink = hn::Or(ink, hn::LoadU(dReach, fromAbove + (2 * y + 1) * kReachLanes));
            }
            if (isNone(ink)) continue;
            const Reaches blank = hn::VecFromMask(dReach, hn::Eq(full, hn::Zero(dReach)));
            raiseFull(blank, outAt(column, y));
            const Reaches rim = hn::And(ink, blank);
            if (isNone(rim)) continue;
            memory_.rim[stretches++] = {y, setLanes(dReach, rim)};
        }
        return stretches;
    }

    static HWY_INLINE bool isNone(Reaches v) { return allBytesAre(hn::BitCast(d8, v), 0); }

    // `blank` is 0 where the output becomes full, elsewhere all ones.
    static HWY_INLINE void raiseFull(Reaches blank, uint8_t* out) {
        if constexpr (sizeof(Reach) == 1) {
            hn::StoreU(hn::Or(hn::LoadU(dReach, out), hn::Not(blank)), dReach, out);
        } else {
            constexpr hn::Rebind<uint8_t, decltype(dReach)> dBytes;
            constexpr hn::RebindToSigned<decltype(dReach)> dSigned;
            const auto full = hn::BitCast(dSigned, hn::ShiftRight<8>(hn::Not(blank)));
            hn::StoreU(hn::Or(hn::LoadU(dBytes, out), hn::DemoteTo(dBytes, full)), dBytes, out);
        }
    }

    // --- 3: the rim ---

    // Raises one pixel by the rows around it.
    void raiseRim(int64_t x, int64_t y) {
        uint8_t* out = outAt(x, y);
        Rim rim = {closenessColumn(x), inkRow(0) + x + radius_, y - radius_, *out};
        const int64_t begin = std::max<int64_t>(0, rim.row - radius_);
        const int64_t end = std::min(rows_, rim.row + radius_ + 1);
        // Neighbours often have their most from the same rows.
        const int64_t likely = std::clamp(rim.row + likely_, begin, end - 1);
        if (mayGiveMore(rim, likely)) look(rim, likely);
        for (int64_t row = begin; row < end; row += 2 * kShortLanes) {
            const uint16_t* closeness = rim.closeness + row;
            const uint16_t* needed = needsAround(rim) + row - rim.row;
            const V16 first = hn::SaturatedSub(hn::LoadU(d16, closeness), hn::LoadU(d16, needed));
            const V16 second = hn::SaturatedSub(hn::LoadU(d16, closeness + kShortLanes),
                                                hn::LoadU(d16, needed + kShortLanes));
            if (allBytesAre(bytes(hn::Or(first, second)), 0)) continue;
            uint64_t bits = setLanes(d16, first) | setLanes(d16, second) << kShortLanes;
            for (; bits != 0; bits &= bits - 1) {
                const int64_t candidate = row + std::countr_zero(bits);
                if (mayGiveMore(rim, candidate)) look(rim, candidate);
            }
        }
        *out = rim.best;
    }

    struct Rim {
        const uint16_t* closeness;  // of the pixel's column, by mask rows
        const uint8_t* ink;         // of the pixel's column in the first row
        int64_t row;                // the pixel's own
        uint8_t best;
    };

    const uint16_t* needsAround(const Rim& rim) const { return memory_.needs(rim.best) + radius_; }
    HWY_INLINE bool mayGiveMore(const Rim& rim, int64_t row) const {
        return rim.closeness[row] > needsAround(rim)[row - rim.row];
    }

    // Takes what a row gives: all of its ink that is near enough to give more.
    void look(Rim& rim, int64_t row) {
        const int64_t dy = row - rim.row;
        const uint8_t* ink = rim.ink + row * memory_.inkStride;
        const uint8_t* cells = centre_ + dy * band_.kernelSize;
        const auto whole = static_cast<uint64_t>(radius_ + 1) * kUnits;
        const auto widest = static_cast<int64_t>((whole - needsAround(rim)[dy] - 1) / kUnits);
        V8 best = hn::Zero(d8);
        const auto see = [&](int64_t x) HWY_ATTR {
            const V8 loss = hn::Not(hn::LoadU(d8, cells + x));
            best = hn::Max(best, hn::SaturatedSub(hn::LoadU(d8, ink + x), loss));
        };
        --looksLeft_;
        if (2 * widest + 1 <= kLanes) {
            see(std::min(-widest, radius_ + 1 - kLanes));
        } else {
            const uint64_t closeness = rim.closeness[row];
            const auto nearest = static_cast<int64_t>(
                closeness == WideDiscMemory::kMost ? 0 : (whole - closeness) / kUnits);
            for (int64_t x = widest; x >= nearest; x -= kLanes) {
                see(std::min(-x, radius_ + 1 - kLanes));
                see(std::max(x + 1 - kLanes, -radius_));
                --looksLeft_;
            }
        }
        const uint8_t most = largestByte(best);
        if (most <= rim.best) return;
        rim.best = most;
        likely_ = dy;
    }

    // --- memory ---

    static constexpr int64_t kBlockRows = 8;

    uint8_t* inkRow(int64_t y) const { return memory_.ink + y * memory_.inkStride; }
    Reach* fullRow(int64_t y) const {
        return reinterpret_cast<Reach*>(memory_.full) + y * memory_.tileStride;
    }
    Reach* inkReachRow(int64_t y) const {
        return reinterpret_cast<Reach*>(memory_.any) + y * memory_.tileStride;
    }
    uint16_t* closenessRow(int64_t y) const {
        return memory_.closenessRows + y * memory_.tileStride;
    }
    uint16_t* closenessColumn(int64_t x) const {
        return memory_.closenessColumns + x * memory_.columnStride;
    }
    uint8_t* outAt(int64_t x, int64_t y) const {
        return band_.out + (y_ + y) * band_.outStride + x_ + x;
    }

    const DilationBand& band_;
    const WideDiscMemory& memory_;
    const int64_t radius_;
    const uint8_t inversion_;
    const uint8_t* const centre_;

    int64_t x_ = 0;        // first output column of the tile
    int64_t width_ = 0;    // its columns
    int64_t y_ = 0;        // first mask row with ink
    int64_t rows_ = 0;     // from there to the last with ink
    int64_t inkRows_ = 0;  // up to the last with ink so far
    int64_t likely_ = 0;
    int64_t looksLeft_ = 0;
};

}  // namespace GxFontEffect::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // !GX_SIMD_IS_PLAIN
#endif  // per target
