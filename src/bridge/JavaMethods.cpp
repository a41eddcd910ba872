#include "bridge/JavaMethods.h"

#include <new>

#include "bridge/ModifiedUtf8.h"

namespace GxFontEffect {

bool JavaMethods::Resolve(JNIEnv* env, jobject object, std::span<const JavaMethod> table) {
    const LocalRef<jclass> javaClass(env, object ? env->GetObjectClass(object) : nullptr);
    for (size_t i = 0; i < table.size(); i++) {
        missing_ = table[i].name;
        if (!javaClass) return false;
        ids_[i] = env->GetMethodID(javaClass.get(), table[i].name, table[i].signature);
        if (ids_[i]) continue;
        env->ExceptionClear();
        return false;
    }
    missing_ = nullptr;
    return true;
}

std::optional<std::string> JavaCalls::Utf8(size_t method) const {
    const LocalRef<jstring> string(env_, Object<jstring>(method));
    if (!string) return std::nullopt;
    const UtfChars chars(env_, string.get());
    if (!chars) throw std::bad_alloc();
    return Utf8FromModifiedUtf8(chars.get());
}

}  // namespace GxFontEffect
