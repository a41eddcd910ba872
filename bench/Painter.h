// A filter as a contender.
#pragma once

#include <cstdint>
#include <cstring>
#include <functional>
#include <memory>

#include "Planes.h"
#include "effect/GxECore.h"

namespace gxbench {

inline void clear(GxFontEffect::GxBitmap& layer) {
    std::memset(layer.data, 0, layer.pixelCount() * layer.bytesPerPixel);
}

// A mask, which is borrowed, and a layer for what a filter makes of it, to be cleared before each
// run.
struct FilterScene {
    FilterScene(const Mask& content, uint32_t width, uint32_t height)
        : mask(width, height, content.data(), 1),
          layer(width, height, 4),
          box(0, 0, static_cast<int>(width), static_cast<int>(height)) {}

    void clear() { gxbench::clear(layer); }

    GxFontEffect::GxBitmap mask;
    GxFontEffect::GxBitmap layer;
    GxFontEffect::GxRect box;
};

// Paints once. The scene has the `mask`, the `layer` to paint into and the text's `box`.
template <class Scene>
void paint(GxFontEffect::GxECoreBase& core, Scene& scene) {
    GxFontEffect::GxECore::ParamPostProcessing param;
    param.dst = &scene.layer;
    param.src = &scene.mask;
    param.textRect = &scene.box;
    core.doPostProcessing(&param);
}

// A run paints once with the record's settings.
template <class Core, class Scene, class Record>
std::function<void()> painter(const std::shared_ptr<Scene>& scene, const Record& record) {
    const auto core = std::make_shared<Core>();
    core->setProperty(&record);
    return [=] { paint(*core, *scene); };
}

}  // namespace gxbench
