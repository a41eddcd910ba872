#include "raster/kernels/WideDisc.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace GxFontEffect::kernels {

namespace {

// Where it takes over from going through every pixel's rows.
constexpr int64_t kLeastRadius = 36;

constexpr int64_t kVectorBytes = 64;

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

WideDiscMemory::WideDiscMemory(const DilationBand& band) {
    const int64_t radius = band.kernelSize / 2;
    const int64_t reachBytes = radius < 255 ? 1 : 2;
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

    const int64_t outRows = tileRows + 2 * radius;
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

}  // namespace GxFontEffect::kernels
