#include "support/AllocationFailure.h"

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <new>

namespace gxtest {

namespace {

thread_local long remaining = 0;  // allocations until the failing one; 0: none fails
thread_local bool failLater = false;
thread_local bool failNow = false;

bool fails() {
    if (remaining == 0) {
        if (failNow) errno = ENOMEM;
        return failNow;
    }
    if (--remaining > 0) return false;
    failNow = failLater;
    errno = ENOMEM;  // as POSIX has it
    return true;
}

}  // namespace

AllocationFailure::AllocationFailure(int n, FailureSpan span) {
    remaining = n;
    failLater = span == FailureSpan::kAllFromThere;
}
AllocationFailure::~AllocationFailure() {
    remaining = 0;
    failNow = false;
}
bool AllocationFailure::triggered() const {
    return remaining == 0;
}

int failEachAllocation(const std::function<void()>& body, const std::function<void(int)>& check,
                       FailureSpan span) {
    for (int n = 1;; ++n) {
        bool triggered;
        {
            AllocationFailure failure(n, span);
            body();
            triggered = failure.triggered();
        }
        if (check) check(n);
        if (!triggered) return n - 1;
    }
}

}  // namespace gxtest

#ifdef GXTEXT_WRAP_ALLOCATIONS

// The linker renames references to malloc into __wrap_malloc and ours to __real_malloc into malloc
// (--wrap). NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
void* __real_malloc(size_t size);
void* __real_calloc(size_t count, size_t size);
void* __real_realloc(void* memory, size_t size);
void* __real__Znwm(size_t size);
void* __real__Znam(size_t size);
void* __real__ZnwmRKSt9nothrow_t(size_t size, const std::nothrow_t& tag);
void* __real__ZnamRKSt9nothrow_t(size_t size, const std::nothrow_t& tag);

void* __wrap_malloc(size_t size) {
    return gxtest::fails() ? nullptr : __real_malloc(size);
}
void* __wrap_calloc(size_t count, size_t size) {
    return gxtest::fails() ? nullptr : __real_calloc(count, size);
}
void* __wrap_realloc(void* memory, size_t size) {
    return gxtest::fails() ? nullptr : __real_realloc(memory, size);
}
void* __wrap__Znwm(size_t size) {
    if (gxtest::fails()) throw std::bad_alloc();
    return __real__Znwm(size);
}
void* __wrap__Znam(size_t size) {
    if (gxtest::fails()) throw std::bad_alloc();
    return __real__Znam(size);
}
void* __wrap__ZnwmRKSt9nothrow_t(size_t size, const std::nothrow_t& tag) {
    return gxtest::fails() ? nullptr : __real__ZnwmRKSt9nothrow_t(size, tag);
}
void* __wrap__ZnamRKSt9nothrow_t(size_t size, const std::nothrow_t& tag) {
    return gxtest::fails() ? nullptr : __real__ZnamRKSt9nothrow_t(size, tag);
}
}
// NOLINTEND(bugprone-reserved-identifier)

#else

// The program's own come before the C library's, for shared libraries too; operator new calls
// malloc. NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* memory, size_t size);

void* malloc(size_t size) {
    return gxtest::fails() ? nullptr : __libc_malloc(size);
}
void* calloc(size_t count, size_t size) {
    return gxtest::fails() ? nullptr : __libc_calloc(count, size);
}
void* realloc(void* memory, size_t size) {
    return gxtest::fails() ? nullptr : __libc_realloc(memory, size);
}
}
// NOLINTEND(bugprone-reserved-identifier)

#endif
