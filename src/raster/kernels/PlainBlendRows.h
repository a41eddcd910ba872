// The operations of raster/kernels/BlendRows.h as plain loops over the formulas: the form that runs
// without SIMD, and what the fast forms are tested and measured against.
#pragma once

#include "raster/kernels/BlendRows.h"

namespace GxFontEffect::kernels::plain {

void srcOver8Rows(const BlendArea& area, Rgba color);
void dstOver8Rows(const BlendArea& area, Rgba color);
void dstOverNsa8Rows(const BlendArea& area, Rgba color);
void dstOverSa8Rows(const BlendArea& area, Rgba color);
void dstOverMapped8Rows(const BlendArea& area, const uint32_t* table);
void overwrite8Rows(const BlendArea& area, Rgba color);
void max8Rows(const BlendArea& area);
void srcOver32Rows(const BlendArea& area, SourceOrder order);
void dstOver32Rows(const BlendArea& area, SourceOrder order);
void swapRedBlueRow(Rgba* pixels, size_t count);
void mixLayersRow(Rgba* out, const Rgba* back, const uint8_t* mask, size_t count);
void fadeAndUnpremultiplyRow(Rgba* pixels, size_t count, uint32_t alpha);
void clearUncoveredRow(Rgba* pixels, const uint8_t* mask, size_t count);

}  // namespace GxFontEffect::kernels::plain
