// Families of fonts for texts that have more than one.
#include <android/log.h>
#include <minikin/FamilyVariant.h>
#include <minikin/Font.h>
#include <minikin/FontFamily.h>
#include <minikin/LocaleList.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <mutex>
#include <new>
#include <string>
#include <vector>

#include "base/GxString.h"
#include "bridge/BoundText.h"
#include "bridge/Extension.h"
#include "bridge/FontManagerNatives.h"
#include "bridge/JniReferences.h"
#include "bridge/ModifiedUtf8.h"
#include "font/CollectionFont.h"
#include "font/FontManager.h"
#include "font/VariedFont.h"
#include "style/TextSettings.h"
#include "text/GxTextObject.h"

namespace GxFontEffect {

namespace {

constexpr int kSiteFamilies = 35;

using Family = std::shared_ptr<minikin::FontFamily>;

// Those of the process, by number; they stay.
class Families {
public:
    static Families& Instance() {
        static auto* const families = new Families;  // texts may outlive static destructors
        return *families;
    }

    jint Add(Family family) {
        const std::lock_guard guard(lock_);
        families_.push_back(std::move(family));
        return static_cast<jint>(families_.size()) - 1;
    }

    // Nothing when one of the numbers is none.
    std::vector<Family> Find(const jint* numbers, jsize count) const {
        const std::lock_guard guard(lock_);
        std::vector<Family> found;
        for (jsize i = 0; i < count; i++) {
            if (numbers[i] < 0 || static_cast<size_t>(numbers[i]) >= families_.size()) return {};
            found.push_back(families_[static_cast<size_t>(numbers[i])]);
        }
        return found;
    }

private:
    mutable std::mutex lock_;
    std::vector<Family> families_;
};

struct FontEntry {
    std::string file;
    int index = 0;
    int weight = 400;
    bool italic = false;
    std::string variations;
};

// Empty for null.
std::string Utf8At(JNIEnv* env, jobjectArray strings, jsize i) {
    const LocalRef<jstring> string(env,
                                   static_cast<jstring>(env->GetObjectArrayElement(strings, i)));
    const UtfChars chars(env, string.get());
    return chars ? Utf8FromModifiedUtf8(chars.get()) : std::string();
}

std::vector<minikin::FontVariation> Axes(const std::string& settings) {
    std::vector<minikin::FontVariation> axes;
    const auto parsed = gxtext::parseFontVariations(settings);
    if (!parsed) return axes;
    for (const gxtext::AxisSetting& setting : *parsed) {
        uint32_t tag = 0;
        for (const char c : setting.tag) tag = tag << 8 | static_cast<unsigned char>(c);
        axes.emplace_back(tag, setting.value);
    }
    return axes;
}

// Null when it is no font.
std::shared_ptr<minikin::MinikinFont> Open(const FontEntry& entry) {
    FontManager& manager = FontManager::GetInstance();
    GxString path;
    if (!path.Construct(entry.file.c_str())) throw std::bad_alloc();
    std::shared_ptr<minikin::MinikinFont> font;
    if (entry.index > 0 && manager.GetMinikinFont(font, &path, 0)) {
        // The name of fonts that were given as bytes is no file to read more of them from.
        font = CollectionFont(font, entry.file, entry.index);
    } else if (manager.AddMinikinFont(&path, nullptr, 0, entry.index, true)) {
        manager.GetMinikinFont(font, &path, entry.index);
    }
    if (!font) return nullptr;
    const std::vector<minikin::FontVariation> axes = Axes(entry.variations);
    return axes.empty() ? font : VariedFont(font, axes);
}

// Without a weight, weight and slant are what the font itself says.
minikin::Font MakeFont(const std::shared_ptr<minikin::MinikinFont>& font, const FontEntry& entry) {
    using Slant = minikin::FontStyle::Slant;
    minikin::Font::Builder builder(font);
    if (entry.weight > 0) {
        builder.setWeight(static_cast<uint16_t>(std::min(entry.weight, 1000)))
            .setSlant(entry.italic ? Slant::ITALIC : Slant::UPRIGHT);
    }
    return builder.build();
}

// Null when one of its fonts is none.
Family MakeFamily(const std::vector<FontEntry>& entries, const std::string& locales, jint variant) {
    std::vector<minikin::Font> fonts;
    for (const FontEntry& entry : entries) {
        const auto font = Open(entry);
        if (!font) return nullptr;
        fonts.push_back(MakeFont(font, entry));
    }
    if (fonts.empty()) return nullptr;
    const auto known = variant == 1 || variant == 2 ? static_cast<minikin::FamilyVariant>(variant)
                                                    : minikin::FamilyVariant::DEFAULT;
    return std::make_shared<minikin::FontFamily>(minikin::registerLocaleList(locales), known,
                                                 std::move(fonts), false);
}

// Controls, spaces, joiners and variation selectors are drawn without one.
bool WantsGlyph(uint32_t c) {
    const bool invisible = c <= 0x20 || (c >= 0x7F && c <= 0xA0) || c == 0xAD ||
                           (c >= 0x2000 && c <= 0x200F) || (c >= 0x2028 && c <= 0x202F) ||
                           (c >= 0x205F && c <= 0x206F) || c == 0x3000 || c == 0xFEFF ||
                           (c >= 0xFE00 && c <= 0xFE0F) || (c >= 0xD800 && c <= 0xF8FF) ||
                           (c >= 0xE0000 && c <= 0x10FFFF);
    return !invisible;
}

jint LogFontFailure(const char* what) {
    __android_log_print(ANDROID_LOG_ERROR, kFontManagerTag, "TextExtension - %s", what);
    return -1;
}

std::vector<FontEntry> ReadEntries(JNIEnv* env, jobjectArray files, jintArray indices,
                                   jintArray weights, jbooleanArray italics,
                                   jobjectArray variations) {
    const ArrayElements<jintArray> index(env, indices);
    const ArrayElements<jintArray> weight(env, weights);
    if (!index || !weight) throw std::bad_alloc();
    const jsize count = std::min({env->GetArrayLength(files), index.length(), weight.length(),
                                  env->GetArrayLength(italics), env->GetArrayLength(variations)});
    std::vector<FontEntry> entries;
    for (jsize i = 0; i < count; i++) {
        jboolean italic = JNI_FALSE;
        env->GetBooleanArrayRegion(italics, i, 1, &italic);
        entries.push_back({Utf8At(env, files, i), index[i], weight[i], italic != JNI_FALSE,
                           Utf8At(env, variations, i)});
    }
    return entries;
}

}  // namespace

}  // namespace GxFontEffect

