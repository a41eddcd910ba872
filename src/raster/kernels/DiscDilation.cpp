#include "raster/kernels/DiscDilation.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <utility>

#include "raster/kernels/DiscShape.h"
#include "raster/kernels/Simd.h"
#include "raster/kernels/WideDisc.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "raster/kernels/DiscDilation.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "raster/kernels/PixelVector-inl.h"
#include "raster/kernels/WideDisc-inl.h"

// A mask row reaches the output rows y below and above it through the same chord of the disc. The
// chord only widens towards the middle row, so one running maximum serves all of them; each row
// adds its rim, cell by cell. Left and right of a chord mirror each other: the larger byte of the
// two is all that counts.
//
// The output goes in column tiles. The rows that a mask row reaches are kept in a ring, small
// enough for the first-level cache, and join the output when no further row reaches them. Blank
// paper and the insides of stems are passed over.
HWY_BEFORE_NAMESPACE();
namespace GxFontEffect::kernels::HWY_NAMESPACE {

#if GX_SIMD_IS_PLAIN

void dilateDisc(const DilationBand& band, const DiscShape& /*shape*/, bool inverted) {
    inverted ? plain::dilateInside(band) : plain::dilateOutside(band);
}

bool isMostlySolid(const DilationBand& /*band*/) {
    return true;
}

bool dilateWide(const DilationBand& band, const WideDiscMemory& /*memory*/, bool inverted) {
    inverted ? plain::dilateInside(band) : plain::dilateOutside(band);
    return true;
}

void minimum(uint8_t* a, const uint8_t* b, int64_t count) {
    plain::minimum(a, b, count);
}

#else

inline constexpr int64_t kLanes = static_cast<int64_t>(kBlockPixels);

HWY_INLINE void raise(uint8_t* out, V8 to) {
    hn::StoreU(hn::Max(hn::LoadU(d8, out), to), d8, out);
}

// The output in column tiles. Works in some 40 KiB of the stack.
class DiscTile {
public:
    DiscTile(const DilationBand& band, const DiscShape& shape, bool inverted)
        : band_(band),
          shape_(shape),
          radius_(shape.radius),
          side_(2 * radius_ + 1),
          width_(std::min(kMaxWidth, kRingBytes / side_ / kLanes * kLanes)),
          inversion_(inverted ? 255 : 0),
          windowBlocks_((uint64_t{1} << ((2 * radius_ + kLanes - 1) / kLanes + 1)) - 1) {
        for (int64_t i = 0; i < 2 * side_; ++i) slots_[i] = ring_ + i % side_ * width_;
    }

    void dilate() {
        const int64_t outColumns = band_.columns + 2 * radius_;
        for (int64_t x = 0; x < outColumns; x += width_) {
            start(x, std::min(width_, outColumns - x));
            for (int64_t y = 0; y < band_.rows + 2 * radius_; ++y) {
                if (y < band_.rows) spreadRow(y);
                if (y - lastInk_ <= 2 * radius_) flushRow(y);
            }
        }
    }

private:
    static constexpr int64_t kMaxWidth = 512;
    static constexpr int64_t kUnseenRows = 7;
    static constexpr int64_t kRingBytes = 16384;
    static constexpr int64_t kMaxSide = 2 * DiscShape::kMaxRadius + 1;
    static constexpr int64_t kLineBytes = kMaxWidth + kMaxSide + kLanes;
    static_assert(kRingBytes / kMaxSide >= kLanes);
    static_assert(kLineBytes / kLanes <= 64, "a bit for each block of a line");

    // The mask pixels that reach the tile, with nothing around the band.
    struct Line {
        alignas(64) uint8_t pixels[kLineBytes];
    };

    // Which blocks of a line have something to spread. A pixel that its lower neighbour equals or
    // exceeds adds nothing to the rows below its own, because the neighbour reaches them from
    // nearer; the same holds upwards.
    struct Ink {
        uint64_t any = 0;
        uint64_t up = 0;
        uint64_t down = 0;
    };

    void start(int64_t x, int64_t count) {
        x_ = x;
        count_ = count;
        const int64_t firstColumn = x - 2 * radius_;
        maskBegin_ = std::max<int64_t>(0, firstColumn);
        maskEnd_ = std::min(band_.columns, x + count);
        lineBegin_ = maskBegin_ - firstColumn;
        lineBlocks_ = (count + 2 * radius_ + kLanes - 1) / kLanes;
        lastInk_ = -side_;
        unseenRows_ = 0;
        for (Line& line : lines_) std::memset(line.pixels, 0, sizeof(line.pixels));
        std::memset(ring_, 0, static_cast<size_t>(side_ * width_));
        above_ = &lines_[0];
        here_ = &lines_[1];
        below_ = &lines_[2];
        load(0, *here_);
    }

