// Highway, with the instruction sets that the kernels are built for. Kernel sources include this
// before hwy/foreach_target.h. Only its headers are used: its library measures the clock for some
// milliseconds when a process starts, and the choice of a set is small.
#pragma once

// SSE4, AVX2 and AVX-512 on x86, NEON on ARM, and the plain form for everything else. SSSE3 alone
// is too rare to carry, and nothing here uses what AVX3_DL has more. Sources that gain nothing from
// vectors of 64 bytes define GX_WITHOUT_AVX3 first and run their AVX2 form in its place.
#ifdef GX_WITHOUT_AVX3
#define GX_UNUSED_AVX3 HWY_AVX3
#define GX_CHOOSE_AVX3 HWY_CHOOSE_AVX2
#else
#define GX_UNUSED_AVX3 0
#define GX_CHOOSE_AVX3 HWY_CHOOSE_AVX3
#endif
#define HWY_DISABLED_TARGETS \
    (HWY_SSSE3 | GX_UNUSED_AVX3 | HWY_AVX3_DL | HWY_SVE | HWY_SVE2 | HWY_SVE_256 | HWY_SVE2_128)

// Its checks would call the library.
#define HWY_IS_DEBUG_BUILD 0

#include <hwy/detect_targets.h>

namespace GxFontEffect::kernels {

// Which of the forms in a table of GX_EXPORT this machine runs.
int simdForm();

}  // namespace GxFontEffect::kernels

// The forms of a function of HWY_NAMESPACE, best first: what is chosen at run time, which only x86
// has, and last what the compiler may use anywhere. Null where a set is not built.
#define GX_EXPORT(function)                                                             \
    static decltype(&HWY_STATIC_DISPATCH(function))                                     \
        const function##Forms[] = {GX_CHOOSE_AVX3(function), HWY_CHOOSE_AVX2(function), \
                                   HWY_CHOOSE_SSE4(function), &HWY_STATIC_DISPATCH(function)}
#define GX_DISPATCH(function) (*function##Forms[simdForm()])

// The fallback target, on which vectors have no use: its kernels are the plain loops.
#define GX_SIMD_IS_PLAIN (HWY_TARGET == HWY_SCALAR || HWY_TARGET == HWY_EMU128)
