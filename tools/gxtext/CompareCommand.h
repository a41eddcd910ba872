// gxtext compare: its options, and what it says.
#pragma once

#include <cstdint>
#include <string>

namespace CLI {
class App;
}

namespace gxtool {

struct CompareOptions {
    std::string before;
    std::string after;
    std::string diff;  // file, or folder for folders
    int tolerance = 0;
    uint64_t maxDifferent = 0;
    bool json = false;
};

// `options` lives as long as the parser.
CLI::App* addCompare(CLI::App& parent, CompareOptions& options);

// Returns the exit status: 1 when a pair differs, or one of two folders lacks a picture.
int compareCommand(const CompareOptions& options);

}  // namespace gxtool
