#include "bridge/BoundText.h"

#include <android/log.h>

#include <memory>

#include "base/NativeError.h"
#include "bridge/JniReferences.h"
#include "text/GxTextInstanceManager.h"
#include "text/GxTextObject.h"

namespace GxFontEffect {

namespace {

// Null, without an exception, when there is no such field.
jfieldID HandleField(JNIEnv* env, jobject javaText) {
    const LocalRef<jclass> javaClass(env, env->GetObjectClass(javaText));
    const jfieldID field = env->GetFieldID(javaClass.get(), "mHandle", "I");
    if (!field) env->ExceptionClear();
    return field;
}

}  // namespace

std::optional<jint> ReadHandle(JNIEnv* env, jobject javaText) {
    const jfieldID field = HandleField(env, javaText);
    if (!field) return std::nullopt;
    return env->GetIntField(javaText, field);
}

BoundText GetBoundTextObject(JNIEnv* env, jobject javaText) {
    const jfieldID field = HandleField(env, javaText);
    if (!field) return {};
    const jint handle = env->GetIntField(javaText, field);
    if (handle >= 0) return BoundText(handle);

    __android_log_print(ANDROID_LOG_DEBUG, kTextTag, "GetBoundTextObject - hande = 0");
    auto text = std::make_unique<GxTextObject>();
    if (!text->Construct() || !GxTextInstanceManager::Bind(text.get())) return {};
    BoundText bound(text.release()->GetRuntimeHandle());  // the registry's from here on
    env->SetIntField(javaText, field, bound->GetRuntimeHandle());
    return bound;
}

BoundText RequireBoundTextObject(JNIEnv* env, jobject javaText, int site) {
    BoundText text = GetBoundTextObject(env, javaText);
    if (!text) ReportNativeError(kTextTag, GXE_ERROR_NOT_BOUND, site);
    return text;
}

}  // namespace GxFontEffect
