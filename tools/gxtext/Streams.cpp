#include "Streams.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "ToolError.h"
#include "base/Descriptor.h"
#include "scene/FileIo.h"

namespace gxtool {

using namespace gxtext;

void reserveStandardStreams() {
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(descriptor, F_GETFD) >= 0) continue;
        // The wrong way round, so that using it fails; the lowest free number is this one.
        open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
}

std::string readInput(const std::string& file, size_t limit) {
    if (file == "-") return readDescriptor(STDIN_FILENO, "standard input", limit);
    if (!isDescriptorPath(file)) return readFile(file, limit);
    const GxFontEffect::Descriptor opened(open(file.c_str(), O_RDONLY | O_CLOEXEC));
    if (!opened) throw ToolError("cannot open " + file + ": " + strerror(errno));
    return readDescriptor(opened.get(), file, limit);
}

void writeOutput(const std::string& file, std::string_view bytes) {
    if (file == "-") {
        writeDescriptor(STDOUT_FILENO, "standard output", bytes);
    } else {
        writeFile(file, bytes);
    }
}

void refuseTerminal(const std::string& file) {
    if (file == "-" && isatty(STDOUT_FILENO)) {
        throw ToolError("not writing a picture to a terminal; use -o FILE or redirect the output",
                        kUsage);
    }
}

void refuseInputs(const std::string& output, const std::vector<std::string>& inputs) {
    const std::filesystem::path target = output == "-" ? "/dev/stdout" : output;
    std::error_code isNoFile;
    if (!std::filesystem::is_regular_file(target, isNoFile)) return;
    for (const std::string& input : inputs) {
        std::error_code ignored;
        if (!std::filesystem::equivalent(target, input == "-" ? "/dev/stdin" : input, ignored)) {
            continue;
        }
        const std::string name = input == "-" ? "standard input" : input;
        throw ToolError("the output would replace " + name + ", which is read; use another file",
                        kUsage);
    }
}

}  // namespace gxtool
