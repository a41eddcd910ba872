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
inline constexpr hn::RebindToFloat<decltype(d32)> dNumber;
using Numbers = hn::Vec<decltype(dNumber)>;
inline constexpr hn::RebindToSigned<decltype(d32)> dWhole;
using Wholes = hn::Vec<decltype(dWhole)>;

inline constexpr size_t kBlockPixels = hn::MaxLanes(d8);
inline constexpr size_t kVectorPixels = kBlockPixels / 4;
static_assert(kVectorPixels == 4 || kVectorPixels == 8 || kVectorPixels == 16);

// --- pixels ---

HWY_INLINE V8 loadPixels(const Rgba* p) {
    return hn::LoadU(d8, reinterpret_cast<const uint8_t*>(p));
}

// A number for each pixel.
HWY_INLINE Numbers loadPixels(const float* p) {
    return hn::LoadU(dNumber, p);
}

// The mask bytes of a vector of pixels.
struct MaskBytes {
    uint8_t bytes[kVectorPixels];
    HWY_INLINE uint8_t operator[](size_t i) const { return bytes[i]; }
};
HWY_INLINE MaskBytes loadPixels(const uint8_t* p) {
    MaskBytes mask;
    std::memcpy(mask.bytes, p, sizeof(mask.bytes));
    return mask;
}

HWY_INLINE void storePixels(V8 v, Rgba* p) {
    hn::StoreU(v, d8, reinterpret_cast<uint8_t*>(p));
}

