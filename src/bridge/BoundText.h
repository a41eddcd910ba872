// The native text object behind a Java GxText.
#pragma once

#include <jni.h>

#include <optional>
#include <utility>

#include "text/GxTextInstanceManager.h"

namespace GxFontEffect {

class GxTextObject;

inline constexpr const char* kTextTag = "GxText_JNI";

// The handle that the Java object keeps in `mHandle`: negative while nothing is bound. None when
// the object has no such field.
std::optional<jint> ReadHandle(JNIEnv* env, jobject javaText);

// A native's text object, or none. Every native keeps one for as long as it runs: Java code that it
// reaches may close the object, which is then deleted when the last native that holds it returns.
class BoundText {
public:
    BoundText() = default;
    // The object of this handle; none, which is logged, when there is no such object.
    explicit BoundText(jint handle) : text_(GxTextInstanceManager::Hold(handle)), handle_(handle) {}
    BoundText(BoundText&& other) noexcept
        : text_(std::exchange(other.text_, nullptr)), handle_(other.handle_) {}
    BoundText(const BoundText&) = delete;
    BoundText& operator=(const BoundText&) = delete;
    BoundText& operator=(BoundText&&) = delete;
    ~BoundText() {
        if (text_) GxTextInstanceManager::LetGo(handle_);
    }

    GxTextObject* get() const { return text_; }
    GxTextObject* operator->() const { return text_; }
    GxTextObject& operator*() const { return *text_; }
    explicit operator bool() const { return text_ != nullptr; }

private:
    GxTextObject* text_ = nullptr;
    jint handle_ = -1;
};

// The bound object. On a fresh Java object creates one, binds it and stores its handle. None when
// the handle is not known (any more) and when the object cannot be made.
BoundText GetBoundTextObject(JNIEnv* env, jobject javaText);

// As above; none is logged and recorded as error 19. `site` names the native.
BoundText RequireBoundTextObject(JNIEnv* env, jobject javaText, int site);

}  // namespace GxFontEffect
