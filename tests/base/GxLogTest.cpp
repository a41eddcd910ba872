#include "base/GxLog.h"

#include <android/log.h>
#include <gtest/gtest.h>

#include <string>

#include "base/GxString.h"
#include "support/LogCapture.h"

namespace GxFontEffect {
namespace {

using gxtest::LogCapture;
using gxtest::LogLine;

// The state is the process's: every test starts from the initial one and restores it.
class GxLogTest : public testing::Test {
protected:
    void SetUp() override { reset(); }
    void TearDown() override { reset(); }
    static void reset() {
        GxLog::setPrintLogLevel(0xFF);
        GxLog::isCheckedBuildType = false;
        GxLog::isBuildTypeEngMode = true;
        GxLog::DEBUG_ENABLE = false;
    }
    LogCapture log;
};

TEST_F(GxLogTest, MapsLevelsToPriorities) {
    for (auto [level, priority] : {std::pair{1, ANDROID_LOG_DEBUG},
                                   {2, ANDROID_LOG_INFO},
                                   {3, ANDROID_LOG_INFO},
                                   {4, ANDROID_LOG_WARN},
                                   {5, ANDROID_LOG_INFO},
                                   {8, ANDROID_LOG_ERROR},
                                   {16, ANDROID_LOG_INFO},
                                   {24, ANDROID_LOG_INFO}}) {
        log.clear();
        GxLog::printLog(static_cast<GxLogLevel>(level), "Source.cpp", "%d %s", level, "units");
        ASSERT_EQ(log.lines().size(), 1u) << level;
        EXPECT_EQ(log.lines()[0], (LogLine{priority, "gxeffect",
                                           "[Source] " + std::to_string(level) + " units \n"}));
    }
}

TEST_F(GxLogTest, FiltersByMask) {
    GxLog::setPrintLogLevel(GXE_LOG_WARNING | GXE_LOG_ERROR);
    GxLog::printLog(GXE_LOG_DEBUG, "a.cpp", "hidden");
    GxLog::printLog(static_cast<GxLogLevel>(0), "a.cpp", "hidden");
    GxLog::printLog(static_cast<GxLogLevel>(5), "a.cpp", "shown");
    GxLog::printTime("a.cpp", "hidden", 1);
    EXPECT_EQ(log.texts(), std::vector<std::string>{"[a] shown \n"});
}

TEST_F(GxLogTest, CutsTheFileNameAtItsLastDot) {
    const std::string longest(255, 'f');
    GxLog::printLog(GXE_LOG_INFO, "a.b.cpp", "m");
    GxLog::printLog(GXE_LOG_INFO, "bare", "m");
    GxLog::printLog(GXE_LOG_INFO, longest.c_str(), "m");
    GxLog::printLog(GXE_LOG_INFO, (longest + "f").c_str(), "m");
    EXPECT_EQ(log.texts(),
              (std::vector<std::string>{"[a.b] m \n", "[bare] m \n", "[" + longest + "] m \n"}));
}

TEST_F(GxLogTest, CutsLongMessagesAndIgnoresNull) {
    const char* null = nullptr;
    GxLog::printLog(GXE_LOG_INFO, null, "m");
    GxLog::printLog(GXE_LOG_INFO, "a.cpp", null, 1);
    GxLog::printTime("a.cpp", null, 1);
    GxLog::printTime("a.cpp", "label", 1, null, 1);
    EXPECT_TRUE(log.lines().empty());
    GxLog::printLog(GXE_LOG_INFO, "a.cpp", "%s", std::string(5000, 'm').c_str());
    EXPECT_EQ(log.texts(), std::vector<std::string>{"[a] " + std::string(1023, 'm') + " \n"});
}

TEST_F(GxLogTest, PrintsTimesAtInfo) {
    GxLog::printTime("a.cpp", "blur", 1234);
    GxLog::printTime("a.cpp", "blur", -500, "radius %d", 7);
    EXPECT_EQ(log.texts(), (std::vector<std::string>{"[a] [Time] blur 1.234ms \n",
                                                     "[a] [Time] blur -0.500ms radius 7 \n"}));
    log.clear();
    GxLog::setPrintLogLevel(GXE_LOG_TIMING);
    GxLog::printTime("a.cpp", "blur", 1);
    EXPECT_TRUE(log.lines().empty()) << "the text itself goes through the info bit";
}

TEST_F(GxLogTest, TheFirstBuildTypeCounts) {
    EXPECT_FALSE(GxLog::IsCheckedBuildType());
    EXPECT_TRUE(GxLog::IsBuildTypeEngMode());
    GxLog::DEBUG_ENABLE = true;
    EXPECT_TRUE(GxLog::IsAllLogEnable());
    GxLog::SetBuildType(false);
    GxLog::SetBuildType(true);
    EXPECT_TRUE(GxLog::IsCheckedBuildType());
    EXPECT_FALSE(GxLog::IsBuildTypeEngMode());
    EXPECT_FALSE(GxLog::IsAllLogEnable());
}

TEST_F(GxLogTest, ConvertsTextsThatFit) {
    GxString text, bare;
    ASSERT_TRUE(text.Construct(std::string(511, 'x').c_str()));
    EXPECT_EQ(GxLog::ConvertLog(&text), std::string(511, 'x'));
    ASSERT_TRUE(text.Append(L"x"));
    EXPECT_STREQ(GxLog::ConvertLog(&text), "[### string is too long ###]");
    ASSERT_TRUE(text.Set(L"\u20ac"));
    EXPECT_STREQ(GxLog::ConvertLog(&text), "\xE2\x82\xAC");
    EXPECT_STREQ(GxLog::ConvertLog(nullptr), "[### null ###]");
    EXPECT_STREQ(GxLog::ConvertLog(&bare), "[### null ###]");
}

}  // namespace
}  // namespace GxFontEffect
