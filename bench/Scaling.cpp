#include "Scaling.h"

#include <cstdio>
#include <functional>
#include <iterator>
#include <utility>
#include <vector>

#include "Measure.h"
#include "Painter.h"
#include "Planes.h"
#include "effect/GxEffect.h"

#ifdef GXBENCH_OPENCV
#include <opencv2/imgproc.hpp>
#endif

namespace gxbench {

namespace {

using namespace GxFontEffect;

const GxGradient kRamp[] = {{0xFFFFF0A0, 1, 0}, {0xFFFF8000, 1, 0.5f}, {0xFF400000, 1, 1}};
constexpr int kRampStops = static_cast<int>(std::size(kRamp));

struct Effect {
    const char* name;
    int style;
    bool hasSize;
    void (*add)(GxEffect& stack, float size);
};

GxBitmap& checks() {
    static Layer pixels = [] {
        Layer tile(64 * 64);
        for (size_t i = 0; i < tile.size(); ++i) {
            tile[i] = (i / 8 + i / 512) % 2 ? 0xFF3060C0 : 0xFFF0F0E0;
        }
        return tile;
    }();
    static GxBitmap bitmap(64, 64, pixels.data(), 4);
    return bitmap;
}

constexpr Effect kEffects[] = {
    {"stroke", GXE_STYLE_STROKE, true,
     [](GxEffect& stack, float size) {
         stack.addStrokeText(size, 0xFF402000, 1, 0, GxStrokeProperty::kOutside);
     }},
    {"outer shadow", GXE_STYLE_OUTER_SHADOW, true,
     [](GxEffect& stack, float size) { stack.addOuterShadowText(120, 8, size, 0xFF000000, 0.6f); }},
    {"outer glow", GXE_STYLE_OUTER_GLOW, true,
     [](GxEffect& stack, float size) { stack.addOuterGlowText(size, 0xFFFFE080, 1, 0, nullptr); }},
    {"inner shadow", GXE_STYLE_INNER_SHADOW, true,
     [](GxEffect& stack, float size) { stack.addInnerShadowText(120, 8, size, 0xFF000000, 1); }},
    {"inner glow", GXE_STYLE_INNER_GLOW, true,
     [](GxEffect& stack, float size) { stack.addInnerGlowText(size, 0xFFFFFFFF, 1, 0, nullptr); }},
    {"linear gradient", GXE_STYLE_LINEAR_GRADIENT, false,
     [](GxEffect& stack, float) { stack.addLinearGradientText(30, 1, 1, kRampStops, kRamp); }},
    {"radial gradient", GXE_STYLE_RADIAL_GRADIENT, false,
     [](GxEffect& stack, float) { stack.addRadialGradientText(1, 1, kRampStops, kRamp); }},
    {"pattern", GXE_STYLE_PATTERN, false,
     [](GxEffect& stack, float) { stack.addPatternText(&checks(), 1.5f, 1); }},
};

void printPoint(const char* curve, const std::string& series, int x,
                const std::function<void()>& prepare, const std::function<void()>& run) {
    if (!run) return;
    const double milliseconds = measureInTurns(prepare, {run})[0].median() * 1e3;
    std::printf("%s,%s,%d,%.4f\n", curve, series.c_str(), x, milliseconds);
    std::fflush(stdout);
}

void printEffect(const char* curve, const Effect& effect, int x, float size, const Mask& mask,
                 uint32_t width, uint32_t height) {
    GxEffect stack;
    effect.add(stack, size);
    GxECoreBase& filter = *stack.getEffect(effect.style);
    FilterScene scene(mask, width, height);
    printPoint(
        curve, effect.name, x, [&] { scene.clear(); }, [&] { paint(filter, scene); });
}

#ifdef GXBENCH_OPENCV

void printPeers(int radius) {
    cv::setNumThreads(1);
    Mask pixels = textMask();
    const cv::Mat mask(kHeight, kWidth, CV_8UC1, pixels.data());
    const int side = 2 * radius + 1;
    const cv::Mat ellipse = cv::getStructuringElement(cv::MORPH_ELLIPSE, cv::Size(side, side));
    const cv::Mat taps = cv::getGaussianKernel(side, radius / 3.0, CV_32F);
    cv::Mat padded, out;
    const auto pad = [&] {
        cv::copyMakeBorder(mask, padded, radius, radius, radius, radius, cv::BORDER_CONSTANT, 0);
    };
    printPoint("radius", "OpenCV dilate", radius, {}, [&] {
        pad();
        cv::dilate(padded, out, ellipse);
    });
    printPoint("radius", "OpenCV sepFilter2D", radius, {}, [&] {
        pad();
        cv::sepFilter2D(padded, out, CV_8U, taps, taps);
    });
}

#else

void printPeers(int /*radius*/) {}

#endif

void printRadius() {
    for (const int radius : {1, 2, 3, 5, 8, 12, 18, 25, 35, 50, 70, 100}) {
        for (const Effect& effect : kEffects) {
            if (!effect.hasSize) continue;
            printEffect("radius", effect, radius, static_cast<float>(radius), textMask(), kWidth,
                        kHeight);
        }
        printPeers(radius);
    }
}

// The text mask again and again, side by side.
Mask tiledMask(size_t side) {
    Mask mask(side * side);
    for (size_t y = 0; y < side; ++y) {
        for (size_t x = 0; x < side; ++x) {
            mask[y * side + x] = textMask()[y % kHeight * kWidth + x % kWidth];
        }
    }
    return mask;
}

void printArea() {
    for (const uint32_t side : {256u, 512u, 1024u, 2048u, 4096u}) {
        const Mask mask = tiledMask(side);
        for (const Effect& effect : kEffects) {
            printEffect("area", effect, static_cast<int>(side), 10, mask, side, side);
        }
    }
}

void printEffects() {
    Mask mask = textMask();
    GxGlyph glyph;
    glyph.pixels = mask.data();
    glyph.width = kWidth;
    glyph.height = kHeight;
    for (int count = 0; count <= static_cast<int>(std::size(kEffects)); ++count) {
        GxEffect stack;
        stack.addText(0xFFF0C040);
        for (int i = 0; i < count; ++i) kEffects[i].add(stack, 10);
        const int left = stack.getLeftOffset(), top = stack.getTopOffset();
        const auto width = static_cast<uint32_t>(kWidth + left + stack.getRightOffset());
        const auto height = static_cast<uint32_t>(kHeight + top + stack.getBottomOffset());
        GxBitmap output(width, height, 4);
        printPoint(
            "effects", "whole render", count, [&] { clear(output); },
            [&] {
                stack.initEffect(width, height);
                stack.setDstBitmap(&output);
                stack.renderEffectLayer(left, top, &glyph);
                stack.doEffectPostProcessing();
                stack.compositeLayers(&output);
            });
    }
}

}  // namespace

void printScaling(const std::string& filter) {
    std::printf("curve,series,x,milliseconds\n");
    constexpr std::pair<const char*, void (*)()> kCurves[] = {
        {"radius", printRadius}, {"area", printArea}, {"effects", printEffects}};
    for (const auto& [name, print] : kCurves) {
        if (std::string(name).find(filter) != std::string::npos) print();
    }
}

}  // namespace gxbench
