#include "raster/kernels/SimdTargets.h"

#include <array>
#include <atomic>

#include "raster/kernels/Simd.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "raster/kernels/SimdTargets.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace GxFontEffect::kernels::HWY_NAMESPACE {

int64_t ownTarget() {
    return HWY_TARGET;
}

}  // namespace GxFontEffect::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace GxFontEffect::kernels {

GX_EXPORT(ownTarget);

namespace {

std::string nameOf(int64_t target) {
    const bool plain = target == HWY_SCALAR || target == HWY_EMU128;
    return plain ? "plain" : hwy::TargetName(target);
}

// As the tables of GX_EXPORT.
constexpr std::array<int64_t, 4> kForms = {HWY_AVX3, HWY_AVX2, HWY_SSE4, HWY_STATIC_TARGET};
constexpr int kStaticForm = kForms.size() - 1;

// What Highway compiles these sets with. Half floats came before AVX2 to every processor.
bool hasMachine([[maybe_unused]] int64_t target) {
#if HWY_ARCH_X86
    __builtin_cpu_init();
    const bool sse4 = __builtin_cpu_supports("ssse3") && __builtin_cpu_supports("sse4.1") &&
                      __builtin_cpu_supports("sse4.2") && __builtin_cpu_supports("pclmul") &&
                      __builtin_cpu_supports("aes");
    if (target == HWY_SSE4) return sse4;
    const bool avx2 = sse4 && __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma") &&
                      __builtin_cpu_supports("bmi") && __builtin_cpu_supports("bmi2");
    if (target == HWY_AVX2) return avx2;
    return avx2 && __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512vl") &&
           __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512bw");
#else
    return false;
#endif
}

bool isUsable(int form) {
    const int64_t target = kForms[form];
    if (form == kStaticForm) return true;
    return target != HWY_STATIC_TARGET && (target & HWY_TARGETS) != 0 && hasMachine(target);
}

constexpr int kNone = -1;
std::atomic<int> forcedForm = kNone;
std::atomic<int> chosenForm = kNone;

int bestForm() {
    int form = 0;
    while (!isUsable(form)) ++form;
    return form;
}

}  // namespace

int simdForm() {
    int form = chosenForm.load(std::memory_order_relaxed);
    if (form != kNone) return form;
    // Threads that come here together find the same.
    form = forcedForm != kNone ? forcedForm.load() : bestForm();
    chosenForm.store(form, std::memory_order_relaxed);
    return form;
}

std::vector<std::string> simdTargetNames() {
    std::vector<std::string> names;
    for (int form = 0; form <= kStaticForm; ++form) {
        if (isUsable(form)) names.push_back(nameOf(kForms[form]));
    }
    return names;
}

std::string simdTargetName() {
    return nameOf(GX_DISPATCH(ownTarget)());
}

void forceSimdTarget(const std::string& name) {
    forcedForm = kNone;
    for (int form = 0; form <= kStaticForm; ++form) {
        if (isUsable(form) && nameOf(kForms[form]) == name) forcedForm = form;
    }
    chosenForm = kNone;
}

bool hasDispatchedSimd() {
    constexpr bool hasChoice = (HWY_TARGETS & (HWY_TARGETS - 1)) != 0;
    return !hasChoice || chosenForm != kNone;
}

}  // namespace GxFontEffect::kernels
#endif  // HWY_ONCE
