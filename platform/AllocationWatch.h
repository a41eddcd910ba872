// Tells whether memory ran out inside a library that hides it.
#pragma once

#include <cerrno>

namespace portable {

// HarfBuzz goes on with less when an allocation fails, FreeType with modules and tables missing.
// The allocator leaves a trace: ENOMEM in errno, as POSIX has it, which nothing else that these
// libraries call sets. Looks at the calling thread since construction; watches may be nested.
class AllocationWatch {
public:
    AllocationWatch() : fBefore(errno) { errno = 0; }
    ~AllocationWatch() {
        if (!this->failed()) errno = fBefore;
    }
    AllocationWatch(const AllocationWatch&) = delete;
    AllocationWatch& operator=(const AllocationWatch&) = delete;

    bool failed() const { return errno == ENOMEM; }

private:
    const int fBefore;
};

}  // namespace portable