    void load(int64_t y, Line& line) const {
        uint8_t* out = line.pixels + lineBegin_;
        const int64_t count = std::max<int64_t>(0, maskEnd_ - maskBegin_);
        if (y >= band_.rows) {
            std::memset(out, 0, static_cast<size_t>(count));
            return;
        }
        const uint8_t* mask = band_.mask + y * band_.maskStride + maskBegin_;
        const uint8_t inversion = inversion_;
        for (int64_t i = 0; i < count; ++i) out[i] = mask[i] ^ inversion;
    }

    // Where a row has something everywhere, as noise has, the next few are taken to be like it
    // without a look: they may well have less.
    Ink inkOf() {
        constexpr uint64_t kAll = ~uint64_t{0};
        if (unseenRows_ > 0) {
            --unseenRows_;
            return {kAll, kAll, kAll};
        }
        const Ink ink = lookForInk();
        const uint64_t line = kAll >> (64 - lineBlocks_);
        if ((ink.up & ink.down & line) == line) unseenRows_ = kUnseenRows;
        return ink;
    }

    Ink lookForInk() const {
        Ink ink;
        for (int64_t block = 0; block < lineBlocks_; ++block) {
            const int64_t at = block * kLanes;
            const V8 here = hn::Load(d8, here_->pixels + at);
            if (allBytesAre(here, 0)) continue;
            const V8 above = hn::Load(d8, above_->pixels + at);
            const V8 below = hn::Load(d8, below_->pixels + at);
            ink.any |= uint64_t{1} << block;
            ink.up |= uint64_t{!allBytesAre(hn::SaturatedSub(here, above), 0)} << block;
            ink.down |= uint64_t{!allBytesAre(hn::SaturatedSub(here, below), 0)} << block;
        }
        return ink;
    }

    void spreadRow(int64_t y) {
        load(y + 1, *below_);
        const Ink ink = inkOf();
        if (ink.any) {
            lastInk_ = y;
            uint8_t* const* middle = slots_ + y % side_ + radius_;
            for (int64_t x = 0; x < count_; x += kLanes) {
                uint64_t window = windowBlocks_ << (x / kLanes);
                if (!(ink.any & window)) continue;
                if (x + kLanes < count_ && (ink.any & window << 1)) {
                    window |= window << 1;
                    spread<2>(x, ink.up & window, ink.down & window, middle);
                    x += kLanes;
                } else {
                    spread<1>(x, ink.up & window, ink.down & window, middle);
                }
            }
        }
        std::swap(above_, here_);
        std::swap(here_, below_);
    }

    // The output of kVectors vectors from x on; two at a time share the disc's cells. No branch
    // depends on the pixels, but for the first.
    template <int kVectors>
    HWY_INLINE void spread(int64_t x, bool up, bool down, uint8_t* const* middle) const {
        const uint8_t* centre = here_->pixels + x + radius_;
        if (!up && !down && isFull<kVectors>(centre)) {
            const V8 full = hn::Set(d8, 255);
            for (int v = 0; v < kVectors; ++v) hn::Store(full, d8, middle[0] + x + v * kLanes);
            return;
        }
        V8 columns[DiscShape::kMaxRadius + 1][kVectors];
        V8 chords[DiscShape::kMaxRadius + 2][kVectors];
        for (int v = 0; v < kVectors; ++v) {
            chords[0][v] = hn::Zero(d8);
            chords[1][v] = columns[0][v] = hn::LoadU(d8, centre + v * kLanes);
        }
        for (int64_t i = 1; i <= radius_; ++i) {
            for (int v = 0; v < kVectors; ++v) {
                const uint8_t* at = centre + v * kLanes;
                columns[i][v] = hn::Max(hn::LoadU(d8, at - i), hn::LoadU(d8, at + i));
                chords[i + 1][v] = hn::Max(chords[i][v], columns[i][v]);
            }
        }
        const DiscShape& shape = shape_;
        for (int64_t y = up || down ? radius_ : 0; y >= 0; --y) {
            V8 reached[kVectors];
            for (int v = 0; v < kVectors; ++v) reached[v] = chords[shape.chords[y]][v];
            const DiscShape::RimCell* cell = shape.rim.data() + shape.rimEnds[y];
            const DiscShape::RimCell* end = shape.rim.data() + shape.rimEnds[y + 1];
            do {
                const V8 loss = hn::Set(d8, cell->loss);
                for (int v = 0; v < kVectors; ++v) {
                    const V8 rim = hn::SaturatedSub(columns[cell->column][v], loss);
                    reached[v] = hn::Max(reached[v], rim);
                }
                ++cell;
            } while (cell != end);
            if (y == 0 || down) raiseAll(middle[y] + x, reached);
            if (y != 0 && up) raiseAll(middle[-y] + x, reached);
        }
    }

