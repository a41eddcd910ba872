// Fonts of a bound text object.
#include <android/asset_manager.h>
#include <android/asset_manager_jni.h>
#include <android/log.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>
#include <string>

#include "bridge/BoundText.h"
#include "bridge/FontBytes.h"
#include "bridge/JniReferences.h"
#include "bridge/ModifiedUtf8.h"
#include "bridge/Natives.h"
#include "font/FontManager.h"
#include "text/GxTextObject.h"

namespace GxFontEffect {

namespace {

// One number per native; never renumber.
enum : int {
    kSiteFont = 1,
    kSiteFontBytes = 2,
    kSiteFontAsset = 3,
    kSiteFamilyName = 4,
};

bool Fail(const char* message) {
    __android_log_print(ANDROID_LOG_ERROR, kTextTag, "%s", message);
    return false;
}

struct CloseAsset {
    void operator()(AAsset* asset) const { AAsset_close(asset); }
};
using Asset = std::unique_ptr<AAsset, CloseAsset>;

// The whole asset; empty when it cannot be read to its end.
FontBytes ReadAsset(AAsset* asset) {
    const off_t length = AAsset_getLength(asset);
    if (length < 0 || length > std::numeric_limits<jint>::max()) return {};
    FontBytes bytes(static_cast<unsigned>(length));
    unsigned filled = 0;
    while (filled < bytes.size) {
        const int count = AAsset_read(asset, bytes.data.get() + filled, bytes.size - filled);
        if (count <= 0) return {};
        filled += static_cast<unsigned>(count);
    }
    return bytes;
}

}  // namespace

jboolean GxText_SetFont(JNIEnv* env, jobject self, jstring path) {
    const BoundText text = RequireBoundTextObject(env, self, kSiteFont);
    if (!text) return false;
    const UtfChars chars(env, path);
    if (!chars) return Fail("GxText_SetFont() - Fail to get fontFile string");
    return text->SetFont(Utf8FromModifiedUtf8(chars.get()).c_str());
}

jboolean GxText_SetFontFamilyName(JNIEnv* env, jobject self, jstring name) {
    const BoundText text = RequireBoundTextObject(env, self, kSiteFamilyName);
    if (!text) return false;
    const UtfChars chars(env, name);
    if (!chars) return Fail("GxText_SetFontFamilyName() - Fail to get familyName string");
    return text->SetFontFamilyName(Utf8FromModifiedUtf8(chars.get()).c_str());
}

jboolean GxText_SetFont2(JNIEnv* env, jobject self, jstring name, jbyteArray data) {
    const BoundText text = RequireBoundTextObject(env, self, kSiteFontBytes);
    if (!text) return false;
    if (!name) return Fail("GxText_SetFont2() - fontName is NULL");
    if (!data) return Fail("GxText_SetFont2() - buffer is NULL");
    const UtfChars chars(env, name);
    if (!chars) return Fail("GxText_SetFont2() - Fail to get fontFile string");
    const std::string fontName = Utf8FromModifiedUtf8(chars.get());
    FontBytes bytes = CopyFontBytes(env, data);
    if (!bytes.data) return false;
    return text->SetFont(fontName.c_str(), bytes.data.release(), bytes.size);
}

jboolean GxText_SetFont3(JNIEnv* env, jobject self, jobject assetManager, jstring name) {
    const BoundText text = RequireBoundTextObject(env, self, kSiteFontAsset);
    if (!text) return false;
    if (!assetManager) return Fail("GxText_SetFont3() - assetManager is NULL");
    if (!name) return Fail("GxText_SetFont3() - fontName is NULL");
    UtfChars chars(env, name);
    if (!chars) return Fail("GxText_SetFont3() - Fail to get fontFile string");
    const std::string fontName = Utf8FromModifiedUtf8(chars.get());
    if (FontManager::GetInstance().IsExisting(fontName.c_str(), 0)) {
        return text->SetFont(fontName.c_str());
    }
    const Asset asset(AAssetManager_open(AAssetManager_fromJava(env, assetManager),
                                         fontName.c_str(), AASSET_MODE_BUFFER));
    if (!asset) {
        chars.ReleaseWithArrayDelete();
        return Fail("GxText_SetFont3() - _ASSET_NOT_FOUND_");
    }
    FontBytes bytes = ReadAsset(asset.get());
    if (!bytes.data) return false;
    return text->SetFont(fontName.c_str(), bytes.data.release(), bytes.size);
}

}  // namespace GxFontEffect
