// Takes the place of liblog's function in this program: liblog prints to standard error by itself,
// and a command-line tool keeps that for its own words. A build as a static or shared library keeps
// the real one.
#include "LibraryLog.h"

#include <android/log.h>

#include <cstdarg>
#include <cstdio>

namespace {
bool wanted = false;
}  // namespace

namespace gxtool {

void showLibraryLog(bool show) {
    wanted = show;
}

}  // namespace gxtool

extern "C" __attribute__((visibility("default"))) int __android_log_print(int priority,
                                                                          const char* tag,
                                                                          const char* format, ...) {
    if (!wanted) return 0;
    constexpr char kLetters[] = "??VDIWEF";
    const char letter = priority >= 0 && priority <= ANDROID_LOG_FATAL ? kLetters[priority] : '?';
    va_list arguments;
    va_start(arguments, format);
    fprintf(stderr, "%c %s: ", letter, tag);
    const int length = vfprintf(stderr, format, arguments);
    fputc('\n', stderr);
    va_end(arguments);
    return length;
}
