#include "raster/kernels/PatternRows.h"

#include <algorithm>
#include <cmath>

#include "raster/GxMath.h"
#include "raster/kernels/BlendPixel.h"

namespace GxFontEffect::kernels {

namespace {

// Where an output coordinate falls between two picture pixels.
struct Sample {
    Sample(int64_t coordinate, int32_t tile, float scale, int64_t extent) {
        const int64_t inTile = tile == 0 ? coordinate : coordinate % tile;
        const float position = static_cast<float>(inTile) / scale;
        const float whole = std::floor(position);
        const int64_t index = toInt(whole);
        near = std::clamp<int64_t>(index, 0, extent - 1);
        next = index + 1 < extent ? near + 1 : 0;
        weight = toInt((position - whole) * 255.0f);
    }
    int64_t near;
    int64_t next;
    int32_t weight;  // of `next`, 0-255
};

}  // namespace

void patternRowPlain(const PatternTile& tile, int64_t first, int64_t y, int64_t count,
                     const uint8_t* mask, uint32_t* out) {
    const Sample row(y, tile.tileHeight, tile.scale, tile.height);
    const uint8_t* upper = tile.pixels + row.near * tile.width * 4;
    const uint8_t* lower = tile.pixels + row.next * tile.width * 4;
    for (int64_t i = 0; i < count; ++i) {
        if (mask[i] == 0) {
            out[i] = 0;
            continue;
        }
        const Sample column(first + i, tile.tileWidth, tile.scale, tile.width);
        const auto between = [&](const uint8_t* texels, int64_t byte) {
            return column.weight * texels[column.next * 4 + byte] +
                   (255 - column.weight) * texels[column.near * 4 + byte];
        };
        const auto filtered = [&](int64_t byte) {
            const int sum =
                between(lower, byte) * row.weight + between(upper, byte) * (255 - row.weight);
            return static_cast<uint32_t>(sum >> 16) & 0xFFu;
        };
        const float alpha = tile.opacity * static_cast<float>(filtered(0));
        const auto a = static_cast<uint32_t>(toInt(clampFloat(alpha, 0.0f, 255.0f)));
        out[i] = premultiplied(a << 24 | filtered(1) << 16 | filtered(2) << 8 | filtered(3));
    }
}

void patternRow(const PatternTile& tile, int64_t first, int64_t y, int64_t count,
                const uint8_t* mask, uint32_t* out) {
    patternRowPlain(tile, first, y, count, mask, out);
}

}  // namespace GxFontEffect::kernels
