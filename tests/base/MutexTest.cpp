#include "base/Mutex.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <atomic>
#include <cerrno>
#include <thread>
#include <vector>

#include "support/AllocationFailure.h"
#include "support/NativeErrors.h"

namespace {
thread_local bool failMutexInit = false;
}  // namespace

// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" int __real_pthread_mutex_init(pthread_mutex_t* mutex, const pthread_mutexattr_t* attr);
extern "C" int __wrap_pthread_mutex_init(pthread_mutex_t* mutex, const pthread_mutexattr_t* attr) {
    return failMutexInit ? EAGAIN : __real_pthread_mutex_init(mutex, attr);
}
// NOLINTEND(bugprone-reserved-identifier)

namespace GxFontEffect {
namespace {

// Whether another thread gets the lock while the caller waits.
class Contender {
public:
    explicit Contender(Mutex& mutex)
        : thread_([this, &mutex] {
              mutex.Lock();
              entered_ = true;
              mutex.Unlock();
          }) {}
    ~Contender() { thread_.join(); }

    bool getsIn(int milliseconds) {
        for (int i = 0; i < milliseconds && !entered_; i++) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return entered_;
    }

private:
    std::atomic<bool> entered_{false};
    std::thread thread_;
};

TEST(Mutex, IsHeldUntilTheLastUnlockOfItsThread) {
    Mutex mutex;
    ASSERT_TRUE(mutex.Construct());
    mutex.Lock();
    mutex.Lock();
    mutex.Unlock();
    std::thread([&] { mutex.Unlock(); }).join();  // not the holder: ignored
    {
        Contender other(mutex);
        EXPECT_FALSE(other.getsIn(20));
        mutex.Unlock();
    }
    mutex.Unlock();  // held by nobody: ignored
    Contender late(mutex);
    EXPECT_TRUE(late.getsIn(60000)) << "on however busy a machine";
}

TEST(Mutex, SerialisesReentrantThreads) {
    Mutex mutex;
    ASSERT_TRUE(mutex.Construct());
    long counter = 0;  // plain on purpose: the lock is its only guard
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (int t = 0; t < 4; t++) {
        threads.emplace_back([&] {
            for (int i = 0; i < 2000; i++) {
                const MutexGuard outer(mutex);
                const MutexGuard inner(mutex);
                counter++;
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(counter, 8000);
}

TEST(Mutex, ReportsFailedConstruction) {
    Mutex mutex;
    gxtest::expectSilence([&] {
        mutex.Unlock();
        mutex.Lock();
    });
    gxtest::expectNativeError("GX_Mutex", 1, [&] {
        failMutexInit = true;
        EXPECT_FALSE(mutex.Construct());
        failMutexInit = false;
    });
    gxtest::expectNativeError("GX_Mutex", 7, [&] {
        const gxtest::AllocationFailure failure(1);
        EXPECT_FALSE(mutex.Construct());
    });
    EXPECT_TRUE(mutex.Construct());
    gxtest::expectNativeError("GX_Mutex", 4, [&] { EXPECT_FALSE(mutex.Construct()); });
}

}  // namespace
}  // namespace GxFontEffect
