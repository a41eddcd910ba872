#include "raster/kernels/PatternRows.h"

#include <algorithm>
#include <cmath>

#include "raster/GxMath.h"

namespace GxFontEffect::kernels {

PatternSample::PatternSample(int64_t coordinate, int32_t tile, float scale, int64_t extent) {
    const int64_t inTile = tile == 0 ? coordinate : coordinate % tile;
    const float position = static_cast<float>(inTile) / scale;
    const float whole = std::floor(position);
    const int64_t index = toInt(whole);
    near = std::clamp<int64_t>(index, 0, extent - 1);
    next = index + 1 < extent ? near + 1 : 0;
    weight = toInt((position - whole) * 255.0f);
}

}  // namespace GxFontEffect::kernels

namespace GxFontEffect::kernels::plain {

namespace {

uint32_t patternPixel(const PatternTile& tile, const PatternSample& column,
                      const PatternSample& row) {
    const auto between = [&](int64_t y, int64_t byte) {
        const uint8_t* texels = tile.pixels + y * tile.width * 4 + byte;
        return column.weight * texels[column.next * 4] +
               (255 - column.weight) * texels[column.near * 4];
    };
    const auto filtered = [&](int64_t byte) {
        const int sum =
            between(row.next, byte) * row.weight + between(row.near, byte) * (255 - row.weight);
        return static_cast<uint32_t>(sum >> 16) & 0xFFu;
    };
    const float alpha = tile.opacity * static_cast<float>(filtered(0));
    const auto a = static_cast<uint32_t>(toInt(clampFloat(alpha, 0.0f, 255.0f)));
    return premultiplied(a << 24 | filtered(1) << 16 | filtered(2) << 8 | filtered(3));
}

}  // namespace

void patternRows(const PatternFill& fill) {
    const PatternTile& tile = fill.tile;
    const BlendArea& area = fill.area;
    for (int64_t y = 0; y < static_cast<int64_t>(area.height); ++y) {
        const uint8_t* mask = area.source + y * area.sourceStride;
        auto* out = reinterpret_cast<Rgba*>(area.destination + y * area.destinationStride);
        const PatternSample row(fill.firstRow + y, tile.tileHeight, tile.scale, tile.height);
        for (int64_t x = 0; x < static_cast<int64_t>(area.width); ++x) {
            if (mask[x] == 0) continue;
            const PatternSample column(fill.firstColumn + x, tile.tileWidth, tile.scale,
                                       tile.width);
            out[x] = dstOver32(out[x], fromWord(patternPixel(tile, column, row)));
        }
    }
}

}  // namespace GxFontEffect::kernels::plain
