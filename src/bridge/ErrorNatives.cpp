#include <android/log.h>

#include "base/Error.h"
#include "bridge/Natives.h"

namespace GxFontEffect {

jint Error_GetError(JNIEnv*, jobject) {
    __android_log_print(ANDROID_LOG_DEBUG, "GxError_JNI", "Error_GetError");
    return Error::GetError();
}

}  // namespace GxFontEffect
