#include "effect/filters/Glow.h"

#include <algorithm>

#include "raster/GxBlender.h"
#include "raster/GxMath.h"
#include "raster/kernels/ColorMap.h"
#include "raster/kernels/Growth.h"

namespace GxFontEffect {

namespace {

constexpr int kCentreWeight = 128;
// Shares of the reach, found by eye: the growth makes the glow's solid part, the blur its fall.
constexpr double kGrowthShare = 0.4750000089406967;
constexpr float kBlurShare = 0.9f;
constexpr uint32_t kWhite = 0xFFFFFFFFu;
constexpr int kLast = kernels::kColorTableSize - 1;

}  // namespace

GlowGeometry::GlowGeometry(const TextMask& text, float size)
    : reach(int64_t{toInt(size)} + 1),
      padding(2 * reach),
      width(text.width + 2 * padding),
      height(text.height + 2 * padding),
      passes(std::max(toInt(static_cast<double>(reach) * kGrowthShare), 1)),
      radius(std::max(toInt(static_cast<float>(reach) * kBlurShare), 0)) {}

GlowPlanes::GlowPlanes(const GlowGeometry& geometry)
    : mask(geometry.width, geometry.height),
      blurred(geometry.width, geometry.height),
      rows(geometry.width, 2),
      pixels(geometry.width),
      taps(geometry.radius) {}

void computeGlowWeights(int* weights, int* sum, int radius) {
    fillGaussianWeights(weights, sum, radius, kCentreWeight, WeightRounding::kDouble);
}

void makeGlowTable(const GxOuterGlowProperty* record, uint32_t* table, float spread, int curve) {
    if (!table) return;
    const bool invisible = !record || record->size == 0.0f;
    std::fill_n(table, kernels::kColorTableSize, invisible ? 0u : record->color);
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

void growWithOwnMemory(unsigned char* mask, int passes, int width, int height) {
    if (!mask || width < 1) return;
    const WorkPlane<uint8_t> rows(width, 2);
    if (rows) kernels::growMask(mask, width, height, passes, rows.data());
}

void paintGlow(const TextMask& text, const GlowGeometry& geometry, const GlowPlanes& planes,
               const uint32_t* table, bool whiteFrame, const GxBitmap* layer) {
    uint32_t* pixels = planes.pixels.data();
    const int64_t width = geometry.width;
    const int64_t frame = whiteFrame ? geometry.radius : 0;
    for (int64_t y = 0; y < geometry.height; ++y) {
        if (y < frame || y >= geometry.height - frame) {
            std::fill_n(pixels, width, kWhite);
        } else {
            kernels::mapCoverage(planes.blurred.row(y), pixels, width, table);
            std::fill_n(pixels, frame, kWhite);
            std::fill_n(pixels + width - frame, frame, kWhite);
        }
        drawPixels(text.left - geometry.padding, text.top - geometry.padding + y, layer, pixels,
                   width, 1, width, GXE_BLEND_DST_OVER);
    }
}

}  // namespace GxFontEffect
