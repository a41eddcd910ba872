#include "LayeredPicture.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "style/Style.h"

namespace gxstudio {

namespace {

namespace fs = std::filesystem;
using gxtext::Error;
using nlohmann::ordered_json;

constexpr rlim_t kMaxPrinted = rlim_t{4} << 20;
constexpr rlim_t kMaxSeconds = 30;  // for one whose parent died before it could be told
constexpr size_t kMostLayers = 200;
constexpr size_t kLongestReason = 500;
constexpr int kNoReader = 3;         // exit status of kProgram
constexpr int kNoInterpreter = 127;  // and of what could not be started

// -c looks for modules in the current folder, too, which is "/".
constexpr char kProgram[] =
    "import sys\n"
    "try:\n"
    "    from gxtext import psd\n"
    "except ImportError:\n"
    "    sys.exit(3)\n"
    "sys.exit(psd.main(sys.argv[1:]))\n";

// Of the environment that was activated, and the system's: never what a search path finds first.
std::vector<std::string> interpreters() {
    std::vector<std::string> found;
    const char* environment = getenv("VIRTUAL_ENV");
    if (environment && *environment == '/') {
        found.push_back(std::string(environment) + "/bin/python3");
    }
    found.insert(found.end(), {"/usr/local/bin/python3", "/usr/bin/python3"});
    return found;
}

// A file without a name.
class Sink {
public:
    Sink() : descriptor_(memfd_create("printed", MFD_CLOEXEC)) {
        if (descriptor_ < 0) {
            throw std::system_error(errno, std::generic_category(), "cannot read the file");
        }
    }
    Sink(const Sink&) = delete;
    Sink& operator=(const Sink&) = delete;
    ~Sink() { close(descriptor_); }

    int descriptor() const { return descriptor_; }
    std::string text() const {
        const off_t size = lseek(descriptor_, 0, SEEK_END);
        std::string text(static_cast<size_t>(std::max<off_t>(size, 0)), '\0');
        const ssize_t count = pread(descriptor_, text.data(), text.size(), 0);
        text.resize(static_cast<size_t>(std::max<ssize_t>(count, 0)));
        return text;
    }

private:
    const int descriptor_;
};

// In the child. Prints at most kMaxPrinted bytes, and writes no other file.
[[noreturn]] void become(std::vector<char*>& arguments, const Sink& out, const Sink& errors) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    const rlimit printed{kMaxPrinted, kMaxPrinted};
    const rlimit seconds{kMaxSeconds, kMaxSeconds};
    const rlimit none{0, 0};
    setrlimit(RLIMIT_FSIZE, &printed);
    setrlimit(RLIMIT_CPU, &seconds);
    setrlimit(RLIMIT_CORE, &none);
    const int nothing = open("/dev/null", O_RDONLY | O_CLOEXEC);
    if (nothing >= 0 && chdir("/") == 0 && dup2(nothing, STDIN_FILENO) >= 0 &&
        dup2(out.descriptor(), STDOUT_FILENO) >= 0 &&
        dup2(errors.descriptor(), STDERR_FILENO) >= 0) {
        // What is the studio's closes by itself; what it was started with need not be there.
        static_cast<void>(close_range(STDERR_FILENO + 1, ~0U, 0));
        execv(arguments.front(), arguments.data());
    }
    _exit(kNoInterpreter);
}

// The exit status; negative for what a signal ended.
int run(std::vector<std::string> arguments, const Sink& out, const Sink& errors) {
    std::vector<char*> pointers;
    pointers.reserve(arguments.size() + 1);
    for (std::string& argument : arguments) pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    const pid_t process = fork();
    if (process < 0)
        throw std::system_error(errno, std::generic_category(), "cannot read the file");
    if (process == 0) become(pointers, out, errors);
    int status = 0;
    while (waitpid(process, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// The last line, which says it, without the file's name, which nobody gave it.
std::string reasonOf(std::string printed, const std::string& file) {
    while (printed.ends_with('\n')) printed.pop_back();
    printed.erase(0, printed.rfind('\n') + 1);
    if (printed.starts_with(file + ": ")) printed.erase(0, file.size() + 2);
    return printed.empty() ? "the file cannot be read" : printed.substr(0, kLongestReason);
}

std::string limited(const ordered_json& value) {
    return value.get<std::string>().substr(0, kLongestReason);
}

ordered_json lossesOf(const ordered_json& given) {
    ordered_json losses = ordered_json::array();
    for (const ordered_json& loss : given) {
        losses.push_back({{"path", limited(loss.at("path"))},
                          {"kind", limited(loss.at("kind"))},
                          {"reason", limited(loss.at("reason"))}});
    }
    return losses;
}

}  // namespace

std::string readLayers(const std::string& file, const std::vector<std::string>& fonts) {
    for (const std::string& interpreter : interpreters()) {
        // -B: nothing is written beside the modules.
        std::vector<std::string> arguments = {interpreter, "-B", "-c", kProgram, file, "--json"};
        for (const std::string& path : fonts) {
            arguments.insert(arguments.end(), {"--fonts", fs::absolute(path).string()});
        }
        const Sink out, errors;
        const int status = run(std::move(arguments), out, errors);
        if (status == EXIT_SUCCESS) return out.text();
        if (status == kNoReader || status == kNoInterpreter) continue;
        throw Error(reasonOf(errors.text(), file));
    }
    throw Error(
        "layered pictures are read by the Python package gxtext with its extra psd, which no "
        "Python here has; install it with: pip install 'gxtext[psd]'");
}

ordered_json layersOf(const std::string& printed) {
    try {
        ordered_json layers = ordered_json::array();
        const auto given = ordered_json::parse(printed);
        for (const ordered_json& layer : given) {
            if (layers.size() == kMostLayers) break;
            const auto style = gxtext::Style::fromJson(layer.at("style").dump());
            layers.push_back({{"name", limited(layer.at("name"))},
                              {"style", ordered_json::parse(style.toJson())},
                              {"losses", lossesOf(layer.at("losses"))}});
        }
        std::reverse(layers.begin(), layers.end());
        return layers;
    } catch (const nlohmann::json::exception& error) {
        throw Error(std::string("the reader of layered pictures printed something else: ") +
                    error.what());
    }
}

}  // namespace gxstudio
