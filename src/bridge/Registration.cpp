#include "bridge/Registration.h"

#include <android/log.h>

#include <exception>

#include "base/GxLog.h"
#include "bridge/BoundText.h"
#include "bridge/FontManagerNatives.h"
#include "bridge/JniExceptions.h"
#include "bridge/JniReferences.h"
#include "bridge/Natives.h"

namespace GxFontEffect {

namespace {

constexpr const char* kLoadTag = "GxText_Common_JNI";
constexpr const char* kErrorTag = "GxError_JNI";

void LogUncaught(const char* what) {
    __android_log_print(ANDROID_LOG_ERROR, kLoadTag, "A native failed: %s", what);
}

// Calls `native`; when it throws (memory has run out) gives `failure` instead.
template <auto native, auto... failure>
struct Guarded;

template <typename Result, typename... Arguments, Result (*native)(JNIEnv*, jobject, Arguments...),
          auto... failure>
struct Guarded<native, failure...> {
    static Result JNICALL Call(JNIEnv* env, jobject self, Arguments... arguments) noexcept {
        try {
            return native(env, self, arguments...);
        } catch (const std::exception& error) {
            LogUncaught(error.what());
        } catch (...) {
            LogUncaught("unknown exception");
        }
        return static_cast<Result>((failure, ...));
    }
};

template <auto native, auto... failure>
JNINativeMethod Native(const char* name, const char* signature) {
    // The runtime only reads the strings; its declaration is older than const.
    return {const_cast<char*>(name), const_cast<char*>(signature),
            reinterpret_cast<void*>(&Guarded<native, failure...>::Call)};
}

// The failure value follows the function; nothing for natives without a result.
const JNINativeMethod kNatives[] = {
    Native<Error_GetError, 0>("Error_GetError", "()I"),

    Native<GxFontManager_InsertFontData, false>("GxFontManager_InsertFontData",
                                                "(Ljava/lang/String;[B)Z"),
    Native<GxFontManager_SetFontConfig, false>("GxFontManager_SetFontConfig",
                                               "(Landroid/text/FontConfig;)Z"),

    Native<GxText_finalize>("GxText_finalize", "()V"),
    Native<GxText_AddInnerShadowTextEffect, -1>("GxText_AddInnerShadowTextEffect", "(FFFIF)I"),
    Native<GxText_AddLinearGradientTextEffect, -1>("GxText_AddLinearGradientTextEffect",
                                                   "(FF[I[F[FF)I"),
    Native<GxText_AddOuterGlowTextEffect, -1>("GxText_AddOuterGlowTextEffect", "(FIF)I"),
    Native<GxText_AddOuterShadowTextEffect, -1>("GxText_AddOuterShadowTextEffect", "(FFFIF)I"),
    Native<GxText_AddStrokeTextEffect, -1>("GxText_AddStrokeTextEffect", "(FIFII)I"),
    Native<GxText_ClearAllTextEffect>("GxText_ClearAllTextEffect", "()V"),
    Native<GxText_RenderTextEffect, nullptr>("GxText_RenderTextEffect", "()[I"),
    Native<GxText_SetFont, false>("GxText_SetFont", "(Ljava/lang/String;)Z"),
    Native<GxText_SetFont2, false>("GxText_SetFont2", "(Ljava/lang/String;[B)Z"),
    Native<GxText_SetFont3, false>("GxText_SetFont3",
                                   "(Landroid/content/res/AssetManager;Ljava/lang/String;)Z"),
    Native<GxText_SetPaint, false>("GxText_SetPaint", "(Landroid/graphics/Paint;)Z"),
    Native<GxText_SetLayout, false>("GxText_SetLayout", "(Landroid/text/Layout;)Z"),
    Native<GxText_SetLine, false>("GxText_SetLine", "(I)Z"),
    Native<GxText_SetView, false>("GxText_SetView", "(Landroid/widget/TextView;)Z"),
    Native<GxText_GetDrawingBitmapSize, nullptr>("GxText_GetDrawingBitmapSize", "()[I"),
    Native<GxText_GetEffectLeftOffset, 0>("GxText_GetEffectLeftOffset", "()I"),
    Native<GxText_GetEffectTopOffset, 0>("GxText_GetEffectTopOffset", "()I"),
    Native<GxText_GetEffectRightOffset, 0>("GxText_GetEffectRightOffset", "()I"),
    Native<GxText_GetEffectBottomOffset, 0>("GxText_GetEffectBottomOffset", "()I"),
    Native<GxText_SetFontFamilyName, false>("GxText_SetFontFamilyName", "(Ljava/lang/String;)Z"),
};

constexpr size_t kErrorNatives = 1;
constexpr size_t kFontManagerNatives = 2;
constexpr size_t kTextNatives = 21;
static_assert(std::size(kNatives) == kErrorNatives + kFontManagerNatives + kTextNatives);

bool Register(JNIEnv* env, jclass javaClass, std::span<const JNINativeMethod> natives) {
    return env->RegisterNatives(javaClass, natives.data(), static_cast<jint>(natives.size())) >= 0;
}

JNIEnv* EnvironmentOf(JavaVM* vm) {
    void* env = nullptr;
    if (!vm || vm->GetEnv(&env, JNI_VERSION_1_2) != JNI_OK) return nullptr;
    return static_cast<JNIEnv*>(env);
}

// False when Java does not say, with its exception pending.
bool SettleBuildType(JNIEnv* env, jclass error) {
    if (GxLog::IsCheckedBuildType()) return true;
    const jmethodID isEngMode = env->GetStaticMethodID(error, "isBuildTypeEngMode", "()Z");
    if (!isEngMode) return false;
    const jboolean engMode = env->CallStaticBooleanMethod(error, isEngMode);
    if (env->ExceptionCheck()) return false;
    GxLog::SetBuildType(engMode != JNI_FALSE);
    return true;
}

}  // namespace

std::span<const JNINativeMethod> NativeTable() {
    return kNatives;
}

bool Error_OnLoad(JavaVM* vm) {
    JNIEnv* const env = EnvironmentOf(vm);
    if (!env) return false;
    const LocalRef<jclass> error(env, env->FindClass("com/norvale/android/sdk/gxe/util/GxError"));
    if (!error) return false;
    // The natives register whether or not Java knows the build type.
    const bool settled = SettleBuildType(env, error.get());
    const LocalRef<jthrowable> unsettled(env, TakeException(env));
    const bool registered = Register(env, error.get(), NativeTable().first(kErrorNatives));
    if (!settled && registered && unsettled) env->Throw(unsettled.get());
    if (!settled || !registered) return false;
    __android_log_print(ANDROID_LOG_DEBUG, kErrorTag, "Init .. Done");
    return true;
}

bool GxFontManager_OnLoad(JavaVM*, JNIEnv* env) {
    const LocalRef<jclass> manager(env,
                                   env->FindClass("com/norvale/android/sdk/gxe/font/FontManager"));
    if (!manager ||
        !Register(env, manager.get(), NativeTable().subspan(kErrorNatives, kFontManagerNatives))) {
        return false;
    }
    __android_log_print(ANDROID_LOG_DEBUG, kFontManagerTag, "%s", kFontManagerTag);
    return true;
}

bool GxText_OnLoad(JavaVM*, JNIEnv* env) {
    const LocalRef<jclass> text(env, env->FindClass("com/norvale/android/sdk/gxe/GxText"));
    if (!text || !Register(env, text.get(), NativeTable().last(kTextNatives))) return false;
    __android_log_print(ANDROID_LOG_DEBUG, kTextTag, "JNI_OnLoad .. Done");
    return true;
}

jint LoadNatives(JavaVM* vm) {
    __android_log_print(ANDROID_LOG_DEBUG, kLoadTag, "GxText_JNI_OnLoad");
    JNIEnv* const env = EnvironmentOf(vm);
    if (!env) return 0;
    jthrowable kept = nullptr;
    const auto settle = [&](bool loaded, const char* failureMessage) {
        if (loaded) return;
        __android_log_print(ANDROID_LOG_ERROR, kLoadTag, "%s", failureMessage);
        HandleException(env);
        // The steps to come may not run while an exception is pending.
        const jthrowable pending = TakeException(env);
        if (!kept) {
            kept = pending;
        } else if (pending) {
            env->DeleteLocalRef(pending);
        }
    };
    settle(Error_OnLoad(vm), "GxError Onload Fail!");
    settle(GxFontManager_OnLoad(vm, env), "GxFontManager OnLoad Fail!");
    settle(GxText_OnLoad(vm, env), "GxText OnLoad Fail!");
    if (kept) {
        const LocalRef<jthrowable> thrown(env, kept);
        env->Throw(kept);
    }
    __android_log_print(ANDROID_LOG_DEBUG, kLoadTag, "GxText_JNI_OnLoad .... done");
    return JNI_VERSION_1_2;
}

}  // namespace GxFontEffect
