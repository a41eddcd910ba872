// Whole pieces of bytes over a socket.
#pragma once

#include <cstddef>

namespace gxtext {

// Both wait until all is through; false when the other side is gone.
bool sendFully(int socket, const char* bytes, size_t size);
bool receiveFully(int socket, char* bytes, size_t size);

}  // namespace gxtext
