// What of raster/kernels/BlendRows.h maps coverage to colours. Looking up takes its time,
// pixel by pixel, so that longer vectors only have more pixels to look up beside the edges.
#include <bit>

#include "raster/kernels/BlendRows.h"
#define GX_WITHOUT_AVX3
#include "raster/kernels/Simd.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "raster/kernels/MappedRows.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "raster/kernels/PixelVector-inl.h"

HWY_BEFORE_NAMESPACE();
namespace GxFontEffect::kernels::HWY_NAMESPACE {

#if GX_SIMD_IS_PLAIN

using plain::dstOverMapped8Rows;
using plain::paintByCoverageRows;

#else

// Pixels by coverage. Those without coverage are transparent.
class ColorsByCoverage {
public:
    explicit ColorsByCoverage(const uint32_t* table) {
        for (uint32_t m = 1; m < 256; ++m) {
            words[m] = std::bit_cast<uint32_t>(fromWord(premultiplied(table[256 - m])));
        }
    }
    explicit ColorsByCoverage(const Rgba* byCoverage) {
        for (uint32_t m = 1; m < 256; ++m) words[m] = std::bit_cast<uint32_t>(byCoverage[m]);
    }
    HWY_INLINE uint32_t operator[](uint8_t coverage) const { return words[coverage]; }

    // Of a vector of pixels. One by one: gathers take twice as long.
    template <size_t kCount = kVectorPixels>
    HWY_INLINE V8 of(const MaskBytes& coverage) const {
        const auto at = [&](size_t i) HWY_ATTR { return (*this)[coverage[i]]; };
        if constexpr (kCount == 8) {
            return fromWords(Words{at(0), at(1), at(2), at(3), at(4), at(5), at(6), at(7)});
        } else {
            return fromWords(Words{at(0), at(1), at(2), at(3)});
        }
    }

private:
    typedef uint32_t Words __attribute__((vector_size(kBlockPixels)));

    static HWY_INLINE V8 fromWords(const Words& w) {
        return hn::LoadU(d8, reinterpret_cast<const uint8_t*>(&w));
    }

    alignas(64) uint32_t words[256] = {};
};

// Destination over the colour, or both one's bits.
template <bool blends>
struct Mapped8 {
    const ColorsByCoverage& colors;
    V8 fullColor;

    explicit HWY_INLINE Mapped8(const ColorsByCoverage& colorsByCoverage)
        : colors(colorsByCoverage), fullColor(hn::BitCast(d8, hn::Set(d32, colors[255]))) {}

    HWY_INLINE V8 weights(V8 mask) const { return mask; }
    HWY_INLINE V8 operator()(V8 d, V16 /*factor*/, const MaskBytes& coverage) const {
        return join(d, colors.of(coverage));
    }
    HWY_INLINE V8 onto(V8 d, const MaskBytes& /*coverage*/) const { return join(d, fullColor); }

private:
    static HWY_INLINE V8 join(V8 d, V8 color) {
        return blends ? dstOver(d, color) : hn::Or(d, color);
    }
};

template <bool blends>
HWY_INLINE void mapRows(const BlendArea& area, const ColorsByCoverage& colors) {
    for (ptrdiff_t y = 0; y < static_cast<ptrdiff_t>(area.height); ++y) {
        const uint8_t* mask = area.source + y * area.sourceStride;
        blendRow(area.width, Mapped8<blends>(colors),
                 reinterpret_cast<Rgba*>(area.destination + y * area.destinationStride), mask,
                 mask);
    }
}

void dstOverMapped8Rows(const BlendArea& area, const uint32_t* table) {
    mapRows<true>(area, ColorsByCoverage(table));
}

void paintByCoverageRows(const BlendArea& area, const Rgba* byCoverage) {
    mapRows<false>(area, ColorsByCoverage(byCoverage));
}

#endif  // GX_SIMD_IS_PLAIN

}  // namespace GxFontEffect::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace GxFontEffect::kernels {

GX_EXPORT(dstOverMapped8Rows);
GX_EXPORT(paintByCoverageRows);

void dstOverMapped8Rows(const BlendArea& area, const uint32_t* table) {
    GX_DISPATCH(dstOverMapped8Rows)(area, table);
}
void paintByCoverageRows(const BlendArea& area, const Rgba* byCoverage) {
    GX_DISPATCH(paintByCoverageRows)(area, byCoverage);
}

}  // namespace GxFontEffect::kernels
#endif  // HWY_ONCE
