#include "base/File.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <string>
#include <vector>

#include "base/Error.h"
#include "base/GxString.h"
#include "support/AllocationFailure.h"
#include "support/NativeErrors.h"
#include "support/TempFolder.h"

namespace {
int syncs = 0;
int syncError = 0;  // what syncing answers when not 0
}  // namespace

// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" int __wrap_fsync(int) {
    syncs++;
    if (syncError == 0) return 0;
    errno = syncError;
    return -1;
}
// NOLINTEND(bugprone-reserved-identifier)

namespace GxFontEffect {
namespace {

class FileTest : public testing::Test {
protected:
    gxtest::TempFolder folder;
    gxtest::Failures failures{"GX_File"};
    const std::string path = folder.path("caf\xC3\xA9.bin");
};

TEST_F(FileTest, WritesSeeksAndReadsBack) {
    GxString name;
    ASSERT_TRUE(name.Construct(path.c_str()));
    File file;
    ASSERT_TRUE(file.Construct(&name, "w+", false));
    EXPECT_EQ(file.Write("abcdef", 2, 3), 3u);
    EXPECT_EQ(file.Tell(), 6);
    EXPECT_EQ(file.Seek(-2, SEEK_END), 0);
    char back[8] = {};
    EXPECT_EQ(file.Read(back, 1, 8), 2u);
    EXPECT_STREQ(back, "ef");
    EXPECT_NE(file.Eof(), 0);
    EXPECT_EQ(file.Error(), 0);
    EXPECT_EQ(fileno(file.GetFilePointer()), file.GetFileDescriptor());
    EXPECT_EQ(file.Read(nullptr, 0, 1), 0u);
    failures.expect(
        7, {file.Read(nullptr, 1, 1), file.Write(nullptr, 1, 1), file.Read(back, SIZE_MAX, 2)});
    EXPECT_TRUE(file.Close());
    EXPECT_TRUE(file.Close()) << "harmless twice";
    failures.expect(8, {file.Read(back, 1, 1)});
    failures.expect(4, {file.Construct(path.c_str(), "r")});
}

TEST_F(FileTest, SyncsOnCloseWhenTheModeWrites) {
    for (auto [mode, expected] : {std::pair{"w", 1}, {"a", 1}, {"rb", 0}, {"r+", 0}, {"w+b", 1}}) {
        syncs = 0;
        File file;
        ASSERT_TRUE(file.Construct(path.c_str(), mode)) << mode;
        EXPECT_TRUE(file.Close());
        EXPECT_EQ(syncs, expected) << mode;
    }
    syncs = 0;
    { EXPECT_TRUE(File().Construct(path.c_str(), "a")); }
    EXPECT_EQ(syncs, 1) << "the destructor closes";
}

TEST_F(FileTest, KeepsTheStreamOpenWhenAsked) {
    GxString name;
    ASSERT_TRUE(name.Construct(path.c_str()));
    FILE* stream = nullptr;
    syncs = 0;
    {
        File file;
        ASSERT_TRUE(file.Construct(&name, "w", true));
        EXPECT_EQ(file.Write("x", 1, 1), 1u);
        EXPECT_TRUE(file.Close());
        stream = file.GetFilePointer();
    }
    EXPECT_EQ(syncs, 0);
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(fputs("yz", stream), 1);
    EXPECT_EQ(fclose(stream), 0);
    EXPECT_EQ(std::filesystem::file_size(path), 3u);
}

TEST_F(FileTest, FailedConstructLeavesItUnconstructed) {
    GxString bare, empty;
    ASSERT_TRUE(empty.Construct(L""));
    File file;
    const char* none = nullptr;
    failures.expect(7, {file.Construct(none, "r"), file.Construct(path.c_str(), none),
                        file.Construct(&bare, "r", false)});
    failures.expect(11, {file.Construct(&empty, "r", false), file.Construct("", "r"),
                         file.Construct(path.c_str(), "no mode")});
    char c;
    failures.expect(8, {file.Read(&c, 1, 1), file.Write(&c, 1, 1)});
    failures.expect<long>(
        8,
        {file.Seek(0, SEEK_SET), file.Tell(), file.Eof(), file.Error(), file.GetFileDescriptor()},
        -1);
    failures.expect<FILE*>(8, {file.GetFilePointer()});
    failures.expect(8, {file.Close()});
    EXPECT_TRUE(file.Construct(path.c_str(), "w"));
}

TEST_F(FileTest, SaysWhyOpeningFailed) {
    File file;
    const gxtest::LogCapture log;
    EXPECT_FALSE(file.Construct(folder.path("missing").c_str(), "r"));
    ASSERT_EQ(log.lines().size(), 2u);
    EXPECT_EQ(log.lines()[0],
              (gxtest::LogLine{ANDROID_LOG_ERROR, "GX_File",
                               "OpenFile - Fail to open file. errno = " + std::to_string(ENOENT)}));
    EXPECT_THAT(log.lines()[1].text, testing::StartsWith("@ Native Error 11 : "));
}

TEST_F(FileTest, UnwrittenDataIsAFailedClose) {
    if (access("/dev/full", W_OK) != 0) GTEST_SKIP() << "no device that is always full";
    File file;
    ASSERT_TRUE(file.Construct("/dev/full", "w"));
    EXPECT_EQ(file.Write("x", 1, 1), 1u);
    failures.expect(1, {file.Close()});
}

TEST_F(FileTest, UnsyncedDataIsAFailedClose) {
    for (const auto& [error, fails] : {std::pair(EIO, true), {ENOSPC, true}, {EINVAL, false}}) {
        File file;
        ASSERT_TRUE(file.Construct(path.c_str(), "w"));
        syncError = error;
        if (fails) {
            failures.expect(1, {file.Close()});
        } else {
            EXPECT_TRUE(file.Close()) << "pipes cannot be synced";
        }
        syncError = 0;
    }
}

TEST_F(FileTest, PathOperationsTakeBothKindsOfText) {
    folder.write("caf\xC3\xA9.bin", "x");
    const std::string moved = folder.path("moved");
    GxString from, to, bare;
    ASSERT_TRUE(from.Construct(path.c_str()));
    ASSERT_TRUE(to.Construct(moved.c_str()));
    gxtest::expectSilence([&] {
        EXPECT_EQ(File::IsAccessible(&from, R_OK), 0);
        EXPECT_EQ(File::Rename(&from, &to), 0);
        EXPECT_EQ(File::IsAccessible(path.c_str(), F_OK), -1);
        EXPECT_EQ(File::Rename(moved.c_str(), path.c_str()), 0);
        EXPECT_EQ(File::Unlink(path.c_str()), 0);
        EXPECT_EQ(File::Unlink(&from), -1);
    });

    const char* none = nullptr;
    failures.expect(7,
                    {File::IsAccessible(none, R_OK), File::Unlink(none), File::Rename(none, "abc"),
                     File::Rename(&from, &bare)},
                    -1);
}

TEST_F(FileTest, LogsWhichPathOperationHadNoPath) {
    GxString bare;
    gxtest::LogCapture log;
    File::IsAccessible(&bare, R_OK);
    File::Unlink(&bare);
    File::Rename("abc", nullptr);
    File().Construct(&bare, "r", false);
    for (const char* text :
         {"IsAccessible() - pathSize < 0", "Unlink() - pathSize < 0",
          "Rename() - pathSize < 0 : old 4, new -1", "OpenFile() - pathSize < 0"}) {
        EXPECT_TRUE(log.contains(text)) << text;
    }
}

TEST_F(FileTest, SurvivesEveryFailedAllocation) {
    GxString name;
    ASSERT_TRUE(name.Construct(path.c_str()));
    gxtest::failEachAllocation([&] {
        File file;
        Error::SetError(0);
        const bool opened = file.Construct(&name, "w", false);
        EXPECT_EQ(opened, Error::GetError() == 0);
    });
}

}  // namespace
}  // namespace GxFontEffect
