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

constexpr int kGlowCentreWeight = 128;
// Shares of the reach, found by eye: the growth makes the glow's solid part, the blur its fall.
constexpr double kGrowthShare = 0.4750000089406967;
constexpr float kBlurShare = 0.9f;
constexpr uint32_t kWhite = 0xFFFFFFFFu;
constexpr int kLastEntry = kRampSize - 1;
// The coverage from which the alpha falls, as a share of the table.
constexpr float kSpread = 0.3f;

// Work figures of a glow of `size` pixels over a text. Plane extents are those that let columns be
// blurred in place; growth never gets to the plane's edge, so larger ones change nothing.
struct GlowGeometry {
    GlowGeometry(const TextMask& text, float size, GlowSide side)
        : reach(int64_t{toInt(size)} + 1),
          padding(2 * reach),
          width(text.width + 2 * padding),
          height(text.height + 2 * padding),
          stride(side == GlowSide::kOuter ? roundUp(width, kernels::kBlurStripWidth) : width),
          rows(side == GlowSide::kOuter ? roundUp(height, 2) : height),
          passes(std::max(toInt(static_cast<double>(reach) * kGrowthShare), 1)),
          radius(std::max(toInt(static_cast<float>(reach) * kBlurShare), 0)) {}

    int64_t reach;    // size truncated, plus 1; 0 or less: nothing to draw
    int64_t padding;  // pixels around the text on each side
    int64_t width;    // of text and padding
    int64_t height;
    int64_t stride;  // of the work planes
    int64_t rows;
    int64_t passes;  // of growth
    int64_t radius;  // of the blur
};

// All memory of one glow. The inner one's second plane lies behind the first.
struct GlowPlanes {
    GlowPlanes(const GlowGeometry& geometry, GlowSide side)
        : mask(geometry.stride, geometry.rows * (side == GlowSide::kInner ? 2 : 1)),
          scratch(
              std::max(kernels::growthScratchBytes(geometry.stride),
                       kernels::blurScratchBytes(geometry.stride, geometry.rows, geometry.radius)),
              1, Contents::kAny),
          strip(side == GlowSide::kOuter ? geometry.stride : 0, kernels::kBlurStripWidth,
                Contents::kAny),
          taps(geometry.radius) {}
    explicit operator bool() const { return mask && scratch && strip && static_cast<bool>(taps); }

    WorkPlane<uint8_t> mask;
    WorkPlane<uint8_t> scratch;  // for the growth, then for the blur
    WorkPlane<uint8_t> strip;    // rows of the outer glow, blurred
    BlurTaps taps;
};

void invert(uint8_t* cells, int64_t count) {
    for (int64_t i = 0; i < count; ++i) {
        cells[i] = static_cast<uint8_t>(255 - cells[i]);
    }
}

// What part of the layer cells of a blurred plane lie over; its first cell is (x0, y0) of the
// padded text.
kernels::BlendArea layerUnder(const TextMask& text, const GlowGeometry& geometry,
                              const GxBitmap* layer, int64_t x0, int64_t y0, const uint8_t* cells,
                              int64_t columns, int64_t rows) {
    return cutMaskOntoLayer(text.left - geometry.padding + x0, text.top - geometry.padding + y0,
                            layer, cells, columns, rows, geometry.stride);
}

// Blurs the mask, columns in place, then some rows at a time, which are painted from the nearest
// cache.
void paintOuter(const TextMask& text, const GlowGeometry& geometry, const GlowPlanes& planes,
                const uint32_t* table, const GxBitmap* layer) {
    const int64_t frame = geometry.radius;
    const int64_t columns = geometry.width - 2 * frame;
    const int64_t height = geometry.height - 2 * frame;
    const kernels::BlurWeights weights = planes.taps.compute(computeGlowWeights);
    kernels::blurColumns({planes.mask.data(), geometry.stride, planes.mask.data(), geometry.stride,
                          geometry.stride, geometry.rows - 2 * frame},
                         weights, kernels::BlurInput::kDirect, planes.scratch.data());
    for (int64_t y = 0; y < height; y += planes.strip.height) {
        const int64_t rows = std::min(planes.strip.height, height - y);
        kernels::blurRows({planes.mask.row(y), geometry.stride, planes.strip.data(),
                           geometry.stride, columns, rows},
                          weights, kernels::BlurInput::kDirect, planes.scratch.data());
        kernels::dstOverMapped8Rows(
            layerUnder(text, geometry, layer, frame, frame + y, planes.strip.data(), columns, rows),
            table);
    }
}

