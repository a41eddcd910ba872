// The picture of a text object on its way to Java.
#pragma once

#include <jni.h>

#include <cstdint>

namespace GxFontEffect {

class GxTextObject;

struct ImageSize {
    int64_t width = 0;
    int64_t height = 0;

    bool FitsJavaArray() const;
    jsize Pixels() const { return static_cast<jsize>(width * height); }
};

// Renders into the text object. Null when that failed: the object then answers with the frame
// before, which is not the picture that was asked for.
const uint32_t* Render(GxTextObject& text, ImageSize size);

// A new Java array of these values; null, without an exception, when the VM has no room.
jintArray NewIntArray(JNIEnv* env, const jint* values, jsize count);

}  // namespace GxFontEffect
