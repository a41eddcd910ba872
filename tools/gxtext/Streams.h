// What the command line calls FILE: a file, or "-" for standard input and output.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace gxtool {

constexpr size_t kMaxTextBytes = size_t{1} << 20;

// Keeps descriptors 0 to 2 out of use by files where the program was started without them, which
// then fail to be read and written.
void reserveStandardStreams();

// All bytes of a regular file, of "-", or of what a shell hands over as /dev/fd/63. Throws
// ToolError when it cannot be read or is longer than `limit`.
std::string readInput(const std::string& file, size_t limit);

// See writeFile. Throws ToolError when not everything could be written.
void writeOutput(const std::string& file, std::string_view bytes);

// Throws a usage error when `file` is standard output and that is a terminal.
void refuseTerminal(const std::string& file);

// Throws a usage error when `output` is the same file as one of `inputs`, whatever their names.
void refuseInputs(const std::string& output, const std::vector<std::string>& inputs);

}  // namespace gxtool
