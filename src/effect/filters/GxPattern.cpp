#include "effect/filters/GxPattern.h"

#include <algorithm>
#include <new>
#include <utility>

#include "effect/filters/Fill.h"
#include "raster/GxMath.h"
#include "raster/kernels/PatternRows.h"

namespace GxFontEffect {

void GxPattern::setProperty(const GxProperty* source) {
    const auto* record = dynamic_cast<const GxPatternProperty*>(source);
    if (!record) return;
    std::unique_ptr<GxBitmap> picture;
    if (record->pattern) {
        picture.reset(new (std::nothrow) GxBitmap(*record->pattern));
        if (!picture || (record->pattern->data && !picture->data)) return;
    }
    std::unique_ptr<GxPatternProperty> copy(
        new (std::nothrow) GxPatternProperty(picture.get(), record->scale, record->opacity));
    if (!copy) return;
    property = std::move(copy);
    ownPattern = std::move(picture);
}

void GxPattern::doPostProcessing(GxECore::ParamPostProcessing* param) {
    const TextMask text(param);
    if (!property || !text.isValid() || !(property->scale >= kMinFillScale)) return;
    const GxBitmap* picture = property->pattern;
    if (!picture || !picture->data || picture->bytesPerPixel != 4 || picture->pixelCount() == 0) {
        return;
    }

    kernels::PatternTile tile;
    tile.pixels = picture->data;
    tile.width = picture->width;
    tile.height = picture->height;
    tile.scale = property->scale;
    tile.opacity = property->opacity;
    tile.tileWidth = toInt(tile.scale * static_cast<float>(tile.width));
    tile.tileHeight = toInt(tile.scale * static_cast<float>(tile.height));
    paintFill(text, param->dst,
              [&](int64_t y, int64_t first, int64_t count, const uint8_t* mask, uint32_t* out) {
                  kernels::patternRow(tile, first, y, count, mask, out);
              });
}

}  // namespace GxFontEffect
