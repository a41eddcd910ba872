// Matchers for the way the library reports failures: one log line, then the thread's code.
#pragma once

#include <android/log.h>
#include <gmock/gmock.h>

#include <algorithm>
#include <initializer_list>
#include <iterator>
#include <string>

#include "base/Error.h"
#include "support/LogCapture.h"

namespace gxtest {

// Runs `operation` and checks that it recorded `code`, having written one line
// "@ Native Error <code> : <site>" under `tag` at error priority as its last line.
template <typename Operation>
void expectNativeError(const char* tag, int code, Operation operation) {
    GxFontEffect::Error::SetError(0);
    const LogCapture log;
    operation();
    EXPECT_EQ(GxFontEffect::Error::GetError(), code);
    int reported = 0;
    for (const LogLine& line : log.lines()) {
        reported += line.tag == tag && line.text.rfind("@ Native Error ", 0) == 0;
    }
    EXPECT_EQ(reported, 1);
    ASSERT_FALSE(log.lines().empty());
    const LogLine& last = log.lines().back();
    EXPECT_EQ(last.priority, ANDROID_LOG_ERROR);
    EXPECT_EQ(last.tag, tag);
    EXPECT_THAT(last.text,
                testing::MatchesRegex("@ Native Error " + std::to_string(code) + " : [0-9]+"));
}

// Watches calls that are to fail:
//
//     Failures failures("GxString");
//     failures.expect(7, {string.Remove(1, 3), string.Remove(1, -1)});
class Failures {
public:
    explicit Failures(const char* tag) : tag_(tag) {}

    // Every call since the last check answered `wanted`, recorded `code` and reported it once.
    template <typename Answer>
    void expect(int code, std::initializer_list<Answer> answers, Answer wanted = Answer()) {
        EXPECT_THAT(answers, testing::Each(wanted));
        EXPECT_EQ(GxFontEffect::Error::GetError(), code);
        const std::string start = "@ Native Error " + std::to_string(code) + " : ";
        const auto reported =
            std::count_if(log_.lines().begin(), log_.lines().end(), [&](const LogLine& line) {
                return line.tag == tag_ && line.priority == ANDROID_LOG_ERROR &&
                       line.text.rfind(start, 0) == 0;
            });
        EXPECT_EQ(reported, std::ssize(answers)) << testing::PrintToString(log_.texts());
        GxFontEffect::Error::SetError(0);
        log_.clear();
    }

private:
    const char* tag_;
    LogCapture log_;
};

// Runs `operation` and checks that it neither recorded a code nor logged anything.
template <typename Operation>
void expectSilence(Operation operation) {
    GxFontEffect::Error::SetError(0);
    const LogCapture log;
    operation();
    EXPECT_EQ(GxFontEffect::Error::GetError(), 0);
    EXPECT_THAT(log.texts(), testing::IsEmpty());
}

}  // namespace gxtest
