// The fast light of raster/kernels/ReliefLight.h: two rows of heights give a row of corners, two
// rows of corners a row of light. Level ground, which most of a plane is, takes one comparison.
#include "raster/kernels/ReliefLight.h"

#include "raster/kernels/Simd.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "raster/kernels/ReliefLight.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "raster/kernels/ExactFloat-inl.h"
#include "raster/kernels/PixelVector-inl.h"

HWY_BEFORE_NAMESPACE();
namespace GxFontEffect::kernels::HWY_NAMESPACE {

#if GX_SIMD_IS_PLAIN

void lightRelief(uint16_t* heights, int64_t width, int64_t height, const ReliefLighting& light,
                 uint8_t* scratch) {
    plain::reliefLight(heights, width, height, light, scratch);
}

void splitLight(const uint16_t* light, const uint8_t* coverage, int64_t count, ReliefPart part,
                uint8_t* highlight, uint8_t* shadow) {
    plain::reliefMasks(light, coverage, count, part, highlight, shadow);
}

#else

inline constexpr hn::RebindToSigned<decltype(d16)> dShort;
using Shorts = hn::Vec<decltype(dShort)>;
inline constexpr hn::Half<decltype(d16)> dHeights;
inline constexpr hn::Half<decltype(dShort)> dHalfShort;

constexpr int64_t kLanes = hn::MaxLanes(d16);
constexpr int64_t kHalf = kLanes / 2;
static_assert(hn::MaxLanes(dNumber) == kHalf);

HWY_INLINE Wholes loadHeights(const uint16_t* heights) {
    return hn::PromoteTo(dWhole, hn::LoadU(dHeights, heights));
}

HWY_INLINE Shorts loadShorts(const int16_t* cells) {
    return hn::LoadU(dShort, cells);
}

// The light at corners, as lightAtCorner() has it.
class Lamp {
public:
    explicit Lamp(const ReliefLighting& light)
        : steepness(hn::Set(dNumber, light.steepness)),
          lightX(hn::Set(dNumber, light.x)),
          lightY(hn::Set(dNumber, light.y)),
          square(hn::Set(dNumber, kNormalHeight * kNormalHeight)),
          upright(hn::Set(dNumber, kNormalHeight * light.z)),
          flat(hn::Set(dNumber, light.flat)),
          lit(hn::Set(dNumber, light.lit)),
          shaded(hn::Set(dNumber, light.shaded)) {}

    // kHalf corners between two rows. Past the range of 16 bits the light is their last.
    HWY_INLINE hn::Vec<decltype(dHalfShort)> at(const uint16_t* above,
                                                const uint16_t* below) const {
        const Wholes falling = hn::Sub(loadHeights(below + 1), loadHeights(above));
        const Wholes rising = hn::Sub(loadHeights(above + 1), loadHeights(below));
        const Numbers nx = sloping(hn::Add(falling, rising));
        const Numbers ny = sloping(hn::Sub(falling, rising));
        const Numbers length =
            approximateRoot(hn::Add(hn::Add(hn::Mul(nx, nx), hn::Mul(ny, ny)), square));
        const Numbers caught = hn::Add(hn::Add(hn::Mul(nx, lightX), hn::Mul(ny, lightY)), upright);
        const Numbers t = hn::Sub(exactQuotient(caught, length), flat);
        const auto isLit = hn::Gt(t, hn::Zero(dNumber));
        const Numbers v = hn::Mul(t, hn::IfThenElse(isLit, lit, shaded));
        return hn::DemoteTo(dHalfShort, truncated(v));
    }

private:
    HWY_INLINE Numbers sloping(Wholes difference) const {
        return hn::Mul(steepness, hn::ConvertTo(dNumber, difference));
    }

    // fsqrt().
    static HWY_INLINE Numbers approximateRoot(Numbers v) {
        const Wholes halved = hn::ShiftRight<1>(hn::BitCast(dWhole, v));
        const Numbers y = hn::BitCast(dNumber, hn::Sub(hn::Set(dWhole, 0x5F3759DF), halved));
        const Numbers step = hn::Mul(hn::Mul(hn::Mul(hn::Set(dNumber, 0.5f), v), y), y);
        return hn::Mul(hn::Mul(v, y), hn::Sub(hn::Set(dNumber, 1.5f), step));
    }

