#include "text/GxTextInstanceManager.h"

#include <android/log.h>

#include <algorithm>
#include <climits>
#include <list>
#include <map>
#include <new>

#include "base/Mutex.h"
#include "base/NativeError.h"

namespace GxFontEffect {

namespace {

constexpr const char* kInstancesTag = "GxTextInstanceManager";

// One number per failing check; never renumber.
enum : int {
    kSiteReleaseHandle = 109,
    kSiteRelease = 126,
    kSiteRegisterNull = 201,
    kSiteRegisterMemory = 202,
    kSiteBindNull = 203,
    kSiteBindMemory = 204,
};

struct Registered {
    GxTextObject* object;
    int holds;
};

struct Binding {
    int count;
    // The object's place among those that wait, made beforehand: no release fails for want of
    // memory.
    std::list<GxTextObject*> place;
};

struct Registry {
    Registry() { lock.Construct(); }

    Mutex lock;
    void (*releaseCallback)(GxTextObject*) = nullptr;
    bool deferDeletion = false;
    int lastHandle = 0;
    std::map<int, Registered> handleToObject;
    std::map<GxTextObject*, int> objectToHandle;
    std::map<GxTextObject*, Binding> bindCount;
    std::list<GxTextObject*> pendingRelease;
};

// Made on first use and never destroyed: text objects with static storage unregister while the
// process ends.
Registry& theRegistry() {
    alignas(Registry) static unsigned char memory[sizeof(Registry)];
    static Registry* const registry = new (memory) Registry;
    return *registry;
}

// While the library is loaded there is memory for the lock.
[[maybe_unused]] const Registry& gRegistryMade = theRegistry();

void logBind(GxTextObject* object, int count) {
    __android_log_print(ANDROID_LOG_DEBUG, kInstancesTag, "Bind(%p) - count: %d",
                        static_cast<void*>(object), count);
}

// The next handle for the object, or -1 when there is no room for it.
int addObject(Registry& registry, GxTextObject* object) {
    if (registry.lastHandle == INT_MAX) return -1;
    const int handle = registry.lastHandle + 1;
    try {
        registry.handleToObject.emplace(handle, Registered{object, 0});
        registry.objectToHandle.emplace(object, handle);
    } catch (const std::bad_alloc&) {
        registry.handleToObject.erase(handle);
        return -1;
    }
    registry.lastHandle = handle;
    return handle;
}

Registered* find(Registry& registry, int handle) {
    const auto known = registry.handleToObject.find(handle);
    if (known != registry.handleToObject.end()) return &known->second;
    __android_log_print(ANDROID_LOG_DEBUG, kInstancesTag,
                        "FindGxTextObject() - Can't find the handle[%d]", handle);
    return nullptr;
}

bool isHeld(const Registry& registry, GxTextObject* object) {
    const auto handle = registry.objectToHandle.find(object);
    if (handle == registry.objectToHandle.end()) return false;
    const auto registered = registry.handleToObject.find(handle->second);
    return registered != registry.handleToObject.end() && registered->second.holds > 0;
}

void deleteObject(Registry& registry, GxTextObject* object) {
    if (registry.releaseCallback) registry.releaseCallback(object);
}

}  // namespace

void GxTextInstanceManager::SetCallBack(void (*callback)(GxTextObject*)) {
    Registry& registry = theRegistry();
    const MutexGuard guard(registry.lock);
    registry.releaseCallback = callback;
}

int GxTextInstanceManager::Register(GxTextObject* object) {
    Registry& registry = theRegistry();
    const MutexGuard guard(registry.lock);
    if (!object) {
        ReportNativeError(kInstancesTag, GXE_ERROR_INVALID_ARGUMENT, kSiteRegisterNull);
        return -1;
    }
    const auto known = registry.objectToHandle.find(object);
    if (known != registry.objectToHandle.end()) return known->second;
    const int handle = addObject(registry, object);
    if (handle < 0)
        ReportNativeError(kInstancesTag, GXE_ERROR_INVALID_ARGUMENT, kSiteRegisterMemory);
    return handle;
}

void GxTextInstanceManager::Unregister(int handle) {
    Registry& registry = theRegistry();
    const MutexGuard guard(registry.lock);
    const auto known = registry.handleToObject.find(handle);
    if (known == registry.handleToObject.end()) return;
    registry.objectToHandle.erase(known->second.object);
    registry.handleToObject.erase(known);
}

bool GxTextInstanceManager::Bind(GxTextObject* object) {
    Registry& registry = theRegistry();
    const MutexGuard guard(registry.lock);
    if (!object) return ReportNativeError(kInstancesTag, GXE_ERROR_INVALID_ARGUMENT, kSiteBindNull);
    const auto bound = registry.bindCount.find(object);
    if (bound != registry.bindCount.end()) {
        logBind(object, ++bound->second.count);
        return true;
    }
    return GuardMemory(kInstancesTag, kSiteBindMemory, [&] {
        registry.bindCount.emplace(object, Binding{1, {object}});
        registry.pendingRelease.remove(object);
        logBind(object, 1);
        return true;
    });
}

bool GxTextInstanceManager::Release(GxTextObject* object, bool deleteAtZero) {
    Registry& registry = theRegistry();
    const MutexGuard guard(registry.lock);
    const auto bound = registry.bindCount.find(object);
    if (bound == registry.bindCount.end()) {
        return ReportNativeError(kInstancesTag, GXE_ERROR_NOT_FOUND, kSiteRelease);
    }
    const int before = bound->second.count--;
    if (before != 1 || !deleteAtZero) return true;
    if (registry.deferDeletion || isHeld(registry, object)) {
        registry.pendingRelease.splice(registry.pendingRelease.end(), bound->second.place);
    } else {
        deleteObject(registry, object);
    }
    // By key: the callback may have released other bindings, and this one too.
    registry.bindCount.erase(object);
    return true;
}

bool GxTextInstanceManager::Release(int handle) {
    Registry& registry = theRegistry();
    const MutexGuard guard(registry.lock);
    const auto known = registry.handleToObject.find(handle);
    if (known != registry.handleToObject.end()) return Release(known->second.object, true);
    return ReportNativeError(kInstancesTag, GXE_ERROR_NOT_FOUND, kSiteReleaseHandle);
}

void GxTextInstanceManager::Lock() {
    Registry& registry = theRegistry();
    const MutexGuard guard(registry.lock);
    registry.deferDeletion = true;
}

void GxTextInstanceManager::Unlock() {
    Registry& registry = theRegistry();
    const MutexGuard guard(registry.lock);
    // One by one: a callback may rescue an object that still waits, or add another to the line.
    std::list<GxTextObject*>& pending = registry.pendingRelease;
    for (;;) {
        const auto next =
            std::find_if_not(pending.begin(), pending.end(),
                             [&](GxTextObject* object) { return isHeld(registry, object); });
        if (next == pending.end()) break;
        GxTextObject* object = *next;
        pending.erase(next);
        deleteObject(registry, object);
    }
    registry.deferDeletion = false;
}

GxTextObject* GxTextInstanceManager::Hold(int handle) {
    Registry& registry = theRegistry();
    const MutexGuard guard(registry.lock);
    Registered* const found = find(registry, handle);
    if (!found) return nullptr;
    found->holds++;
    return found->object;
}

void GxTextInstanceManager::LetGo(int handle) {
    Registry& registry = theRegistry();
    const MutexGuard guard(registry.lock);
    // Gone when its owner deleted it in spite of the hold.
    const auto held = registry.handleToObject.find(handle);
    if (held == registry.handleToObject.end() || held->second.holds == 0) return;
    if (--held->second.holds > 0 || registry.deferDeletion) return;
    std::list<GxTextObject*>& pending = registry.pendingRelease;
    GxTextObject* object = held->second.object;
    const auto waiting = std::find(pending.begin(), pending.end(), object);
    if (waiting == pending.end()) return;
    pending.erase(waiting);
    deleteObject(registry, object);
}

int GxTextInstanceManager::FindGxTextHandle(GxTextObject* object) {
    Registry& registry = theRegistry();
    const MutexGuard guard(registry.lock);
    const auto known = registry.objectToHandle.find(object);
    return known != registry.objectToHandle.end() ? known->second : -1;
}

GxTextObject* GxTextInstanceManager::FindGxTextObject(int handle) {
    Registry& registry = theRegistry();
    const MutexGuard guard(registry.lock);
    const Registered* found = find(registry, handle);
    return found ? found->object : nullptr;
}

}  // namespace GxFontEffect
