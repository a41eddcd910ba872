// What the dilation by a wide disc works with; see WideDisc-inl.h.
#pragma once

#include <cstdint>
#include <memory>

#include "raster/kernels/DiscDilation.h"

namespace GxFontEffect::kernels {

// Whether a band's kernel is a disc wide enough for it: four equal quadrants that grow weaker away
// from the middle row and column.
bool isWideDisc(const DilationBand& band);

// Work memory for tiles of the output, one allocation.
struct WideDiscMemory {
    // Steps in which a pixel's value, and shares of a pixel's width, are told apart.
    static constexpr int kLevels = 16;
    static constexpr int kUnits = 16;
    // Numbers that vectors may read and write behind those that count.
    static constexpr int64_t kPad = 64;

    struct Stretch {
        int64_t row;
        uint64_t columns;  // one bit each
    };

    explicit WideDiscMemory(const DilationBand& band);
    explicit operator bool() const { return memory != nullptr; }

    int64_t tileColumns;  // of output
    int64_t tileRows;     // of the mask
    int64_t inkStride;
    int64_t tileStride;
    int64_t columnStride;
    int64_t tableLength;

    // For each of tileRows: ink that reaches the tile, bytes; how far full pixels and any ink reach
    // up and down, bytes up to a radius of 254, beyond 16 bits.
    uint8_t* ink = nullptr;
    uint8_t* full = nullptr;
    uint8_t* any = nullptr;
    uint16_t* closenessRows = nullptr;     // 8
    uint16_t* closenessColumns = nullptr;  // tileColumns
    uint8_t* fromAbove = nullptr;          // two vectors for each row of the tile's output
    Stretch* rim = nullptr;                // one of these
    uint16_t* tables = nullptr;            // 2 + kUnits + kLevels of tableLength

private:
    std::unique_ptr<uint8_t[]> memory;
};

}  // namespace GxFontEffect::kernels
