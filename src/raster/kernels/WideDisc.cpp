#include "raster/kernels/WideDisc.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <new>

namespace GxFontEffect::kernels {

namespace {

// Where it takes over from going through every pixel's rows.
constexpr int64_t kLeastRadius = 36;

constexpr int64_t kVectorBytes = 64;
constexpr int64_t kMostByteReach = 254;

int cellAt(const DilationBand& band, int64_t x, int64_t y) {
    const int64_t radius = band.kernelSize / 2;
    return band.kernel[(radius + y) * band.kernelSize + radius + x];
}

int64_t roundUp(int64_t count, int64_t unit) {
    return (count + unit - 1) / unit * unit;
}

}  // namespace

bool isWideDisc(const DilationBand& band) {
    const int64_t side = band.kernelSize;
    const int64_t radius = side / 2;
    if (side % 2 == 0 || radius < kLeastRadius) return false;
    const uint8_t* middle = band.kernel + radius * side;
    for (int64_t y = 0; y <= radius; ++y) {
        const uint8_t* row = middle + y * side;
        if (std::memcmp(row, middle - y * side, static_cast<size_t>(side)) != 0) return false;
        bool isWrong = false;
        for (int64_t x = 0; x < radius; ++x) {
            isWrong |= row[x] > row[x + 1] || row[x] != row[side - 1 - x];
        }
        for (int64_t x = 0; y > 0 && x <= radius; ++x) isWrong |= row[x] > row[x - side];
        if (isWrong) return false;
    }
    return true;
}

WideDiscMemory::WideDiscMemory(const DilationBand& band) : radius(band.kernelSize / 2) {
    const int64_t outColumns = band.columns + 2 * radius;
    const int64_t mostColumns = std::clamp<int64_t>(4 * radius, 1024, 4096);
    const int64_t tiles = (outColumns + mostColumns - 1) / mostColumns;
    tileColumns = std::min(outColumns, roundUp((outColumns + tiles - 1) / tiles, 64));
    tileRows = std::min<int64_t>(roundUp(band.rows, 8), 1024);
    // Odd numbers of cache lines: columns would share few places in the cache else.
    inkStride = roundUp(tileColumns + 2 * radius + kPad, 64) | 64;
    tileStride = roundUp(tileColumns + kPad, 64) | 64;
    columnStride = roundUp(tileRows + kPad, 32) | 32;
    tableLength = 2 * (radius + 1 + kPad);
    allocate(tileRows + 2 * radius);
    if (!memory) return;

    if (radius <= kMostByteReach) {
        fillReaches<uint8_t>(band);
    } else {
        fillReaches<uint16_t>(band);
    }
    for (int deficit = 0; deficit < kUnits; ++deficit) {
        uint16_t* closeness = closenessAround(deficit);
        for (int64_t x = -(radius + 1 + kPad); x <= radius + kPad; ++x) {
            closeness[x] = shortOf((radius + 1 - std::abs(x)) * kUnits - deficit);
        }
    }
    for (int level = 0; level < kLevels; ++level) fillNeeds(band, level * 256 / kLevels);
}

void WideDiscMemory::allocate(int64_t outRows) {
    const int64_t reachBytes = radius <= kMostByteReach ? 1 : 2;
    const int64_t sizes[] = {tileRows * inkStride,
                             tileRows * tileStride * reachBytes,
                             tileRows * tileStride * reachBytes,
                             8 * tileStride * 2,
                             (tileColumns + 8) * columnStride * 2,
                             outRows * 2 * kVectorBytes,
                             outRows * int64_t{sizeof(Stretch)},
                             (2 + kUnits + kLevels) * tableLength * 2};
    int64_t total = kVectorBytes;
    for (const int64_t size : sizes) total += roundUp(size, kVectorBytes);
    memory.reset(new (std::nothrow) uint8_t[static_cast<size_t>(total)]);
    if (!memory) return;

    uint8_t* next = memory.get();
    next += (kVectorBytes - reinterpret_cast<uintptr_t>(next) % kVectorBytes) % kVectorBytes;
    uint8_t* parts[std::size(sizes)];
    for (size_t i = 0; i < std::size(sizes); ++i) {
        parts[i] = next;
        next += roundUp(sizes[i], kVectorBytes);
    }
    ink = parts[0];
    full = parts[1];
    any = parts[2];
    closenessRows = reinterpret_cast<uint16_t*>(parts[3]);
    closenessColumns = reinterpret_cast<uint16_t*>(parts[4]);
    fromAbove = parts[5];
    rim = reinterpret_cast<Stretch*>(parts[6]);
    tables = reinterpret_cast<uint16_t*>(parts[7]);
}

template <typename Reach>
void WideDiscMemory::fillReaches(const DilationBand& band) const {
    const auto fill = [&](Reach* reaches, int least) {
        std::fill(reaches - (radius + 1 + kPad), reaches + radius + 1 + kPad, Reach{0});
        int64_t y = radius;
        for (int64_t x = 0; x <= radius; ++x) {
            while (y >= 0 && cellAt(band, x, y) < least) --y;
            reaches[x] = reaches[-x] = static_cast<Reach>(y + 1);
        }
    };
    fill(fullReaches<Reach>(), 255);
    fill(inkReaches<Reach>(), 1);
}

// From cell to cell the kernel falls by 255 at most, so that a pixel which lacks a share of
// coverage gives no more than a full one that much further away.
void WideDiscMemory::fillNeeds(const DilationBand& band, int level) const {
    uint16_t* needed = needs(level);
    std::fill(needed, needed + 2 * radius + 1 + kPad, kMost);
    int64_t x = radius;
    for (int64_t y = 0; y <= radius; ++y) {
        while (x >= 0 && cellAt(band, x, y) <= level) --x;
        if (x < 0) return;
        const int here = cellAt(band, x, y);
        const int beyond = x < radius ? cellAt(band, x + 1, y) : 0;
        // Between the cells the values fall to the level so many units behind x, rounded up.
        const int64_t units = ((here - level) * kUnits + here - beyond - 1) / (here - beyond);
        const int64_t need = (radius + 1 - x) * kUnits - units;
        needed[radius - y] = needed[radius + y] =
            static_cast<uint16_t>(std::min<int64_t>(need, kMost - 1));
    }
}

}  // namespace GxFontEffect::kernels
