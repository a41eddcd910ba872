#include "raster/kernels/DiscDilation.h"

#include <algorithm>
#include <utility>

#include "raster/kernels/DiscShape.h"
#include "raster/kernels/Simd.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "raster/kernels/DiscDilation.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "raster/kernels/PixelVector-inl.h"

// A mask row reaches the output rows y below and above it through the same chord of the disc. The
// chord only widens towards the middle row, so one running maximum serves all of them; each row
// adds its rim, cell by cell. Left and right of a chord mirror each other: the larger byte of the
// two is all that counts.
//
// The output goes in column tiles. The rows that a mask row reaches are kept in a ring, small
// enough for the first-level cache, and join the output when no further row reaches them.
HWY_BEFORE_NAMESPACE();
namespace GxFontEffect::kernels::HWY_NAMESPACE {

#if GX_SIMD_IS_PLAIN

void dilateDisc(const DilationBand& band, const DiscShape& /*shape*/, bool inverted) {
    inverted ? dilateInsidePlain(band) : dilateOutsidePlain(band);
}

void minimum(uint8_t* a, const uint8_t* b, int64_t count) {
    minimumPlain(a, b, count);
}

#else

inline constexpr int64_t kLanes = static_cast<int64_t>(kBlockPixels);

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
        for (int64_t i = 0; i < count; ++i) out[i] = mask[i] ^ inversion_;
    }

    Ink inkOf() const {
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
                const uint64_t window = windowBlocks_ << (x / kLanes);
                if (!(ink.any & window)) continue;
                spread(x, ink.up & window, ink.down & window, middle);
            }
        }
        std::swap(above_, here_);
        std::swap(here_, below_);
    }

    HWY_INLINE void spread(int64_t x, bool up, bool down, uint8_t* const* middle) const {
        const uint8_t* centre = here_->pixels + x + radius_;
        V8 columns[DiscShape::kMaxRadius + 1];
        columns[0] = hn::LoadU(d8, centre);
        for (int64_t i = 1; i <= radius_; ++i) {
            columns[i] = hn::Max(hn::LoadU(d8, centre - i), hn::LoadU(d8, centre + i));
        }
        V8 chord = hn::Zero(d8);
        int reach = 0;
        for (int64_t y = up || down ? radius_ : 0; y >= 0; --y) {
            for (; reach < shape_.chords[y]; ++reach) chord = hn::Max(chord, columns[reach]);
            V8 reached = chord;
            for (int i = shape_.rimEnds[y]; i < shape_.rimEnds[y + 1]; ++i) {
                const DiscShape::RimCell cell = shape_.rim[i];
                const V8 loss = hn::Set(d8, cell.loss);
                reached = hn::Max(reached, hn::SaturatedSub(columns[cell.column], loss));
            }
            if (y == 0 || down) raise(middle[y] + x, reached);
            if (y != 0 && up) raise(middle[-y] + x, reached);
        }
    }

    static HWY_INLINE void raise(uint8_t* out, V8 to) {
        hn::Store(hn::Max(hn::Load(d8, out), to), d8, out);
    }

    void flushRow(int64_t y) const {
        uint8_t* slot = slots_[y % side_];
        uint8_t* out = band_.out + y * band_.outStride + x_;
        forEachBlock(static_cast<size_t>(count_), Maximum(), out, std::as_const(slot));
        std::memset(slot, 0, static_cast<size_t>(width_));
    }

    struct Maximum {
        HWY_INLINE void operator()(uint8_t* out, const uint8_t* in) const {
            hn::StoreU(hn::Max(hn::LoadU(d8, out), hn::LoadU(d8, in)), d8, out);
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
    Line *above_ = nullptr, *here_ = nullptr, *below_ = nullptr;

    Line lines_[3];
    alignas(64) uint8_t ring_[kRingBytes];
    uint8_t* slots_[2 * kMaxSide];  // of output row i: slots_[i % side], and on without wrapping
};

void dilateDisc(const DilationBand& band, const DiscShape& shape, bool inverted) {
    DiscTile(band, shape, inverted).dilate();
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

HWY_EXPORT(dilateDisc);
HWY_EXPORT(minimum);

bool DiscShape::readRow(const uint8_t* below, const uint8_t* above, int y, int64_t stride) {
    int columns = 0;
    uint16_t& rimEnd = rimEnds[y + 1] = rimEnds[y];
    for (int x = 0; x <= radius; ++x) {
        const uint8_t coverage = below[x];
        if (below[-x] != coverage || above[x] != coverage || above[-x] != coverage) return false;
        if (y > 0 && coverage > below[x - stride]) return false;
        if (coverage == 255 && columns == x) {
            ++columns;
        } else if (coverage != 0) {
            if (rimEnd == rim.size()) return false;
            rim[rimEnd++] = {static_cast<uint8_t>(x), static_cast<uint8_t>(255 - coverage)};
        }
    }
    chords[y] = static_cast<uint8_t>(columns);
    return true;
}

bool DiscShape::read(const DilationBand& band) {
    const int64_t side = band.kernelSize;
    if (side < 1 || side % 2 == 0 || side / 2 > kMaxRadius) return false;
    radius = static_cast<int>(side / 2);
    rimEnds[0] = 0;
    const uint8_t* centre = band.kernel + radius * side + radius;
    for (int y = 0; y <= radius; ++y) {
        if (!readRow(centre + y * side, centre - y * side, y, side)) return false;
    }
    return true;
}

void dilateOutside(const DilationBand& band) {
    DiscShape shape;
    if (band.rows < 1 || band.columns < 1) return;
    if (!shape.read(band)) return dilateOutsidePlain(band);
    HWY_DYNAMIC_DISPATCH(dilateDisc)(band, shape, false);
}

void dilateInside(const DilationBand& band) {
    DiscShape shape;
    if (band.rows < 1 || band.columns < 1) return;
    if (!shape.read(band)) return dilateInsidePlain(band);
    HWY_DYNAMIC_DISPATCH(dilateDisc)(band, shape, true);
}

void minimum(uint8_t* a, const uint8_t* b, int64_t count) {
    HWY_DYNAMIC_DISPATCH(minimum)(a, b, count);
}

}  // namespace GxFontEffect::kernels
#endif  // HWY_ONCE
