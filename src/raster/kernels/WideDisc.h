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
    // Steps in which values and shares of a pixel are told apart.
    static constexpr int kLevels = 16;
    static constexpr int kUnits = 16;
    static constexpr uint16_t kMost = 65535;
    // Numbers that vectors may read and write behind those that count.
    static constexpr int64_t kPad = 64;

    struct Stretch {
        int64_t row;
        uint64_t columns;  // one bit each
    };

    // Measures the kernel's cells.
    explicit WideDiscMemory(const DilationBand& band);
    explicit operator bool() const { return memory != nullptr; }

    // By columns from the centre, -(radius + 1 + kPad) to radius + kPad, how many rows from the
    // middle one on are full or have something. Reach is uint8_t up to a radius of 254, beyond
    // uint16_t.
    template <typename Reach>
    Reach* fullReaches() const {
        return reinterpret_cast<Reach*>(tables) + radius + 1 + kPad;
    }
    template <typename Reach>
    Reach* inkReaches() const {
        return fullReaches<Reach>() + tableLength;
    }
    // By columns likewise, how close a pixel is that lacks so many units of full coverage: in units
    // from the first column beyond the disc.
    uint16_t* closenessAround(int deficit) const {
        return tables + (2 + deficit) * tableLength + radius + 1 + kPad;
    }
    // By rows from the disc's first on, and kPad behind the last, the closeness that ink has to
    // pass to give more than `value`.
    uint16_t* needs(int value) const {
        return tables + (2 + kUnits + value * kLevels / 256) * tableLength;
    }
    static uint16_t shortOf(int64_t closeness) {
        return static_cast<uint16_t>(closeness < 0 ? 0 : closeness < kMost ? closeness : kMost);
    }

    int64_t radius;
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
    void allocate(int64_t rows);
    template <typename Reach>
    void fillReaches(const DilationBand& band) const;
    void fillNeeds(const DilationBand& band, int level) const;

    std::unique_ptr<uint8_t[]> memory;
};

}  // namespace GxFontEffect::kernels
