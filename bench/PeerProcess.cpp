#include "PeerProcess.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <map>
#include <nlohmann/json.hpp>

namespace gxbench {

using nlohmann::json;

std::string peerFolder() {
    return GXBENCH_PEERS;
}

std::string peerProgram(const std::string& name) {
    return std::string(GXBENCH_PEER_PROGRAMS) + "/" + name;
}

// A child with its input and its output in our hands, line by line.
class PeerProcess::Pipes {
public:
    explicit Pipes(std::vector<std::string> command) {
        std::signal(SIGPIPE, SIG_IGN);  // a child that died is seen by its silence
        int in[2];
        int out[2];
        if (access(command.front().c_str(), X_OK) != 0 || pipe2(in, O_CLOEXEC) != 0) return;
        if (pipe2(out, O_CLOEXEC) != 0) {
            close(in[0]);
            close(in[1]);
            return;
        }
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, in[0], STDIN_FILENO);
        posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
        std::vector<char*> argv;
        argv.reserve(command.size() + 1);
        for (std::string& word : command) argv.push_back(word.data());
        argv.push_back(nullptr);
        if (posix_spawn(&child_, argv[0], &actions, nullptr, argv.data(), environ) != 0) child_ = 0;
        posix_spawn_file_actions_destroy(&actions);
        close(in[0]);
        close(out[1]);
        toChild_ = fdopen(in[1], "w");
        fromChild_ = fdopen(out[0], "r");
    }
    ~Pipes() {
        if (toChild_) std::fclose(toChild_);
        if (fromChild_) std::fclose(fromChild_);
        if (child_ > 0) waitpid(child_, nullptr, 0);  // its input has ended
    }
    Pipes(const Pipes&) = delete;
    Pipes& operator=(const Pipes&) = delete;

    // The answer to a line; an object with "missing" when there is none.
    json ask(const json& question) {
        if (child_ <= 0) return {{"missing", "not installed"}};
        std::string line = question.dump() + "\n";
        std::fputs(line.c_str(), toChild_);
        std::fflush(toChild_);
        line.clear();
        for (int c = std::fgetc(fromChild_); c != EOF && c != '\n'; c = std::fgetc(fromChild_)) {
            line.push_back(static_cast<char>(c));
        }
        json answer = json::parse(line, nullptr, false);
        if (!answer.is_object()) return {{"missing", "does not answer"}};
        return answer;
    }

private:
    pid_t child_ = 0;
    FILE* toChild_ = nullptr;
    FILE* fromChild_ = nullptr;
};

PeerProcess::PeerProcess(const std::vector<std::string>& command)
    : pipes_(std::make_unique<Pipes>(command)) {}

PeerProcess::~PeerProcess() = default;

std::shared_ptr<PeerProcess> PeerProcess::of(const std::vector<std::string>& command) {
    static std::map<std::vector<std::string>, std::shared_ptr<PeerProcess>> started;
    std::shared_ptr<PeerProcess>& process = started[command];
    if (!process) process.reset(new PeerProcess(command));
    return process;
}

std::string PeerProcess::prepare(const std::string& job) {
    const json answer = pipes_->ask({{"prepare", json::parse(job)}});
    version_ = answer.value("ready", "");
    note_ = answer.value("note", "");
    return answer.value("missing", "");
}

double PeerProcess::seconds(double atLeast) {
    return pipes_->ask({{"time", atLeast}}).value("seconds", 0.0);
}

bool PeerProcess::save(const std::string& file) {
    return pipes_->ask({{"save", file}}).contains("saved");
}

Peer processPeer(const std::string& name, const std::vector<std::string>& command,
                 const std::string& job) {
    const std::shared_ptr<PeerProcess> process = PeerProcess::of(command);
    const std::string reason = process->prepare(job);
    if (!reason.empty()) return {name, {}, reason};
    constexpr double kSeconds = 0.002;
    return {process->version(), [=] { return process->seconds(kSeconds); }, process->note()};
}

}  // namespace gxbench
