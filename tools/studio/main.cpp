#include <httplib.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <random>
#include <string>

#include "Answer.h"
#include "Calls.h"
#include "FontPaths.h"
#include "Gate.h"
#include "Page.h"
#include "Renders.h"
#include "Server.h"
#include "Work.h"
#include "batch/WorkerPool.h"
#include "style/Style.h"
#include "style/StyleSchema.h"

// Three kinds of process: this one, which has no threads and starts the others; the server; and the
// workers that read fonts and styles and draw. A server or a worker that dies is followed by
// another one, at the same address.
namespace gxstudio {

namespace {

namespace fs = std::filesystem;
using std::chrono::milliseconds;

constexpr int kWorkers = 2;  // the picture, and previews beside it
// Sanitizers reserve more than there is.
#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define GXTEXT_IS_SANITIZED
#endif
#endif
#ifdef GXTEXT_IS_SANITIZED
constexpr size_t kWorkerBytes = 0;
#else
constexpr size_t kWorkerBytes = size_t{3} << 30;
#endif
constexpr gxtext::WorkerLimits kLimits{milliseconds(15'000), kWorkerBytes};
constexpr int kMostServers = 20;

struct Arguments {
    std::string file;
    std::vector<std::string> fonts;
    int port = 0;
    int idleSeconds = 600;
    bool opensBrowser = true;
};

volatile sig_atomic_t isStopped = 0;

// As gxtext(1) hands them over: NAME=VALUE.
Arguments readArguments(int argc, char** argv) {
    Arguments arguments;
    for (int i = 1; i < argc; i++) {
        const std::string text = argv[i];
        const size_t sign = text.find('=');
        const std::string value = sign == std::string::npos ? "" : text.substr(sign + 1);
        const std::string name = text.substr(0, sign);
        if (name == "file") arguments.file = value;
        if (name == "fonts") arguments.fonts.push_back(value);
        if (name == "port") arguments.port = std::stoi(value);
        if (name == "idle") arguments.idleSeconds = std::stoi(value);
        if (name == "browser") arguments.opensBrowser = value == "yes";
    }
    return arguments;
}

std::string randomSecret() {
    std::random_device random;
    std::string secret;
    for (int i = 0; i < 4; i++) {
        char digits[16];
        snprintf(digits, sizeof(digits), "%08x", static_cast<unsigned>(random()));
        secret += digits;
    }
    return secret;
}

// Removed with all that was dropped.
class SessionFolder {
public:
    SessionFolder() {
        std::string name = (fs::temp_directory_path() / "gxtext-studio-XXXXXX").string();
        if (!mkdtemp(name.data())) throw gxtext::Error("cannot make a folder in " + name);
        path_ = name;
    }
    SessionFolder(const SessionFolder&) = delete;
    SessionFolder& operator=(const SessionFolder&) = delete;
    ~SessionFolder() {
        std::error_code none;
        fs::remove_all(path_, none);
    }
    const fs::path& path() const { return path_; }

private:
    fs::path path_;
};

class Studio {
public:
    explicit Studio(Arguments arguments)
        : arguments_(std::move(arguments)), fonts_(gxtool::fontsAt(arguments_.fonts)) {
        const fs::path file = arguments_.file.empty() ? fs::path() : fs::absolute(arguments_.file);
        folder_ = file.empty() ? fs::current_path() : file.parent_path();
        file_ = file.filename().string();
        Files files(folder_, session_.path());
        if (!file.empty()) gxtext::Style::fromFile(files.pathOf(file_));  // or says why not
        bind();
        for (const BuiltIn& pattern : kPatterns) {
            files.keep(std::string(pattern.name), pattern.bytes);
        }
    }

    std::string address() const {
        return "http://127.0.0.1:" + std::to_string(port_) + "/" + secret_ + "/";
    }

    void run() {
        gxtext::WorkerPool pool(
            kWorkers, [this] { return makeWork(); }, kLimits);
        for (int i = 0; i < kMostServers && !isStopped; i++) {
            if (serveOnce(pool)) return;
        }
    }

private:
    void bind() {
        http_.set_address_family(AF_INET);
        http_.set_tcp_nodelay(true);  // of the socket that is made here
        port_ = arguments_.port;
        const bool isBound = arguments_.port == 0
                                 ? (port_ = http_.bind_to_any_port("127.0.0.1")) > 0
                                 : http_.bind_to_port("127.0.0.1", arguments_.port);
        if (!isBound) {
            throw gxtext::Error("cannot listen on port " + std::to_string(arguments_.port) +
                                " of 127.0.0.1");
        }
    }

    gxtext::WorkerPool::Work makeWork() const {
        auto work = std::make_shared<Work>(fonts_, arguments_.fonts);
        return [work](const std::string& request) { return work->answer(request); };
    }

    // A server from its start to its end; whether it ended by itself.
    bool serveOnce(gxtext::WorkerPool& pool) {
        auto [own, other] = Channel::pair();
        const pid_t server = startServer(own, other);
        { const Channel closed(std::move(other)); }
        while (!isStopped && passOn(pool, own)) {
        }
        if (isStopped) kill(server, SIGKILL);
        int status = 0;
        waitpid(server, &status, 0);
        return isStopped || (WIFEXITED(status) && WEXITSTATUS(status) == EXIT_SUCCESS);
    }

    pid_t startServer(Channel& own, Channel& other) {
        const pid_t parent = getpid();
        const pid_t server = fork();
        if (server < 0) throw gxtext::Error("cannot start the server");
        if (server > 0) return server;
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (getppid() != parent) _exit(EXIT_SUCCESS);
        signal(SIGINT, SIG_DFL);
        signal(SIGTERM, SIG_DFL);
        { const Channel closed(std::move(own)); }
        Renders renders(std::move(other));
        Files files(folder_, session_.path());
        Calls calls(
            files, [&](const auto& request) { return renders.answer(request); }, beginning());
        const Gate gate(secret_, port_, Files::kMaxDropped);
        Server(http_, gate, calls, std::chrono::seconds(arguments_.idleSeconds)).run();
        _exit(EXIT_FAILURE);
    }

    // What a page is told as it begins.
    Calls::Json beginning() const {
        Calls::Json presets = Calls::Json::array();
        for (const BuiltIn& preset : kPresets) {
            presets.push_back({{"name", preset.name}, {"style", Calls::Json::parse(preset.bytes)}});
        }
        return {{"schema", Calls::Json::parse(gxtext::styleSchema())},
                {"folder", folder_.string()},
                {"file", file_},
                {"maxFile", Files::kMaxDropped},
                {"presets", std::move(presets)}};
    }

    // Waits a while, and takes requests to the workers and answers back. False when the server is
    // gone.
    bool passOn(gxtext::WorkerPool& pool, Channel& channel) {
        bool isServed = true;
        const bool isReady =
            pool.wait(channel.socket(), milliseconds(1000), [&](gxtext::WorkerAnswer&& answer) {
                std::string bytes = answer.death ? packAnswer(problemWords("$", *answer.death))
                                                 : std::move(answer.bytes);
                isServed = channel.send({answer.ticket, std::move(bytes)}) && isServed;
            });
        if (!isReady) return isServed;
        auto message = channel.receive();
        if (!message) return false;
        pool.submit(message->ticket, std::move(message->bytes));
        return isServed;
    }

    const Arguments arguments_;
    const gxtext::FontSource fonts_;
    const SessionFolder session_;
    const std::string secret_ = randomSecret();
    fs::path folder_;
    std::string file_;  // name of the style that is open at the start; may be empty
    int port_ = 0;
    httplib::Server http_;
};

// Where there is a screen to open one on.
void openBrowser(const std::string& address) {
    if (!getenv("DISPLAY") && !getenv("WAYLAND_DISPLAY")) return;
    if (fork() != 0) return;
    setsid();
    if (freopen("/dev/null", "w", stdout) && freopen("/dev/null", "w", stderr)) {
        execlp("xdg-open", "xdg-open", address.c_str(), static_cast<char*>(nullptr));
    }
    _exit(EXIT_FAILURE);
}

int run(const Arguments& arguments) {
    if (kPage.empty()) {
        throw gxtext::Error(
            "this program was built without its page: building that takes Node, npm and the "
            "packages of studio/package-lock.json");
    }
    Studio studio(arguments);
    printf("%s\n", studio.address().c_str());
    fflush(stdout);
    if (arguments.opensBrowser) openBrowser(studio.address());
    studio.run();
    return EXIT_SUCCESS;
}

void stop(int /*signal*/) {
    isStopped = 1;
}

}  // namespace

}  // namespace gxstudio

int main(int argc, char** argv) {
    unsetenv("HB_OPTIONS");  // HarfBuzz would join clusters, and spacing with them, another way
    struct sigaction action {};
    action.sa_handler = gxstudio::stop;
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
    sigaction(SIGHUP, &action, nullptr);
    try {
        return gxstudio::run(gxstudio::readArguments(argc, argv));
    } catch (const std::exception& error) {
        fprintf(stderr, "gxtext: %s\n", error.what());
        return EXIT_FAILURE;
    }
}
