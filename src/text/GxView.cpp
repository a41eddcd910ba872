#include "text/GxView.h"

#include <android/log.h>

namespace GxFontEffect {

namespace {
constexpr const char* kViewTag = "GxView";
}  // namespace

bool GxView::SetSize(int w, int h) {
    if (w < 0 || h < 0) {
        __android_log_print(ANDROID_LOG_ERROR, kViewTag, "SetSize() - size invalid");
        return false;
    }
    width = w;
    height = h;
    return true;
}

bool GxView::SetBitmapWidth(int value) {
    if (value < 0) {
        __android_log_print(ANDROID_LOG_ERROR, kViewTag, "SetBitmapWidht() - width[%d] is invalid",
                            value);
        return false;
    }
    bitmapSize->bitmapWidth = value;
    return true;
}

bool GxView::SetBitmapHeight(int value) {
    if (value < 0) {
        __android_log_print(ANDROID_LOG_ERROR, kViewTag,
                            "SetBitmapHeight() - height[%d] is invalid", value);
        return false;
    }
    bitmapSize->bitmapHeight = value;
    return true;
}

bool GxView::SetPadding(int left, int top, int right, int bottom) {
    paddingLeft = left;
    paddingTop = top;
    paddingRight = right;
    paddingBottom = bottom;
    return true;
}

}  // namespace GxFontEffect
