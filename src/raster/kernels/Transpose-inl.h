// Blocks of lanes turned within vectors. Included once per target.
#if defined(GX_TRANSPOSE_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef GX_TRANSPOSE_INL_H
#undef GX_TRANSPOSE_INL_H
#else
#define GX_TRANSPOSE_INL_H
#endif

#include <hwy/highway.h>

#include <cstring>

#include "raster/kernels/PixelVector-inl.h"

#if !GX_SIMD_IS_PLAIN

HWY_BEFORE_NAMESPACE();
namespace GxFontEffect::kernels::HWY_NAMESPACE {

// Bytes of a block: transposing does not go beyond.
constexpr int64_t kBlock = 16;
inline constexpr hn::CappedTag<uint8_t, kBlock> dBlock;

// A vector of the blocks at(0), at(1), ...
template <class At>
HWY_INLINE V8 loadBlocks(const At& at) {
    const auto load = [&](int64_t block) HWY_ATTR { return hn::LoadU(dBlock, at(block)); };
    if constexpr (hn::MaxLanes(d8) == kBlock) {
        return load(0);
    } else if constexpr (hn::MaxLanes(d8) == 2 * kBlock) {
        return hn::Combine(d8, load(1), load(0));
    } else {
        constexpr hn::Half<decltype(d8)> dHalf;
        return hn::Combine(d8, hn::Combine(dHalf, load(3), load(2)),
                           hn::Combine(dHalf, load(1), load(0)));
    }
}

// Calls store(block, bytes) for each of them.
template <class V, class Store>
HWY_INLINE void forEachBlockOf(V v, const Store& store, int64_t first = 0) {
    constexpr hn::DFromV<V> d;
    if constexpr (hn::MaxLanes(d) == kBlock) {
        store(first, v);
    } else {
        constexpr hn::Half<decltype(d)> dHalf;
        forEachBlockOf(hn::LowerHalf(dHalf, v), store, first);
        forEachBlockOf(hn::UpperHalf(dHalf, v), store,
                       first + static_cast<int64_t>(hn::MaxLanes(dHalf)) / kBlock);
    }
}

// As many rows as 16 bytes have lanes, turned: 16 of bytes, 8 of 16-bit lanes. Longer vectors have
// several such blocks side by side.
template <class D, int kRows>
HWY_INLINE void transpose(D d, hn::Vec<D> (&v)[kRows]) {
    static_assert(kRows == kBlock / sizeof(hn::TFromD<D>));
    for (int stage = 1; stage < kRows; stage *= 2) {
        hn::Vec<D> turned[kRows];
        for (int i = 0; i < kRows / 2; ++i) {
            turned[2 * i] = hn::InterleaveLower(d, v[i], v[i + kRows / 2]);
            turned[2 * i + 1] = hn::InterleaveUpper(d, v[i], v[i + kRows / 2]);
        }
        std::memcpy(v, turned, sizeof(turned));
    }
}

}  // namespace GxFontEffect::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // !GX_SIMD_IS_PLAIN
#endif  // per target
