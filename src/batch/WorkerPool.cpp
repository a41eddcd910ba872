#include "batch/WorkerPool.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <system_error>
#include <utility>

#include "batch/Transfer.h"

#ifdef __linux__
#include <sys/prctl.h>
#endif

namespace gxtext {

namespace {

using std::chrono::milliseconds;

// The one that is worked on and the next, so that no worker waits for the other side.
constexpr size_t kPiecesAhead = 2;

// A worker that holds more when it has answered is followed by a fresh one: caches that grow with
// what the pieces ask for stay bounded.
constexpr size_t kRetireBytes = size_t{768} << 20;
constexpr int kRetireInterval = 64;  // pieces between two looks

constexpr int kRetired = 0;  // exit status

using Length = uint32_t;

void appendMessage(std::string& to, const std::string& bytes) {
    const auto length = static_cast<Length>(bytes.size());
    to.append(reinterpret_cast<const char*>(&length), sizeof(length)).append(bytes);
}

// Takes the first message, if it is whole.
std::optional<std::string> takeMessage(std::string& from) {
    Length length = 0;
    if (from.size() < sizeof(length)) return std::nullopt;
    std::memcpy(&length, from.data(), sizeof(length));
    if (from.size() - sizeof(length) < length) return std::nullopt;
    std::string message = from.substr(sizeof(length), length);
    from.erase(0, sizeof(length) + length);
    return message;
}

size_t residentBytes() {
    size_t pages = 0;
    if (FILE* file = fopen("/proc/self/statm", "re")) {
        if (fscanf(file, "%*u %zu", &pages) != 1) pages = 0;
        fclose(file);
    }
    return pages * static_cast<size_t>(sysconf(_SC_PAGESIZE));
}

std::string secondsText(milliseconds time) {
    char text[32];
    snprintf(text, sizeof(text), "%g s", static_cast<double>(time.count()) / 1000);
    return text;
}

}  // namespace

WorkerPool::WorkerPool(int workers, std::function<Work()> start, WorkerLimits limits)
    : start_(std::move(start)), limits_(limits), workers_(static_cast<size_t>(workers)) {}

WorkerPool::~WorkerPool() {
    for (Worker& worker : workers_) {
        if (worker.process == 0) continue;
        kill(worker.process, SIGKILL);
        close(worker.socket);
        waitpid(worker.process, nullptr, 0);
    }
}

bool WorkerPool::hasRoom() const {
    return std::any_of(workers_.begin(), workers_.end(),
                       [](const Worker& worker) { return worker.pieces.size() < kPiecesAhead; });
}

bool WorkerPool::isIdle() const {
    return std::all_of(workers_.begin(), workers_.end(),
                       [](const Worker& worker) { return worker.pieces.empty(); });
}

void WorkerPool::submit(uint64_t ticket, std::string request) {
    Worker& worker = *std::min_element(
        workers_.begin(), workers_.end(),
        [](const Worker& a, const Worker& b) { return a.pieces.size() < b.pieces.size(); });
    worker.pieces.push_back({ticket, std::move(request)});
    if (worker.process == 0) {
        start(worker);
    } else {
        send(worker, worker.pieces.back());
    }
}

void WorkerPool::start(Worker& worker) {
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) {
        throw std::system_error(errno, std::generic_category(), "cannot start a worker");
    }
    const pid_t parent = getpid();
    worker.process = fork();
    if (worker.process == 0) {
#ifdef __linux__
        prctl(PR_SET_PDEATHSIG, SIGKILL);
#endif
        if (getppid() != parent) _exit(kRetired);
        // Only this side may hold the others open, so that its end is theirs.
        for (const Worker& other : workers_) {
            if (other.process > 0) close(other.socket);
        }
        close(ends[0]);
        work(ends[1]);
    }
    close(ends[1]);
    if (worker.process < 0) {
        worker.process = 0;
        close(ends[0]);
        throw std::system_error(errno, std::generic_category(), "cannot start a worker");
    }
    worker.socket = ends[0];
    fcntl(worker.socket, F_SETFL, O_NONBLOCK);
    worker.outgoing.clear();
    worker.incoming.clear();
    for (const Piece& piece : worker.pieces) send(worker, piece);
}

void WorkerPool::work(int socket) const {
    if (limits_.memoryBytes > 0) {
        const rlimit limit{limits_.memoryBytes, limits_.memoryBytes};
        setrlimit(RLIMIT_DATA, &limit);
    }
    const Work work = start_();
    std::string request, answer;
    for (int done = 1;; done++) {
        Length length = 0;
        if (!receiveFully(socket, reinterpret_cast<char*>(&length), sizeof(length)))
            _exit(kRetired);
        request.resize(length);
        if (!receiveFully(socket, request.data(), length)) _exit(kRetired);
        answer.clear();
        appendMessage(answer, work(request));
        if (!sendFully(socket, answer.data(), answer.size())) _exit(kRetired);
        if (done % kRetireInterval == 0 && residentBytes() > kRetireBytes) _exit(kRetired);
    }
}