    const Numbers steepness;
    const Numbers lightX;
    const Numbers lightY;
    const Numbers square;
    const Numbers upright;
    const Numbers flat;
    const Numbers lit;
    const Numbers shaded;
};

HWY_INLINE bool isLevel(const uint16_t* above, const uint16_t* below) {
    const V16 first = hn::LoadU(d16, above);
    const V16 differs = hn::Or(
        hn::Or(hn::Xor(first, hn::LoadU(d16, above + 1)), hn::Xor(first, hn::LoadU(d16, below))),
        hn::Xor(first, hn::LoadU(d16, below + 1)));
    return allBytesAre(bytes(differs), 0);
}

void lightCorners(const uint16_t* above, const uint16_t* below, int64_t width, const Lamp& lamp,
                  int16_t* corners) {
    const Shorts most = hn::Set(dShort, kMostLight);
    for (int64_t x = 0; x < width; x += kLanes) {
        if (isLevel(above + x, below + x)) {
            hn::StoreU(hn::Zero(dShort), dShort, corners + x);
            continue;
        }
        const Shorts light = hn::Combine(dShort, lamp.at(above + x + kHalf, below + x + kHalf),
                                         lamp.at(above + x, below + x));
        hn::StoreU(hn::Min(hn::Max(light, hn::Neg(most)), most), dShort, corners + x);
    }
}

// (a + b + c + e + 2) >> 2 of four corners. Two of them fit 16 bits.
HWY_INLINE Shorts meanOfFour(Shorts above, Shorts aboveNext, Shorts below, Shorts belowNext) {
    const Shorts p = hn::Add(above, aboveNext), q = hn::Add(below, belowNext);
    const Shorts one = hn::Set(dShort, 1);
    const Shorts carry = hn::And(hn::And(p, q), one);
    const Shorts halves = hn::Add(hn::ShiftRight<1>(p), hn::ShiftRight<1>(q));
    return hn::ShiftRight<1>(hn::Add(hn::Add(halves, carry), one));
}

void meanCorners(const int16_t* above, const int16_t* below, int64_t width, uint16_t* light) {
    for (int64_t x = 0; x < width; x += kLanes) {
        const Shorts mean = meanOfFour(loadShorts(above + x), loadShorts(above + x + 1),
                                       loadShorts(below + x), loadShorts(below + x + 1));
        const Shorts level = hn::Add(mean, hn::Set(dShort, kLevelLight));
        hn::StoreU(hn::BitCast(d16, level), d16, light + x);
    }
}

void lightRelief(uint16_t* heights, int64_t width, int64_t height, const ReliefLighting& light,
                 uint8_t* scratch) {
    const Lamp lamp(light);
    auto* corners = reinterpret_cast<int16_t*>(scratch);
    const auto row = [&](int64_t y) { return corners + y % 2 * (width + kReliefStep); };
    for (int64_t y = 0; y + 1 < height; ++y) {
        uint16_t* cells = heights + y * width;
        lightCorners(cells, cells + width, width, lamp, row(y));
        if (y > 0) meanCorners(row(y - 1), row(y), width, cells - width);
    }
}

// --- masks ---

using HalfBytes = hn::Half<decltype(d8)>;

HWY_INLINE hn::Vec<HalfBytes> toBytes(Shorts levels) {
    return hn::DemoteTo(HalfBytes(), levels);
}

// Where coverage shows the part: all ones, else 0.
HWY_INLINE hn::Vec<HalfBytes> shownBytes(const uint8_t* coverage, ReliefPart part) {
    constexpr HalfBytes d;
    const auto ones = hn::Set(d, 255);
    if (part == ReliefPart::kAll) return ones;
    const auto hidden = hn::Set(d, part == ReliefPart::kCovered ? 0 : 255);
    return hn::Xor(hn::VecFromMask(d, hn::Eq(hn::LoadU(d, coverage), hidden)), ones);
}

void splitLight(const uint16_t* light, const uint8_t* coverage, int64_t count, ReliefPart part,
                uint8_t* highlight, uint8_t* shadow) {
    constexpr HalfBytes d;
    for (int64_t x = 0; x < count; x += kLanes) {
        const Shorts cells = hn::BitCast(dShort, hn::LoadU(d16, light + x));
        const Shorts w = hn::Sub(cells, hn::Set(dShort, kLevelLight));
        const Shorts levels = hn::ShiftRight<6>(hn::Add(hn::Abs(w), hn::Set(dShort, 32)));
        const Shorts isShade = hn::BroadcastSignBit(w);
        const auto shown = shownBytes(coverage + x, part);
        hn::StoreU(hn::And(toBytes(hn::AndNot(isShade, levels)), shown), d, highlight + x);
        hn::StoreU(hn::And(toBytes(hn::And(isShade, levels)), shown), d, shadow + x);
    }
}

#endif  // GX_SIMD_IS_PLAIN

}  // namespace GxFontEffect::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace GxFontEffect::kernels {

GX_EXPORT(lightRelief);
GX_EXPORT(splitLight);

void reliefLight(uint16_t* heights, int64_t width, int64_t height, const ReliefLighting& light,
                 uint8_t* scratch) {
    GX_DISPATCH(lightRelief)(heights, width, height, light, scratch);
}

void reliefMasks(const uint16_t* light, const uint8_t* coverage, int64_t count, ReliefPart part,
                 uint8_t* highlight, uint8_t* shadow) {
    GX_DISPATCH(splitLight)(light, coverage, count, part, highlight, shadow);
}

}  // namespace GxFontEffect::kernels
#endif  // HWY_ONCE
