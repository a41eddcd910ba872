// Rows of the gradients and the pattern: the filters as a whole, blend included.
#include <cmath>
#include <cstring>
#include <memory>
#include <utility>
#include <vector>

#include "Bench.h"
#include "Painter.h"
#include "Planes.h"
#include "effect/GxProperty.h"
#include "effect/filters/GxLinearGradient.h"
#include "effect/filters/GxPattern.h"
#include "effect/filters/GxRadialGradient.h"
#include "raster/kernels/GradientRows.h"
#include "raster/kernels/PatternRows.h"

#ifdef GXBENCH_PIXMAN
#include <pixman.h>
#endif

namespace gxbench {

namespace {

using namespace GxFontEffect;

constexpr const char* kPixman = "pixman";
constexpr int kPicture = 64;
constexpr float kPictureScale = 1.5f;
constexpr float kAngle = 30;

// What a fill paints with; the layer gets back what it held before each run.
struct FillScene {
    FillScene(const Mask& content, Layer start)
        : mask(kWidth, kHeight, content.data(), 1),
          before(std::move(start)),
          layer(kWidth, kHeight, 4),
          picture(kPicture, kPicture, 4),
          box(0, 0, kWidth, kHeight) {
        for (int i = 0; i < kPicture * kPicture; ++i) {
            const auto wave = [&](float x, float y) {
                return static_cast<uint8_t>(128 + 127 * std::sin(x * 0.2f) * std::cos(y * 0.1f));
            };
            const auto x = static_cast<float>(i % kPicture);
            const auto y = static_cast<float>(i / kPicture);
            const uint8_t argb[4] = {255, wave(x, y), wave(y, x), wave(x + y, 0)};
            std::memcpy(picture.data + i * 4, argb, 4);
        }
    }

    void restore() { std::memcpy(layer.data, before.data(), kPixels * sizeof(uint32_t)); }
    kernels::BlendArea area() const {
        return {layer.data, kWidth * 4, mask.data, kWidth, kWidth, kHeight};
    }

