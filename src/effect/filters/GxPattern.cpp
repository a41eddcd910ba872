#include "effect/filters/GxPattern.h"

#include <algorithm>
#include <new>
#include <utility>

#include "effect/filters/Fill.h"
#include "raster/BlendCut.h"
#include "raster/GxMath.h"
#include "raster/kernels/PatternRows.h"

namespace GxFontEffect {

void GxPattern::setProperty(const GxProperty* source) {
    const auto* record = dynamic_cast<const GxPatternProperty*>(source);
    if (!record) return;
    std::unique_ptr<GxBitmap> picture;
    if (record->pattern) {
        picture.reset(new (std::nothrow) GxBitmap(*record->pattern));
        if (!picture || (record->pattern->data && !picture->data)) {
            keep(nullptr);
            return;
        }
    }
    std::unique_ptr<GxPatternProperty> copy(
        new (std::nothrow) GxPatternProperty(picture.get(), record->scale, record->opacity));
    if (keep(std::move(copy))) ownPattern = std::move(picture);
}

// The fill in steps:
//   1. find the size of the picture's tile;
//   2. look up every covered pixel between four pixels of the picture and lay the colour beneath
//      the layer.

void GxPattern::doPostProcessing(GxECore::ParamPostProcessing* param) {
    const TextMask text(param);
    if (!property || !text.isValid() || !(property->scale >= kMinFillScale)) return;
    const GxBitmap* picture = property->pattern;
    if (!isLayer(picture) || picture->pixelCount() == 0) return;

    // Work memory.
    const int64_t width = text.lastColumn - text.firstColumn;
    const WorkPlane<kernels::Rgba> row(width);
    const WorkPlane<kernels::PatternColumn> columns(width, 1, Contents::kAny);
    const WorkPlane<uint8_t> covered(width + 8, 1, Contents::kAny);
    const WorkPlane<float> texels(int64_t{picture->width} + 1, 4, Contents::kAny);
    if (!isAllocated(*param, row, columns, covered, texels)) return;

    // 1. The tile.
    kernels::PatternFill fill;
    fill.tile.pixels = picture->data;
    fill.tile.width = picture->width;
    fill.tile.height = picture->height;
    fill.tile.scale = property->scale;
    fill.tile.opacity = property->opacity;
    fill.tile.tileWidth = toInt(property->scale * static_cast<float>(picture->width));
    fill.tile.tileHeight = toInt(property->scale * static_cast<float>(picture->height));
    // 2. Pixels.
    fill.area = fillArea(text, param->dst);
    fill.firstColumn = text.firstColumn;
    fill.firstRow = text.firstRow;
    fill.memory = {row.data(), columns.data(), covered.data(), texels.data()};
    kernels::patternRows(fill);
}

}  // namespace GxFontEffect