// Truncates floats that fit 32 bits. Highway's own conversion has more steps, for those that do
// not.
template <class V>
HWY_INLINE auto truncated(V v) {
    const hn::RebindToSigned<hn::DFromV<V>> d;
#if HWY_ARCH_X86
    if constexpr (sizeof(v.raw) == 64) {
        return hn::Vec<decltype(d)>{_mm512_cvttps_epi32(v.raw)};
    } else if constexpr (sizeof(v.raw) == 32) {
        return hn::Vec<decltype(d)>{_mm256_cvttps_epi32(v.raw)};
    } else {
        return hn::Vec<decltype(d)>{_mm_cvttps_epi32(v.raw)};
    }
#else
    return hn::ConvertTo(d, v);
#endif
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

HWY_INLINE void storeBlock(V8 pixels, Rgba* out) {
    for (size_t i = 0; i < 4; ++i) storePixels(pixels, out + i * kVectorPixels);
}

// Of the four vectors of a block.
HWY_INLINE V8 anyBits(const Rgba* block) {
    return hn::Or(
        hn::Or(loadPixels(block), loadPixels(block + kVectorPixels)),
        hn::Or(loadPixels(block + 2 * kVectorPixels), loadPixels(block + 3 * kVectorPixels)));
}
HWY_INLINE V8 commonBits(const Rgba* block) {
    return hn::And(
        hn::And(loadPixels(block), loadPixels(block + kVectorPixels)),
        hn::And(loadPixels(block + 2 * kVectorPixels), loadPixels(block + 3 * kVectorPixels)));
}

// Rearranges the bytes of each pixel: byte i of the result is byte places[i] of the pixel, or 0.
struct PixelShuffle {
    static constexpr uint8_t kZero = 0x80;
    alignas(16) uint8_t table[16];

    constexpr PixelShuffle(uint8_t p0, uint8_t p1, uint8_t p2, uint8_t p3) : table() {
        const uint8_t places[4] = {p0, p1, p2, p3};
        for (uint8_t i = 0; i < 16; ++i) {
            const uint8_t place = places[i % 4];
            table[i] = place == kZero ? kZero : static_cast<uint8_t>(place + i / 4 * 4);
        }
    }
    HWY_INLINE V8 operator()(V8 pixels) const {
        return hn::TableLookupBytesOr0(pixels, hn::LoadDup128(d8, table));
    }
};

// --- scaling ---

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

// Each pixel's alpha as a factor for both of its lanes. `place` is the byte that holds it.
template <uint8_t place = 3>
HWY_INLINE V16 alphaFactor(V8 pixels) {
    static constexpr PixelShuffle kSpread(PixelShuffle::kZero, place, PixelShuffle::kZero, place);
    return lanes16(kSpread(pixels));
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

// Mask bytes as factors for both lanes of their pixels.
HWY_INLINE V16 maskFactor(const uint8_t* mask) {
    static constexpr PixelShuffle kSpread(PixelShuffle::kZero, 0, PixelShuffle::kZero, 0);
    const hn::Rebind<uint8_t, decltype(d32)> dMask;
    return lanes16(kSpread(hn::BitCast(d8, hn::PromoteTo(d32, hn::LoadU(dMask, mask)))));
}

// --- destination over source ---

// `d` with `s`, already scaled by its coverage, put under it. `emptySource` is all ones where `s`
// has no coverage. Where the destination is transparent and the source is not, the old colour bytes
// go.
HWY_INLINE V8 dstOver(V8 d, Channels s, V16 emptySource) {
    const V16 taken = hn::Or(alphaFactor(d), emptySource);
    // The inverse of all ones is 0x00FF, which scales every channel to 0.
    return hn::SaturatedAdd(clearWhere(isZero(taken), d), join(scale(s, inverse(taken))));
}

// The same for pixels `s` that a mask switches on or off: factors of 255 or 0.
HWY_INLINE V8 dstOver(V8 d, V8 s, V16 factor) {
    return dstOver(d, split(s), isZero(hn::And(alphaFactor(s), factor)));
}
HWY_INLINE V8 dstOver(V8 d, V8 s) {
    return dstOver(d, split(s), isZero(alphaFactor(s)));
}

// Weights of a mask that switches on or off.
HWY_INLINE V8 onOrOff(V8 mask) {
    return hn::VecFromMask(d8, hn::Ne(mask, hn::Zero(d8)));
}

// --- loops ---

// Up to a block of elements, filled up with zeros.
template <typename T>
struct BlockCopy {
    alignas(64) T elements[kBlockPixels] = {};
    BlockCopy(const T* from, size_t count) { std::memcpy(elements, from, count * sizeof(T)); }
};

// Calls block(out, in...) for each block of a row; what is left goes through copies, so that
// nothing past the row is touched. Blocks for which block.isIdle(out, in...) holds, where there is
// such a member, stay as they are.
template <class Block, typename Out, typename... In>
HWY_INLINE void forEachBlock(size_t count, const Block& block, Out* out, const In*... in) {
    const size_t rest = count % kBlockPixels;
    const size_t whole = count - rest;
    for (size_t x = 0; x < whole; x += kBlockPixels) {
        if constexpr (requires { block.isIdle(out, in...); }) {
            if (block.isIdle(out + x, (in + x)...)) continue;
        }
        block(out + x, (in + x)...);
    }
    if (rest == 0) return;
    BlockCopy<Out> copy(out + whole, rest);
    block(copy.elements, BlockCopy<In>(in + whole, rest).elements...);
    std::memcpy(out + whole, copy.elements, rest * sizeof(Out));
}

// --- operations through a mask ---
//
// Much of a text's mask is empty or full, in stretches too short for the processor to foresee: a
// branch per vector costs more than it skips. So vectors are sorted first, by the mask alone, and
// each kind is worked off in a loop of its own.
//
// An operation has
//   weights(mask)            a vector of mask bytes as they count: 0 leaves a pixel as it is
//   operator()(d, factor, in...)   pixels from pixels, their weights as factors, and further planes
//   full(in...)              optional: the same where all weights are 255
//   onto(d, in...)           the same where pixels matter even then

// Sets of the vectors of pixels in a stretch of mask, one bit each.
struct SortedVectors {
    uint64_t full = 0;   // all weights 255
    uint64_t empty = 0;  // all weights 0

    // Takes in the four vectors whose weights are `w`, as numbers `first` to `first` + 3.
    HWY_INLINE void add(V8 w, size_t first) {
        const auto lanes = hn::BitCast(dLane, w);
        full |= bits(hn::Eq(lanes, hn::Set(dLane, static_cast<Lane>(~Lane{0})))) << first;
        empty |= bits(hn::Eq(lanes, hn::Zero(dLane))) << first;
    }

private:
    // The weights of a vector of pixels, or half of them where lanes are not that wide.
    using Lane = hwy::UnsignedFromSize<HWY_MIN(kVectorPixels, 8)>;
    static constexpr hn::Repartition<Lane, decltype(d8)> dLane{};

    template <class M>
    static HWY_INLINE uint64_t bits(M mask) {
        uint8_t stored[8];
        hn::StoreMaskBits(dLane, mask, stored);
        const uint32_t lanes = stored[0];
#if HWY_TARGET == HWY_AVX3
        return _pext_u32(lanes & lanes >> 1, 0x55);
#else
        return lanes;
#endif
    }
};

constexpr size_t kStretchVectors = 64;
constexpr size_t kStretchPixels = kStretchVectors * kVectorPixels;

// Fills `weights`, and zeros up to a whole block behind them. `count` is at most kStretchPixels.
template <class Operation>
HWY_INLINE SortedVectors sortStretch(const Operation& operation, const uint8_t* mask, size_t count,
                                     uint8_t* weights) {
    SortedVectors sorted;
    size_t x = 0;
    for (; x + kBlockPixels <= count; x += kBlockPixels) {
        const V8 w = operation.weights(hn::LoadU(d8, mask + x));
        hn::Store(w, d8, weights + x);
        sorted.add(w, x / kVectorPixels);
    }
    if (x < count) {
        const BlockCopy<uint8_t> rest(mask + x, count - x);
        hn::Store(operation.weights(hn::Load(d8, rest.elements)), d8, weights + x);
        std::memset(weights + count, 0, x + kBlockPixels - count);
        sorted.add(hn::Load(d8, weights + x), x / kVectorPixels);
    }
    return sorted;
}

// Applies the operation to up to kStretchPixels pixels.
template <class Operation, typename... In>
HWY_INLINE void blendStretch(size_t count, const Operation& operation, Rgba* out,
                             const uint8_t* mask, const In*... in) {
    constexpr bool kReplaces = requires {
        operation.full(loadPixels(in)...);
    };
    constexpr bool kHasFull = kReplaces || requires {
        operation.onto(loadPixels(out), loadPixels(in)...);
    };
    alignas(64) uint8_t weights[kStretchPixels];
    const SortedVectors sorted = sortStretch(operation, mask, count, weights);
    const auto blend = [&](size_t x) HWY_ATTR {
        storePixels(operation(loadPixels(out + x), maskFactor(weights + x), loadPixels(in + x)...),
                    out + x);
    };
    const size_t wholeVectors = count / kVectorPixels;
    const uint64_t inside = wholeVectors == 64 ? ~uint64_t{0} : (uint64_t{1} << wholeVectors) - 1;
    uint64_t full = kHasFull ? sorted.full & inside : 0;
    uint64_t mixed = ~sorted.empty & inside & ~full;

    if (const size_t rest = count % kVectorPixels) {
        const size_t x = count - rest;
        BlockCopy<Rgba> copy(out + x, rest);
        storePixels(operation(loadPixels(copy.elements), maskFactor(weights + x),
                              loadPixels(BlockCopy<In>(in + x, rest).elements)...),
                    copy.elements);
        std::memcpy(out + x, copy.elements, rest * sizeof(Rgba));
    }
    if (mixed == ~uint64_t{0}) {
        for (size_t x = 0; x < kStretchPixels; x += kVectorPixels) blend(x);
        return;
    }
    for (; mixed != 0; mixed &= mixed - 1) {
        blend(hwy::Num0BitsBelowLS1Bit_Nonzero64(mixed) * kVectorPixels);
    }
    if constexpr (kHasFull) {
        const auto replace = [&](size_t x) HWY_ATTR {
            if constexpr (kReplaces) {
                storePixels(operation.full(loadPixels(in + x)...), out + x);
            } else {
                storePixels(operation.onto(loadPixels(out + x), loadPixels(in + x)...), out + x);
            }
        };
        uint64_t fours = full & full >> 1;
        fours &= fours >> 2 & 0x1111111111111111u;
        full ^= fours * 0xF;
        for (; fours != 0; fours &= fours - 1) {
            const size_t x = hwy::Num0BitsBelowLS1Bit_Nonzero64(fours) * kVectorPixels;
            for (size_t i = 0; i < 4; ++i) replace(x + i * kVectorPixels);
        }
        for (; full != 0; full &= full - 1) {
            replace(hwy::Num0BitsBelowLS1Bit_Nonzero64(full) * kVectorPixels);
        }
    }
}

template <class Operation, typename... In>
HWY_INLINE void blendRow(size_t count, const Operation& operation, Rgba* out, const uint8_t* mask,
                         const In*... in) {
    for (size_t x = 0; x < count; x += kStretchPixels) {
        blendStretch(HWY_MIN(count - x, kStretchPixels), operation, out + x, mask + x, (in + x)...);
    }
}

template <class Operation>
HWY_INLINE void blendRows(const BlendArea& area, const Operation& operation) {
    const BlendArea rows = area.joined(sizeof(Rgba), 1);
    for (ptrdiff_t y = 0; y < static_cast<ptrdiff_t>(rows.height); ++y) {
        blendRow(rows.width, operation,
                 reinterpret_cast<Rgba*>(rows.destination + y * rows.destinationStride),
                 rows.source + y * rows.sourceStride);
    }
}

// --- operations on whole blocks ---

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