    GxBitmap mask;
    Layer before;
    GxBitmap layer;
    GxBitmap picture;
    GxRect box;
};

using FillScenePtr = std::shared_ptr<FillScene>;

const GxGradient kStops[] = {
    {0xFFFF4020, 1, 0}, {0xFFFFE040, 1, 0.3f}, {0xFF20A0FF, 1, 0.7f}, {0xFF6020C0, 1, 1}};
constexpr int kStopCount = 4;

// The plain forms of the pixels alone, in the colours of a table: what the stops are does not
// matter to them.
kernels::GradientFill gradientOf(const FillScene& scene) {
    static const std::vector<uint32_t> table = [] {
        std::vector<uint32_t> colors;
        for (uint32_t i = 0; i < 256; ++i) colors.push_back(0xFF000000 | i * 0x10203);
        return colors;
    }();
    kernels::GradientFill fill;
    fill.area = scene.area();
    fill.centreX = kWidth * 0.5f;
    fill.centreY = kHeight * 0.5f;
    fill.table = table.data();
    return fill;
}

// --- pixman ---

#ifdef GXBENCH_PIXMAN

using Image = std::shared_ptr<pixman_image_t>;

Image owned(pixman_image_t* image) {
    return {image, pixman_image_unref};
}

Image bits(pixman_format_code_t format, int width, int height, uint8_t* data, int stride) {
    return owned(
        pixman_image_create_bits(format, width, height, reinterpret_cast<uint32_t*>(data), stride));
}

// Channels in the order that pixman is fastest with: the work is the same.
std::function<void()> throughMask(const FillScenePtr& scene, const Image& source) {
    const Image mask = bits(PIXMAN_a8, kWidth, kHeight, scene->mask.data, kWidth);
    const Image layer = bits(PIXMAN_a8r8g8b8, kWidth, kHeight, scene->layer.data, kWidth * 4);
    return [=] {
        pixman_image_composite32(PIXMAN_OP_OVER_REVERSE, source.get(), mask.get(), layer.get(), 0,
                                 0, 0, 0, 0, 0, kWidth, kHeight);
    };
}

std::vector<pixman_gradient_stop_t> pixmanStops() {
    std::vector<pixman_gradient_stop_t> stops;
    for (const GxGradient& stop : kStops) {
        const auto channel = [&](int shift) {
            return static_cast<uint16_t>((stop.color >> shift & 255) * 257);
        };
        stops.push_back({pixman_double_to_fixed(stop.position),
                         {channel(16), channel(8), channel(0), channel(24)}});
    }
    return stops;
}

pixman_point_fixed_t point(double x, double y) {
    return {pixman_double_to_fixed(x), pixman_double_to_fixed(y)};
}

std::function<void()> pixmanLinear(const FillScenePtr& scene) {
    const double radians = double{kAngle} * M_PI / 180;
    const double dx = kHeight / std::sin(radians) / 2 * std::cos(radians);
    const pixman_point_fixed_t from = point(kWidth / 2.0 - dx, kHeight);
    const pixman_point_fixed_t to = point(kWidth / 2.0 + dx, 0);
    const auto stops = pixmanStops();
    return throughMask(
        scene, owned(pixman_image_create_linear_gradient(&from, &to, stops.data(), kStopCount)));
}

std::function<void()> pixmanRadial(const FillScenePtr& scene) {
    const pixman_point_fixed_t centre = point(kWidth / 2.0, kHeight / 2.0);
    const auto stops = pixmanStops();
    const Image source = owned(pixman_image_create_radial_gradient(
        &centre, &centre, 0, pixman_int_to_fixed(kWidth / 2), stops.data(), kStopCount));
    pixman_image_set_repeat(source.get(), PIXMAN_REPEAT_PAD);
    return throughMask(scene, source);
}

std::function<void()> pixmanPattern(const FillScenePtr& scene, float scale) {
    const Image source =
        bits(PIXMAN_a8r8g8b8, kPicture, kPicture, scene->picture.data, kPicture * 4);
    pixman_transform_t transform;
    const pixman_fixed_t shrink = pixman_double_to_fixed(1 / double{scale});
    pixman_transform_init_scale(&transform, shrink, shrink);
    pixman_image_set_transform(source.get(), &transform);
    pixman_image_set_filter(source.get(), PIXMAN_FILTER_BILINEAR, nullptr, 0);
    pixman_image_set_repeat(source.get(), PIXMAN_REPEAT_NORMAL);
    return throughMask(scene, source);
}

#else

std::function<void()> pixmanLinear(const FillScenePtr& /*scene*/) {
    return {};
}
std::function<void()> pixmanRadial(const FillScenePtr& /*scene*/) {
    return {};
}
std::function<void()> pixmanPattern(const FillScenePtr& /*scene*/, float /*scale*/) {
    return {};
}

#endif

// --- rows ---

Contenders linear(const FillScenePtr& scene, float angle, float scale) {
    const GxLinearGradientProperty record(angle, scale, 1, kStopCount, kStops);
    const float radians = angle * -0.01745328f;
    const float step = 256.0f / scale * std::abs(std::sin(radians)) / kHeight;
    return {{},
            painter<GxLinearGradient>(scene, record),
            [=] {
                kernels::plain::linearGradientRows(gradientOf(*scene), step * std::cos(radians),
                                                   step * std::sin(radians));
            },
            pixmanLinear(scene)};
}

Contenders linear30(const FillScenePtr& scene) {
    return linear(scene, kAngle, 1);
}

// Steep: the pixels of a vector lie far apart in the table.
Contenders linearSteep(const FillScenePtr& scene) {
    Contenders contenders = linear(scene, kAngle, 0.1f);
    contenders.peer = {};
    return contenders;
}

Contenders radial(const FillScenePtr& scene) {
    const GxRadialGradientProperty record(0, 1, 1, kStopCount, kStops);
    return {{},
            painter<GxRadialGradient>(scene, record),
            [=] { kernels::plain::radialGradientRows(gradientOf(*scene), 512.0f / kWidth); },
            pixmanRadial(scene)};
}

Contenders patternAt(const FillScenePtr& scene, float scale) {
    const GxPatternProperty record(&scene->picture, scale, 1);
    return {{},
            painter<GxPattern>(scene, record),
            [=] {
                kernels::PatternFill fill;
                fill.area = scene->area();
                const auto extent = static_cast<int32_t>(kPicture * scale);
                fill.tile = {scene->picture.data, kPicture, kPicture, scale, 1, extent, extent};
                kernels::plain::patternRows(fill);
            },
            pixmanPattern(scene, scale)};
}

Contenders pattern(const FillScenePtr& scene) {
    return patternAt(scene, kPictureScale);
}

// Tiles of 640 pixels: most rows are not repeated.
Contenders widePattern(const FillScenePtr& scene) {
    return patternAt(scene, 10);
}

void addFillRow(const std::string& operation, Contenders (*make)(const FillScenePtr&),
                Targets targets, Mask (*mask)(), Layer (*layer)()) {
    addRow({operation, kPixman, targets, kPixels, [=] {
                const auto scene = std::make_shared<FillScene>(mask(), layer());
                Contenders contenders = make(scene);
                contenders.prepare = [=] { scene->restore(); };
                return contenders;
            }});
}

}  // namespace

void addFillRows() {
    struct Fill {
        const char* name;
        Contenders (*make)(const FillScenePtr&);
        Targets targets;  // on text
    };
    constexpr Fill kFills[] = {{"linear gradient", linear30, {0, 8}},
                               {"radial gradient", radial, {0, 9}},
                               {"pattern", pattern, {7, 4}}};
    struct Content {
        const char* name;
        Mask (*mask)();
        Layer (*layer)();
        bool isTextLike;
    };
    const Content contents[] = {
        {"text on clear", [] { return textMask(); }, [] { return filledLayer(0); }, true},
        {"text on random", [] { return textMask(); }, randomLayer, true},
        {"empty on random", [] { return filledMask(0); }, randomLayer, false},
        {"full on random", [] { return filledMask(255); }, randomLayer, false},
        {"noise on random", noiseMask, randomLayer, false},
        {"patches on random", patchyMask, randomLayer, false}};
    for (const Fill& fill : kFills) {
        for (const Content& content : contents) {
            addFillRow(std::string(fill.name) + ", " + content.name, fill.make,
                       content.isTextLike ? fill.targets : Targets(), content.mask, content.layer);
        }
    }
    addFillRow("linear gradient, steep, text", linearSteep, {}, contents[1].mask, randomLayer);
    addFillRow("pattern, wide, text", widePattern, {}, contents[1].mask, randomLayer);
}

}  // namespace gxbench
