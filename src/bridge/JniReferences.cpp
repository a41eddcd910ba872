#include "bridge/JniReferences.h"

namespace GxFontEffect {

UtfChars::UtfChars(JNIEnv* env, jstring string)
    : env_(env),
      string_(string),
      chars_(string ? env->GetStringUTFChars(string, nullptr) : nullptr) {
    if (string && !chars_) env->ExceptionClear();
}

UtfChars::~UtfChars() {
    if (chars_) env_->ReleaseStringUTFChars(string_, chars_);
}

void UtfChars::ReleaseWithArrayDelete() {
    delete[] chars_;
    chars_ = nullptr;
}

}  // namespace GxFontEffect
