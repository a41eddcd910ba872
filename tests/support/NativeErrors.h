// Matchers for the way the library reports failures: one log line, then the thread's code.
#pragma once

#include <android/log.h>
#include <gmock/gmock.h>

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
