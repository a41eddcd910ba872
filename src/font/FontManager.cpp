#include "font/FontManager.h"

#include <SkRefCnt.h>
#include <SkStream.h>
#include <SkTypeface.h>
#include <android/log.h>
#include <hwui/MinikinSkia.h>
#include <hwui/Typeface.h>
#include <minikin/FamilyVariant.h>
#include <minikin/Font.h>
#include <minikin/FontFamily.h>
#include <minikin/FontStyle.h>
#include <minikin/FontVariation.h>

#include <algorithm>
#include <cstring>
#include <list>
#include <map>
#include <mutex>
#include <new>
#include <string>
#include <tuple>
#include <utility>

#include "base/GxLog.h"
#include "base/GxString.h"
#include "base/List.h"
#include "base/Mutex.h"
#include "base/NativeError.h"
#include "base/Utf8Text.h"
#include "font/FontBuffer.h"
#include "font/GxFontFamily.h"
#include "font/GxFontStyle.h"

namespace GxFontEffect {

namespace {

constexpr const char* kManagerTag = "GxFontManager";

// One number per failing check; never renumber.
enum : int {
    kSiteIsExisting = 233,
    kSiteAddFont = 269,
    kSiteBuildFamily = 345,
    kSiteLoadFamily = 382,
    kSiteFamiliesSet = 415,
    kSiteSetFamilies = 422,
    kSiteGetFont = 440,
    kSiteGetFamilies = 475,
    kSiteGetTypeface = 476,
    kSiteConstructAgain = 501,
    kSiteConstructMemory = 502,
    kSiteMemory = 503,
};

using FontPointer = std::shared_ptr<minikin::MinikinFont>;
using FamilyPointer = std::shared_ptr<minikin::FontFamily>;
using TypefacePointer = std::shared_ptr<const android::Typeface>;

// A font and the bytes that it borrows: the font goes first.
struct LoadedFont {
    LoadedFont(std::shared_ptr<const FontBuffer> bytes, sk_sp<SkTypeface> typeface,
               const std::string& path, int index)
        : buffer(std::move(bytes)),
          font(std::move(typeface), buffer->data(), buffer->length(), path, index,
               std::vector<minikin::FontVariation>()) {}

    std::shared_ptr<const FontBuffer> buffer;
    android::MinikinFontSkia font;
};

bool IsFontIndex(int index) {
    return index >= 0 && index <= FontManager::kMaxFontIndex;
}

// One character tells the index: 10 is ':'.
std::string FontKey(const std::string& path, int index) {
    std::string key = path;
    key += static_cast<char>('0' + index);
    key += '\0';
    return key;
}

minikin::Font MakeFont(const FontPointer& typeface, int weight, bool italic) {
    using Slant = minikin::FontStyle::Slant;
    const int known =
        std::clamp(weight, 1, static_cast<int>(minikin::FontStyle::Weight::EXTRA_BLACK));
    return minikin::Font::Builder(typeface)
        .setWeight(static_cast<uint16_t>(known))
        .setSlant(italic ? Slant::ITALIC : Slant::UPRIGHT)
        .build();
}

// Empty for null and for a path that has no UTF-8 form.
std::string Utf8Of(const GxString* path) {
    if (!path || path->GetUTF8Size() < 1) return std::string();
    const Utf8Text utf8(path);
    if (!utf8.get()) throw std::bad_alloc();
    return utf8.get();
}

// Text in the log when verbose lines are wanted.
void LogVerbose(const char* text) {
    if (GxLog::IsAllLogEnable()) __android_log_print(ANDROID_LOG_DEBUG, kManagerTag, "%s", text);
}

}  // namespace

// The maps and families; every member function is called with the lock held and throws bad_alloc.
class GxFontManagerImpl {
public:
    bool AddFont(const std::string& path, std::unique_ptr<char[]> data, unsigned size, int index,
                 bool checkExisting);
    FontPointer FindFont(const std::string& path, int index) const;
    // Null for a path that has no UTF-8 form, too.
    FontPointer FindFont(const GxString* path, int index) const;
    bool BuildFamily(const GxFontFamily& family);

