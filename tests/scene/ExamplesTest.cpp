// The C++ that README and headers show is that of the programs in examples/, which the build
// compiles and runs.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

namespace gxtext {
namespace {

std::string read(const std::string& file) {
    std::ifstream stream(GXTEXT_SOURCE_DIR "/" + file, std::ios::binary);
    EXPECT_TRUE(stream) << file;
    return {std::istreambuf_iterator<char>(stream), {}};
}

// The lines from one that holds `first` to one that holds `last`, without what each begins with.
std::vector<std::string> linesOf(const std::string& file, const std::string& first,
                                 const std::string& last) {
    std::istringstream stream(read(file));
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) {
        if (lines.empty() && line.find(first) == std::string::npos) continue;
        const size_t start = line.find_first_not_of("/ ");
        lines.push_back(start == std::string::npos ? "" : line.substr(start));
        if (line.find(last) != std::string::npos) break;
    }
    EXPECT_FALSE(lines.empty()) << file << ": " << first;
    return lines;
}

TEST(Examples, AreWhatReadmeAndHeadersShow) {
    EXPECT_EQ(linesOf("README.md", "#include <scene/Renderer.h>", "hello.png"),
              linesOf("examples/cpp/hello.cpp", "#include <scene/Renderer.h>", "hello.png"));
    EXPECT_EQ(linesOf("src/scene/Renderer.h", "gxtext::Renderer renderer", "hello.png"),
              linesOf("examples/cpp/hello.cpp", "gxtext::Renderer renderer", "hello.png"));
    for (const char* shown : {"README.md", "src/text/GxTextObject.h"}) {
        EXPECT_EQ(linesOf(shown, "GxTextObject text;", "RenderTextEffect("),
                  linesOf("examples/cpp/title.cpp", "GxTextObject text;", "RenderTextEffect("))
            << shown;
    }
}

}  // namespace
}  // namespace gxtext
