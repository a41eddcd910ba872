// Objects that live as long as the process.
#pragma once

#include <new>

namespace portable {

// The process's only T, made on first use and never destroyed: what uses it may outlive every
// static object. Its place needs no allocation, so destructors may use it if T's constructor
// allocates nothing.
template <typename T>
T& neverDestroyed() {
    alignas(T) static unsigned char memory[sizeof(T)];
    static T& instance = *new (memory) T;
    return instance;
}

}  // namespace portable
