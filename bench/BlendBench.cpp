// Rows of the blend operations and of the whole-image steps.
#include <cstring>
#include <memory>
#include <utility>

#include "Bench.h"
#include "Planes.h"
#include "raster/kernels/BlendRows.h"

#ifdef GXBENCH_PIXMAN
#include <pixman.h>
#endif

namespace gxbench {

namespace {

using namespace GxFontEffect;
using kernels::BlendArea;
using kernels::Rgba;

constexpr uint32_t kColor = 0xFFE06020;
constexpr const char* kPixman = "pixman";

// The planes of a row. `layer` is drawn on and gets back what it held before each run.
struct Scene {
    Mask mask;
    Layer source;
    Layer before;
    Layer layer;

    explicit Scene(Layer start) : before(std::move(start)), layer(before) {}

    void restore() { std::memcpy(layer.data(), before.data(), layer.size() * sizeof(layer[0])); }
    Rgba* pixels() { return reinterpret_cast<Rgba*>(layer.data()); }
    BlendArea maskArea() {
        return {reinterpret_cast<uint8_t*>(layer.data()),
                kWidth * 4,
                mask.data(),
                kWidth,
                kWidth,
                kHeight};
    }
    BlendArea layerArea() {
        return {reinterpret_cast<uint8_t*>(layer.data()),
                kWidth * 4,
                reinterpret_cast<const uint8_t*>(source.data()),
                kWidth * 4,
                kWidth,
                kHeight};
    }
};

using ScenePtr = std::shared_ptr<Scene>;

ScenePtr newScene(Layer layer, Mask mask, Layer source = {}) {
    auto scene = std::make_shared<Scene>(std::move(layer));
    scene->mask = std::move(mask);
    scene->source = std::move(source);
    return scene;
}

// --- pixman ---

#ifdef GXBENCH_PIXMAN

using Image = std::shared_ptr<pixman_image_t>;

Image newImage(pixman_format_code_t format, void* data, int stride) {
    return {pixman_image_create_bits(format, kWidth, kHeight, static_cast<uint32_t*>(data), stride),
            pixman_image_unref};
}

// A solid through the mask onto the layer. Its words have the order that pixman is fastest with,
// and the colour its red and blue swapped: the layer's bytes come out the same.
std::function<void()> pixmanMask(pixman_op_t op, const ScenePtr& scene) {
    const auto channel = [](int shift) {
        return static_cast<uint16_t>((kColor >> shift & 255) * 257);
    };
    const pixman_color_t color = {channel(0), channel(8), channel(16), channel(24)};
    const Image solid(pixman_image_create_solid_fill(&color), pixman_image_unref);
    const Image mask = newImage(PIXMAN_a8, scene->mask.data(), kWidth);
    const Image layer = newImage(PIXMAN_a8r8g8b8, scene->layer.data(), kWidth * 4);
    return [=] {
        pixman_image_composite32(op, solid.get(), mask.get(), layer.get(), 0, 0, 0, 0, 0, 0, kWidth,
                                 kHeight);
    };
}

// Words onto the layer, in the layer's own order.
std::function<void()> pixman32(pixman_op_t op, const ScenePtr& scene) {
    const Image source = newImage(PIXMAN_a8r8g8b8, scene->source.data(), kWidth * 4);
    const Image layer = newImage(PIXMAN_a8r8g8b8, scene->layer.data(), kWidth * 4);
    return [=] {
        pixman_image_composite32(op, source.get(), nullptr, layer.get(), 0, 0, 0, 0, 0, 0, kWidth,
                                 kHeight);
    };
}

constexpr auto kOver = PIXMAN_OP_OVER;
constexpr auto kOverReverse = PIXMAN_OP_OVER_REVERSE;

#else

enum PixmanOp { kOver, kOverReverse };

std::function<void()> pixmanMask(PixmanOp, const ScenePtr&) {
    return {};
}
std::function<void()> pixman32(PixmanOp, const ScenePtr&) {
    return {};
}

#endif

// --- rows ---

using MaskKernel = void (*)(const BlendArea&, Rgba);

template <typename PixmanOperator>
void addMaskRow(const std::string& operation, MaskKernel fast, MaskKernel plain,
                PixmanOperator peer, double target, Mask (*mask)(), Layer (*layer)()) {
    addRow({operation, kPixman, {0, target}, kPixels, [=] {
                const ScenePtr scene = newScene(layer(), mask());
                return Contenders{[=] { scene->restore(); },
                                  [=] { fast(scene->maskArea(), kernels::fromWord(kColor)); },
                                  [=] { plain(scene->maskArea(), kernels::fromWord(kColor)); },
                                  pixmanMask(peer, scene)};
            }});
}

void addMaskRow(const std::string& operation, MaskKernel fast, MaskKernel plain, Layer (*layer)()) {
    addRow({operation, "", {}, kPixels, [=] {
                const ScenePtr scene = newScene(layer(), textMask());
                return Contenders{[=] { scene->restore(); },
                                  [=] { fast(scene->maskArea(), kernels::fromWord(kColor)); },
                                  [=] { plain(scene->maskArea(), kernels::fromWord(kColor)); },
                                  {}};
            }});
}

using LayerKernel = void (*)(const BlendArea&, kernels::SourceOrder);

template <typename PixmanOperator>
void addLayerRow(const std::string& operation, LayerKernel fast, LayerKernel plain,
                 PixmanOperator peer, double target, Layer (*source)(), Layer (*layer)()) {
    addRow({operation, kPixman, {0, target}, kPixels, [=] {
                const ScenePtr scene = newScene(layer(), {}, source());
                constexpr auto kWords = kernels::SourceOrder::kBgra;
                return Contenders{
                    [=] { scene->restore(); }, [=] { fast(scene->layerArea(), kWords); },
                    [=] { plain(scene->layerArea(), kWords); }, pixman32(peer, scene)};
            }});
}

// A whole-image step, as step(scene).
void addStepRow(const std::string& operation, void (*fast)(Scene&), void (*plain)(Scene&)) {
    addRow({operation, "", {}, kPixels, [=] {
                const ScenePtr scene =
                    newScene(tintedLayer(textMask(), kColor), textMask(), randomLayer());
                return Contenders{
                    [=] { scene->restore(); }, [=] { fast(*scene); }, [=] { plain(*scene); }, {}};
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
Mask evenMask() {
    return filledMask(128);
}
Layer clearLayer() {
    return filledLayer(0);
}
Layer opaqueLayer() {
    return filledLayer(0xFF406080);
}
Layer tintedText() {
    return tintedLayer(textMask(), kColor);
}

const Rgba* sourceOf(const Scene& scene) {
    return reinterpret_cast<const Rgba*>(scene.source.data());
}

void addStepRows() {
    addStepRow(
        "mix two layers by the mask",
        [](Scene& s) { mixLayersRow(s.pixels(), sourceOf(s), s.mask.data(), kPixels); },
        [](Scene& s) {
            kernels::plain::mixLayersRow(s.pixels(), sourceOf(s), s.mask.data(), kPixels);
        });
    addStepRow(
        "fade and unpremultiply, alpha 128",
        [](Scene& s) { kernels::fadeAndUnpremultiplyRow(s.pixels(), kPixels, 128); },
        [](Scene& s) { kernels::plain::fadeAndUnpremultiplyRow(s.pixels(), kPixels, 128); });
    addStepRow(
        "fade into words, alpha 255",
        [](Scene& s) { kernels::fadeIntoWordsRow(s.pixels(), kPixels, 255); },
        [](Scene& s) { kernels::plain::fadeIntoWordsRow(s.pixels(), kPixels, 255); });
    addStepRow(
        "clear uncovered",
        [](Scene& s) { kernels::clearUncoveredRow(s.pixels(), s.mask.data(), kPixels); },
        [](Scene& s) { kernels::plain::clearUncoveredRow(s.pixels(), s.mask.data(), kPixels); });
    addStepRow(
        "red/blue swap", [](Scene& s) { kernels::swapRedBlueRow(s.pixels(), kPixels); },
        [](Scene& s) { kernels::plain::swapRedBlueRow(s.pixels(), kPixels); });
    addStepRow(
        "memcpy of the layer",
        [](Scene& s) { std::memcpy(s.layer.data(), s.source.data(), kPixels * 4); },
        [](Scene& s) { std::memcpy(s.layer.data(), s.source.data(), kPixels * 4); });
}

}  // namespace

void addBlendRows() {
#ifndef GXBENCH_PIXMAN
    addMissingPeer(kPixman);
#endif
    struct Content {
        const char* name;
        Mask (*mask)();
        Layer (*layer)();
        double isTextLike;  // 1 where the targets hold
    };
    constexpr Content kContents[] = {
        {"text on clear", text, clearLayer, 1},
        {"text on random", text, randomLayer, 1},
        {"text on opaque", text, opaqueLayer, 1},
        {"empty on random", emptyMask, randomLayer, 0},
        {"full on random", fullMask, randomLayer, 0},
        {"half on random", evenMask, randomLayer, 0},
        {"noise on random", noiseMask, randomLayer, 0},
        {"patches on random", patchyMask, randomLayer, 0},
    };
    for (const Content& c : kContents) {
        addMaskRow(std::string("mask src-over, ") + c.name, kernels::srcOver8Rows,
                   kernels::plain::srcOver8Rows, kOver, 1.5 * c.isTextLike, c.mask, c.layer);
    }
    for (const Content& c : kContents) {
        addMaskRow(std::string("mask dst-over, ") + c.name, kernels::dstOver8Rows,
                   kernels::plain::dstOver8Rows, kOverReverse, 5 * c.isTextLike, c.mask, c.layer);
    }
    struct Source {
        const char* name;
        Layer (*source)();
        Layer (*layer)();
        bool isTextLike;
    };
    constexpr Source kSources[] = {{"text on clear", tintedText, clearLayer, true},
                                   {"text on random", tintedText, randomLayer, true},
                                   {"text on opaque", tintedText, opaqueLayer, true},
                                   {"random on clear", randomLayer, clearLayer, false},
                                   {"random on random", randomLayer, randomLayer, false}};
    for (const Source& s : kSources) {
        addLayerRow(std::string("32-bit dst-over, ") + s.name, kernels::dstOver32Rows,
                    kernels::plain::dstOver32Rows, kOverReverse, 2 * s.isTextLike, s.source,
                    s.layer);
    }
    for (const Source& s : kSources) {
        addLayerRow(std::string("32-bit src-over, ") + s.name, kernels::srcOver32Rows,
                    kernels::plain::srcOver32Rows, kOver, 1.5 * s.isTextLike, s.source, s.layer);
    }
    addMaskRow("mask on or off, random layer", kernels::dstOverNsa8Rows,
               kernels::plain::dstOverNsa8Rows, randomLayer);
    addMaskRow("mask other, random layer", kernels::dstOverSa8Rows, kernels::plain::dstOverSa8Rows,
               randomLayer);
    addMaskRow("overwrite through the mask", kernels::overwrite8Rows,
               kernels::plain::overwrite8Rows, randomLayer);
    addStepRows();
}

}  // namespace gxbench
