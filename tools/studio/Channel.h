// Messages between two processes of the studio.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

namespace gxstudio {

struct Message {
    uint64_t ticket = 0;
    std::string bytes;
};

// One end of a pair of connected sockets; closes it. Sending and receiving may be done by two
// threads, each by one at a time.
class Channel {
public:
    // Throws std::system_error when there can be none.
    static std::pair<Channel, Channel> pair();

    explicit Channel(int socket) : socket_(socket) {}
    Channel(Channel&& other) noexcept : socket_(std::exchange(other.socket_, -1)) {}
    Channel& operator=(Channel&& other) noexcept {
        std::swap(socket_, other.socket_);
        return *this;
    }
    ~Channel();

    int socket() const { return socket_; }
    // False when the other side is gone.
    bool send(const Message& message);
    // Waits; nothing when the other side is gone.
    std::optional<Message> receive();

private:
    int socket_;
};

}  // namespace gxstudio
