// Takes the place of liblog's function: each line is put together, so that its arguments are read,
// and dropped.
#include <android/log.h>

#include <cstdarg>
#include <cstdio>

extern "C" __attribute__((visibility("default"))) int __android_log_print(int /*priority*/,
                                                                          const char* /*tag*/,
                                                                          const char* format, ...) {
    char line[256];
    va_list arguments;
    va_start(arguments, format);
    const int length = vsnprintf(line, sizeof(line), format, arguments);
    va_end(arguments);
    return length;
}
