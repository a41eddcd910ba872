// The fast blur of raster/kernels/BoxBlur.h, in strips.
//
// A strip is a few columns or turned rows side by side, copied to the work memory: there all three
// means run along it in place, a step of them being one vector. The running sum is kept times the
// factor of the mean, so that its upper half is the mean: a step adds the factor times the
// difference between the cell that enters the window and the one that leaves.
#include "raster/kernels/BoxBlur.h"

#include <algorithm>

#include "raster/kernels/Simd.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "raster/kernels/BoxBlur.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "raster/kernels/PixelVector-inl.h"
#include "raster/kernels/Transpose-inl.h"

HWY_BEFORE_NAMESPACE();
namespace GxFontEffect::kernels::HWY_NAMESPACE {

#if GX_SIMD_IS_PLAIN

void blurBoxes(uint16_t* plane, int64_t width, int64_t height, int64_t reach, uint8_t* scratch) {
    plain::boxBlur(plane, width, height, reach, scratch);
}

#else

inline constexpr hn::RebindToSigned<decltype(d16)> dShort;
using Shorts = hn::Vec<decltype(dShort)>;

constexpr int64_t kWide = hn::MaxLanes(d16);

// Columns of a strip: a cache line's worth.
constexpr int64_t kStripColumns = 32;
// Rows of one: the strip of a long row stays in the nearest cache, or in few vectors.
constexpr int64_t kStripRows = std::max<int64_t>(16, kWide);

// Cells lie in strips less 32768, so that they are signed.
HWY_INLINE Shorts toStrip(V16 cells) {
    return hn::BitCast(dShort, hn::Xor(cells, hn::Set(d16, 0x8000)));
}
HWY_INLINE V16 fromStrip(Shorts cells) {
    return hn::Xor(hn::BitCast(d16, cells), hn::Set(d16, 0x8000));
}

HWY_INLINE Shorts loadShorts(const int16_t* cells) {
    return hn::LoadU(dShort, cells);
}

// --- running means ---

// The window's sum times the factor of the mean, plus a half, less 2^31: the upper half is the
// mean less 32768.
class RunningMeans {
public:
    // The window begins at `cells`, its vectors lie `step` apart.
    HWY_INLINE RunningMeans(const int16_t* cells, int64_t step, int64_t count) {
        const auto factor = static_cast<uint32_t>(65536 / count);
#if HWY_ARCH_X86
        factors = hn::BitCast(dShort, hn::Set(d32, (0u - factor) << 16 | factor));
#else
        factors = hn::Set(dShort, static_cast<int16_t>(factor));
#endif
        // Every cell lacks 32768.
        const uint32_t rest = (static_cast<uint32_t>(count) * factor + 1) * 32768u - 0x80000000u;
        a = b = hn::Set(dWhole, static_cast<int32_t>(rest));
        for (int64_t i = 0; i < count; ++i) move(loadShorts(cells + i * step), hn::Zero(dShort));
    }

    HWY_INLINE Shorts means() const {
        const Wholes meansA = hn::ShiftRight<16>(a), meansB = hn::ShiftRight<16>(b);
#if HWY_ARCH_X86
        return hn::ReorderDemote2To(dShort, meansA, meansB);
#else
        constexpr hn::Half<decltype(dShort)> dHalf;
        return hn::Combine(dShort, hn::DemoteTo(dHalf, meansB), hn::DemoteTo(dHalf, meansA));
#endif
    }

