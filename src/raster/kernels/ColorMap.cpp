#include "raster/kernels/ColorMap.h"

namespace GxFontEffect::kernels {

void mapCoveragePlain(const uint8_t* coverage, uint32_t* out, int64_t count,
                      const uint32_t* table) {
    for (int64_t i = 0; i < count; ++i) out[i] = premultiplied(table[256 - coverage[i]]);
}

void mapCoverage(const uint8_t* coverage, uint32_t* out, int64_t count, const uint32_t* table) {
    mapCoveragePlain(coverage, out, count, table);
}

}  // namespace GxFontEffect::kernels
