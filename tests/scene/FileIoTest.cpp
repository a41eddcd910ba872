#include "scene/FileIo.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <thread>

#include "scene/SceneError.h"
#include "support/TempFolder.h"

namespace {
bool linksAreRefused = false;  // as on a phone, and where there are no files without a name
}  // namespace

// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" int __real_linkat(int, const char*, int, const char*, int);
extern "C" int __wrap_linkat(int folder, const char* path, int newFolder, const char* newPath,
                             int flags) {
    if (!linksAreRefused) return __real_linkat(folder, path, newFolder, newPath, flags);
    errno = EACCES;
    return -1;
}
// NOLINTEND(bugprone-reserved-identifier)

namespace gxtext {
namespace {

std::vector<std::string> namesIn(const gxtest::TempFolder& folder) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path(""))) {
        names.push_back(entry.path().filename().string());
    }
    return names;
}

// With and without links.
class FileIo : public testing::TestWithParam<bool> {
protected:
    void SetUp() override { linksAreRefused = GetParam(); }
    void TearDown() override { linksAreRefused = false; }

    gxtest::TempFolder folder;
};

INSTANTIATE_TEST_SUITE_P(Links, FileIo, testing::Bool());

TEST_P(FileIo, AKilledWriterLeavesTheOldFileOrTheNew) {
    constexpr size_t kSize = 8 << 20;
    const std::string file = folder.write("out.png", std::string(kSize, 'a'));
    for (int round = 1; round <= 8; round++) {
        const pid_t writer = fork();
        if (writer == 0) {
            for (char c = 'b';; c = c == 'z' ? 'b' : static_cast<char>(c + 1)) {
                writeFile(file, std::string(kSize, c));
            }
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(3 * round));
        kill(writer, SIGTERM);
        int status = 0;
        waitpid(writer, &status, 0);
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGTERM);
        const std::string bytes = readFile(file, kSize);
        EXPECT_EQ(bytes.size(), kSize);
        EXPECT_EQ(bytes.find_first_not_of(bytes.front()), std::string::npos);
        EXPECT_THAT(namesIn(folder), testing::ElementsAre("out.png"));
    }
}

TEST_P(FileIo, AReplacedFileKeepsItsPermissionsAndItsLinks) {
    const auto modeOf = [](const std::string& file) {
        struct stat status;
        EXPECT_EQ(stat(file.c_str(), &status), 0);
        return status.st_mode & 07777;
    };
    const std::string file = folder.write("out.png", "old");
    chmod(file.c_str(), 0604);
    std::filesystem::create_symlink("out.png", folder.path("link.png"));
    writeFile(folder.path("link.png"), "new");
    EXPECT_EQ(readFile(file, 10), "new");
    EXPECT_EQ(modeOf(file), 0604u);
    EXPECT_EQ(std::filesystem::read_symlink(folder.path("link.png")), "out.png");

    const mode_t mask = umask(027);
    std::filesystem::create_symlink("made.png", folder.path("dangling.png"));
    writeFile(folder.path("dangling.png"), "made");
    umask(mask);
    EXPECT_EQ(modeOf(folder.path("made.png")), 0640u);

    std::filesystem::create_symlink("loop.png", folder.path("loop.png"));
    EXPECT_THROW(writeFile(folder.path("loop.png"), "x"), SceneError);
    EXPECT_THAT(namesIn(folder), testing::UnorderedElementsAre("out.png", "link.png", "made.png",
                                                               "dangling.png", "loop.png"));
}

}  // namespace
}  // namespace gxtext
