// The glows by definition, slowly.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "effect/filters/FilterTesting.h"

namespace gxtest {

using Table = std::array<uint32_t, 257>;

// A glow of `size` through `table` over the scene's layer.
inline GxFontEffect::GxBitmap glowModel(const Scene& scene, float size, const Table& table,
                                        bool inner) {
    GxFontEffect::GxBitmap layer(scene.layer);
    const int m = static_cast<int>(size) + 1;
    if (m <= 0) return layer;
    const int width = scene.box.right - scene.box.left + 4 * m;
    const int height = scene.box.bottom - scene.box.top + 4 * m;
    std::vector<int> work(width * height);
    const auto at = [&](int x, int y) -> int& { return work[y * width + x]; };
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const int coverage = scene.coverageInBox(x - 2 * m, y - 2 * m);
            at(x, y) = inner ? 255 - coverage : coverage;
        }
    }
    for (int pass = std::max(static_cast<int>(m * 0.4750000089406967), 1); pass > 0; --pass) {
        std::vector<int> grown = work;
        for (int y = 1; y < height - 1; ++y) {
            for (int x = 0; x < width; ++x) {
                int sum = 0;
                if (x > 0 && x < width - 1) {
                    for (int i = 0; i < 9; ++i) sum += at(x - 1 + i % 3, y - 1 + i / 3);
                }
                grown[y * width + x] = std::min(sum / 4, 255);
            }
        }
        work = grown;
    }

    const int g = static_cast<int>(static_cast<float>(m) * 0.9f);
    std::vector<int> weights{128};
    int sum = 128;
    for (int i = 1; i <= g; ++i) {
        weights.push_back(static_cast<int>(std::exp(-4.60517 * i * i / (g * g)) * 128 + 0.5));
        sum += 2 * weights.back();
    }
    std::vector<uint32_t> pixels;
    for (int y = 0; y < height; ++y) {
        std::vector<int> row(width, inner ? 255 : 0);
        const bool computed = y >= g && y < height - g;
        for (int x = g; computed && x < width - g; ++x) {
            int total = inner ? 255 * sum : 0;
            for (int i = -g; i <= g; ++i) {
                total += (inner ? -1 : 1) * weights[std::abs(i)] * at(x, y + i);
            }
            row[x] = total / sum;
        }
        for (int x = 0; x < width; ++x) {
            if (!computed || x < g || x >= width - g) {
                pixels.push_back(inner ? 0xFFFFFFFFu : 0u);
                continue;
            }
            int total = inner ? 255 * sum : 0;
            for (int i = -g; i <= g; ++i) {
                total += (inner ? -1 : 1) * weights[std::abs(i)] * row[x + i];
            }
            pixels.push_back(premultiplied(table[256 - total / sum]));
        }
    }
    GxFontEffect::GxBlender().drawBitmapBlend32(scene.box.left - 2 * m, scene.box.top - 2 * m,
                                                &layer, pixels.data(), width, height, width, 2);
    return layer;
}

}  // namespace gxtest