void WorkerPool::send(Worker& worker, const Piece& piece) {
    if (piece.ticket == worker.pieces.front().ticket) beginPiece(worker);
    appendMessage(worker.outgoing, piece.request);
    flush(worker);
}

void WorkerPool::beginPiece(Worker& worker) const {
    worker.deadline =
        limits_.timeout.count() > 0 ? Clock::now() + limits_.timeout : Clock::time_point::max();
}

// A worker that is gone is found when it is read from.
void WorkerPool::flush(Worker& worker) const {
    while (!worker.outgoing.empty()) {
        const ssize_t count = ::send(worker.socket, worker.outgoing.data(), worker.outgoing.size(),
                                     MSG_NOSIGNAL | MSG_DONTWAIT);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return;
        worker.outgoing.erase(0, static_cast<size_t>(count));
    }
}

int WorkerPool::pollTime(milliseconds longest) const {
    const Clock::time_point now = Clock::now();
    Clock::time_point end = now + longest;
    for (const Worker& worker : workers_) {
        if (!worker.pieces.empty()) end = std::min(end, worker.deadline);
    }
    return static_cast<int>(
        std::max<int64_t>(0, std::chrono::ceil<milliseconds>(end - now).count()));
}

bool WorkerPool::wait(int descriptor, milliseconds longest,
                      const std::function<void(WorkerAnswer&&)>& take) {
    std::vector<pollfd> waited;
    for (const Worker& worker : workers_) {
        const short events = worker.outgoing.empty() ? POLLIN : POLLIN | POLLOUT;
        waited.push_back({worker.process > 0 ? worker.socket : -1, events, 0});
    }
    waited.push_back({descriptor, POLLIN, 0});
    if (poll(waited.data(), waited.size(), pollTime(longest)) < 0) return false;
    const Clock::time_point now = Clock::now();
    for (size_t i = 0; i < workers_.size(); i++) {
        Worker& worker = workers_[i];
        if (waited[i].revents & POLLOUT) flush(worker);
        if (waited[i].revents & ~POLLOUT) receive(worker, take);
        const bool isLate = !worker.pieces.empty() && worker.deadline <= now;
        if (isLate && worker.process > 0) bury(worker, true, take);
    }
    return waited.back().revents != 0;
}

void WorkerPool::receive(Worker& worker, const std::function<void(WorkerAnswer&&)>& take) {
    const bool isAlive = readAll(worker);
    while (!worker.pieces.empty()) {
        auto message = takeMessage(worker.incoming);
        if (!message) break;
        WorkerAnswer answer{worker.pieces.front().ticket, std::move(*message), std::nullopt};
        worker.pieces.pop_front();
        beginPiece(worker);
        take(std::move(answer));
    }
    if (!isAlive) bury(worker, false, take);
}

// False when the worker is gone.
bool WorkerPool::readAll(Worker& worker) const {
    char chunk[65536];
    while (true) {
        const ssize_t count = read(worker.socket, chunk, sizeof(chunk));
        if (count < 0 && errno == EINTR) continue;
        if (count < 0 && errno == EAGAIN) return true;
        if (count <= 0) return false;
        worker.incoming.append(chunk, static_cast<size_t>(count));
    }
}

// The piece that it was at is lost; what came after it is done by the next worker.
void WorkerPool::bury(Worker& worker, bool isLate,
                      const std::function<void(WorkerAnswer&&)>& take) {
    if (isLate) kill(worker.process, SIGKILL);
    close(worker.socket);
    int status = 0;
    waitpid(worker.process, &status, 0);
    worker.process = 0;
    worker.socket = -1;
    const bool isRetired = !isLate && WIFEXITED(status) && WEXITSTATUS(status) == kRetired;
    if (!isRetired && !worker.pieces.empty()) {
        std::string death = "the worker exited";
        if (isLate) death = "no answer within " + secondsText(limits_.timeout);
        if (!isLate && WIFSIGNALED(status)) {
            death = std::string("the worker died: ") + strsignal(WTERMSIG(status));
        }
        WorkerAnswer answer{worker.pieces.front().ticket, {}, std::move(death)};
        worker.pieces.pop_front();
        take(std::move(answer));
    }
    if (!worker.pieces.empty()) start(worker);
}

}  // namespace gxtext
