#include "base/GxLog.h"

#include <android/log.h>

#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "base/GxString.h"

namespace GxFontEffect {

namespace {

constexpr const char* kTag = "gxeffect";
constexpr size_t kFileNameSize = 256;
constexpr size_t kMessageSize = 1024;
constexpr int kConvertedSize = 512;

int PriorityOf(GxLogLevel level) {
    switch (level) {
        case GXE_LOG_DEBUG:
            return ANDROID_LOG_DEBUG;
        case GXE_LOG_WARNING:
            return ANDROID_LOG_WARN;
        case GXE_LOG_ERROR:
            return ANDROID_LOG_ERROR;
        default:
            return ANDROID_LOG_INFO;
    }
}

bool IsTimingOn() {
    return (GxLog::mCurrentLogLevel & GXE_LOG_TIMING) != 0;
}

float Milliseconds(long microseconds) {
    return static_cast<float>(microseconds) / 1000.0f;
}

}  // namespace

std::atomic<unsigned char> GxLog::mCurrentLogLevel{0xFF};
std::atomic<bool> GxLog::isCheckedBuildType{false};
std::atomic<bool> GxLog::isBuildTypeEngMode{true};
std::atomic<bool> GxLog::DEBUG_ENABLE{false};

void GxLog::printLog(GxLogLevel level, const char* file, const char* format, ...) {
    if (!file || !format || (level & mCurrentLogLevel) == 0) return;
    if (strnlen(file, kFileNameSize) == kFileNameSize) return;
    char stem[kFileNameSize];
    std::strcpy(stem, file);
    if (char* dot = std::strrchr(stem, '.')) *dot = '\0';
    char message[kMessageSize] = {};
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(message, sizeof(message), format, arguments);
    va_end(arguments);
    __android_log_print(PriorityOf(level), kTag, "[%s] %s \n", stem, message);
}

void GxLog::printTime(const char* file, const char* label, long microseconds) {
    if (!label || !IsTimingOn()) return;
    printLog(GXE_LOG_INFO, file, "[Time] %s %.3fms", label, Milliseconds(microseconds));
}

void GxLog::printTime(const char* file, const char* label, long microseconds, const char* format,
                      ...) {
    if (!label || !format || !IsTimingOn()) return;
    char extra[kMessageSize] = {};
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(extra, sizeof(extra), format, arguments);
    va_end(arguments);
    printLog(GXE_LOG_INFO, file, "[Time] %s %.3fms %s", label, Milliseconds(microseconds), extra);
}

void GxLog::setPrintLogLevel(unsigned char mask) {
    mCurrentLogLevel = mask;
}

void GxLog::SetBuildType(bool engMode) {
    if (!isCheckedBuildType.exchange(true)) isBuildTypeEngMode = engMode;
}

bool GxLog::IsCheckedBuildType() {
    return isCheckedBuildType;
}

bool GxLog::IsBuildTypeEngMode() {
    return isBuildTypeEngMode;
}

bool GxLog::IsAllLogEnable() {
    return DEBUG_ENABLE && isBuildTypeEngMode;
}

const char* GxLog::ConvertLog(const GxString* text) {
    // One buffer per thread: lines of two threads must not mix.
    thread_local char converted[kConvertedSize];
    const int size = text ? text->GetUTF8Size() : -1;
    if (size < 1) return "[### null ###]";
    if (size > kConvertedSize) return "[### string is too long ###]";
    text->GetUTF8(converted, size);
    return converted;
}

}  // namespace GxFontEffect