using namespace GxFontEffect;

GX_EXTENSION(jint, addFamily)
(JNIEnv* env, jclass, jobjectArray files, jintArray indices, jintArray weights,
 jbooleanArray italics, jobjectArray variations, jstring locales, jint variant) {
    return Contained(
        [&]() -> jint {
            if (!files || !indices || !weights || !italics || !variations) return -1;
            const auto entries = ReadEntries(env, files, indices, weights, italics, variations);
            const UtfChars tags(env, locales);
            Family family = MakeFamily(
                entries, tags ? Utf8FromModifiedUtf8(tags.get()) : std::string(), variant);
            return family ? Families::Instance().Add(std::move(family)) : -1;
        },
        LogFontFailure);
}

GX_EXTENSION(jboolean, covers)(JNIEnv* env, jclass, jintArray numbers, jstring text) {
    return Contained(
               [&]() -> jint {
                   if (!numbers || !text) return -1;
                   const ArrayElements<jintArray> chosen(env, numbers);
                   const UtfChars chars(env, text);
                   if (!chosen || !chars) return -1;
                   std::vector<jint> known;
                   std::copy_if(chosen.get(), chosen.get() + chosen.length(),
                                std::back_inserter(known), [](jint number) { return number >= 0; });
                   const auto families =
                       Families::Instance().Find(known.data(), static_cast<jsize>(known.size()));
                   for (const wchar_t c : WideFromModifiedUtf8(chars.get())) {
                       const auto has = [c](const Family& family) {
                           return family->hasGlyph(static_cast<uint32_t>(c), 0);
                       };
                       if (WantsGlyph(static_cast<uint32_t>(c)) &&
                           std::none_of(families.begin(), families.end(), has)) {
                           return -1;
                       }
                   }
                   return 0;
               },
               LogFontFailure) == 0;
}

GX_EXTENSION(jboolean, setFamilies)
(JNIEnv* env, jclass, jobject javaText, jintArray numbers, jint weight) {
    return Contained(
               [&]() -> jint {
                   if (!javaText || !numbers) return -1;
                   const BoundText text = RequireBoundTextObject(env, javaText, kSiteFamilies);
                   const ArrayElements<jintArray> chosen(env, numbers);
                   if (!text || !chosen) return -1;
                   std::vector<Family> families =
                       Families::Instance().Find(chosen.get(), chosen.length());
                   if (families.empty()) return -1;
                   const minikin::Font* first = families.front()->getFont(0);
                   const int wanted = weight > 0 ? weight : first->style().weight();
                   return text->SetFontFamilies(std::move(families), wanted) ? 0 : -1;
               },
               LogFontFailure) == 0;
}
