// Vectors of 32-bit pixels and of mask bytes, for the kernel sources: the steps that the formulas
// are made of, and the loops that cut rows into whole blocks. Included once per target.
//
// A block is as many pixels as a vector has bytes: one vector of mask bytes, four of pixels.
#if defined(GX_PIXEL_VECTOR_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef GX_PIXEL_VECTOR_INL_H
#undef GX_PIXEL_VECTOR_INL_H
#else
#define GX_PIXEL_VECTOR_INL_H
#endif

#include <hwy/highway.h>

#include <cstdint>
#include <cstring>

#include "raster/kernels/BlendRows.h"

#if !GX_SIMD_IS_PLAIN

HWY_BEFORE_NAMESPACE();
namespace GxFontEffect::kernels::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

inline constexpr hn::ScalableTag<uint8_t> d8;
inline constexpr hn::ScalableTag<uint16_t> d16;
inline constexpr hn::ScalableTag<uint32_t> d32;
using V8 = hn::Vec<decltype(d8)>;
using V16 = hn::Vec<decltype(d16)>;
using V32 = hn::Vec<decltype(d32)>;

inline constexpr size_t kBlockPixels = hn::MaxLanes(d8);
inline constexpr size_t kVectorPixels = kBlockPixels / 4;
static_assert(kVectorPixels == 4 || kVectorPixels == 8);

// --- pixels
// -------------------------------------------------------------------------------------------------

HWY_INLINE V8 loadPixels(const Rgba* p) {
    return hn::LoadU(d8, reinterpret_cast<const uint8_t*>(p));
}

HWY_INLINE void storePixels(V8 v, Rgba* p) {
    hn::StoreU(v, d8, reinterpret_cast<uint8_t*>(p));
}

HWY_INLINE V8 bytes(V16 v) {
    return hn::BitCast(d8, v);
}

HWY_INLINE V16 lanes16(V8 v) {
    return hn::BitCast(d16, v);
}

// `a` where the 16-bit lanes of `condition` are all ones is cleared, elsewhere kept.
HWY_INLINE V8 clearWhere(V16 condition, V8 a) {
    return hn::AndNot(bytes(condition), a);
}

HWY_INLINE V16 isZero(V16 v) {
    return hn::VecFromMask(d16, hn::Eq(v, hn::Zero(d16)));
}

HWY_INLINE bool allBytesAre(V8 v, uint8_t value) {
    return hn::AllTrue(d8, hn::Eq(v, hn::Set(d8, value)));
}

HWY_INLINE V8 onlyAlpha(V8 pixels) {
    return hn::And(pixels, hn::BitCast(d8, hn::Set(d32, 0xFF000000u)));
}

HWY_INLINE bool allTransparent(V8 pixels) {
    return allBytesAre(onlyAlpha(pixels), 0);
}

HWY_INLINE bool allOpaque(V8 pixels) {
    return allBytesAre(hn::Or(pixels, hn::BitCast(d8, hn::Set(d32, 0x00FFFFFFu))), 255);
}

HWY_INLINE V8 shuffled(V8 pixels, const uint8_t (&order)[16]) {
    return hn::TableLookupBytes(pixels, hn::LoadDup128(d8, order));
}

inline constexpr uint8_t kSwapRedBlue[16] = {2, 1, 0, 3, 6, 5, 4, 7, 10, 9, 8, 11, 14, 13, 12, 15};
inline constexpr uint8_t kArgbToRgba[16] = {1, 2, 3, 0, 5, 6, 7, 4, 9, 10, 11, 8, 13, 14, 15, 12};

// --- scaling
// ------------------------------------------------------------------------------------------------

// The channels of a vector of pixels in 16-bit lanes, each pixel's two side by side.
struct Channels {
    V16 rb;
    V16 ga;
};

HWY_INLINE Channels split(V8 pixels) {
    const V16 v = lanes16(pixels);
    return {hn::And(v, hn::Set(d16, 0x00FF)), hn::ShiftRight<8>(v)};
}

// Lanes are at most 255.
HWY_INLINE V8 join(Channels c) {
    return bytes(hn::Or(c.rb, hn::ShiftLeft<8>(c.ga)));
}

// Factors are kept in the high bytes of 16-bit lanes, so that the high half of a product with them
// is the product shifted right by 8.

// (c + 1) x k >> 8. With c up to 510 the result is at most 509: nothing overflows.
HWY_INLINE V16 scale(V16 c, V16 factor) {
    return hn::MulHigh(hn::Add(c, hn::Set(d16, 1)), factor);
}

HWY_INLINE Channels scale(Channels c, V16 factor) {
    return {scale(c.rb, factor), scale(c.ga, factor)};
}

