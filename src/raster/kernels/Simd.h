// Highway, with the instruction sets that the kernels are built for. Kernel sources include this
// before hwy/foreach_target.h.
#pragma once

// SSE4 and AVX2 on x86, NEON on 64-bit ARM, and the plain form for everything else. Wider sets
// follow when the tests can run them everywhere; SSSE3 alone is too rare to carry.
#define HWY_DISABLED_TARGETS \
    (HWY_SSSE3 | HWY_AVX3 | HWY_AVX3_DL | HWY_SVE | HWY_SVE2 | HWY_SVE_256 | HWY_SVE2_128)

#include <hwy/detect_targets.h>

// The fallback target, on which vectors have no use: its kernels are the plain loops.
#define GX_SIMD_IS_PLAIN (HWY_TARGET == HWY_SCALAR || HWY_TARGET == HWY_EMU128)
