#include "FileIo.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>

#include "ToolError.h"

namespace gxtool {

namespace {

struct Closer {
    void operator()(FILE* file) const { fclose(file); }
};
using FileHandle = std::unique_ptr<FILE, Closer>;

[[noreturn]] void failWith(const std::string& file, const char* task, int code) {
    throw ToolError(std::string(task) + " " + file + ": " + strerror(code));
}

std::string readAll(FILE* stream, const std::string& name, size_t limit) {
    std::string bytes;
    char chunk[65536];
    while (const size_t count = fread(chunk, 1, sizeof(chunk), stream)) {
        bytes.append(chunk, count);
        if (bytes.size() > limit) {
            throw ToolError(name + " is longer than " + std::to_string(limit) + " bytes");
        }
    }
    if (ferror(stream)) failWith(name, "cannot read", errno);
    return bytes;
}

}  // namespace

std::string readInput(const std::string& file, size_t limit) {
    if (file == "-") return readAll(stdin, "standard input", limit);
    const FileHandle stream(fopen(file.c_str(), "rb"));
    if (!stream) failWith(file, "cannot open", errno);
    return readAll(stream.get(), file, limit);
}

void writeOutput(const std::string& file, std::string_view bytes) {
    if (file == "-") {
        const bool written = fwrite(bytes.data(), 1, bytes.size(), stdout) == bytes.size();
        if (!written || fflush(stdout) != 0) failWith("standard output", "cannot write to", errno);
        return;
    }
    FileHandle stream(fopen(file.c_str(), "wb"));
    if (!stream) failWith(file, "cannot create", errno);
    const bool written = fwrite(bytes.data(), 1, bytes.size(), stream.get()) == bytes.size();
    // Closing flushes, so a full disk may only show here.
    if (fclose(stream.release()) != 0 || !written) {
        const int code = errno;
        std::error_code ignored;
        // Not a device such as /dev/full.
        if (std::filesystem::is_regular_file(file, ignored)) remove(file.c_str());
        failWith(file, "cannot write to", code);
    }
}

void refuseTerminal(const std::string& file) {
    if (file == "-" && isatty(STDOUT_FILENO)) {
        throw ToolError("not writing a picture to a terminal; use -o FILE or redirect the output",
                        kUsage);
    }
}

}  // namespace gxtool
