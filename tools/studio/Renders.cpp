#include "Renders.h"

#include <cstdlib>

#include "Answer.h"

namespace gxstudio {

Renders::Renders(Channel channel)
    : channel_(std::move(channel)), receiver_([this] { receive(); }) {}

Renders::~Renders() {
    receiver_.join();
}

std::string Renders::answer(const nlohmann::ordered_json& request) {
    uint64_t ticket = 0;
    {
        const std::lock_guard guard(lock_);
        ticket = ++lastTicket_;
        answers_[ticket];
    }
    {
        const std::lock_guard guard(sending_);
        channel_.send({ticket, jsonText(request)});
    }
    std::unique_lock guard(lock_);
    arrived_.wait(guard, [&] { return answers_[ticket].has_value(); });
    return std::move(*answers_.extract(ticket).mapped());
}

void Renders::receive() {
    while (auto message = channel_.receive()) {
        {
            const std::lock_guard guard(lock_);
            answers_[message->ticket] = std::move(message->bytes);
        }
        arrived_.notify_all();
    }
    // Without the process that began it the server has nothing to serve with.
    std::_Exit(EXIT_SUCCESS);
}

}  // namespace gxstudio
