#include "bridge/Registration.h"

extern "C" JNIEXPORT jint JNICALL JNI_OnLoad(JavaVM* vm, void*) {
    return GxFontEffect::LoadNatives(vm);
}
