#include "ForkGate.h"

#include <condition_variable>
#include <mutex>
#include <new>

namespace gxpython {

namespace {

struct Gate {
    std::mutex lock;
    std::condition_variable emptied;
    int inside = 0;
};

Gate& gate() {
    // Never destroyed: threads may still be inside when the process ends.
    static Gate* const instance = new Gate;
    return *instance;
}

}  // namespace

ForkGate::Pass::Pass() {
    const std::lock_guard guard(gate().lock);
    gate().inside++;
}

ForkGate::Pass::~Pass() {
    const std::lock_guard guard(gate().lock);
    if (--gate().inside == 0) gate().emptied.notify_all();
}

void ForkGate::close() {
    std::unique_lock guard(gate().lock);
    gate().emptied.wait(guard, [] { return gate().inside == 0; });
    guard.release();
}

void ForkGate::openInParent() {
    gate().lock.unlock();
}

void ForkGate::openInChild() {
    // Whoever waited for it is not here.
    new (&gate().emptied) std::condition_variable;
    gate().lock.unlock();
}

}  // namespace gxpython
