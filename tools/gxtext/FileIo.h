// Whole files in and out; "-" stands for standard input and output.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace gxtool {

constexpr size_t kMaxTextBytes = size_t{1} << 20;
constexpr size_t kMaxImageBytes = size_t{64} << 20;

// All bytes of the file. Throws ToolError when it cannot be read or is longer than `limit`.
std::string readInput(const std::string& file, size_t limit);

// Throws ToolError when not everything could be written; a file that was begun is removed again.
void writeOutput(const std::string& file, std::string_view bytes);

// Throws a usage error when `file` is standard output and that is a terminal.
void refuseTerminal(const std::string& file);

}  // namespace gxtool