    // Full pixels stay full when the disc's own centre is.
    template <int kVectors>
    HWY_INLINE bool isFull(const uint8_t* pixels) const {
        V8 all = hn::Set(d8, shape_.chords[0] > 0 ? 255 : 0);
        for (int v = 0; v < kVectors; ++v) all = hn::And(all, hn::LoadU(d8, pixels + v * kLanes));
        return allBytesAre(all, 255);
    }

    template <int kVectors>
    static HWY_INLINE void raiseAll(uint8_t* out, const V8 (&to)[kVectors]) {
        for (int v = 0; v < kVectors; ++v) raise(out + v * kLanes, to[v]);
    }

    void flushRow(int64_t y) const {
        uint8_t* slot = slots_[y % side_];
        uint8_t* out = band_.out + y * band_.outStride + x_;
        forEachBlock(static_cast<size_t>(count_), Maximum(), out, std::as_const(slot));
        std::memset(slot, 0, static_cast<size_t>(width_));
    }

    struct Maximum {
        HWY_INLINE void operator()(uint8_t* out, const uint8_t* in) const {
            raise(out, hn::LoadU(d8, in));
        }
    };

    const DilationBand& band_;
    const DiscShape& shape_;
    const int64_t radius_;
    const int64_t side_;
    const int64_t width_;
    const uint8_t inversion_;
    const uint64_t windowBlocks_;

    int64_t x_ = 0;      // first output column of the tile
    int64_t count_ = 0;  // its columns
    int64_t maskBegin_ = 0, maskEnd_ = 0;
    int64_t lineBegin_ = 0;
    int64_t lineBlocks_ = 0;
    int64_t lastInk_ = 0;
    int64_t unseenRows_ = 0;
    Line *above_ = nullptr, *here_ = nullptr, *below_ = nullptr;

    Line lines_[3];
    alignas(64) uint8_t ring_[kRingBytes];
    uint8_t* slots_[2 * kMaxSide];  // of output row i: slots_[i % side], and on without wrapping
};

// Discs of a few pixels have so few cells that they go cell by cell, straight from the mask into
// the output. The output goes in columns a vector wide, downwards: the rows that a mask row reaches
// stay in registers until no further row reaches them.
template <int kRadius>
class SmallDisc {
public:
    SmallDisc(const DilationBand& band, const DiscShape& shape, bool inverted)
        : band_(band), inversion_(inverted ? 255 : 0) {
        for (int y = 0; y <= kRadius; ++y) {
            for (int x = 0; x <= kRadius; ++x) losses_[y][x] = hn::Set(d8, shape.lossAt(x, y));
        }
    }

    // Bands narrower than a vector of output are left to the tiles.
    static bool takes(const DilationBand& band, const DiscShape& shape) {
        return shape.radius == kRadius && band.columns + kReach >= kLanes;
    }

    void dilate() const {
        for (int64_t y = 0; y < band_.rows; y += kStripRows) {
            dilateStrip(y, std::min(kStripRows, band_.rows - y));
        }
    }

private:
    static constexpr int kReach = 2 * kRadius;
    static constexpr int64_t kStripRows = 64;

    void dilateStrip(int64_t y, int64_t rows) const {
        const int64_t last = band_.columns + kReach - kLanes;
        spreadEdge(y, rows, 0);
        int64_t x = kLanes;
        for (; x + kLanes <= band_.columns; x += kLanes) {
            spread(band_.mask + y * band_.maskStride + x - kRadius, band_.maskStride, rows,
                   band_.out + y * band_.outStride + x);
        }
        // The last column may overlap the one before: a maximum taken twice is the same.
        for (; x < last; x += kLanes) spreadEdge(y, rows, x);
        if (last > 0) spreadEdge(y, rows, last);
    }

