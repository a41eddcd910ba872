// The native text object behind a Java GxText.
#pragma once

#include <jni.h>

#include <optional>

namespace GxFontEffect {

class GxTextObject;

inline constexpr const char* kTextTag = "GxText_JNI";

// The handle that the Java object keeps in `mHandle`: negative while nothing is bound. None when
// the object has no such field.
std::optional<jint> ReadHandle(JNIEnv* env, jobject javaText);

// The bound object. On a fresh Java object creates one, binds it and stores its handle. Null when
// the handle is not known (any more) and when the object cannot be made.
GxTextObject* GetBoundTextObject(JNIEnv* env, jobject javaText);

// As above; null is logged and recorded as error 19. `site` names the native.
GxTextObject* RequireBoundTextObject(JNIEnv* env, jobject javaText, int site);

}  // namespace GxFontEffect
