#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <system_error>
#include <vector>

#include "Commands.h"
#include "ToolError.h"

namespace gxtool {

namespace {

namespace fs = std::filesystem;

// Beside this program where both were built, in a folder of its own where they are installed.
fs::path studioProgram() {
    std::error_code none;
    const fs::path here = fs::read_symlink("/proc/self/exe", none).parent_path();
    for (const fs::path& folder : {here, here / GXTEXT_LIBEXEC}) {
        fs::path program = folder / "gxtext-studio";
        if (fs::exists(program, none)) return program;
    }
    throw ToolError(
        "this program was built without the studio: building that takes cpp-httplib "
        "(libcpp-httplib-dev)");
}

}  // namespace

// A program of its own: what a server links would make every other command start later.
void studioCommand(const StudioOptions& options) {
    const std::string program = studioProgram().string();
    std::vector<std::string> arguments = {
        program, "file=" + options.file, "port=" + std::to_string(options.port),
        "idle=" + std::to_string(options.idleSeconds),
        std::string("browser=") + (options.noBrowser ? "no" : "yes")};
    for (const std::string& path : options.fonts) arguments.push_back("fonts=" + path);
    std::vector<char*> pointers;
    pointers.reserve(arguments.size() + 1);
    for (std::string& argument : arguments) pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    execv(program.c_str(), pointers.data());
    throw ToolError(program + ": " + std::generic_category().message(errno));
}

}  // namespace gxtool
