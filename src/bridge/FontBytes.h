// Font bytes on their way to the font manager.
#pragma once

#include <jni.h>

#include <memory>

namespace GxFontEffect {

// An array that the font manager can take over: made with new[].
struct FontBytes {
    FontBytes() = default;
    // Uninitialised bytes, also for a size of 0.
    explicit FontBytes(unsigned size) : data(new char[size]), size(size) {}

    std::unique_ptr<char[]> data;
    unsigned size = 0;
};

// The array's bytes; none when the VM cannot give them. The array is not null.
FontBytes CopyFontBytes(JNIEnv* env, jbyteArray array);

}  // namespace GxFontEffect
