// Makes the n-th allocation of the calling thread fail, alone or with all after it, to prove that
// every one is handled.
//
// The test program has a malloc, calloc and realloc of its own, which shared libraries use as well.
// Sanitizers need theirs: there the linker wraps what is compiled into the program, and allocations
// inside shared libraries go on as usual.
#pragma once

#include <functional>

namespace gxtest {

enum class FailureSpan { kOne, kAllFromThere };

// While it lives, the n-th allocation (from 1) of this thread returns null or throws
// std::bad_alloc; earlier ones succeed, and later ones unless said otherwise.
class AllocationFailure {
public:
    explicit AllocationFailure(int n, FailureSpan span = FailureSpan::kOne);
    ~AllocationFailure();
    AllocationFailure(const AllocationFailure&) = delete;
    AllocationFailure& operator=(const AllocationFailure&) = delete;

    // The n-th allocation was reached.
    bool triggered() const;
};

// Runs `body` with the 1st, 2nd, ... allocation failing until a run makes fewer allocations;
// returns how many runs saw a failure. Calls `check(n)` after each run, outside the failing scope.
int failEachAllocation(const std::function<void()>& body,
                       const std::function<void(int)>& check = {},
                       FailureSpan span = FailureSpan::kOne);

}  // namespace gxtest