// Each pixel's alpha as a factor for both of its lanes.
HWY_INLINE V16 alphaFactor(V8 pixels) {
    alignas(16) static constexpr uint8_t kAlpha[16] = {0x80, 3,  0x80, 3,  0x80, 7,  0x80, 7,
                                                       0x80, 11, 0x80, 11, 0x80, 15, 0x80, 15};
    return lanes16(hn::TableLookupBytesOr0(pixels, hn::LoadDup128(d8, kAlpha)));
}

// 255 - k for a factor k.
HWY_INLINE V16 inverse(V16 factor) {
    return hn::Xor(factor, hn::Set(d16, 0xFF00));
}

// A colour as pixels, and with 1 added to each channel so that one product scales it.
struct Tint {
    V8 pixels;
    V16 rbPlusOne;
    V16 gaPlusOne;

    explicit HWY_INLINE Tint(Rgba c)
        : pixels(hn::BitCast(d8, hn::Set(d32, uint32_t{c.r} | uint32_t{c.g} << 8 |
                                                  uint32_t{c.b} << 16 | uint32_t{c.a} << 24))) {
        const Channels channels = split(pixels);
        rbPlusOne = hn::Add(channels.rb, hn::Set(d16, 1));
        gaPlusOne = hn::Add(channels.ga, hn::Set(d16, 1));
    }
    HWY_INLINE Channels scaled(V16 factor) const {
        return {hn::MulHigh(rbPlusOne, factor), hn::MulHigh(gaPlusOne, factor)};
    }
};

// A block of mask bytes, to be spread over the channels of its pixels.
class MaskBlock {
public:
    explicit HWY_INLINE MaskBlock(V8 mask) : groups_(mask) {
        if constexpr (kVectorPixels > 4) {
            // Spreading works within 16 bytes: give each of those the four bytes of its pixels of
            // all four vectors.
            static constexpr uint32_t kOrder[8] = {0, 2, 4, 6, 1, 3, 5, 7};
            groups_ = hn::BitCast(
                d8, hn::TableLookupLanes(hn::BitCast(d32, mask), hn::SetTableIndices(d32, kOrder)));
        }
    }

    // The factors of the pixels of vector i, 0 to 3.
    HWY_INLINE V16 factor(size_t i) const {
        alignas(16) static constexpr uint8_t kSpread[4][16] = {
            {0x80, 0, 0x80, 0, 0x80, 1, 0x80, 1, 0x80, 2, 0x80, 2, 0x80, 3, 0x80, 3},
            {0x80, 4, 0x80, 4, 0x80, 5, 0x80, 5, 0x80, 6, 0x80, 6, 0x80, 7, 0x80, 7},
            {0x80, 8, 0x80, 8, 0x80, 9, 0x80, 9, 0x80, 10, 0x80, 10, 0x80, 11, 0x80, 11},
            {0x80, 12, 0x80, 12, 0x80, 13, 0x80, 13, 0x80, 14, 0x80, 14, 0x80, 15, 0x80, 15}};
        return lanes16(hn::TableLookupBytesOr0(groups_, hn::LoadDup128(d8, kSpread[i])));
    }

private:
    V8 groups_;
};

// --- loops
// --------------------------------------------------------------------------------------------------

// Up to a block of elements, filled up with zeros.
template <typename T>
struct BlockCopy {
    alignas(64) T elements[kBlockPixels] = {};
    BlockCopy(const T* from, size_t count) { std::memcpy(elements, from, count * sizeof(T)); }
};

// Calls block(out, in...) for each block of a row; the rest goes through copies, so that nothing
// past the row is touched.
template <class Block, typename Out, typename... In>
HWY_INLINE void forEachBlock(size_t count, const Block& block, Out* out, const In*... in) {
    size_t x = 0;
    for (; x + kBlockPixels <= count; x += kBlockPixels) block(out + x, (in + x)...);
    if (x == count) return;
    BlockCopy<Out> rest(out + x, count - x);
    block(rest.elements, BlockCopy<In>(in + x, count - x).elements...);
    std::memcpy(out + x, rest.elements, (count - x) * sizeof(Out));
}

template <typename Out, typename In, class Block>
HWY_INLINE void forEachBlockOf(const BlendArea& area, const Block& block) {
    const BlendArea rows = area.joined(sizeof(Out), sizeof(In));
    for (ptrdiff_t y = 0; y < static_cast<ptrdiff_t>(rows.height); ++y) {
        forEachBlock(rows.width, block,
                     reinterpret_cast<Out*>(rows.destination + y * rows.destinationStride),
                     reinterpret_cast<const In*>(rows.source + y * rows.sourceStride));
    }
}

}  // namespace GxFontEffect::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // !GX_SIMD_IS_PLAIN
#endif  // include guard
