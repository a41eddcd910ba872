// Records what the library logs. Linking gxtext_test_support replaces __android_log_print in the
// test program: lines are kept, and printed only when GXTEXT_TEST_LOG is set in the environment.
#pragma once

#include <string>
#include <vector>

namespace gxtest {

struct LogLine {
    int priority = 0;
    std::string tag;
    std::string text;
    bool operator==(const LogLine&) const = default;
};

// Collects the lines that the calling thread logs while the object lives.
class LogCapture {
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    const std::vector<LogLine>& lines() const { return lines_; }
    // Texts only, in order.
    std::vector<std::string> texts() const;
    bool contains(const std::string& text) const;
    void clear() { lines_.clear(); }

    void add(LogLine line) { lines_.push_back(std::move(line)); }

private:
    std::vector<LogLine> lines_;
    LogCapture* previous_;
};

}  // namespace gxtest
