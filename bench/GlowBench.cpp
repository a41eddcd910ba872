// Rows of the glow's growth and of its colours.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "Bench.h"
#include "Planes.h"
#include "raster/kernels/BlendRows.h"
#include "raster/kernels/Growth.h"
#include "raster/kernels/SeparableBlur.h"

#ifdef GXBENCH_OPENCV
#include <opencv2/imgproc.hpp>
#endif

namespace gxbench {

namespace {

using namespace GxFontEffect::kernels;

// The mask in a plane that is grown in place and gets back what it held before each run.
struct GrowthScene {
    explicit GrowthScene(Mask content)
        : before(std::move(content)),
          mask(before),
          other(before),
          scratch(static_cast<size_t>(growthScratchBytes(kWidth))) {}

    void restore() { std::memcpy(mask.data(), before.data(), mask.size()); }

    Mask before;
    Mask mask;
    Mask other;
    std::vector<uint8_t> scratch;
};

using GrowthScenePtr = std::shared_ptr<GrowthScene>;

#ifdef GXBENCH_OPENCV

// 3 x 3 Gaussian means, as many times, from one plane to the other.
std::function<void()> gaussian(const GrowthScenePtr& scene, int passes) {
    cv::setNumThreads(1);
    const cv::Mat planes[2] = {cv::Mat(kHeight, kWidth, CV_8U, scene->mask.data()),
                               cv::Mat(kHeight, kWidth, CV_8U, scene->other.data())};
    const cv::Mat from = planes[0], to = planes[1];
    return [=] {
        cv::Mat in = from, out = to;
        for (int i = 0; i < passes; ++i) {
            cv::GaussianBlur(in, out, {3, 3}, 0);
            std::swap(in, out);
        }
    };
}

#else

std::function<void()> gaussian(const GrowthScenePtr& /*scene*/, int /*passes*/) {
    return {};
}

#endif

// Times are per pixel and pass.
void addGrowthRow(const std::string& content, Mask (*mask)(), int passes, double target) {
    addRow({"growth, " + std::to_string(passes) + " passes, " + content,
            "cv::GaussianBlur 3x3",
            {0, target},
            kPixels * static_cast<uint64_t>(passes),
            [=] {
                const auto scene = std::make_shared<GrowthScene>(mask());
                const auto run = [=](const auto& grow) {
                    return [=] {
                        grow(scene->mask.data(), kWidth, kHeight, passes, scene->scratch.data());
                    };
                };
                return Contenders{[=] { scene->restore(); }, run(growMask), run(plain::growMask),
                                  gaussian(scene, passes)};
            }});
}

// The text as a glow of 10 pixels has it: grown, and blurred towards a hundredth.
Mask glowCoverage() {
    Mask mask = textMask(), blurred(mask.size());
    constexpr int kRadius = 9;
    int32_t taps[kRadius + 1];
    BlurWeights weights{taps, kRadius, 0};
    for (int i = 0; i <= kRadius; ++i) {
        taps[i] = static_cast<int32_t>(128 * std::pow(100, -i * i / double{kRadius * kRadius}));
        weights.sum += (i ? 2 : 1) * taps[i];
    }
    std::vector<uint8_t> scratch(static_cast<size_t>(
        std::max(growthScratchBytes(kWidth), blurScratchBytes(kWidth, kHeight, kRadius))));
    growMask(mask.data(), kWidth, kHeight, 5, scratch.data());
    blurPlane(mask.data(), blurred.data(), kWidth, kHeight, weights, BlurInput::kDirect,
              scratch.data());
    return blurred;
}

// The coverage in colours, beneath a layer.
void addColorRow(const std::string& content, Mask (*coverage)(), Layer (*layer)(), double target) {
    struct Scene {
        Mask coverage;
        Layer before, layer;
        std::vector<uint32_t> table;
    };
    addRow({"colour map, " + content, "", {target, 0}, kPixels, [=] {
                const auto scene = std::make_shared<Scene>();
                scene->coverage = coverage();
                scene->before = scene->layer = layer();
                for (uint32_t i = 0; i <= 256; ++i) {
                    scene->table.push_back((256 - i) * 255 / 256 << 24 | i / 2 << 16 | 0x40FF);
                }
                const auto run = [=](const auto& map) {
                    const BlendArea area{reinterpret_cast<uint8_t*>(scene->layer.data()),
                                         kWidth * 4,
                                         scene->coverage.data(),
                                         kWidth,
                                         kWidth,
                                         kHeight};
                    return [=] { map(area, scene->table.data()); };
                };
                return Contenders{[=] {
                                      std::memcpy(scene->layer.data(), scene->before.data(),
                                                  kPixels * sizeof(uint32_t));
                                  },
                                  run(dstOverMapped8Rows),
                                  run(plain::dstOverMapped8Rows),
                                  {}};
            }});
}

}  // namespace

void addGlowRows() {
    for (const int passes : {1, 5, 20}) {
        addGrowthRow(
            "text", [] { return textMask(); }, passes, 2);
    }
    addGrowthRow(
        "empty", [] { return filledMask(0); }, 5, 0);
    addGrowthRow(
        "full", [] { return filledMask(255); }, 5, 0);
    addGrowthRow("noise", noiseMask, 5, 0);
    addColorRow(
        "glow on clear", glowCoverage, [] { return filledLayer(0); }, 8);
    addColorRow("glow on random", glowCoverage, randomLayer, 8);
    addColorRow(
        "empty", [] { return filledMask(0); }, randomLayer, 0);
    addColorRow(
        "full", [] { return filledMask(255); }, randomLayer, 0);
    addColorRow("noise", noiseMask, randomLayer, 0);
    addColorRow("patches", patchyMask, randomLayer, 0);
}

}  // namespace gxbench
