#include "base/Error.h"

#include <gtest/gtest.h>

#include <thread>

#include "base/NativeError.h"
#include "support/NativeErrors.h"

namespace GxFontEffect {
namespace {

TEST(Error, EachThreadHasItsOwnCode) {
    Error::SetError(7);
    int fresh = -1;
    int own = -1;
    std::thread other([&] {
        fresh = Error::GetError();
        Error::SetError(11);
        own = Error::GetError();
    });
    other.join();
    EXPECT_EQ(fresh, 0);
    EXPECT_EQ(own, 11);
    EXPECT_EQ(Error::GetError(), 7);
}

TEST(Error, KeepsTheLastCodeInItsLow32Bits) {
    Error::SetError(3);
    Error::SetError(9);
    EXPECT_EQ(Error::GetError(), 9);
    Error::SetError(static_cast<unsigned long>(0x100000008));  // 8 alone on 32-bit machines
    EXPECT_EQ(Error::GetError(), 8);
    Error::SetError(0xFFFFFFFFul);
    EXPECT_EQ(Error::GetError(), -1);
}

TEST(NativeError, LogsCodeAndSiteThenRecordsTheCode) {
    Error::SetError(0);
    const gxtest::LogCapture log;
    EXPECT_FALSE(ReportNativeError("Some_Tag", GXE_ERROR_NOT_BOUND, 233));
    ASSERT_EQ(log.lines().size(), 1u);
    EXPECT_EQ(log.lines()[0],
              (gxtest::LogLine{ANDROID_LOG_ERROR, "Some_Tag", "@ Native Error 19 : 233"}));
    EXPECT_EQ(Error::GetError(), 19);
}

}  // namespace
}  // namespace GxFontEffect
