// The table of natives and the loading of the library into a Java runtime.
#pragma once

#include <jni.h>

#include <span>

namespace GxFontEffect {

// Every native in the order of registration. Each Java class registers one contiguous slice with
// one call, and the functions in the table are wrapped: no C++ exception reaches the runtime.
std::span<const JNINativeMethod> NativeTable();

// Register the natives of one class each; Error_OnLoad also settles the build type of the log, once
// per process. False when the class is missing, registration fails or there is no environment. The
// exception of that failure stays pending.
bool Error_OnLoad(JavaVM* vm);
bool GxFontManager_OnLoad(JavaVM* vm, JNIEnv* env);
bool GxText_OnLoad(JavaVM* vm, JNIEnv* env);

// What JNI_OnLoad does: every class registers what it can whatever happens to the others, and the
// load succeeds. A Java side without a native method is accepted; any other exception, such as that
// of a missing class, is kept aside meanwhile and pending at the end (the first, if there are
// several). The version of JNI, or 0 without an environment.
jint LoadNatives(JavaVM* vm);

}  // namespace GxFontEffect
