#include "raster/kernels/ReliefLight.h"

namespace GxFontEffect::kernels::plain {

namespace {

// The corners between two rows of cells; corner x lies between cells x and x + 1.
void lightCorners(const uint16_t* above, const uint16_t* below, int64_t count,
                  const ReliefLighting& light, int16_t* corners) {
    for (int64_t x = 0; x < count; ++x) {
        corners[x] = static_cast<int16_t>(
            lightAtCorner(above[x], above[x + 1], below[x], below[x + 1], light));
    }
}

bool isShown(uint8_t coverage, ReliefPart part) {
    if (part == ReliefPart::kCovered) return coverage > 0;
    return part == ReliefPart::kAll || coverage < 255;
}

}  // namespace

void reliefLight(uint16_t* heights, int64_t width, int64_t height, const ReliefLighting& light,
                 uint8_t* scratch) {
    auto* corners = reinterpret_cast<int16_t*>(scratch);
    const auto row = [&](int64_t y) { return corners + y % 2 * width; };
    for (int64_t y = 0; y + 1 < height; ++y) {
        uint16_t* cells = heights + y * width;
        lightCorners(cells, cells + width, width - 1, light, row(y));
        if (y == 0) continue;
        const int16_t *above = row(y - 1), *below = row(y);
        uint16_t* out = cells - width;
        for (int64_t x = 0; x + 2 < width; ++x) {
            const int32_t sum = above[x] + above[x + 1] + below[x] + below[x + 1];
            out[x] = static_cast<uint16_t>(kLevelLight + ((sum + 2) >> 2));
        }
    }
}

void reliefMasks(const uint16_t* light, const uint8_t* coverage, int64_t count, ReliefPart part,
                 uint8_t* highlight, uint8_t* shadow) {
    for (int64_t x = 0; x < count; ++x) {
        const int32_t w = light[x] - kLevelLight;
        const bool shown = isShown(coverage[x], part);
        highlight[x] = static_cast<uint8_t>(shown && w >= 0 ? (w + 32) >> 6 : 0);
        shadow[x] = static_cast<uint8_t>(shown && w < 0 ? (32 - w) >> 6 : 0);
    }
}

}  // namespace GxFontEffect::kernels::plain
