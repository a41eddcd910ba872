// Roots and quotients of single precision that are rounded correctly on every instruction set.
// Included once per target.
#if defined(GX_EXACT_FLOAT_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef GX_EXACT_FLOAT_INL_H
#undef GX_EXACT_FLOAT_INL_H
#else
#define GX_EXACT_FLOAT_INL_H
#endif

#include <hwy/highway.h>

#include <cmath>

#include "raster/kernels/PixelVector-inl.h"

#if !GX_SIMD_IS_PLAIN

HWY_BEFORE_NAMESPACE();
namespace GxFontEffect::kernels::HWY_NAMESPACE {

// 32-bit ARM has only estimates for vectors; its scalar unit is exact.
#if HWY_ARCH_ARM_V7
inline constexpr bool kVectorsAreExact = false;
#else
inline constexpr bool kVectorsAreExact = true;
#endif

HWY_INLINE Numbers exactRoot(Numbers v) {
    if constexpr (kVectorsAreExact) {
        return hn::Sqrt(v);
    } else {
        float lanes[hn::MaxLanes(dNumber)];
        hn::StoreU(v, dNumber, lanes);
        for (float& lane : lanes) lane = std::sqrt(lane);
        return hn::LoadU(dNumber, lanes);
    }
}

HWY_INLINE Numbers exactQuotient(Numbers dividend, Numbers divisor) {
    if constexpr (kVectorsAreExact) {
        return hn::Div(dividend, divisor);
    } else {
        float lanes[hn::MaxLanes(dNumber)];
        float by[hn::MaxLanes(dNumber)];
        hn::StoreU(dividend, dNumber, lanes);
        hn::StoreU(divisor, dNumber, by);
        for (size_t i = 0; i < hn::MaxLanes(dNumber); ++i) lanes[i] /= by[i];
        return hn::LoadU(dNumber, lanes);
    }
}

}  // namespace GxFontEffect::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // !GX_SIMD_IS_PLAIN
#endif  // per target