    // As spread, with nothing around the band.
    void spreadEdge(int64_t y, int64_t rows, int64_t x) const {
        constexpr int64_t kWindow = kLanes + kReach;
        uint8_t windows[kStripRows * kWindow];
        std::memset(windows, inversion_, static_cast<size_t>(rows * kWindow));
        const int64_t first = x - kReach;
        const int64_t begin = std::max<int64_t>(0, first);
        const int64_t end = std::min(band_.columns, x + kLanes);
        for (int64_t i = 0; i < rows; ++i) {
            std::memcpy(windows + i * kWindow + (begin - first),
                        band_.mask + (y + i) * band_.maskStride + begin,
                        static_cast<size_t>(end - begin));
        }
        spread(windows + kRadius, kWindow, rows, band_.out + y * band_.outStride + x);
    }

    // `mask` is the pixel over the first cell of the output's middle row.
    HWY_INLINE void spread(const uint8_t* mask, int64_t stride, int64_t rows, uint8_t* out) const {
        V8 reached[kReach];  // of the rows from `out` on, so far
        for (V8& row : reached) row = hn::Zero(d8);
        int64_t blankRows = kReach;
        for (int64_t y = 0; y < rows; ++y, mask += stride, out += band_.outStride) {
            V8 columns[kRadius + 1];
            const V8 any = readColumns(mask, columns);
            blankRows = allBytesAre(any, 0) ? blankRows + 1 : 0;
            if (blankRows > kReach) continue;
            V8 row = reachOf(columns, kRadius);
            raise(out, hn::Max(reached[0], row));
            for (int i = 1; i < kReach; ++i) {
                const V8 nearer = reachOf(columns, std::abs(i - kRadius));
                reached[i - 1] = hn::Max(reached[i], nearer);
            }
            reached[kReach - 1] = row;
        }
        for (int i = 0; i < kReach; ++i) raise(out + i * band_.outStride, reached[i]);
    }

    // The larger of the mask's pixels on either side of each place in a row; any of their bits.
    HWY_INLINE V8 readColumns(const uint8_t* mask, V8 (&columns)[kRadius + 1]) const {
        const V8 inversion = hn::Set(d8, inversion_);
        columns[0] = hn::Xor(hn::LoadU(d8, mask), inversion);
        V8 any = columns[0];
        for (int i = 1; i <= kRadius; ++i) {
            columns[i] = hn::Max(hn::Xor(hn::LoadU(d8, mask - i), inversion),
                                 hn::Xor(hn::LoadU(d8, mask + i), inversion));
            any = hn::Or(any, columns[i]);
        }
        return any;
    }

    // What they reach in the rows that lie `y` away.
    HWY_INLINE V8 reachOf(const V8 (&columns)[kRadius + 1], int y) const {
        V8 reached = hn::SaturatedSub(columns[0], losses_[y][0]);
        for (int x = 1; x <= kRadius; ++x) {
            reached = hn::Max(reached, hn::SaturatedSub(columns[x], losses_[y][x]));
        }
        return reached;
    }

