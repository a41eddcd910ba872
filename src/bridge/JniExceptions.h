// What happens to Java exceptions that are pending in native code.
//
// Three kinds: a failed lookup or a VM out of memory is ours to clear and report as a failure
// value; a missing native while the library loads is swallowed; what the application's own methods
// throw goes on to the Java caller, after the native has returned at once.
#pragma once

#include <jni.h>

namespace GxFontEffect {

// Clears the pending exception and returns it as a local reference; null when there is none.
jthrowable TakeException(JNIEnv* env);

// Swallows a pending NoSuchMethodError; any other exception stays pending.
void HandleException(JNIEnv* env);

}  // namespace GxFontEffect
