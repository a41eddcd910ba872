#include "support/LogCapture.h"

#include <android/log.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>

namespace gxtest {

namespace {
thread_local LogCapture* current = nullptr;
}  // namespace

LogCapture::LogCapture() : previous_(current) {
    current = this;
}
LogCapture::~LogCapture() {
    current = previous_;
}

std::vector<std::string> LogCapture::texts() const {
    std::vector<std::string> result;
    for (const LogLine& line : lines_) result.push_back(line.text);
    return result;
}

bool LogCapture::contains(const std::string& text) const {
    return std::any_of(lines_.begin(), lines_.end(),
                       [&](const LogLine& line) { return line.text == text; });
}

}  // namespace gxtest

extern "C" __attribute__((visibility("default"))) int __android_log_print(int priority,
                                                                          const char* tag,
                                                                          const char* format, ...) {
    char text[2048];
    va_list arguments;
    va_start(arguments, format);
    const int length = vsnprintf(text, sizeof(text), format, arguments);
    va_end(arguments);
    static const bool print = std::getenv("GXTEXT_TEST_LOG") != nullptr;
    if (print) fprintf(stderr, "%d %s: %s\n", priority, tag, text);
    if (gxtest::current) gxtest::current->add({priority, tag, text});
    return length;
}