    const DilationBand& band_;
    const uint8_t inversion_;
    V8 losses_[kRadius + 1][kRadius + 1];
};

void dilateDisc(const DilationBand& band, const DiscShape& shape, bool inverted) {
    if (SmallDisc<1>::takes(band, shape)) return SmallDisc<1>(band, shape, inverted).dilate();
    if (SmallDisc<2>::takes(band, shape)) return SmallDisc<2>(band, shape, inverted).dilate();
    if (SmallDisc<3>::takes(band, shape)) return SmallDisc<3>(band, shape, inverted).dilate();
    DiscTile(band, shape, inverted).dilate();
}

// Whether little of a band lies between blank and full, as in noise it does: each such pixel may
// have a rim of its own.
bool isMostlySolid(const DilationBand& band) {
    int64_t between = 0;
    for (int64_t y = 0; y < band.rows; ++y) {
        const uint8_t* mask = band.mask + y * band.maskStride;
        int64_t x = 0;
        for (; x + kLanes <= band.columns; x += kLanes) {
            // 1 to 254 less one is 0 to 253.
            const V8 less = hn::Sub(hn::LoadU(d8, mask + x), hn::Set(d8, 1));
            const auto isBetween = hn::Ne(hn::Max(less, hn::Set(d8, 254)), less);
            between += static_cast<int64_t>(hn::CountTrue(d8, isBetween));
        }
        for (; x < band.columns; ++x) between += mask[x] != 0 && mask[x] != 255;
    }
    return between <= band.rows * band.columns / 4;
}

// False when the tiles had better do it; wider discs than they take are not refused.
bool dilateWide(const DilationBand& band, const WideDiscMemory& memory, bool inverted) {
    const int64_t radius = band.kernelSize / 2;
    int64_t mostLooks = std::numeric_limits<int64_t>::max();
    if (radius <= DiscShape::kMaxRadius) {
        const int64_t vectors = (band.columns + 2 * radius) / kLanes * (band.rows + 2 * radius);
        mostLooks = vectors * radius / 2;
    }
    return radius < 255 ? WideDisc<uint8_t>(band, memory, inverted).dilate(mostLooks)
                        : WideDisc<uint16_t>(band, memory, inverted).dilate(mostLooks);
}

struct Minimum {
    HWY_INLINE void operator()(uint8_t* a, const uint8_t* b) const {
        hn::StoreU(hn::Min(hn::LoadU(d8, a), hn::LoadU(d8, b)), d8, a);
    }
};

void minimum(uint8_t* a, const uint8_t* b, int64_t count) {
    forEachBlock(static_cast<size_t>(std::max<int64_t>(0, count)), Minimum(), a, b);
}

#endif  // GX_SIMD_IS_PLAIN

}  // namespace GxFontEffect::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace GxFontEffect::kernels {

GX_EXPORT(dilateDisc);
GX_EXPORT(dilateWide);
GX_EXPORT(isMostlySolid);
GX_EXPORT(minimum);

bool DiscShape::readRow(const uint8_t* below, const uint8_t* above, int y, int64_t stride) {
    size_t columns = 0;
    size_t rimEnd = rimEnds[y];
    const auto addRimCell = [&](int x, int coverage) {
        if (rimEnd < rim.size()) {
            rim[rimEnd] = {static_cast<uint8_t>(x), static_cast<uint8_t>(255 - coverage)};
        }
        ++rimEnd;
    };
    for (int x = 0; x <= radius; ++x) {
        const uint8_t coverage = below[x];
        if (below[-x] != coverage || above[x] != coverage || above[-x] != coverage) return false;
        if (y > 0 && coverage > below[x - stride]) return false;
        if (coverage == 255 && columns == static_cast<size_t>(x)) {
            ++columns;
        } else if (coverage != 0) {
            addRimCell(x, coverage);
        }
    }
    if (rimEnd == rimEnds[y]) addRimCell(0, 0);
    if (rimEnd > rim.size()) return false;
    chords[y] = static_cast<uint8_t>(columns);
    rimEnds[y + 1] = static_cast<uint16_t>(rimEnd);
    return true;
}

bool DiscShape::read(const DilationBand& band) {
    const int64_t side = band.kernelSize;
    if (side < 1 || side % 2 == 0 || side / 2 > kMaxRadius) return false;
    radius = static_cast<int>(side / 2);
    rimEnds[0] = 0;
    kernel = band.kernel;
    const uint8_t* centre = band.kernel + radius * side + radius;
    for (int y = 0; y <= radius; ++y) {
        if (!readRow(centre + y * side, centre - y * side, y, side)) return false;
    }
    return true;
}

namespace {

bool dilateWideDisc(const DilationBand& band, bool inverted) {
    if (!isWideDisc(band)) return false;
    if (band.kernelSize / 2 <= DiscShape::kMaxRadius && !GX_DISPATCH(isMostlySolid)(band)) {
        return false;
    }
    const WideDiscMemory memory(band);
    return memory && GX_DISPATCH(dilateWide)(band, memory, inverted);
}

void dilate(const DilationBand& band, bool inverted) {
    if (band.rows < 1 || band.columns < 1) return;
    DiscShape shape;
    if (dilateWideDisc(band, inverted)) return;
    if (shape.read(band)) return GX_DISPATCH(dilateDisc)(band, shape, inverted);
    inverted ? plain::dilateInside(band) : plain::dilateOutside(band);
}

}  // namespace

void dilateOutside(const DilationBand& band) {
    dilate(band, false);
}

void dilateInside(const DilationBand& band) {
    dilate(band, true);
}

void minimum(uint8_t* a, const uint8_t* b, int64_t count) {
    GX_DISPATCH(minimum)(a, b, count);
}

}  // namespace GxFontEffect::kernels
#endif  // HWY_ONCE
