#include "base/Mutex.h"

#include <pthread.h>

#include <atomic>
#include <new>

#include "base/NativeError.h"

namespace GxFontEffect {

namespace {

constexpr const char* kTag = "GX_Mutex";

// One number per failing check; never renumber.
enum Site : int {
    kSiteConstructAgain = 1,
    kSiteConstructMemory = 2,
    kSiteConstructInit = 3,
};

}  // namespace

// The owner is read without holding the lock: a thread finds its own identity there only if it
// wrote it, so the answer to "is it me" is never stale. It is atomic for the threads whose answer
// is no.
class MutexImpl {
public:
    MutexImpl() = default;
    MutexImpl(const MutexImpl&) = delete;
    MutexImpl& operator=(const MutexImpl&) = delete;
    ~MutexImpl() {
        if (ready) pthread_mutex_destroy(&mutex);
    }

    bool Init() {
        ready = pthread_mutex_init(&mutex, nullptr) == 0;
        return ready;
    }

    bool IsMine() const { return owner.load(std::memory_order_relaxed) == pthread_self(); }

    pthread_mutex_t mutex;
    bool ready = false;
    int count = 0;
    std::atomic<pthread_t> owner{};
};

Mutex::Mutex() = default;
Mutex::~Mutex() = default;

bool Mutex::Construct() {
    if (impl_) return ReportNativeError(kTag, GXE_ERROR_ALREADY_CONSTRUCTED, kSiteConstructAgain);
    std::unique_ptr<MutexImpl> impl(new (std::nothrow) MutexImpl);
    if (!impl) return ReportNativeError(kTag, GXE_ERROR_INVALID_ARGUMENT, kSiteConstructMemory);
    if (!impl->Init()) return ReportNativeError(kTag, GXE_ERROR_SYSTEM, kSiteConstructInit);
    impl_ = std::move(impl);
    return true;
}

void Mutex::Lock() {
    if (!impl_) return;
    if (!impl_->IsMine()) {
        pthread_mutex_lock(&impl_->mutex);
        impl_->owner.store(pthread_self(), std::memory_order_relaxed);
    }
    impl_->count++;
}

void Mutex::Unlock() {
    if (!impl_ || !impl_->IsMine()) return;
    if (--impl_->count > 0) return;
    impl_->owner.store(pthread_t{}, std::memory_order_relaxed);
    pthread_mutex_unlock(&impl_->mutex);
}

}  // namespace GxFontEffect
