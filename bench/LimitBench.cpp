// Rows of what no renderer is faster than: writing and copying a picture's bytes, multiplying. They
// stand in the column of ours.
//
// Products are 16-bit, of vectors as wide as the kernels': their time is for each product.
#include <array>
#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

#include "Bench.h"
#include "raster/kernels/Simd.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "LimitBench.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace gxbench::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// Enough products under way at a time to hide that each takes some cycles.
constexpr int kChains = 12;

// Multiplies `steps` vectors in each chain; returns the number of products, `out` something that
// depends on all of them.
uint64_t multiply(int steps, uint16_t* out) {
    const hn::ScalableTag<uint16_t> d;
    const auto factor = hn::Set(d, 0xFFF1);
    hn::Vec<decltype(d)> chains[kChains];
    for (auto& chain : chains) chain = hn::Iota(d, 40000);
    for (int i = 0; i < steps; ++i) {
        for (auto& chain : chains) chain = hn::MulHigh(chain, factor);
    }
    auto sum = chains[0];
    for (const auto& chain : chains) sum = hn::Xor(sum, chain);
    *out = hn::GetLane(sum);
    return static_cast<uint64_t>(steps) * kChains * hn::Lanes(d);
}

}  // namespace gxbench::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace gxbench {

namespace {

using GxFontEffect::kernels::simdForm;

GX_EXPORT(multiply);

struct Area {
    const char* name;
    uint64_t pixels;
};

// A picture that fits the second-level cache, and one that fits no cache of one core.
constexpr Area kAreas[] = {{"900 x 220", 900 * 220}, {"4096 x 4096", 4096 * 4096}};

void addMemoryRows(const Area& area) {
    const std::string suffix = std::string(" of ") + area.name + " words";
    const auto words = [pixels = area.pixels] {
        return std::make_shared<std::vector<uint32_t>>(pixels);
    };
    addRow(
        {"limit: memset" + suffix, "", {}, area.pixels, [=] {
             return Contenders{{}, [to = words()] { std::memset(to->data(), 1, 4 * to->size()); }};
         }});
    addRow({"limit: memcpy" + suffix, "", {}, area.pixels, [=] {
                return Contenders{{}, [from = words(), to = words()] {
                                      std::memcpy(to->data(), from->data(), 4 * to->size());
                                  }};
            }});
}

}  // namespace

void addLimitRows() {
    for (const Area& area : kAreas) addMemoryRows(area);
    constexpr int kSteps = 10000;
    uint16_t ignored = 0;
    const uint64_t products = GX_DISPATCH(multiply)(kSteps, &ignored);
    addRow({"limit: 16-bit product", "", {}, products, [] {
                const auto out = std::make_shared<uint16_t>();
                return Contenders{{}, [out] { GX_DISPATCH(multiply)(kSteps, out.get()); }};
            }});
}

}  // namespace gxbench

#endif
