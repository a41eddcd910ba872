// Intrusive reference counting: SkRefCnt is the counted base, sk_sp the pointer that holds one
// count.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <utility>

class SkRefCnt {
public:
    SkRefCnt() = default;
    virtual ~SkRefCnt() = default;
    SkRefCnt(const SkRefCnt&) = delete;
    SkRefCnt& operator=(const SkRefCnt&) = delete;

    bool unique() const { return fRefCnt.load(std::memory_order_acquire) == 1; }
    void ref() const { fRefCnt.fetch_add(1, std::memory_order_relaxed); }
    void unref() const {
        if (fRefCnt.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
    }

private:
    mutable std::atomic<int32_t> fRefCnt{1};
};

template <typename T>
T* SkSafeRef(T* object) {
    if (object) object->ref();
    return object;
}

template <typename T>
void SkSafeUnref(T* object) {
    if (object) object->unref();
}

// Holds one reference of a counted object. Built from a raw pointer it takes over the caller's
// count.
template <typename T>
class sk_sp {
public:
    using element_type = T;

    constexpr sk_sp() = default;
    constexpr sk_sp(std::nullptr_t) {}
    explicit sk_sp(T* object) : fPtr(object) {}
    sk_sp(const sk_sp& other) : fPtr(SkSafeRef(other.get())) {}
    sk_sp(sk_sp&& other) noexcept : fPtr(other.release()) {}
    template <typename U>
    sk_sp(const sk_sp<U>& other) : fPtr(SkSafeRef(other.get())) {}
    template <typename U>
    sk_sp(sk_sp<U>&& other) noexcept : fPtr(other.release()) {}
    ~sk_sp() { SkSafeUnref(fPtr); }

    sk_sp& operator=(sk_sp other) noexcept {
        std::swap(fPtr, other.fPtr);
        return *this;
    }

    T& operator*() const { return *fPtr; }
    T* operator->() const { return fPtr; }
    T* get() const { return fPtr; }
    explicit operator bool() const { return fPtr != nullptr; }

    void reset(T* object = nullptr) {
        T* old = std::exchange(fPtr, object);
        SkSafeUnref(old);
    }
    [[nodiscard]] T* release() { return std::exchange(fPtr, nullptr); }

private:
    T* fPtr = nullptr;
};

template <typename T, typename U>
bool operator==(const sk_sp<T>& a, const sk_sp<U>& b) {
    return a.get() == b.get();
}

template <typename T, typename... Args>
sk_sp<T> sk_make_sp(Args&&... args) {
    return sk_sp<T>(new T(std::forward<Args>(args)...));
}

template <typename T>
sk_sp<T> sk_ref_sp(T* object) {
    return sk_sp<T>(SkSafeRef(object));
}
