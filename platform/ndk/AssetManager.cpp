// Assets read through the Java object itself: open(String) of android.content.res.AssetManager
// gives an InputStream, whose bytes are taken in at once.
#include <android/asset_manager_jni.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <list>
#include <memory>
#include <mutex>
#include <new>
#include <string>
#include <vector>

struct AAssetManager {
    JavaVM* vm;
    jweak object;
};

struct AAsset {
    std::vector<jbyte> bytes;
    size_t position = 0;
};

namespace {

// A local frame: whatever references a step makes go at its end, and no exception stays.
class JavaScope {
public:
    explicit JavaScope(JNIEnv* env) : env_(env), ready_(env->PushLocalFrame(16) == JNI_OK) {}
    ~JavaScope() {
        if (env_->ExceptionCheck()) env_->ExceptionClear();
        if (ready_) env_->PopLocalFrame(nullptr);
    }
    JavaScope(const JavaScope&) = delete;
    JavaScope& operator=(const JavaScope&) = delete;

    explicit operator bool() const { return ready_; }

private:
    JNIEnv* env_;
    bool ready_;
};

// The result of a method that takes nothing or one string; null when it is missing or throws.
jobject CallObject(JNIEnv* env, jobject object, const char* name, const char* signature,
                   jstring argument = nullptr) {
    const jmethodID method = env->GetMethodID(env->GetObjectClass(object), name, signature);
    if (!method) return nullptr;
    const jobject result = env->CallObjectMethod(object, method, argument);
    return env->ExceptionCheck() ? nullptr : result;
}

// Closing matters to streams over files; what it throws does not.
void CloseStream(JNIEnv* env, jobject stream) {
    if (env->ExceptionCheck()) env->ExceptionClear();
    const jmethodID close = env->GetMethodID(env->GetObjectClass(stream), "close", "()V");
    if (close) env->CallVoidMethod(stream, close);
}

// JNI wants characters beyond U+FFFF, four bytes in UTF-8, as two surrogates of three bytes each.
std::string ModifiedUtf8(const char* utf8) {
    std::string modified;
    const auto appendUnit = [&](uint32_t unit) {
        modified += static_cast<char>(0xE0 | unit >> 12);
        modified += static_cast<char>(0x80 | (unit >> 6 & 0x3F));
        modified += static_cast<char>(0x80 | (unit & 0x3F));
    };
    for (const char* byte = utf8; *byte; byte++) {
        const auto first = static_cast<uint8_t>(*byte);
        if (first < 0xF0 || !byte[1] || !byte[2] || !byte[3]) {
            modified += *byte;
            continue;
        }
        uint32_t beyond = first & 0x07;
        for (int i = 0; i < 3; i++) beyond = beyond << 6 | (static_cast<uint8_t>(*++byte) & 0x3F);
        beyond -= 0x10000;
        appendUnit(0xD800 + (beyond >> 10 & 0x3FF));
        appendUnit(0xDC00 + (beyond & 0x3FF));
    }
    return modified;
}

std::unique_ptr<AAsset> ReadAll(JNIEnv* env, jobject assetManager, const char* name) {
    const jstring javaName = env->NewStringUTF(ModifiedUtf8(name).c_str());
    if (!javaName) return nullptr;
    const jobject stream = CallObject(env, assetManager, "open",
                                      "(Ljava/lang/String;)Ljava/io/InputStream;", javaName);
    if (!stream) return nullptr;
    const auto array = static_cast<jbyteArray>(CallObject(env, stream, "readAllBytes", "()[B"));
    std::unique_ptr<AAsset> asset;
    if (array) {
        asset = std::make_unique<AAsset>();
        asset->bytes.resize(static_cast<size_t>(env->GetArrayLength(array)));
        env->GetByteArrayRegion(array, 0, static_cast<jsize>(asset->bytes.size()),
                                asset->bytes.data());
    }
    CloseStream(env, stream);
    return asset;
}

JNIEnv* EnvironmentOf(JavaVM* vm) {
    void* env = nullptr;
    return vm->GetEnv(&env, JNI_VERSION_1_2) == JNI_OK ? static_cast<JNIEnv*>(env) : nullptr;
}

// One entry per Java object; entries of collected objects are used again.
AAssetManager* EntryOf(JNIEnv* env, jobject assetManager) {
    static std::mutex mutex;
    static std::list<AAssetManager> entries;
    const std::lock_guard<std::mutex> lock(mutex);
    AAssetManager* free = nullptr;
    for (AAssetManager& entry : entries) {
        if (env->IsSameObject(entry.object, assetManager)) return &entry;
        if (env->IsSameObject(entry.object, nullptr)) free = &entry;
    }
    if (!free) free = &entries.emplace_back();
    if (free->object) env->DeleteWeakGlobalRef(free->object);
    free->object = env->NewWeakGlobalRef(assetManager);
    env->GetJavaVM(&free->vm);
    return free;
}

}  // namespace

extern "C" {

AAssetManager* AAssetManager_fromJava(JNIEnv* env, jobject assetManager) try {
    if (!env || !assetManager) return nullptr;
    return EntryOf(env, assetManager);
} catch (const std::bad_alloc&) {
    return nullptr;
}

AAsset* AAssetManager_open(AAssetManager* manager, const char* filename, int) try {
    JNIEnv* const env = manager && filename ? EnvironmentOf(manager->vm) : nullptr;
    if (!env) return nullptr;
    const JavaScope scope(env);
    const jobject assetManager = scope ? env->NewLocalRef(manager->object) : nullptr;
    return assetManager ? ReadAll(env, assetManager, filename).release() : nullptr;
} catch (const std::bad_alloc&) {
    return nullptr;
}

off_t AAsset_getLength(AAsset* asset) {
    return static_cast<off_t>(asset->bytes.size());
}

int AAsset_read(AAsset* asset, void* buffer, size_t count) {
    const size_t read = std::min({count, asset->bytes.size() - asset->position, size_t{1} << 30});
    if (read > 0) std::memcpy(buffer, asset->bytes.data() + asset->position, read);
    asset->position += read;
    return static_cast<int>(read);
}

void AAsset_close(AAsset* asset) {
    delete asset;
}

}  // extern "C"
