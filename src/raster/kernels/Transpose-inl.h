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

// As many rows as 16 bytes have lanes, turned: 16 of bytes, 8 of 16-bit lanes. Longer vectors have
// several such blocks side by side.
template <class D, int kRows>
HWY_INLINE void transpose(D d, hn::Vec<D> (&v)[kRows]) {
    static_assert(kRows == 16 / sizeof(hn::TFromD<D>));
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
