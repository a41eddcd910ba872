// The studio's page and its calls over HTTP, on this machine alone.
#pragma once

#include <httplib.h>

#include <atomic>
#include <chrono>

#include "Calls.h"
#include "Gate.h"

namespace gxstudio {

// Answers whom the gate lets in. Every request has a size and a time that it may take.
class Server {
public:
    // `http` is bound already.
    Server(httplib::Server& http, const Gate& gate, Calls& calls, std::chrono::seconds idle);

    // Serves until the page has been closed, or silent, for a while.
    void run();

private:
    void configure();
    void addPage();
    void addCalls();
    void stopWhenIdle();

    httplib::Server& http_;
    const Gate& gate_;
    Calls& calls_;
    const std::chrono::seconds idle_;
    std::atomic<int64_t> lastCall_{0};  // seconds of the steady clock
};

}  // namespace gxstudio
