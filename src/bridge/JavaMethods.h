// Calls to methods of Java objects by name and signature.
#pragma once

#include <jni.h>

#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <string>

#include "bridge/JniReferences.h"

namespace GxFontEffect {

struct JavaMethod {
    const char* name;
    const char* signature;
};

// The ids of a table of methods on one class. Nothing is cached between natives: the class may come
// from another loader each time.
class JavaMethods {
public:
    static constexpr size_t kMaxMethods = 24;

    // Looks all of them up on the class of `object`, in order. At the first that is missing
    // (for a null object, the very first) stops and returns false, leaving no exception.
    bool Resolve(JNIEnv* env, jobject object, std::span<const JavaMethod> table);

    // Name of the method that Resolve did not find.
    const char* missing() const { return missing_; }
    jmethodID operator[](size_t method) const { return ids_[method]; }

private:
    std::array<jmethodID, kMaxMethods> ids_{};
    const char* missing_ = nullptr;
};

// Calls resolved methods of one object; `method` is the place in the table.
//
// An exception that the object throws stays pending, for the Java caller to see. From then on every
// call gives 0, false or null without reaching Java, so a native may read a group of values and ask
// Failed() once.
class JavaCalls {
public:
    JavaCalls(JNIEnv* env, jobject object, const JavaMethods& methods)
        : env_(env), object_(object), methods_(methods) {}

    bool Failed() const { return env_->ExceptionCheck(); }

    template <typename... Arguments>
    jint Int(size_t method, Arguments... arguments) const {
        return Call(&JNIEnv::CallIntMethod, method, arguments...);
    }
    template <typename... Arguments>
    jfloat Float(size_t method, Arguments... arguments) const {
        return Call(&JNIEnv::CallFloatMethod, method, arguments...);
    }
    bool Bool(size_t method) const { return Call(&JNIEnv::CallBooleanMethod, method) != JNI_FALSE; }

    // A local reference that the caller holds in a LocalRef; null like the method's own null.
    template <typename Ref = jobject, typename... Arguments>
    Ref Object(size_t method, Arguments... arguments) const {
        return static_cast<Ref>(Call(&JNIEnv::CallObjectMethod, method, arguments...));
    }
    // The result of a method that returns a String, in plain UTF-8; none for null. Throws
    // std::bad_alloc when the VM has no room for the characters.
    std::optional<std::string> Utf8(size_t method) const;

private:
    template <typename Result, typename... Arguments>
    Result Call(Result (JNIEnv::*call)(jobject, jmethodID, ...), size_t method,
                Arguments... arguments) const {
        if (Failed()) return Result{};
        const Result result = (env_->*call)(object_, methods_[method], arguments...);
        return Failed() ? Result{} : result;
    }

    JNIEnv* env_;
    jobject object_;
    const JavaMethods& methods_;
};

}  // namespace GxFontEffect
