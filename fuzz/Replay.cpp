// Runs a target once on each file given, and on each in the folders given: the corpus as a test,
// for any compiler.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

namespace fs = std::filesystem;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);
extern "C" __attribute__((weak)) int LLVMFuzzerInitialize(int* argc, char*** argv);
// libFuzzer's, for mutators; none runs here.
extern "C" size_t LLVMFuzzerMutate(uint8_t* /*data*/, size_t size, size_t /*maxSize*/) {
    return size;
}

int main(int argc, char** argv) {
    if (LLVMFuzzerInitialize) LLVMFuzzerInitialize(&argc, &argv);
    std::vector<fs::path> files;
    for (int i = 1; i < argc; ++i) {
        if (fs::is_directory(argv[i])) {
            for (const auto& entry : fs::directory_iterator(argv[i])) files.push_back(entry);
        } else {
            files.emplace_back(argv[i]);
        }
    }
    std::sort(files.begin(), files.end());
    for (const fs::path& file : files) {
        // Before it runs, so that the last one named is the one that failed.
        printf("%s\n", file.filename().c_str());
        fflush(stdout);
        std::ifstream stream(file, std::ios::binary);
        const std::vector<char> bytes{std::istreambuf_iterator<char>(stream), {}};
        LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
    }
    if (files.empty()) fprintf(stderr, "no inputs\n");
    return files.empty() ? 1 : 0;
}