    // Which lanes go to which sum depends on how products are added: neighbours on x86, halves
    // elsewhere.
    HWY_INLINE void move(Shorts entering, Shorts leaving) {
#if HWY_ARCH_X86
        const Shorts lower = hn::InterleaveLower(dShort, entering, leaving);
        const Shorts upper = hn::InterleaveUpper(dShort, entering, leaving);
        Wholes none = hn::Zero(dWhole);
        a = hn::ReorderWidenMulAccumulate(dWhole, lower, factors, a, none);
        b = hn::ReorderWidenMulAccumulate(dWhole, upper, factors, b, none);
#else
        a = hn::ReorderWidenMulAccumulate(dWhole, entering, factors, a, b);
        a = hn::ReorderWidenMulAccumulate(dWhole, leaving, hn::Neg(factors), a, b);
#endif
    }

private:
    Shorts factors;  // of what enters; on x86 in turns with those of what leaves
    Wholes a;
    Wholes b;
};

// Means of a strip of `length` steps of `lanes` cells, in place.
void meanStrip(int16_t* strip, int64_t lanes, int64_t length, int64_t radius) {
    const int64_t count = 2 * radius + 1;
    for (int64_t lane = 0; lane < lanes; lane += kWide) {
        int16_t* out = strip + lane;
        const int16_t* entering = out + count * lanes;
        RunningMeans means(out, lanes, count);
        for (int64_t i = count; i < length; ++i, out += lanes, entering += lanes) {
            const Shorts leaving = loadShorts(out);
            hn::StoreU(means.means(), dShort, out);
            means.move(loadShorts(entering), leaving);
        }
        hn::StoreU(means.means(), dShort, out);
    }
}

void blurStrip(int16_t* strip, int64_t lanes, int64_t length, int64_t reach) {
    for (int mean = 0; mean < 3; ++mean) {
        const int64_t radius = boxRadius(reach, mean);
        if (radius == 0 || length < 2 * radius + 1) return;
        meanStrip(strip, lanes, length, radius);
        length -= 2 * radius;
    }
}

// --- strips ---

void blurColumns(uint16_t* plane, int64_t width, int64_t height, int64_t reach, int16_t* strip) {
    for (int64_t x = 0; x < width; x += kStripColumns) {
        for (int64_t y = 0; y < height; ++y) {
            for (int64_t i = 0; i < kStripColumns; i += kWide) {
                hn::StoreU(toStrip(hn::LoadU(d16, plane + y * width + x + i)), dShort,
                           strip + y * kStripColumns + i);
            }
        }
        blurStrip(strip, kStripColumns, height, reach);
        for (int64_t y = 0; y < height - 2 * reach; ++y) {
            for (int64_t i = 0; i < kStripColumns; i += kWide) {
                hn::StoreU(fromStrip(loadShorts(strip + y * kStripColumns + i)), d16,
                           plane + y * width + x + i);
            }
        }
    }
}

// Eight columns of kWide rows, or eight steps of as many lanes: in blocks of eight rows.
HWY_INLINE void loadEights(const uint16_t* const* rows, int64_t x, V16 (&v)[8]) {
    for (int64_t i = 0; i < 8; ++i) {
        v[i] = lanes16(loadBlocks([&](int64_t block) HWY_ATTR {
            return reinterpret_cast<const uint8_t*>(rows[i + 8 * block] + x);
        }));
    }
}

HWY_INLINE void storeTurned(const V16 (&v)[8], uint16_t* const* rows, int64_t x) {
    for (int64_t i = 0; i < 8; ++i) {
        forEachBlockOf(bytes(v[i]), [&](int64_t block, hn::Vec<decltype(dBlock)> part) HWY_ATTR {
            hn::StoreU(part, dBlock, reinterpret_cast<uint8_t*>(rows[i + 8 * block] + x));
        });
    }
}

// The last row stands in for those that a strip has more than the plane.
void blurRows(uint16_t* plane, int64_t width, int64_t height, int64_t reach, int16_t* strip) {
    for (int64_t y = 0; y < height; y += kStripRows) {
        uint16_t* rows[kStripRows];
        for (int64_t i = 0; i < kStripRows; ++i) {
            rows[i] = plane + std::min(y + i, height - 1) * width;
        }
        for (int64_t i = 0; i < kStripRows; i += kWide) {
            for (int64_t x = 0; x < width; x += 8) {
                V16 v[8];
                loadEights(rows + i, x, v);
                transpose(d16, v);
                for (int64_t j = 0; j < 8; ++j) {
                    hn::StoreU(toStrip(v[j]), dShort, strip + (x + j) * kStripRows + i);
                }
            }
        }
        blurStrip(strip, kStripRows, width, reach);
        for (int64_t i = 0; i < kStripRows; i += kWide) {
            for (int64_t x = 0; x < width; x += 8) {
                V16 v[8];
                for (int64_t j = 0; j < 8; ++j) {
                    v[j] = fromStrip(loadShorts(strip + (x + j) * kStripRows + i));
                }
                transpose(d16, v);
                storeTurned(v, rows + i, x);
            }
        }
    }
}

void blurBoxes(uint16_t* plane, int64_t width, int64_t height, int64_t reach, uint8_t* scratch) {
    if (reach < 1 || height < 1) return;
    auto* strip = reinterpret_cast<int16_t*>(scratch);
    blurColumns(plane, width, height, reach, strip);
    blurRows(plane, width, height - 2 * reach, reach, strip);
}

#endif  // GX_SIMD_IS_PLAIN

}  // namespace GxFontEffect::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace GxFontEffect::kernels {

GX_EXPORT(blurBoxes);

void boxBlur(uint16_t* plane, int64_t width, int64_t height, int64_t reach, uint8_t* scratch) {
    GX_DISPATCH(blurBoxes)(plane, width, height, reach, scratch);
}

}  // namespace GxFontEffect::kernels
#endif  // HWY_ONCE
