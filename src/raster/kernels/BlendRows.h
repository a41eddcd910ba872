// The blend operations over whole areas: what the blender and the compositor call. Each gives the
// bytes of its formula in raster/kernels/BlendPixel.h, on the best instruction set of the machine;
// the choice is made once per call.
//
// No alignment is asked for, extents may be 0, strides are in bytes and may be negative. Exactly
// the given pixels are read and written; pixels that an operation leaves alone may be written with
// what they held. Source and destination do not overlap.
#pragma once

#include <cstddef>
#include <cstdint>

#include "raster/kernels/BlendPixel.h"

namespace GxFontEffect::kernels {

// A source that has been cut to its destination.
struct BlendArea {
    uint8_t* destination = nullptr;  // first pixel of the first row
    ptrdiff_t destinationStride = 0;
    const uint8_t* source = nullptr;
    ptrdiff_t sourceStride = 0;
    size_t width = 0;  // pixels
    size_t height = 0;

    // Rows that follow one another without gaps, taken as one long row.
    BlendArea joined(size_t destinationBytes, size_t sourceBytes) const {
        const bool packed = destinationStride == static_cast<ptrdiff_t>(width * destinationBytes) &&
                            sourceStride == static_cast<ptrdiff_t>(width * sourceBytes);
        if (!packed) return *this;
        return {destination, 0, source, 0, width * height, width && height ? size_t{1} : 0};
    }
};

// Where the channels of a 32-bit source lie, in memory order. Words 0xAARRGGBB are kBgra.
enum class SourceOrder { kRgba, kBgra, kArgb };

// 8-bit mask, tinted, onto 32-bit pixels.
void srcOver8Rows(const BlendArea& area, Rgba color);
void dstOver8Rows(const BlendArea& area, Rgba color);
void dstOverNsa8Rows(const BlendArea& area, Rgba color);
void dstOverSa8Rows(const BlendArea& area, Rgba color);
void overwrite8Rows(const BlendArea& area, Rgba color);

// 8-bit mask in colours by coverage, destination over source: where the mask is not 0, the straight
// colour 0xAARRGGBB table[256 - mask] is premultiplied and put under the pixel. Entries 1 to 255
// are read.
void dstOverMapped8Rows(const BlendArea& area, const uint32_t* table);
// Gives each pixel the bits of byCoverage[mask]: that paints blank ones. byCoverage[0] is blank.
void paintByCoverageRows(const BlendArea& area, const Rgba* byCoverage);

// 8-bit mask onto an 8-bit mask: the larger of the two.
void max8Rows(const BlendArea& area);

// 32-bit source, premultiplied, onto 32-bit pixels.
void srcOver32Rows(const BlendArea& area, SourceOrder order);
void dstOver32Rows(const BlendArea& area, SourceOrder order);

// Whole images, `count` pixels.
void swapRedBlueRow(Rgba* pixels, size_t count);
// out = back weighted by 255 - mask plus out weighted by mask.
void mixLayersRow(Rgba* out, const Rgba* back, const uint8_t* mask, size_t count);
// alpha is 0 to 255.
void fadeAndUnpremultiplyRow(Rgba* pixels, size_t count, uint32_t alpha);
// The same, with red and blue swapped: the pixels become words 0xAARRGGBB.
void fadeIntoWordsRow(Rgba* pixels, size_t count, uint32_t alpha);
// Pixels become transparent black where the mask is 0.
void clearUncoveredRow(Rgba* pixels, const uint8_t* mask, size_t count);

// The plain forms: the formulas, one cell at a time.
namespace plain {
void srcOver8Rows(const BlendArea& area, Rgba color);
void dstOver8Rows(const BlendArea& area, Rgba color);
void dstOverNsa8Rows(const BlendArea& area, Rgba color);
void dstOverSa8Rows(const BlendArea& area, Rgba color);
void dstOverMapped8Rows(const BlendArea& area, const uint32_t* table);
void paintByCoverageRows(const BlendArea& area, const Rgba* byCoverage);
void overwrite8Rows(const BlendArea& area, Rgba color);
void max8Rows(const BlendArea& area);
void srcOver32Rows(const BlendArea& area, SourceOrder order);
void dstOver32Rows(const BlendArea& area, SourceOrder order);
void swapRedBlueRow(Rgba* pixels, size_t count);
void mixLayersRow(Rgba* out, const Rgba* back, const uint8_t* mask, size_t count);
void fadeAndUnpremultiplyRow(Rgba* pixels, size_t count, uint32_t alpha);
void fadeIntoWordsRow(Rgba* pixels, size_t count, uint32_t alpha);
void clearUncoveredRow(Rgba* pixels, const uint8_t* mask, size_t count);
}  // namespace plain

}  // namespace GxFontEffect::kernels
