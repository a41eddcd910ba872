#include "bridge/JniExceptions.h"

#include "bridge/JniReferences.h"

namespace GxFontEffect {

jthrowable TakeException(JNIEnv* env) {
    const jthrowable pending = env->ExceptionOccurred();
    if (pending) env->ExceptionClear();
    return pending;
}

void HandleException(JNIEnv* env) {
    const LocalRef<jthrowable> pending(env, TakeException(env));
    if (!pending) return;
    const LocalRef<jclass> swallowed(env, env->FindClass("java/lang/NoSuchMethodError"));
    if (!swallowed) env->ExceptionClear();
    if (!swallowed || !env->IsInstanceOf(pending.get(), swallowed.get())) env->Throw(pending.get());
}

}  // namespace GxFontEffect
