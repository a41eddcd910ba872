// Rows of bevel and emboss: whole filters with their blends, against libraries that do a part of
// the work.
#include <memory>
#include <string>

#include "Bench.h"
#include "Painter.h"
#include "Planes.h"
#include "effect/GxProperty.h"
#include "effect/filters/GxBevel.h"
#include "effect/filters/GxEmboss.h"

#ifdef GXBENCH_OPENCV
#include <opencv2/imgproc.hpp>
#endif
#ifdef GXBENCH_MAGICK
#include <wand/MagickWand.h>
#endif

namespace gxbench {

namespace {

using namespace GxFontEffect;

constexpr const char* kDistances = "OpenCV distances";
constexpr const char* kShade = "ImageMagick shade";

// The text with as much background around it as a relief needs.
struct FramedScene {
    FramedScene(const Mask& content, int margin)
        : mask(kWidth + 2 * margin, kHeight + 2 * margin, 1),
          layer(mask.width, mask.height, 4),
          box(margin, margin, margin + kWidth, margin + kHeight) {
        for (int y = 0; y < kHeight; ++y) {
            std::memcpy(mask.data + (y + margin) * int64_t{mask.width} + margin,
                        &content[size_t(y) * kWidth], kWidth);
        }
    }

    GxBitmap mask;
    GxBitmap layer;
    GxRect box;
};

using ScenePointer = std::shared_ptr<FramedScene>;

#ifdef GXBENCH_OPENCV

// Exact distances of whole pixels alone, on the side where the slope is.
std::function<void()> openCvDistances(const ScenePointer& scene, bool outside) {
    cv::setNumThreads(1);
    const cv::Mat mask(static_cast<int>(scene->mask.height), static_cast<int>(scene->mask.width),
                       CV_8UC1, scene->mask.data);
    auto side = std::make_shared<cv::Mat>();
    cv::threshold(mask, *side, 127, 255, outside ? cv::THRESH_BINARY_INV : cv::THRESH_BINARY);
    auto distances = std::make_shared<cv::Mat>();
    return [=] {
        (void)scene;
        cv::distanceTransform(*side, *distances, cv::DIST_L2, cv::DIST_MASK_PRECISE);
    };
}

#else

std::function<void()> openCvDistances(const ScenePointer& /*scene*/, bool /*outside*/) {
    return {};
}

#endif

#ifdef GXBENCH_MAGICK

// Light on the mask as a height field, alone.
std::function<void()> magickShade(const ScenePointer& scene) {
    MagickWandGenesis();
    const std::shared_ptr<MagickWand> picture(NewMagickWand(), DestroyMagickWand);
    MagickSetResourceLimit(ThreadResource, 1);
    MagickConstituteImage(picture.get(), scene->mask.width, scene->mask.height, "I", CharPixel,
                          scene->mask.data);
    return [=] {
        const std::shared_ptr<MagickWand> shaded(CloneMagickWand(picture.get()), DestroyMagickWand);
        MagickShadeImage(shaded.get(), MagickTrue, 120, 30);
    };
}

#else

std::function<void()> magickShade(const ScenePointer& /*scene*/) {
    return {};
}

#endif

template <class Record>
Record settings(int kind, int size, int technique, int soften) {
    return Record(kind, static_cast<float>(size), 1.0f, technique, 0, soften, 1.0f, 120, 30,
                  0xC0FFFFFF, 1, 0xA0000000, 1);
}

enum Technique { kSmooth, kHard, kSoft };

template <class Core, class Record>
void addReliefRow(const std::string& name, int kind, int size, Technique technique, int soften,
                  double target) {
    const Record record = settings<Record>(kind, size, technique, soften);
    Core core;
    core.setProperty(&record);
    const int margin = core.getOffset();
    const uint64_t pixels = uint64_t(kWidth + 2 * margin) * uint64_t(kHeight + 2 * margin);
    addRow({name + " " + std::to_string(size), kDistances, {0, target}, pixels, [=] {
                const auto scene = std::make_shared<FramedScene>(textMask(), margin);
                Contenders contenders;
                contenders.prepare = [=] { clear(scene->layer); };
                contenders.ours = painter<Core>(scene, record);
                contenders.peer = openCvDistances(scene, margin > 0);
                return contenders;
            }});
}

}  // namespace

void addReliefRows() {
#ifndef GXBENCH_OPENCV
    addMissingPeer(kDistances);
#endif
#ifndef GXBENCH_MAGICK
    addMissingPeer(kShade);
#endif
    const auto bevel = addReliefRow<GxBevel, GxBevelProperty>;
    const auto emboss = addReliefRow<GxEmboss, GxEmbossProperty>;
    struct Step {
        int size;
        double target;
    };
    for (const Step step : {Step{3, 1.5}, {7, 1.5}, {15, 1.4}, {30, 1.2}, {100, 1.0}, {250, 0}}) {
        bevel("bevel inside, hard,", 1, step.size, kHard, 0, step.target);
    }
    bevel("bevel inside, smooth,", 1, 15, kSmooth, 0, 0.9);
    bevel("bevel inside, soft,", 1, 15, kSoft, 0, 0.9);
    bevel("bevel inside, smooth, softened,", 1, 15, kSmooth, 4, 0);
    for (const int size : {3, 15, 30, 60, 100, 150, 250}) {
        bevel("bevel outside, hard,", 0, size, kHard, 0, 0);
    }
    emboss("pillow, smooth,", 1, 30, kSmooth, 0, 0);
    addRow({"bevel inside, hard, 15, whole", kShade, {0, 8}, kPixels, [] {
                const auto scene = std::make_shared<FramedScene>(textMask(), 0);
                Contenders contenders;
                contenders.prepare = [=] { clear(scene->layer); };
                contenders.ours =
                    painter<GxBevel>(scene, settings<GxBevelProperty>(1, 15, kHard, 0));
                contenders.peer = magickShade(scene);
                return contenders;
            }});
}

}  // namespace gxbench
