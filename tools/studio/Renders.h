// The workers, as the server's threads see them.
#pragma once

#include <condition_variable>
#include <map>
#include <mutex>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <thread>

#include "Channel.h"

namespace gxstudio {

// Hands requests over to the process that keeps the workers. Safe from any thread.
class Renders {
public:
    explicit Renders(Channel channel);
    Renders(const Renders&) = delete;
    Renders& operator=(const Renders&) = delete;
    // Not before the other side has closed the channel.
    ~Renders();

    // Waits for the worker's answer (Answer.h).
    std::string answer(const nlohmann::ordered_json& request);

private:
    void receive();

    Channel channel_;
    std::mutex sending_;
    std::mutex lock_;  // guards what follows
    std::condition_variable arrived_;
    uint64_t lastTicket_ = 0;
    std::map<uint64_t, std::optional<std::string>> answers_;  // by what is waited for
    std::thread receiver_;
};

}  // namespace gxstudio