    // Null without fonts. The same objects as long as no font comes or goes, so that what layout
    // remembers of them stays of use.
    FamilyPointer UserFamily(const GxString& path, GxFontStyle style);
    FamilyPointer SystemFamily(const GxFontFamily& family);
    TypefacePointer TypefaceOf(const std::vector<FamilyPointer>& families, int weight, bool italic);
    // After every change of the fonts or of the system families.
    void ForgetFamilies();

    // Null past the end, and where the list holds null.
    GxFontFamily* FamilyAt(int index) const {
        return static_cast<GxFontFamily*>(systemFamilies->Get(index));
    }
    int FamilyCount() const { return systemFamilies ? systemFamilies->GetCount() : 0; }

    Mutex lock;
    double totalBufferMB = 0;  // of font files, in units of 1,024,000 bytes
    std::map<std::string, std::shared_ptr<const FontBuffer>> bufferMap;  // path and NUL
    std::map<std::string, FontPointer> fontMap;                          // see FontKey
    List* systemFamilies = nullptr;                                      // of owned GxFontFamily
    bool systemFamiliesSet = false;

private:
    // More than users have fonts in turn on a screen.
    static constexpr size_t kMaxTypefaces = 32;
    static constexpr size_t kMaxUserFamilies = 256;

    struct KnownTypeface {
        std::vector<FamilyPointer> families;
        int weight;
        bool italic;
        TypefacePointer typeface;
    };

    std::shared_ptr<const FontBuffer> FileBuffer(const std::string& path);
    static FamilyPointer MakeUserFamily(const FontPointer& font, GxFontStyle style);
    FamilyPointer MakeSystemFamily(const GxFontFamily& family) const;

