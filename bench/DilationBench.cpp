// Rows of the disc dilation: a mask spread by the stroke's disc, padding included.
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "Bench.h"
#include "OpenCvPeer.h"
#include "Planes.h"
#include "effect/filters/GxStroke.h"
#include "raster/kernels/DiscDilation.h"

#ifdef GXBENCH_OPENCV
#include <opencv2/imgproc.hpp>
#endif

namespace gxbench {

namespace {

using namespace GxFontEffect;

constexpr const char* kOpenCv = "OpenCV";

using Dilate = void (*)(const kernels::DilationBand&);

// The planes of a row, as the stroke has them: the mask with a pixel of background around it, and
// the output wider by the disc.
struct Scene {
    static constexpr int kFramedWidth = kWidth + 2;
    static constexpr int kFramedHeight = kHeight + 2;

    Mask mask;
    std::vector<uint8_t> kernel;
    int side;
    std::vector<uint8_t> framed = std::vector<uint8_t>(size_t{kFramedWidth} * kFramedHeight);
    std::vector<uint8_t> out;

    Scene(Mask pixels, float radius) : mask(std::move(pixels)) {
        unsigned char* cells = nullptr;
        side = makeCircleKernel(&cells, radius);
        kernel.assign(cells, cells + ptrdiff_t{side} * side);
        std::free(cells);
        out.resize(size_t(outWidth()) * size_t(kFramedHeight + side - 1));
    }

    int outWidth() const { return kFramedWidth + side - 1; }

    void run(Dilate dilate) {
        for (int y = 0; y < kHeight; ++y) {
            std::memcpy(&framed[size_t(y + 1) * kFramedWidth + 1], &mask[size_t(y) * kWidth],
                        kWidth);
        }
        std::memset(out.data(), 0, out.size());
        kernels::DilationBand band;
        band.mask = framed.data();
        band.maskStride = band.columns = kFramedWidth;
        band.rows = kFramedHeight;
        band.kernel = kernel.data();
        band.kernelSize = side;
        band.out = out.data();
        band.outStride = outWidth();
        dilate(band);
    }
};

#ifdef GXBENCH_OPENCV

// The ellipse of the same side; it has no soft rim.
std::function<void()> openCv(const std::shared_ptr<Scene>& scene) {
    cv::setNumThreads(1);
    const int radius = scene->side / 2;
    const cv::Mat mask(kHeight, kWidth, CV_8UC1, scene->mask.data());
    const cv::Mat ellipse =
        cv::getStructuringElement(cv::MORPH_ELLIPSE, cv::Size(scene->side, scene->side));
    auto padded = std::make_shared<cv::Mat>();
    auto out = std::make_shared<cv::Mat>();
    return [=] {
        cv::copyMakeBorder(mask, *padded, radius, radius, radius, radius, cv::BORDER_CONSTANT, 0);
        cv::dilate(*padded, *out, ellipse);
    };
}

#else

std::function<void()> openCv(const std::shared_ptr<Scene>& /*scene*/) {
    return {};
}

#endif

struct Step {
    float radius;
    Targets targets;
};

void addDilationRow(const std::string& content, const Mask& (*mask)(), Dilate fast, Dilate plain,
                    const Step& step) {
    const std::string radius = std::to_string(static_cast<int>(step.radius));
    addRow({"dilation r=" + radius + ", " + content, kOpenCv, step.targets, kPixels, [=] {
                const auto scene = std::make_shared<Scene>(mask(), step.radius);
                Contenders contenders;
                contenders.ours = [=] { scene->run(fast); };
                // The formula takes seconds for wide discs.
                if (step.radius <= 10) contenders.plain = [=] { scene->run(plain); };
                contenders.peer = openCv(scene);
                if (content == "text" || content == "noise") {
                    contenders.peers = {ippDilation(scene->mask, scene->side / 2, 1)};
                }
                return contenders;
            }});
}

const Mask& emptyMask() {
    static const Mask mask = filledMask(0);
    return mask;
}
const Mask& fullMask() {
    static const Mask mask = filledMask(255);
    return mask;
}
const Mask& noise() {
    static const Mask mask = noiseMask();
    return mask;
}

}  // namespace

void addDilationRows() {
#ifndef GXBENCH_OPENCV
    addMissingPeer(kOpenCv);
#endif
    constexpr Step kSteps[] = {{1, {0, 1}},   {2, {0, 1}},    {3, {0, 1}},
                               {5, {0, 2}},   {10, {150, 5}}, {25, {0, 20}},
                               {35, {0, 30}}, {50, {0, 60}},  {100, {0, 200}}};
    for (const Step& step : kSteps) {
        addDilationRow("text", textMask, kernels::dilateOutside, kernels::plain::dilateOutside,
                       step);
    }
    struct Content {
        const char* name;
        const Mask& (*mask)();
        Dilate fast;
        Dilate plain;
    };
    constexpr Content kOthers[] = {
        {"inside text", textMask, kernels::dilateInside, kernels::plain::dilateInside},
        {"empty", emptyMask, kernels::dilateOutside, kernels::plain::dilateOutside},
        {"full", fullMask, kernels::dilateOutside, kernels::plain::dilateOutside}};
    for (const Content& c : kOthers) {
        for (const float radius : {2.0f, 5.0f, 10.0f, 25.0f, 50.0f, 100.0f}) {
            addDilationRow(c.name, c.mask, c.fast, c.plain, {radius, {}});
        }
    }
    // All rim, whatever the radius.
    for (const Step& step : {Step{2, {0, 1}}, Step{5, {0, 1.3}}, Step{10, {0, 3}},
                             Step{25, {0, 10}}, Step{50, {0, 20}}, Step{100, {0, 40}}}) {
        addDilationRow("noise", noise, kernels::dilateOutside, kernels::plain::dilateOutside, step);
    }
}

}  // namespace gxbench
