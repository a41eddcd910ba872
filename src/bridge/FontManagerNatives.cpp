// Font data and the system's font configuration, for the whole process.
#include <android/log.h>
#include <minikin/LocaleList.h>

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

#include "base/GxLog.h"
#include "base/GxString.h"
#include "base/List.h"
#include "bridge/AndroidMethods.h"
#include "bridge/FontBytes.h"
#include "bridge/FontConfigRules.h"
#include "bridge/FontManagerNatives.h"
#include "bridge/JavaMethods.h"
#include "bridge/JniReferences.h"
#include "bridge/ModifiedUtf8.h"
#include "bridge/Natives.h"
#include "font/FontManager.h"
#include "font/GxFontFamily.h"

namespace GxFontEffect {

namespace {

bool FailManager(const char* message) {
    __android_log_print(ANDROID_LOG_ERROR, kFontManagerTag, "%s", message);
    return false;
}

void LogVerbose(const char* message) {
    if (!GxLog::IsAllLogEnable()) return;
    __android_log_print(ANDROID_LOG_DEBUG, kFontManagerTag, "%s", message);
}

struct DeleteEntry {
    void operator()(GxFontEntry* entry) const { DeleteFontEntry(entry); }
};
struct DeleteFamily {
    void operator()(GxFontFamily* family) const { DeleteFontFamily(family); }
};
using Entry = std::unique_ptr<GxFontEntry, DeleteEntry>;
using OwnedFamily = std::unique_ptr<GxFontFamily, DeleteFamily>;

// Walks the non-null elements of `array`, whose method ids come from the class of the first of
// them; `use` returns false to stop. False when it did, when an element threw or when a method is
// missing, which is logged.
template <typename Use>
bool ForEachElement(JNIEnv* env, jobjectArray array, std::span<const JavaMethod> table, Use use) {
    const jsize count = array ? env->GetArrayLength(array) : 0;
    JavaMethods methods;
    bool resolved = false;
    for (jsize i = 0; i < count; i++) {
        const LocalRef<> element(env, env->GetObjectArrayElement(array, i));
        if (!element) continue;
        if (!resolved && !methods.Resolve(env, element.get(), table)) {
            __android_log_print(ANDROID_LOG_ERROR, kFontManagerTag, "Java function %s not found",
                                methods.missing());
            return false;
        }
        resolved = true;
        const JavaCalls calls(env, element.get(), methods);
        if (!use(calls) || calls.Failed()) return false;
    }
    return true;
}

OwnedFamily NewFamily() {
    OwnedFamily family(new GxFontFamily);
    family->fonts = new List;
    if (!family->fonts->Construct()) throw std::bad_alloc();
    return family;
}

Entry NewEntry(const JavaCalls& font, const std::string& path) {
    Entry entry(new GxFontEntry);
    entry->path = new GxString;
    if (!entry->path->Construct(path.c_str())) throw std::bad_alloc();
    entry->ttcIndex = font.Int(kFontClass["getTtcIndex"]);
    entry->weight = font.Int(kFontClass["getWeight"]);
    return entry;
}

void Append(List& list, void* item) {
    if (!list.Add(item)) throw std::bad_alloc();
}

// Appends the font if it takes part.
bool ConvertFont(const JavaCalls& font, List& out) {
    const std::optional<std::string> name = font.Utf8(kFontClass["getFontName"]);
    const bool italic = font.Bool(kFontClass["isItalic"]);
    const std::optional<std::string> fallbackFor = font.Utf8(kFontClass["getFallbackFor"]);
    if (font.Failed()) return false;
    if (!name) return true;
    const std::string path = FontConfigRules::CutPath(*name);
    if (!FontConfigRules::Keeps(path, italic, fallbackFor)) return true;
    Entry entry = NewEntry(font, path);
    Append(out, entry.get());
    static_cast<void>(entry.release());
    return true;
}

// Appends the family if it is considered and a font of it takes part.
bool ConvertFamily(JNIEnv* env, const JavaCalls& javaFamily, FontConfigRules& rules, List& out) {
    const LocalRef<jstring> name(env, javaFamily.Object<jstring>(kFamilyClass["getName"]));
    if (javaFamily.Failed()) return false;
    if (!rules.Considers(static_cast<bool>(name))) return true;

    OwnedFamily family = NewFamily();
    const LocalRef<jobjectArray> fonts(env,
                                       javaFamily.Object<jobjectArray>(kFamilyClass["getFonts"]));
    if (javaFamily.Failed() ||
        !ForEachElement(env, fonts.get(), kFontClass.methods,
                        [&](const JavaCalls& font) { return ConvertFont(font, *family->fonts); })) {
        return false;
    }
    if (family->fonts->GetCount() < 1) return true;

    const std::string languages = javaFamily.Utf8(kFamilyClass["getLanguages"]).value_or("");
    family->variant = javaFamily.Int(kFamilyClass["getVariant"]);
    if (javaFamily.Failed()) return false;
    if (!languages.empty()) family->localeListId = minikin::registerLocaleList(languages);
    if (rules.BuildsNow(languages)) {
        family->loaded = FontManager::GetInstance().BuildMinikinFamily(family.get());
    }
    if (GxLog::IsAllLogEnable()) {
        __android_log_print(ANDROID_LOG_DEBUG, kFontManagerTag,
                            "Family lang(%s) localeListId(%d) loaded(%s)", languages.c_str(),
                            static_cast<int>(family->localeListId),
                            family->loaded ? "TRUE" : "FALSE");
    }
    Append(out, family.get());
    static_cast<void>(family.release());
    return true;
}

struct DeleteFamilyList {
    void operator()(List* list) const {
        for (int i = 0, count = list->GetCount(); i < count; i++) {
            DeleteFontFamily(static_cast<GxFontFamily*>(list->Get(i)));
        }
        delete list;
    }
};
using OwnedFamilies = std::unique_ptr<List, DeleteFamilyList>;

// The manager takes the list over unless one was set in the meantime.
bool SetFamilies(OwnedFamilies families) {
    static std::mutex setting;
    const std::lock_guard<std::mutex> lock(setting);
    FontManager& fonts = FontManager::GetInstance();
    if (fonts.IsSystemFontFamiliesAlreadySet()) return true;
    if (!fonts.SetSystemFontFamilies(families.get())) return false;
    static_cast<void>(families.release());
    return true;
}

}  // namespace

bool ConvertToFontFamilies(JNIEnv* env, jobject config, List* out) {
    JavaMethods methods;
    if (!methods.Resolve(env, config, kFontConfigClass.methods)) {
        __android_log_print(ANDROID_LOG_ERROR, kFontManagerTag, "Java Function %s not found",
                            methods.missing());
        return false;
    }
    const JavaCalls javaConfig(env, config, methods);
    const LocalRef<jobjectArray> families(
        env, javaConfig.Object<jobjectArray>(kFontConfigClass["getFamilies"]));
    FontConfigRules rules;
    const bool converted =
        !javaConfig.Failed() &&
        ForEachElement(env, families.get(), kFamilyClass.methods, [&](const JavaCalls& family) {
            return ConvertFamily(env, family, rules, *out);
        });
    // A configuration is the system's, and a failure of it is not the caller's to handle.
    if (env->ExceptionCheck()) env->ExceptionClear();
    return converted;
}

jboolean GxFontManager_InsertFontData(JNIEnv* env, jobject, jstring name, jbyteArray data) {
    __android_log_print(ANDROID_LOG_DEBUG, kFontManagerTag, "GxFontManager_InsertFontData");
    if (!name) return FailManager("GxFontManager_InsertFontData() - fontName is NULL");
    if (!data) return FailManager("GxFontManager_InsertFontData() - buffer is NULL");
    UtfChars chars(env, name);
    if (!chars) return FailManager("GxFontManager_InsertFontData() - Fail to get fontFile string");
    const std::string fontName = Utf8FromModifiedUtf8(chars.get());
    chars.ReleaseWithArrayDelete();
    FontBytes bytes = CopyFontBytes(env, data);
    if (!bytes.data) return false;
    return FontManager::GetInstance().AddMinikinFont(fontName.c_str(), bytes.data.release(),
                                                     bytes.size, 0, true);
}

jboolean GxFontManager_SetFontConfig(JNIEnv* env, jobject, jobject config) {
    LogVerbose("GxFontManager_SetFontConfig()");
    if (FontManager::GetInstance().IsSystemFontFamiliesAlreadySet()) {
        LogVerbose("GxFontManager_SetFontConfig - already set");
        return true;
    }
    if (!config) return FailManager("GxFontManager_SetFontConfig - jFontConfig is NULL");
    OwnedFamilies families(new List);
    if (!families->Construct()) return false;
    LogVerbose("GxFontManager_SetFontConfig >>> ConvertToFontFamilies");
    const bool converted = ConvertToFontFamilies(env, config, families.get());
    LogVerbose("GxFontManager_SetFontConfig <<<< ConvertToFontFamilies");
    if (!converted) {
        return FailManager("GxFontManager_SetFontConfig - cannot convert to native families");
    }
    return SetFamilies(std::move(families));
}

}  // namespace GxFontEffect
