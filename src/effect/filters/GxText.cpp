#include "effect/filters/GxText.h"

#include "raster/BlendCut.h"
#include "raster/GxBlender.h"

namespace GxFontEffect {

void GxText::doPostProcessing(GxECore::ParamPostProcessing* param) {
    if (!param || !property || !param->dst || !isMask(param->src)) return;
    const GxBitmap& mask = *param->src;
    const auto width = static_cast<int>(mask.width);
    const auto height = static_cast<int>(mask.height);
    const int blend = param->mode == GXE_MODE_TWO_LAYERS ? GXE_BLEND_DST_OVER_NSA : GXE_BLEND_OTHER;
    GxBlender().drawBitmapBlend8(param->srcLeft, param->srcTop, param->dst, mask.data, width,
                                 height, width, property->color, blend);
}

}  // namespace GxFontEffect
