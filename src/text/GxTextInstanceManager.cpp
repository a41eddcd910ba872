#include "text/GxTextInstanceManager.h"

#include <android/log.h>

#include <climits>
#include <list>
#include <map>
#include <new>

#include "base/Mutex.h"
#include "base/NativeError.h"

namespace GxFontEffect {

namespace {

constexpr const char* kTag = "GxTextInstanceManager";

// One number per failing check; never renumber.
enum Site : int {
    kSiteReleaseHandle = 109,
    kSiteRelease = 126,
    kSiteRegisterNull = 201,
    kSiteRegisterMemory = 202,
    kSiteBindNull = 203,
    kSiteBindMemory = 204,
    kSiteReleaseMemory = 205,
};

struct Registry {
    Registry() { lock.Construct(); }

    Mutex lock;
    void (*releaseCallback)(GxTextObject*) = nullptr;
    bool deferDeletion = false;
    int lastHandle = 0;
    std::map<int, GxTextObject*> handleToObject;
    std::map<GxTextObject*, int> objectToHandle;
    std::map<GxTextObject*, int> bindCount;
    std::list<GxTextObject*> pendingRelease;
};

// Made on first use and never destroyed: text objects with static storage unregister while the
// process ends.
Registry& TheRegistry() {
    alignas(Registry) static unsigned char memory[sizeof(Registry)];
    static Registry* const registry = new (memory) Registry;
    return *registry;
}

void LogBind(GxTextObject* object, int count) {
    __android_log_print(ANDROID_LOG_DEBUG, kTag, "Bind(%p) - count: %d", static_cast<void*>(object),
                        count);
}

// The next handle for the object, or -1 when there is no room for it.
int AddObject(Registry& registry, GxTextObject* object) {
    if (registry.lastHandle == INT_MAX) return -1;
    const int handle = registry.lastHandle + 1;
    try {
        registry.handleToObject.emplace(handle, object);
        registry.objectToHandle.emplace(object, handle);
    } catch (const std::bad_alloc&) {
        registry.handleToObject.erase(handle);
        return -1;
    }
    registry.lastHandle = handle;
    return handle;
}

// The object has lost its last binding.
bool DeleteOrDefer(Registry& registry, GxTextObject* object) {
    if (!registry.deferDeletion) {
        if (registry.releaseCallback) registry.releaseCallback(object);
        return true;
    }
    try {
        registry.pendingRelease.push_back(object);
        return true;
    } catch (const std::bad_alloc&) {
        return ReportNativeError(kTag, GXE_ERROR_INVALID_ARGUMENT, kSiteReleaseMemory);
    }
}

}  // namespace

void GxTextInstanceManager::SetCallBack(void (*callback)(GxTextObject*)) {
    Registry& registry = TheRegistry();
    const MutexGuard guard(registry.lock);
    registry.releaseCallback = callback;
}

int GxTextInstanceManager::Register(GxTextObject* object) {
    Registry& registry = TheRegistry();
    const MutexGuard guard(registry.lock);
    if (!object) {
        ReportNativeError(kTag, GXE_ERROR_INVALID_ARGUMENT, kSiteRegisterNull);
        return -1;
    }
    const auto known = registry.objectToHandle.find(object);
    if (known != registry.objectToHandle.end()) return known->second;
    const int handle = AddObject(registry, object);
    if (handle < 0) ReportNativeError(kTag, GXE_ERROR_INVALID_ARGUMENT, kSiteRegisterMemory);
    return handle;
}

void GxTextInstanceManager::Unregister(int handle) {
    Registry& registry = TheRegistry();
    const MutexGuard guard(registry.lock);
    const auto known = registry.handleToObject.find(handle);
    if (known == registry.handleToObject.end()) return;
    registry.objectToHandle.erase(known->second);
    registry.handleToObject.erase(known);
}

void GxTextInstanceManager::Bind(GxTextObject* object) {
    Registry& registry = TheRegistry();
    const MutexGuard guard(registry.lock);
    if (!object) {
        ReportNativeError(kTag, GXE_ERROR_INVALID_ARGUMENT, kSiteBindNull);
        return;
    }
    const auto bound = registry.bindCount.find(object);
    if (bound != registry.bindCount.end()) {
        LogBind(object, ++bound->second);
        return;
    }
    try {
        registry.bindCount.emplace(object, 1);
    } catch (const std::bad_alloc&) {
        ReportNativeError(kTag, GXE_ERROR_INVALID_ARGUMENT, kSiteBindMemory);
        return;
    }
    registry.pendingRelease.remove(object);
    LogBind(object, 1);
}

bool GxTextInstanceManager::Release(GxTextObject* object, bool deleteAtZero) {
    Registry& registry = TheRegistry();
    const MutexGuard guard(registry.lock);
    const auto bound = registry.bindCount.find(object);
    if (bound == registry.bindCount.end()) {
        return ReportNativeError(kTag, GXE_ERROR_NOT_FOUND, kSiteRelease);
    }
    const int before = bound->second--;
    if (before != 1 || !deleteAtZero) return true;
    if (!DeleteOrDefer(registry, object)) {
        bound->second = before;
        return false;
    }
    // By key: the callback may have released other bindings, and this one too.
    registry.bindCount.erase(object);
    return true;
}

bool GxTextInstanceManager::Release(int handle) {
    Registry& registry = TheRegistry();
    const MutexGuard guard(registry.lock);
    const auto known = registry.handleToObject.find(handle);
    if (known != registry.handleToObject.end()) return Release(known->second, true);
    return ReportNativeError(kTag, GXE_ERROR_NOT_FOUND, kSiteReleaseHandle);
}

void GxTextInstanceManager::Lock() {
    Registry& registry = TheRegistry();
    const MutexGuard guard(registry.lock);
    registry.deferDeletion = true;
}

void GxTextInstanceManager::Unlock() {
    Registry& registry = TheRegistry();
    const MutexGuard guard(registry.lock);
    // One by one: a callback may rescue an object that still waits, or add another to the line.
    while (!registry.pendingRelease.empty()) {
        GxTextObject* object = registry.pendingRelease.front();
        registry.pendingRelease.pop_front();
        if (registry.releaseCallback) registry.releaseCallback(object);
    }
    registry.deferDeletion = false;
}

int GxTextInstanceManager::FindGxTextHandle(GxTextObject* object) {
    Registry& registry = TheRegistry();
    const MutexGuard guard(registry.lock);
    const auto known = registry.objectToHandle.find(object);
    return known != registry.objectToHandle.end() ? known->second : -1;
}

GxTextObject* GxTextInstanceManager::FindGxTextObject(int handle) {
    Registry& registry = TheRegistry();
    const MutexGuard guard(registry.lock);
    const auto known = registry.handleToObject.find(handle);
    if (known != registry.handleToObject.end()) return known->second;
    __android_log_print(ANDROID_LOG_DEBUG, kTag, "FindGxTextObject() - Can't find the handle[%d]",
                        handle);
    return nullptr;
}

}  // namespace GxFontEffect
