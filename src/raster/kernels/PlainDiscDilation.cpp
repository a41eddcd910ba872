#include "raster/kernels/DiscDilation.h"

#include <algorithm>

namespace GxFontEffect::kernels::plain {

namespace {

// Spreads one pixel of coverage m over its window.
void spread(int m, const DilationBand& band, uint8_t* window) {
    const uint8_t* kernel = band.kernel;
    for (int64_t y = 0; y < band.kernelSize; ++y, kernel += band.kernelSize) {
        uint8_t* out = window + y * band.outStride;
        for (int64_t x = 0; x < band.kernelSize; ++x) {
            const int reached = std::max(0, m + kernel[x] - 255);
            out[x] = static_cast<uint8_t>(std::max<int>(out[x], reached));
        }
    }
}

template <typename Coverage>
void dilate(const DilationBand& band, Coverage coverage) {
    for (int64_t y = 0; y < band.rows; ++y) {
        const uint8_t* mask = band.mask + y * band.maskStride;
        uint8_t* out = band.out + y * band.outStride;
        for (int64_t x = 0; x < band.columns; ++x) {
            // Without coverage no cell can rise.
            if (const int m = coverage(mask[x])) spread(m, band, out + x);
        }
    }
}

}  // namespace

void dilateOutside(const DilationBand& band) {
    dilate(band, [](uint8_t m) { return int{m}; });
}

void dilateInside(const DilationBand& band) {
    dilate(band, [](uint8_t m) { return 255 - m; });
}

void minimum(uint8_t* a, const uint8_t* b, int64_t count) {
    for (int64_t i = 0; i < count; ++i) a[i] = std::min(a[i], b[i]);
}

}  // namespace GxFontEffect::kernels::plain
