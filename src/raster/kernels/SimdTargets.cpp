#include "raster/kernels/SimdTargets.h"

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

HWY_EXPORT(ownTarget);

namespace {

std::string nameOf(int64_t target) {
    const bool plain = target == HWY_SCALAR || target == HWY_EMU128;
    return plain ? "plain" : hwy::TargetName(target);
}

// Best first. What the compiler may use anywhere is there, whatever Highway finds: Debian's for
// 32-bit ARM never finds NEON.
std::vector<int64_t> usableTargets() {
    std::vector<int64_t> targets;
    int64_t rest = (hwy::SupportedTargets() & HWY_TARGETS) | HWY_STATIC_TARGET;
    for (; rest != 0; rest &= rest - 1) targets.push_back(rest & -rest);
    return targets;
}

}  // namespace

std::vector<std::string> simdTargetNames() {
    std::vector<std::string> names;
    for (const int64_t target : usableTargets()) names.push_back(nameOf(target));
    return names;
}

std::string simdTargetName() {
    return nameOf(HWY_DYNAMIC_DISPATCH(ownTarget)());
}

void forceSimdTarget(const std::string& name) {
    hwy::SetSupportedTargetsForTest(0);
    for (const int64_t target : usableTargets()) {
        if (nameOf(target) == name) hwy::SetSupportedTargetsForTest(target);
    }
    hwy::GetChosenTarget().DeInit();
}

bool hasDispatchedSimd() {
    constexpr bool hasChoice = (HWY_TARGETS & (HWY_TARGETS - 1)) != 0;
    return !hasChoice || hwy::GetChosenTarget().IsInitialized();
}

}  // namespace GxFontEffect::kernels
#endif  // HWY_ONCE
