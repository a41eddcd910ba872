#include "Channel.h"

#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "batch/Transfer.h"

namespace gxstudio {

using gxtext::receiveFully;
using gxtext::sendFully;

namespace {

struct Head {
    uint64_t ticket = 0;
    uint64_t size = 0;
};

}  // namespace

std::pair<Channel, Channel> Channel::pair() {
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) {
        throw std::system_error(errno, std::generic_category(), "cannot start the server");
    }
    return {Channel(ends[0]), Channel(ends[1])};
}

Channel::~Channel() {
    if (socket_ >= 0) close(socket_);
}

bool Channel::send(const Message& message) {
    const Head head{message.ticket, message.bytes.size()};
    return sendFully(socket_, reinterpret_cast<const char*>(&head), sizeof(head)) &&
           sendFully(socket_, message.bytes.data(), message.bytes.size());
}

std::optional<Message> Channel::receive() {
    Head head;
    if (!receiveFully(socket_, reinterpret_cast<char*>(&head), sizeof(head))) return std::nullopt;
    Message message{head.ticket, std::string(head.size, '\0')};
    if (!receiveFully(socket_, message.bytes.data(), head.size)) return std::nullopt;
    return message;
}

}  // namespace gxstudio
