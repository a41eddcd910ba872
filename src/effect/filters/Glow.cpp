#include "effect/filters/Glow.h"

#include <algorithm>
#include <array>

#include "effect/filters/Shadow.h"
#include "effect/filters/TextMask.h"
#include "effect/filters/WorkPlane.h"
#include "raster/BlendCut.h"
#include "raster/GxMath.h"
#include "raster/kernels/BlendRows.h"
#include "raster/kernels/Growth.h"

namespace GxFontEffect {

namespace {

constexpr int kCentreWeight = 128;
// Shares of the reach, found by eye: the growth makes the glow's solid part, the blur its fall.
constexpr double kGrowthShare = 0.4750000089406967;
constexpr float kBlurShare = 0.9f;
constexpr uint32_t kWhite = 0xFFFFFFFFu;
constexpr int kLast = kRampSize - 1;
// The coverage from which the alpha falls, as a share of the table.
constexpr float kSpread = 0.3f;

// Work figures of a glow of `size` pixels over a text.
struct Geometry {
    Geometry(const TextMask& text, float size)
        : reach(int64_t{toInt(size)} + 1),
          padding(2 * reach),
          width(text.width + 2 * padding),
          height(text.height + 2 * padding),
          passes(std::max(toInt(static_cast<double>(reach) * kGrowthShare), 1)),
          radius(std::max(toInt(static_cast<float>(reach) * kBlurShare), 0)) {}

    int64_t reach;    // size truncated, plus 1; 0 or less: nothing to draw
    int64_t padding;  // pixels around the text on each side
    int64_t width;    // of the work planes
    int64_t height;
    int64_t passes;  // of growth
    int64_t radius;  // of the blur
};

// All memory of one glow.
struct Planes {
    explicit Planes(const Geometry& geometry)
        : mask(geometry.width, 2 * geometry.height),
          scratch(
              std::max(kernels::growthScratchBytes(geometry.width),
                       kernels::blurScratchBytes(geometry.width, geometry.height, geometry.radius)),
              1, Contents::kAny),
          taps(geometry.radius) {}
    explicit operator bool() const { return mask && scratch && static_cast<bool>(taps); }

    uint8_t* blurred() const { return mask.row(mask.height / 2); }

    WorkPlane<uint8_t> mask;     // the blurred one behind it
    WorkPlane<uint8_t> scratch;  // for the growth, then for the blur
    BlurTaps taps;
};

void invert(uint8_t* cells, int64_t count) {
    for (int64_t i = 0; i < count; ++i) {
        cells[i] = static_cast<uint8_t>(255 - cells[i]);
    }
}

// Lays the blurred coverage, in the colours of `table`, beneath what the layer holds. The inner
// glow's cells that the blur did not reach, which hold 255, are opaque white.
void paint(const TextMask& text, const Geometry& geometry, const Planes& planes,
           const uint32_t* table, GlowSide side, const GxBitmap* layer) {
    const int64_t frame = geometry.radius;
    const int64_t right = geometry.width - frame;
    const int64_t bottom = geometry.height - frame;
    const auto part = [&](int64_t x0, int64_t y0, int64_t x1, int64_t y1) {
        return cutMaskOntoLayer(text.left - geometry.padding + x0, text.top - geometry.padding + y0,
                                layer, planes.blurred() + y0 * geometry.width + x0, x1 - x0,
                                y1 - y0, geometry.width);
    };
    kernels::dstOverMapped8Rows(part(frame, frame, right, bottom), table);
    if (side == GlowSide::kOuter) return;
    for (const kernels::BlendArea& area :
         {part(0, 0, geometry.width, frame), part(0, frame, frame, bottom),
          part(right, frame, geometry.width, bottom),
          part(0, bottom, geometry.width, geometry.height)}) {
        kernels::dstOver8Rows(area, kernels::fromWord(kWhite));
    }
}

}  // namespace

void computeGlowWeights(int* weights, int* sum, int radius) {
    fillGaussianWeights(weights, sum, radius, kCentreWeight, WeightRounding::kDouble);
}

void makeGlowTable(const GxOuterGlowProperty* record, uint32_t* table, float spread, int curve) {
    if (!table) return;
    const bool invisible = !record || record->size == 0.0f;
    std::fill_n(table, kRampSize, invisible ? 0u : record->color);
    if (invisible) return;
    fillColorRamp(table, record->stops, record->stopCount, 0.0f, curve);

    const float share = spread >= 1.0f ? 0.99f : spread > 0.0f ? spread : 0.01f;
    const int start = toInt(static_cast<double>(share) * 256.0);
    for (int i = start; i <= kLast; ++i) {
        const auto factor = static_cast<uint32_t>(
            toInt(static_cast<float>(256 - i) * 256.0f / static_cast<float>(256 - start)));
        const uint32_t alpha = ((table[i] >> 24) * factor) >> 8;
        table[i] = (table[i] & 0x00FFFFFFu) | alpha << 24;
    }
    table[kLast] = 0;
}

int glowReach(float size) {
    return saturateInt(std::max<int64_t>(2 * (int64_t{toInt(size)} + 1), 0));
}

void growWithOwnMemory(unsigned char* mask, int passes, int width, int height) {
    if (!mask || width < 1) return;
    const WorkPlane<uint8_t> scratch(kernels::growthScratchBytes(width), 1, Contents::kAny);
    if (scratch) kernels::growMask(mask, width, height, passes, scratch.data());
}

// A glow in steps:
//   1. copy the mask, or its inverse, into a plane with room for growth and blur;
//   2. grow it: the text spreads outwards, or the background pushes into the glyphs;
//   3. blur it; the inner glow takes the inverse in each direction, so that what falls off the
//      plane is background;
//   4. map the coverage to colours and lay them beneath the layer.
void renderGlow(GxECore::ParamPostProcessing* param, const GxOuterGlowProperty* record,
                GlowSide side) {
    const TextMask text(param);
    if (!record || !text.isValid()) return;
    const Geometry geometry(text, record->size);
    if (geometry.reach < 1) return;
    const Planes planes(geometry);
    if (!isAllocated(*param, planes)) return;
    std::array<uint32_t, kRampSize> table;
    makeGlowTable(record, table.data(), kSpread, GXE_CURVE_LINEAR);

    // 1. The mask.
    text.copyTo(planes.mask.row(geometry.padding) + geometry.padding, geometry.width);
    if (side == GlowSide::kInner) invert(planes.mask.data(), geometry.width * geometry.height);
    // 2. Growth.
    kernels::growMask(planes.mask.data(), geometry.width, geometry.height, geometry.passes,
                      planes.scratch.data());
    // 3. Blur.
    kernels::blurPlane(
        planes.mask.data(), planes.blurred(), geometry.width, geometry.height,
        planes.taps.compute(computeGlowWeights),
        side == GlowSide::kInner ? kernels::BlurInput::kInverse : kernels::BlurInput::kDirect,
        planes.scratch.data());
    // 4. Colour.
    paint(text, geometry, planes, table.data(), side, param->dst);
}

}  // namespace GxFontEffect
