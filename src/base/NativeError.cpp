#include "base/NativeError.h"

#include <android/log.h>

namespace GxFontEffect {

bool ReportNativeError(const char* tag, GxErrorCode code, int site) {
    __android_log_print(ANDROID_LOG_ERROR, tag, "@ Native Error %ld : %d", static_cast<long>(code),
                        site);
    Error::SetError(static_cast<unsigned long>(code));
    return false;
}

}  // namespace GxFontEffect
