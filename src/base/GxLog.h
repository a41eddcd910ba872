// Filtered lines to the Android log, and the switch for verbose ones.
#pragma once

#include <atomic>

#include "GxExport.h"

namespace GxFontEffect {

class GxString;

// Bits: the level mask and a line's level may combine them.
enum GxLogLevel : int {
    GXE_LOG_DEBUG = 1,
    GXE_LOG_INFO = 2,
    GXE_LOG_WARNING = 4,
    GXE_LOG_ERROR = 8,
    GXE_LOG_TIMING = 16,
};

// Static operations and their state. Safe from any thread, though the build type is meant to be
// settled once, while the library loads.
class GXTEXT_API GxLog {
public:
    // Writes "[file] message \n" under the tag "gxeffect" when `level` and the mask share a bit.
    // `file` is a source file name; it is cut at its last '.'. Levels 1, 4 and 8 log at debug,
    // warning and error priority, every other value at info. A null file or format, or a file name
    // of 256 characters or more, writes nothing; a message is cut at 1023 bytes.
    static void printLog(GxLogLevel level, const char* file, const char* format, ...)
        __attribute__((format(printf, 3, 4)));

    // "[Time] label 1.234ms" for 1234 microseconds, at level 2, when the mask holds the timing bit;
    // the second form adds a formatted text. Null arguments write nothing.
    static void printTime(const char* file, const char* label, long microseconds);
    static void printTime(const char* file, const char* label, long microseconds,
                          const char* format, ...) __attribute__((format(printf, 4, 5)));

    static void setPrintLogLevel(unsigned char mask);

    // The first call counts, later ones are ignored.
    static void SetBuildType(bool engMode);
    static bool IsCheckedBuildType();
    static bool IsBuildTypeEngMode();

    // Whether verbose lines are wanted: DEBUG_ENABLE on an engineering build.
    static bool IsAllLogEnable();

    // The text as UTF-8 for a log line, valid until the calling thread's next call. "[### null
    // ###]" for a null or unconstructed string, "[### string is too long ###]" for more than 512
    // bytes with the terminator.
    static const char* ConvertLog(const GxString* text);

    static std::atomic<unsigned char>
        mCurrentLogLevel;  // mask of levels that are written; 0xFF at first
    static std::atomic<bool> isCheckedBuildType;
    static std::atomic<bool> isBuildTypeEngMode;  // true at first
    static std::atomic<bool>
        DEBUG_ENABLE;  // the program's own switch for verbose lines; off at first
};

}  // namespace GxFontEffect
