// A lock that the thread holding it may take again.
#pragma once

#include <memory>

#include "GxExport.h"

namespace GxFontEffect {

class MutexImpl;

// Built in two steps; on an unconstructed Mutex Lock and Unlock do nothing. Destroy it only while
// nobody holds it. Failures are logged under the tag "GX_Mutex".
class GXTEXT_API Mutex {
public:
    Mutex();
    ~Mutex();
    Mutex(const Mutex&) = delete;
    Mutex& operator=(const Mutex&) = delete;

    // Code 4 when already constructed, code 1 when the system has no lock to give, code 7 when
    // memory runs out.
    bool Construct();

    // Waits until no other thread holds the lock. Counts for the thread that has it already.
    void Lock();
    // Gives back one Lock; the last one frees the lock. Ignored on a thread that does not hold it.
    void Unlock();

private:
    std::unique_ptr<MutexImpl> impl_;
};

// Holds a Mutex for a scope.
class MutexGuard {
public:
    explicit MutexGuard(Mutex& mutex) : mutex_(mutex) { mutex_.Lock(); }
    ~MutexGuard() { mutex_.Unlock(); }
    MutexGuard(const MutexGuard&) = delete;
    MutexGuard& operator=(const MutexGuard&) = delete;

private:
    Mutex& mutex_;
};

}  // namespace GxFontEffect
