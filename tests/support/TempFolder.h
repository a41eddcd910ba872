// A folder of its own for the files of one test.
#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace gxtest {

// Made under the system's folder for temporary files, removed with all it holds.
class TempFolder {
public:
    TempFolder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "gxtext-XXXXXX").string();
        EXPECT_NE(mkdtemp(pattern.data()), nullptr);
        path_ = pattern;
    }
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    std::string path(const std::string& name) const { return (path_ / name).string(); }

    // Writes a file of these bytes and returns its path.
    std::string write(const std::string& name, const std::string& bytes) const {
        std::ofstream(path(name), std::ios::binary) << bytes;
        return path(name);
    }

private:
    std::filesystem::path path_;
};

}  // namespace gxtest
