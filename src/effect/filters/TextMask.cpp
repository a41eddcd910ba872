#include "effect/filters/TextMask.h"

#include <algorithm>
#include <cstring>
#include <initializer_list>

#include "raster/BlendCut.h"
#include "raster/GxBlender.h"
#include "raster/GxMath.h"

namespace GxFontEffect {

TextMask::TextMask(const GxECore::ParamPostProcessing* param) {
    if (!param || !param->dst || !isMask(param->src) || !param->textRect) return;
    const GxBitmap& mask = *param->src;
    const GxRect& box = *param->textRect;
    if (box.right < box.left || box.bottom < box.top) return;

    pixels = mask.data;
    stride = mask.width;
    left = box.left;
    top = box.top;
    width = box.width();
    height = box.height();
    maskLeft = param->srcLeft - left;
    maskTop = param->srcTop - top;
    firstColumn = std::clamp<int64_t>(maskLeft, 0, width);
    lastColumn = std::clamp<int64_t>(maskLeft + stride, firstColumn, width);
    firstRow = std::clamp<int64_t>(maskTop, 0, height);
    lastRow = std::clamp<int64_t>(maskTop + mask.height, firstRow, height);
}

TextMask TextMask::over(const GxBitmap& mask) const {
    TextMask other = *this;
    const bool isLikeIt = isMask(&mask) && mask.width == stride && mask.height >= lastRow - maskTop;
    if (isLikeIt) other.pixels = mask.data;
    return other;
}

const uint8_t* TextMask::row(int64_t y) const {
    if (y < firstRow || y >= lastRow || firstColumn == lastColumn) return nullptr;
    return pixels + (y - maskTop) * stride + firstColumn - maskLeft;
}

void TextMask::copyTo(uint8_t* corner, int64_t planeStride) const {
    const auto count = static_cast<size_t>(lastColumn - firstColumn);
    if (count == 0) return;
    for (int64_t y = firstRow; y < lastRow; ++y) {
        std::memcpy(corner + y * planeStride + firstColumn, row(y), count);
    }
}

namespace {

bool fitsInt(int64_t value) {
    return saturateInt(value) == value;
}

bool fitInt(std::initializer_list<int64_t> values) {
    return std::all_of(values.begin(), values.end(), fitsInt);
}

}  // namespace

void drawTinted(int64_t x, int64_t y, const GxBitmap* layer, const uint8_t* mask, int64_t width,
                int64_t height, int64_t stride, uint32_t color, int mode) {
    if (!fitInt({x, y, width, height, stride})) return;
    GxBlender().drawBitmapBlend8(static_cast<int>(x), static_cast<int>(y), layer, mask,
                                 static_cast<int>(width), static_cast<int>(height),
                                 static_cast<int>(stride), color, mode);
}

}  // namespace GxFontEffect
