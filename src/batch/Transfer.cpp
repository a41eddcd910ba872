#include "batch/Transfer.h"

#include <sys/socket.h>

#include <cerrno>

namespace gxtext {

bool sendFully(int socket, const char* bytes, size_t size) {
    while (size > 0) {
        const ssize_t count = send(socket, bytes, size, MSG_NOSIGNAL);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return false;
        bytes += count;
        size -= static_cast<size_t>(count);
    }
    return true;
}

bool receiveFully(int socket, char* bytes, size_t size) {
    while (size > 0) {
        const ssize_t count = recv(socket, bytes, size, 0);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return false;
        bytes += count;
        size -= static_cast<size_t>(count);
    }
    return true;
}

}  // namespace gxtext
