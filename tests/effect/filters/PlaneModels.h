// What filters do to planes of numbers, by definition and slowly.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "effect/filters/GxStroke.h"

namespace gxtest {

// Numbers for the pixels of a picture, and one for all around it.
struct Plane {
    template <typename Of>
    Plane(int planeWidth, int planeHeight, int numberAround, const Of& of)
        : width(planeWidth), height(planeHeight), around(numberAround) {
        for (int i = 0; i < width * height; ++i) cells.push_back(of(i % width, i / width));
    }
    int at(int x, int y) const {
        const bool isInside = x >= 0 && y >= 0 && x < width && y < height;
        return isInside ? cells[y * width + x] : around;
    }
    std::vector<uint8_t> bytes() const { return {cells.begin(), cells.end()}; }

    int width, height, around;
    std::vector<int> cells;
};

// The disc of a radius that a stroke spreads by.
struct Disc {
    explicit Disc(float radius) { size = GxFontEffect::makeCircleKernel(&cells, radius); }
    Disc(const Disc&) = delete;
    Disc& operator=(const Disc&) = delete;
    ~Disc() { std::free(cells); }
    int at(int64_t y, int64_t x) const { return cells[y * size + x]; }

    unsigned char* cells = nullptr;
    int size;
};

// Each cell the maximum over those that the disc reaches it from.
inline Plane dilated(const Plane& plane, const Disc& disc) {
    const int half = disc.size / 2;
    const int cells = disc.cells ? disc.size * disc.size : 0;
    return Plane(plane.width, plane.height, plane.around, [&](int x, int y) {
        int most = 0;
        for (int i = 0; i < cells; ++i) {
            const int from = plane.at(x + i % disc.size - half, y + i / disc.size - half);
            most = std::max(most, from + disc.cells[i] - 255);
        }
        return most;
    });
}

// The weights of a core's blur, from the centre outwards, and the sum of both sides.
struct Weights {
    template <typename Compute>
    Weights(const Compute& compute, int radius) : taps(std::max(radius, 0) + 1, -1) {
        compute(taps.data(), &sum, radius);
    }
    // Weighted mean of the cells on a line through (x, y).
    int mean(const Plane& plane, int x, int y, bool isColumn) const {
        const int radius = static_cast<int>(taps.size()) - 1;
        int total = 0;
        for (int i = -radius; i <= radius; ++i) {
            total += taps[std::abs(i)] * (isColumn ? plane.at(x, y + i) : plane.at(x + i, y));
        }
        return total / sum;
    }

    std::vector<int> taps;
    int sum = 0;
};

enum class Order { kRowsFirst, kColumnsFirst };

inline Plane blurred(const Plane& plane, const Weights& weights, Order order) {
    const auto along = [&](const Plane& from, bool isColumn) {
        return Plane(from.width, from.height, from.around,
                     [&](int x, int y) { return weights.mean(from, x, y, isColumn); });
    };
    const bool columnsFirst = order == Order::kColumnsFirst;
    return along(along(plane, columnsFirst), !columnsFirst);
}

}  // namespace gxtest
