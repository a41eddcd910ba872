// A filter as a contender.
#pragma once

#include <functional>
#include <memory>

#include "effect/GxECore.h"

namespace gxbench {

// A run paints once with the record's settings. The scene has the `mask`, the `layer` to paint into
// and the text's `box`.
template <class Core, class Scene, class Record>
std::function<void()> painter(const std::shared_ptr<Scene>& scene, const Record& record) {
    const auto core = std::make_shared<Core>();
    core->setProperty(&record);
    return [=] {
        GxFontEffect::GxECore::ParamPostProcessing param;
        param.dst = &scene->layer;
        param.src = &scene->mask;
        param.textRect = &scene->box;
        core->doPostProcessing(&param);
    };
}

}  // namespace gxbench
