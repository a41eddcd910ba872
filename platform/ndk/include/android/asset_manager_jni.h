// From the Java asset manager to the native one.
#pragma once

#include <android/asset_manager.h>
#include <jni.h>

extern "C" {

// Valid while the Java object lives; never released.
AAssetManager* AAssetManager_fromJava(JNIEnv* env, jobject assetManager);

}  // extern "C"
