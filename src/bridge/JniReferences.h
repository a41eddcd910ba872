// Scoped holders for what the Java side lends: local references, characters, array elements.
//
// Each gives back in its destructor what it took, so that every early return is safe. None leaves
// an exception behind: when the VM is out of memory the holder is empty and the error cleared.
#pragma once

#include <jni.h>

namespace GxFontEffect {

// A local reference, deleted at the end of the scope: a native that walks a long list would
// otherwise fill the table of its thread.
template <typename Ref = jobject>
class LocalRef {
public:
    LocalRef(JNIEnv* env, Ref ref) : env_(env), ref_(ref) {}
    ~LocalRef() {
        if (ref_) env_->DeleteLocalRef(ref_);
    }
    LocalRef(const LocalRef&) = delete;
    LocalRef& operator=(const LocalRef&) = delete;

    Ref get() const { return ref_; }
    explicit operator bool() const { return ref_ != nullptr; }

private:
    JNIEnv* env_;
    Ref ref_;
};

// The characters of a string in modified UTF-8 (see ModifiedUtf8.h); none for a null string.
class UtfChars {
public:
    UtfChars(JNIEnv* env, jstring string);
    ~UtfChars();
    UtfChars(const UtfChars&) = delete;
    UtfChars& operator=(const UtfChars&) = delete;

    const char* get() const { return chars_; }
    explicit operator bool() const { return chars_ != nullptr; }

    // Frees the characters with array delete instead of handing them back to the VM. Two natives
    // have always done so, and the runtime of the device, which allocates them with new[], keeps no
    // account that would miss them. Any other runtime that counts, guards or copies its characters
    // (the checking JVM, memory tracking, the address sanitizer) objects: those natives must not
    // run under it.
    void ReleaseWithArrayDelete();

private:
    JNIEnv* env_;
    jstring string_;
    const char* chars_;
};

template <typename Array>
struct ArrayAccess;

template <>
struct ArrayAccess<jintArray> {
    using Element = jint;
    static constexpr auto kGet = &JNIEnv::GetIntArrayElements;
    static constexpr auto kRelease = &JNIEnv::ReleaseIntArrayElements;
};
template <>
struct ArrayAccess<jfloatArray> {
    using Element = jfloat;
    static constexpr auto kGet = &JNIEnv::GetFloatArrayElements;
    static constexpr auto kRelease = &JNIEnv::ReleaseFloatArrayElements;
};
template <>
struct ArrayAccess<jbyteArray> {
    using Element = jbyte;
    static constexpr auto kGet = &JNIEnv::GetByteArrayElements;
    static constexpr auto kRelease = &JNIEnv::ReleaseByteArrayElements;
};

// The elements of an array that is not null; released with mode 0.
template <typename Array>
class ArrayElements {
public:
    using Element = typename ArrayAccess<Array>::Element;

    ArrayElements(JNIEnv* env, Array array)
        : env_(env),
          array_(array),
          length_(env->GetArrayLength(array)),
          elements_((env->*ArrayAccess<Array>::kGet)(array, nullptr)) {
        if (!elements_) env->ExceptionClear();
    }
    ~ArrayElements() {
        if (elements_) (env_->*ArrayAccess<Array>::kRelease)(array_, elements_, 0);
    }
    ArrayElements(const ArrayElements&) = delete;
    ArrayElements& operator=(const ArrayElements&) = delete;

    const Element* get() const { return elements_; }
    jsize length() const { return length_; }
    Element operator[](jsize i) const { return elements_[i]; }
    explicit operator bool() const { return elements_ != nullptr; }

private:
    JNIEnv* env_;
    Array array_;
    jsize length_;
    Element* elements_;
};

}  // namespace GxFontEffect
