#include "bridge/Image.h"

#include <limits>

#include "text/GxTextObject.h"

namespace GxFontEffect {

bool ImageSize::FitsJavaArray() const {
    constexpr int64_t kMost = std::numeric_limits<jsize>::max();
    return width >= 0 && height >= 0 && width <= kMost && height <= kMost &&
           (width == 0 || height <= kMost / width);
}

const uint32_t* Render(GxTextObject& text, ImageSize size) {
    const GxBitmap* before = text.GetResultBitmap();
    const uint32_t* pixels =
        text.RenderTextEffect(static_cast<int>(size.width), static_cast<int>(size.height));
    return text.GetResultBitmap() != before ? pixels : nullptr;
}

jintArray NewIntArray(JNIEnv* env, const jint* values, jsize count) {
    const jintArray array = env->NewIntArray(count);
    if (array) {
        env->SetIntArrayRegion(array, 0, count, values);
    } else {
        env->ExceptionClear();
    }
    return array;
}

}  // namespace GxFontEffect
