// Rows of the glow's growth.
#include <cstring>
#include <memory>
#include <string>
#include <utility>

#include "Bench.h"
#include "Planes.h"
#include "raster/kernels/Growth.h"

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
                return Contenders{[=] { scene->restore(); }, run(growMask), run(growMaskPlain),
                                  gaussian(scene, passes)};
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
}

}  // namespace gxbench
