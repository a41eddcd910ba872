// Rows of the separable blur: the mask copied into its padded plane, then both directions.
#include <cmath>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "Bench.h"
#include "OpenCvPeer.h"
#include "Planes.h"
#include "raster/kernels/SeparableBlur.h"

#ifdef GXBENCH_OPENCV
#include <opencv2/imgproc.hpp>
#endif

namespace gxbench {

namespace {

using namespace GxFontEffect::kernels;

// The plane of a row, as the outer shadow has it: padded by twice the radius.
struct BlurScene {
    BlurScene(Mask content, int blurRadius)
        : mask(std::move(content)),
          radius(blurRadius),
          width(kWidth + 4 * radius),
          height(kHeight + 4 * radius),
          padded(static_cast<size_t>(width * height)),
          scratch(static_cast<size_t>(blurScratchBytes(width, height, radius))) {
        for (int i = 0; i <= radius; ++i) {
            const double share = static_cast<double>(i) / radius;
            taps.push_back(static_cast<int32_t>(std::lround(100 * std::pow(100, -share * share))));
            weights.sum += (i ? 2 : 1) * taps.back();
        }
        weights.taps = taps.data();
        weights.radius = radius;
    }
    BlurScene(const BlurScene&) = delete;
    BlurScene& operator=(const BlurScene&) = delete;

    void run() {
        pad();
        blurPaddedPlane(padded.data(), width, height, weights, scratch.data());
    }
    void runPlain() {
        pad();
        plain::blurPaddedPlane(padded.data(), width, height, weights);
    }
    void pad() {
        std::memset(padded.data(), 0, padded.size());
        for (int64_t y = 0; y < kHeight; ++y) {
            std::memcpy(padded.data() + (y + 2 * radius) * width + 2 * radius,
                        mask.data() + y * kWidth, kWidth);
        }
    }

    Mask mask;
    int64_t radius;
    int64_t width;
    int64_t height;
    std::vector<uint8_t> padded;
    std::vector<uint8_t> scratch;
    std::vector<int32_t> taps;
    BlurWeights weights;
};

using BlurScenePtr = std::shared_ptr<BlurScene>;
using Peer = std::function<void()> (*)(const BlurScenePtr&);

#ifdef GXBENCH_OPENCV

// `filter(padded, out)` over the mask padded by the radius: the same output.
template <class Filter>
std::function<void()> onPadded(const BlurScenePtr& scene, const Filter& filter) {
    cv::setNumThreads(1);
    const int radius = static_cast<int>(scene->radius);
    const cv::Mat mask(kHeight, kWidth, CV_8U, scene->mask.data());
    auto padded = std::make_shared<cv::Mat>(), out = std::make_shared<cv::Mat>();
    return [=] {
        cv::copyMakeBorder(mask, *padded, radius, radius, radius, radius, cv::BORDER_CONSTANT, 0);
        filter(*padded, *out);
    };
}

std::function<void()> sepFilter(const BlurScenePtr& scene) {
    const int radius = static_cast<int>(scene->radius);
    cv::Mat kernel(1, 2 * radius + 1, CV_32F);
    for (int i = -radius; i <= radius; ++i) {
        kernel.at<float>(0, radius + i) =
            static_cast<float>(scene->taps[std::abs(i)]) / static_cast<float>(scene->weights.sum);
    }
    return onPadded(scene, [=](const cv::Mat& in, cv::Mat& out) {
        cv::sepFilter2D(in, out, CV_8U, kernel, kernel, {-1, -1}, 0, cv::BORDER_CONSTANT);
    });
}

std::function<void()> gaussian(const BlurScenePtr& scene) {
    const int size = 2 * static_cast<int>(scene->radius) + 1;
    // A hundredth of the centre at the radius.
    const double sigma = static_cast<double>(scene->radius) / std::sqrt(2 * std::log(100.0));
    return onPadded(scene, [=](const cv::Mat& in, cv::Mat& out) {
        cv::GaussianBlur(in, out, {size, size}, sigma, sigma, cv::BORDER_CONSTANT);
    });
}

#else

std::function<void()> sepFilter(const BlurScenePtr& /*scene*/) {
    return {};
}
std::function<void()> gaussian(const BlurScenePtr& /*scene*/) {
    return {};
}

#endif

std::function<void()> noPeer(const BlurScenePtr& /*scene*/) {
    return {};
}

void addBlurRow(const std::string& operation, int radius, Mask (*mask)(), const char* peerName,
                Peer peer, double target, bool withPlain) {
    addRow({operation, peerName, {0, target}, kPixels, [=] {
                const auto scene = std::make_shared<BlurScene>(mask(), radius);
                Contenders contenders;
                contenders.ours = [=] { scene->run(); };
                if (withPlain) contenders.plain = [=] { scene->runPlain(); };
                contenders.peer = peer(scene);
                if (peer == sepFilter) {
                    contenders.peers = ippBlurs(scene->mask, radius, scene->taps, 1);
                }
                return contenders;
            }});
}

Mask text() {
    return textMask();
}
Mask emptyMask() {
    return filledMask(0);
}
Mask fullMask() {
    return filledMask(255);
}

}  // namespace

void addBlurRows() {
    struct Size {
        int radius;
        double target;  // against each of the peers
    };
    for (const Size& s : {Size{1, 0}, Size{2, 2}, Size{3, 0}, Size{5, 1.5}, Size{10, 2.5},
                          Size{25, 4}, Size{50, 6}, Size{100, 8}}) {
        const std::string name = "blur " + std::to_string(s.radius);
        addBlurRow(name + ", text", s.radius, text, "cv::sepFilter2D", sepFilter, s.target, true);
        addBlurRow(name + ", text, Gaussian", s.radius, text, "cv::GaussianBlur", gaussian,
                   s.target, false);
    }
    for (const int radius : {5, 25}) {
        const std::string name = "blur " + std::to_string(radius);
        addBlurRow(name + ", empty", radius, emptyMask, "", noPeer, 0, true);
        addBlurRow(name + ", full", radius, fullMask, "", noPeer, 0, true);
        addBlurRow(name + ", patches", radius, patchyMask, "", noPeer, 0, true);
    }
    for (const Size& s :
         {Size{2, 1.5}, Size{5, 1.5}, Size{10, 1.5}, Size{25, 2.5}, Size{50, 4}, Size{100, 6}}) {
        const std::string name = "blur " + std::to_string(s.radius) + ", noise";
        addBlurRow(name, s.radius, noiseMask, "cv::sepFilter2D", sepFilter, s.target, false);
        addBlurRow(name + ", Gaussian", s.radius, noiseMask, "cv::GaussianBlur", gaussian, s.target,
                   false);
    }
}

}  // namespace gxbench
