// Work that is done by processes of its own, so that what goes wrong in one piece of it costs that
// piece alone.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace gxtext {

struct WorkerLimits {
    std::chrono::milliseconds timeout{0};  // for one piece; 0 for none
    size_t memoryBytes = 0;                // that a worker may allocate; 0 for no limit
};

// What came of one piece.
struct WorkerAnswer {
    uint64_t ticket = 0;
    std::string bytes;
    std::optional<std::string> death;  // why there is no answer: "no answer within 5 s"
};

// Workers are forked from the calling process, which must not have threads, as they are needed: at
// the start, and in the place of one that died. They end with the process, whatever ends it. For
// one thread.
class WorkerPool {
public:
    using Work = std::function<std::string(const std::string& request)>;
    using Clock = std::chrono::steady_clock;

    // `start` is called once in each worker and gives its work, which must not throw.
    WorkerPool(int workers, std::function<Work()> start, WorkerLimits limits);
    WorkerPool(const WorkerPool&) = delete;
    WorkerPool& operator=(const WorkerPool&) = delete;
    // Ends the workers, whatever they are at.
    ~WorkerPool();

    // Whether a worker would start soon on what is submitted.
    bool hasRoom() const;
    bool isIdle() const;
    void submit(uint64_t ticket, std::string request);

    // Waits for answers, which go to `take`, at most until `longest` has passed; also for
    // `descriptor` to be readable, which it returns, unless it is negative. Throws
    // std::system_error when no worker can be started.
    bool wait(int descriptor, std::chrono::milliseconds longest,
              const std::function<void(WorkerAnswer&&)>& take);

private:
    struct Piece {
        uint64_t ticket = 0;
        std::string request;
    };
    struct Worker {
        int process = 0;  // 0 for none
        int socket = -1;
        std::deque<Piece> pieces;  // the first is being worked on
        std::string outgoing;
        std::string incoming;
        Clock::time_point deadline{};  // of the first piece
    };

    void start(Worker& worker);
    [[noreturn]] void work(int socket) const;
    void send(Worker& worker, const Piece& piece);
    void beginPiece(Worker& worker) const;
    void flush(Worker& worker) const;
    void receive(Worker& worker, const std::function<void(WorkerAnswer&&)>& take);
    bool readAll(Worker& worker) const;
    void bury(Worker& worker, bool isLate, const std::function<void(WorkerAnswer&&)>& take);
    int pollTime(std::chrono::milliseconds longest) const;

    const std::function<Work()> start_;
    const WorkerLimits limits_;
    std::vector<Worker> workers_;
};

}  // namespace gxtext
