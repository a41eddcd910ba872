#include "Process.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace gxtest {

namespace {

// Unnamed files, so that neither side ever waits for the other.
class Stream {
public:
    explicit Stream(const std::string& content = "") : file_(tmpfile()) {
        fwrite(content.data(), 1, content.size(), file_);
        rewind(file_);
    }
    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;
    ~Stream() { fclose(file_); }

    int descriptor() const { return fileno(file_); }
    std::string content() const {
        rewind(file_);
        std::string bytes;
        for (int c = fgetc(file_); c != EOF; c = fgetc(file_)) bytes += static_cast<char>(c);
        return bytes;
    }

private:
    FILE* file_;
};

int runWith(const char* program, const std::vector<std::string>& arguments, int in, int out,
            int err) {
    std::vector<char*> argv;
    std::vector<std::string> copies{program};
    copies.insert(copies.end(), arguments.begin(), arguments.end());
    for (std::string& copy : copies) argv.push_back(copy.data());
    argv.push_back(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        // Only a sanitizer build reads it.
        setenv("LSAN_OPTIONS",
               "suppressions=" GXTEXT_SOURCE_DIR "/tests/tool/lsan.supp:print_suppressions=0", 1);
        dup2(in, 0);
        dup2(out, 1);
        dup2(err, 2);
        execv(program, argv.data());
        _exit(127);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

Outcome runOnFiles(const char* program, const std::vector<std::string>& arguments,
                   const std::string& input) {
    const Stream in(input);
    const Stream out;
    const Stream err;
    Outcome outcome;
    outcome.status =
        runWith(program, arguments, in.descriptor(), out.descriptor(), err.descriptor());
    outcome.out = out.content();
    outcome.err = err.content();
    return outcome;
}

}  // namespace

Outcome runGxtext(const std::vector<std::string>& arguments, const std::string& input) {
    return runOnFiles(GXTEXT_PROGRAM, arguments, input);
}

Outcome runShell(const std::string& script, const std::string& folder) {
    const std::string setUp = "program='" GXTEXT_PROGRAM
                              "'; gxtext() { \"$program\" \"$@\"; }; cd '" +
                              folder + "' || exit 99\n";
    return runOnFiles("/bin/sh", {"-c", setUp + script}, "");
}

std::optional<Outcome> runGxtextOnTerminal(const std::vector<std::string>& arguments) {
    const int terminal = posix_openpt(O_RDWR | O_NOCTTY);
    if (terminal < 0 || grantpt(terminal) != 0 || unlockpt(terminal) != 0) return std::nullopt;
    const int out = open(ptsname(terminal), O_RDWR | O_NOCTTY);
    if (out < 0) return std::nullopt;
    Outcome outcome;
    const Stream in;
    const Stream err;
    outcome.status = runWith(GXTEXT_PROGRAM, arguments, in.descriptor(), out, err.descriptor());
    outcome.err = err.content();
    close(out);
    close(terminal);
    return outcome;
}

}  // namespace gxtest