// Takes the inverse in each direction, so that what falls off the plane is background. Cells that
// the blur did not reach, which hold 255, are opaque white.
void paintInner(const TextMask& text, const GlowGeometry& geometry, const GlowPlanes& planes,
                const uint32_t* table, const GxBitmap* layer) {
    uint8_t* blurred = planes.mask.row(geometry.rows);
    kernels::blurPlane(planes.mask.data(), blurred, geometry.width, geometry.height,
                       planes.taps.compute(computeGlowWeights), kernels::BlurInput::kInverse,
                       planes.scratch.data());
    const int64_t frame = geometry.radius;
    const int64_t right = geometry.width - frame;
    const int64_t bottom = geometry.height - frame;
    const auto part = [&](int64_t x0, int64_t y0, int64_t x1, int64_t y1) {
        return layerUnder(text, geometry, layer, x0, y0, blurred + y0 * geometry.stride + x0,
                          x1 - x0, y1 - y0);
    };
    kernels::dstOverMapped8Rows(part(frame, frame, right, bottom), table);
    for (const kernels::BlendArea& area :
         {part(0, 0, geometry.width, frame), part(0, frame, frame, bottom),
          part(right, frame, geometry.width, bottom),
          part(0, bottom, geometry.width, geometry.height)}) {
        kernels::dstOver8Rows(area, kernels::fromWord(kWhite));
    }
}

}  // namespace

void computeGlowWeights(int* weights, int* sum, int radius) {
    fillGaussianWeights(weights, sum, radius, kGlowCentreWeight, WeightRounding::kDouble);
}

void makeGlowTable(const GxOuterGlowProperty* record, uint32_t* table, float spread, int curve) {
    if (!table) return;
    const bool invisible = !record || record->size == 0.0f;
    std::fill_n(table, kRampSize, invisible ? 0u : record->color);
    if (invisible) return;
    fillColorRamp(table, record->stops, record->stopCount, 0.0f, curve);

    const float share = spread >= 1.0f ? 0.99f : spread > 0.0f ? spread : 0.01f;
    const int start = toInt(static_cast<double>(share) * 256.0);
    for (int i = start; i <= kLastEntry; ++i) {
        const auto factor = static_cast<uint32_t>(
            toInt(static_cast<float>(256 - i) * 256.0f / static_cast<float>(256 - start)));
        const uint32_t alpha = ((table[i] >> 24) * factor) >> 8;
        table[i] = (table[i] & 0x00FFFFFFu) | alpha << 24;
    }
    table[kLastEntry] = 0;
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
//   3. blur it;
//   4. map the coverage to colours and lay them beneath the layer.
void renderGlow(GxECore::ParamPostProcessing* param, const GxOuterGlowProperty* record,
                GlowSide side) {
    const TextMask text(param);
    if (!record || !text.isValid()) return;
    const GlowGeometry geometry(text, record->size, side);
    if (geometry.reach < 1) return;
    const GlowPlanes planes(geometry, side);
    if (!isAllocated(*param, planes)) return;
    std::array<uint32_t, kRampSize> table;
    makeGlowTable(record, table.data(), kSpread, GXE_CURVE_LINEAR);

    // 1. The mask.
    text.copyTo(planes.mask.row(geometry.padding) + geometry.padding, geometry.stride);
    if (side == GlowSide::kInner) invert(planes.mask.data(), geometry.stride * geometry.rows);
    // 2. Growth.
    kernels::growMask(planes.mask.data(), geometry.stride, geometry.rows, geometry.passes,
                      planes.scratch.data());
    // 3. and 4.
    if (side == GlowSide::kOuter) {
        paintOuter(text, geometry, planes, table.data(), param->dst);
    } else {
        paintInner(text, geometry, planes, table.data(), param->dst);
    }
}

}  // namespace GxFontEffect
