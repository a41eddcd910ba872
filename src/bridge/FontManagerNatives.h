// Conversion of the system's font configuration.
#pragma once

#include <jni.h>

namespace GxFontEffect {

class List;

inline constexpr const char* kFontManagerTag = "Init_GxFontManager_JNI";

// Appends to `out` one GxFontFamily (made with new, the caller's) for each family of an
// android.text.FontConfig that takes part (see FontConfigRules). False when a method is missing,
// which is logged, or one of the objects threw; `out` then holds the families before that. Leaves
// no exception.
bool ConvertToFontFamilies(JNIEnv* env, jobject config, List* out);

}  // namespace GxFontEffect