    // By font, weight and italic.
    std::map<std::tuple<const minikin::MinikinFont*, int, bool>, FamilyPointer> knownUserFamilies;
    std::map<const GxFontFamily*, FamilyPointer> knownSystemFamilies;
    std::list<KnownTypeface> knownTypefaces;  // most recently used first
};

std::shared_ptr<const FontBuffer> GxFontManagerImpl::FileBuffer(const std::string& path) {
    const std::string key = path + '\0';
    const auto known = bufferMap.find(key);
    if (known != bufferMap.end()) return known->second;
    // Kept also when there is nothing in it: a file that failed is not tried again.
    std::shared_ptr<const FontBuffer> buffer = FontBuffer::LoadFile(path.c_str());
    bufferMap.emplace(key, buffer);
    const double sizeMB = static_cast<float>(buffer->length()) / 1024000.0f;
    totalBufferMB += sizeMB;
    if (GxLog::IsAllLogEnable()) {
        __android_log_print(ANDROID_LOG_DEBUG, kManagerTag,
                            "BUFFER TOTAL SIZE(%.2fMB) <- %s(%.2fMB) ", totalBufferMB, path.c_str(),
                            sizeMB);
    }
    return buffer;
}

bool GxFontManagerImpl::AddFont(const std::string& path, std::unique_ptr<char[]> data,
                                unsigned size, int index, bool checkExisting) {
    if (checkExisting && FindFont(path, index)) return true;
    const std::shared_ptr<const FontBuffer> buffer =
        data ? std::make_shared<FontBuffer>(std::move(data), size) : FileBuffer(path);
    if (buffer->length() == 0) {
        __android_log_print(ANDROID_LOG_ERROR, kManagerTag, "AddMinikinFont() - Fail to get font");
        return false;
    }
    sk_sp<SkTypeface> typeface;
    if (IsFontIndex(index)) {
        typeface = SkTypeface::MakeFromStream(
            std::make_unique<SkMemoryStream>(buffer->data(), buffer->length()), index);
    }
    if (!typeface) {
        __android_log_print(ANDROID_LOG_ERROR, kManagerTag,
                            "AddMinikinFont() - Fail to create typeface");
        return false;
    }
    const auto loaded = std::make_shared<LoadedFont>(buffer, std::move(typeface), path, index);
    if (fontMap.emplace(FontKey(path, index), FontPointer(loaded, &loaded->font)).second) {
        ForgetFamilies();
    }
    return true;
}

FontPointer GxFontManagerImpl::FindFont(const std::string& path, int index) const {
    if (!IsFontIndex(index)) return nullptr;
    const auto known = fontMap.find(FontKey(path, index));
    return known != fontMap.end() ? known->second : nullptr;
}

FontPointer GxFontManagerImpl::FindFont(const GxString* path, int index) const {
    const std::string utf8 = Utf8Of(path);
    return utf8.empty() ? nullptr : FindFont(utf8, index);
}

bool GxFontManagerImpl::BuildFamily(const GxFontFamily& family) {
    const int count = family.fonts ? family.fonts->GetCount() : 0;
    for (int i = 0; i < count; i++) {
        const auto* entry = static_cast<const GxFontEntry*>(family.fonts->Get(i));
        if (!entry) continue;
        const std::string path = Utf8Of(entry->path);
        if (path.empty() || !AddFont(path, nullptr, 0, entry->ttcIndex, false)) return false;
    }
    return count > 0;
}

FamilyPointer GxFontManagerImpl::UserFamily(const GxString& path, GxFontStyle style) {
    const FontPointer font = FindFont(&path, 0);
    if (!font) return nullptr;
    if (knownUserFamilies.size() >= kMaxUserFamilies) knownUserFamilies.clear();
    FamilyPointer& known = knownUserFamilies[{font.get(), style.weight, style.italic}];
    if (!known) known = MakeUserFamily(font, style);
    return known;
}

FamilyPointer GxFontManagerImpl::MakeUserFamily(const FontPointer& font, GxFontStyle style) {
    std::vector<minikin::Font> fonts;
    fonts.push_back(MakeFont(font, style.weight, style.italic));
    return std::make_shared<minikin::FontFamily>(minikin::FamilyVariant::DEFAULT, std::move(fonts));
}

FamilyPointer GxFontManagerImpl::SystemFamily(const GxFontFamily& family) {
    FamilyPointer& known = knownSystemFamilies[&family];
    if (!known) known = MakeSystemFamily(family);
    return known;
}

FamilyPointer GxFontManagerImpl::MakeSystemFamily(const GxFontFamily& family) const {
    std::vector<minikin::Font> fonts;
    const int count = family.fonts ? family.fonts->GetCount() : 0;
    for (int i = 0; i < count; i++) {
        const auto* entry = static_cast<const GxFontEntry*>(family.fonts->Get(i));
        const FontPointer font = entry ? FindFont(entry->path, entry->ttcIndex) : nullptr;
        if (font) fonts.push_back(MakeFont(font, entry->weight, entry->italic));
    }
    if (fonts.empty()) return nullptr;
    return std::make_shared<minikin::FontFamily>(
        family.localeListId, static_cast<minikin::FamilyVariant>(family.variant), std::move(fonts),
        false);
}

TypefacePointer GxFontManagerImpl::TypefaceOf(const std::vector<FamilyPointer>& families,
                                              int weight, bool italic) {
    const auto known = std::find_if(
        knownTypefaces.begin(), knownTypefaces.end(), [&](const KnownTypeface& candidate) {
            return candidate.weight == weight && candidate.italic == italic &&
                   candidate.families == families;
        });
    if (known != knownTypefaces.end()) {
        knownTypefaces.splice(knownTypefaces.begin(), knownTypefaces, known);
        return known->typeface;
    }
    auto copy = families;
    TypefacePointer typeface(
        android::Typeface::createFromFamilies(std::move(copy), weight, italic));
    knownTypefaces.push_front({families, weight, italic, typeface});
    if (knownTypefaces.size() > kMaxTypefaces) knownTypefaces.pop_back();
    return typeface;
}

void GxFontManagerImpl::ForgetFamilies() {
    knownUserFamilies.clear();
    knownSystemFamilies.clear();
    knownTypefaces.clear();
}

FontManager& FontManager::GetInstance() {
    static FontManager instance;
    static std::once_flag constructed;
    try {
        std::call_once(constructed, [] {
            if (!instance.Construct()) throw std::bad_alloc();
        });
    } catch (const std::bad_alloc&) {
        // Every operation says so, and the next call tries again.
    }
    return instance;
}

FontManager::FontManager() = default;

FontManager::~FontManager() {
    __android_log_print(ANDROID_LOG_DEBUG, kManagerTag, "~FontManager(%p)",
                        static_cast<void*>(this));
    ClearFontMaps();
    ClearFontFamilies();
}

bool FontManager::Construct() {
    if (impl_)
        return ReportNativeError(kManagerTag, GXE_ERROR_ALREADY_CONSTRUCTED, kSiteConstructAgain);
    std::unique_ptr<GxFontManagerImpl> impl(new (std::nothrow) GxFontManagerImpl);
    if (!impl || !impl->lock.Construct()) {
        return ReportNativeError(kManagerTag, GXE_ERROR_INVALID_ARGUMENT, kSiteConstructMemory);
    }
    impl_ = std::move(impl);
    return true;
}

bool FontManager::Ready(int site) const {
    return impl_ || ReportNativeError(kManagerTag, GXE_ERROR_NOT_CONSTRUCTED, site);
}

bool FontManager::AddMinikinFont(const char* path, char* data, unsigned size, int index,
                                 bool checkExisting) {
    std::unique_ptr<char[]> owned(data);
    if (!Ready(kSiteAddFont)) return false;
    if (!path || !*path) {
        __android_log_print(ANDROID_LOG_DEBUG, kManagerTag, "AddMinikinFont() - path is NULL");
        return false;
    }
    return GuardMemory(kManagerTag, kSiteMemory, [&] {
        const MutexGuard guard(impl_->lock);
        return impl_->AddFont(path, std::move(owned), size, index, checkExisting);
    });
}

bool FontManager::AddMinikinFont(const GxString* path, char* data, unsigned size, int index,
                                 bool checkExisting) {
    return AddMinikinFont(Utf8Text(path).get(), data, size, index, checkExisting);
}

bool FontManager::IsExisting(const char* path, int index) {
    if (!Ready(kSiteIsExisting)) return false;
    if (!path || !*path) {
        __android_log_print(ANDROID_LOG_DEBUG, kManagerTag, "IsExisting() - path is NULL");
        return false;
    }
    return GuardMemory(kManagerTag, kSiteMemory, [&] {
        const MutexGuard guard(impl_->lock);
        return impl_->FindFont(std::string(path), index) != nullptr;
    });
}

bool FontManager::GetMinikinFont(std::shared_ptr<minikin::MinikinFont>& out, const GxString* path,
                                 int index) {
    if (!Ready(kSiteGetFont)) return false;
    return GuardMemory(kManagerTag, kSiteMemory, [&] {
        const MutexGuard guard(impl_->lock);
        FontPointer font = impl_->FindFont(path, index);
        if (!font) return false;
        out = std::move(font);
        return true;
    });
}

bool FontManager::SetSystemFontFamilies(List* families) {
    if (!Ready(kSiteSetFamilies)) return false;
    const MutexGuard guard(impl_->lock);
    if (impl_->systemFamiliesSet) return true;
    ClearFontFamilies();
    impl_->systemFamilies = families;
    impl_->systemFamiliesSet = true;
    return true;
}

bool FontManager::IsSystemFontFamiliesAlreadySet() {
    if (!Ready(kSiteFamiliesSet)) return false;
    const MutexGuard guard(impl_->lock);
    return impl_->systemFamiliesSet;
}

bool FontManager::BuildMinikinFamily(GxFontFamily* family) {
    if (!Ready(kSiteBuildFamily)) return false;
    if (!family) return false;
    return GuardMemory(kManagerTag, kSiteMemory, [&] {
        const MutexGuard guard(impl_->lock);
        return impl_->BuildFamily(*family);
    });
}

bool FontManager::LoadMinikinFontFamily(unsigned localeListId) {
    return Ready(kSiteLoadFamily) && LoadFamily(localeListId) != FamilyLoad::kNone;
}

bool FontManager::TryLoadMinikinFontFamily(unsigned localeListId) {
    return Ready(kSiteLoadFamily) && LoadFamily(localeListId) != FamilyLoad::kNoMemory;
}

FontManager::FamilyLoad FontManager::LoadFamily(unsigned localeListId) {
    auto result = FamilyLoad::kNone;
    const bool enough = GuardMemory(kManagerTag, kSiteMemory, [&] {
        const MutexGuard guard(impl_->lock);
        for (int i = 0; i < impl_->FamilyCount(); i++) {
            GxFontFamily* family = impl_->FamilyAt(i);
            if (!family || family->loaded || family->localeListId != localeListId) continue;
            result = FamilyLoad::kTried;
            family->loaded = impl_->BuildFamily(*family);
            break;
        }
        return true;
    });
    return enough ? result : FamilyLoad::kNoMemory;
}

bool FontManager::GetMinikinFontFamilies(const GxString* familyName,
                                         std::vector<std::shared_ptr<minikin::FontFamily>>& out,
                                         const GxString* userFontPath, int& weight) {
    if (!Ready(kSiteGetFamilies)) return false;
    LogVerbose("GetMinikinFontFamilies >>> GetMinikinFontFamilies");
    if (GxLog::IsAllLogEnable()) {
        __android_log_print(ANDROID_LOG_DEBUG, kManagerTag, "GetMinikinFontFamilies - userFont[%s]",
                            GxLog::ConvertLog(userFontPath));
        __android_log_print(ANDROID_LOG_DEBUG, kManagerTag,
                            "GetMinikinFontFamilies - familyFont[%s]",
                            GxLog::ConvertLog(familyName));
    }
    GxFontStyle style{weight, false};
    const bool collected = GuardMemory(kManagerTag, kSiteMemory, [&] {
        const MutexGuard guard(impl_->lock);
        std::vector<FamilyPointer> families;
        const auto keep = [&](FamilyPointer family) {
            if (family) families.push_back(std::move(family));
        };
        if (userFontPath) {
            style = DeriveFontStyle(*userFontPath, familyName, weight);
            const bool isSystemRoboto = userFontPath->Find(L"/system/fonts/Roboto-") >= 0;
            if (!isSystemRoboto) keep(impl_->UserFamily(*userFontPath, style));
        }
        for (int i = 0; i < impl_->FamilyCount(); i++) {
            const GxFontFamily* family = impl_->FamilyAt(i);
            if (family && family->loaded) keep(impl_->SystemFamily(*family));
        }
        out.insert(out.end(), families.begin(), families.end());
        return true;
    });
    if (collected) weight = style.weight;
    LogVerbose("GetMinikinFontFamilies <<< GetMinikinFontFamilies");
    return collected;
}

std::shared_ptr<const android::Typeface> FontManager::GetTypeface(
    const std::vector<std::shared_ptr<minikin::FontFamily>>& families, int weight, bool italic) {
    TypefacePointer typeface;
    if (!Ready(kSiteGetTypeface)) return typeface;
    GuardMemory(kManagerTag, kSiteMemory, [&] {
        const MutexGuard guard(impl_->lock);
        typeface = impl_->TypefaceOf(families, weight, italic);
        return true;
    });
    return typeface;
}

void FontManager::ClearFontFamilies() {
    if (!impl_) return;
    const MutexGuard guard(impl_->lock);
    impl_->ForgetFamilies();
    for (int i = 0; i < impl_->FamilyCount(); i++) DeleteFontFamily(impl_->FamilyAt(i));
    delete impl_->systemFamilies;
    impl_->systemFamilies = nullptr;
    impl_->systemFamiliesSet = false;
}

void FontManager::ClearFontMaps() {
    if (!impl_) return;
    const MutexGuard guard(impl_->lock);
    impl_->ForgetFamilies();
    impl_->fontMap.clear();
    impl_->bufferMap.clear();
    impl_->totalBufferMB = 0;
}

}  // namespace GxFontEffect
