#include "scene/InstalledFonts.h"

#include <fontconfig/fontconfig.h>

#include <set>
#include <utility>

#include "scene/FaceFile.h"

namespace gxtext {

namespace {

struct Release {
    void operator()(FcPattern* pattern) const { FcPatternDestroy(pattern); }
    void operator()(FcCharSet* set) const { FcCharSetDestroy(set); }
    void operator()(FcFontSet* set) const { FcFontSetDestroy(set); }
    void operator()(FcObjectSet* set) const { FcObjectSetDestroy(set); }
};
template <typename T>
using Owned = std::unique_ptr<T, Release>;

std::string stringOf(const FcPattern* pattern, const char* object, int position = 0) {
    FcChar8* value = nullptr;
    if (FcPatternGetString(pattern, object, position, &value) != FcResultMatch) return {};
    return reinterpret_cast<const char*>(value);
}

int integerOf(const FcPattern* pattern, const char* object, int otherwise) {
    int value = otherwise;
    return FcPatternGetInteger(pattern, object, 0, &value) == FcResultMatch ? value : otherwise;
}

bool flagOf(const FcPattern* pattern, const char* object) {
    FcBool value = FcFalse;
    return FcPatternGetBool(pattern, object, 0, &value) == FcResultMatch && value == FcTrue;
}

void addPages(const FcCharSet* set, CodePointSet& all) {
    FcChar32 map[FC_CHARSET_MAP_SIZE];
    FcChar32 next = 0;
    for (FcChar32 base = FcCharSetFirstPage(set, map, &next); base != FC_CHARSET_DONE;
         base = FcCharSetNextPage(set, map, &next)) {
        for (FcChar32 i = 0; i < FC_CHARSET_MAP_SIZE * 32 && base + i < kCodePoints; i++) {
            if (map[i / 32] >> (i % 32) & 1) all.set(base + i);
        }
    }
}

// Shaping needs the tables of these two.
bool hasUsableFormat(const FcPattern* pattern) {
    const std::string format = stringOf(pattern, FC_FONTFORMAT);
    return format == "TrueType" || format == "CFF";
}

// Null for a face that shaping cannot use.
FaceInfoPtr describe(Owned<FcPattern> owned) {
    const std::shared_ptr<FcPattern> pattern(std::move(owned));
    FcCharSet* coverage = nullptr;
    if (!hasUsableFormat(pattern.get())) return nullptr;
    if (FcPatternGetCharSet(pattern.get(), FC_CHARSET, 0, &coverage) != FcResultMatch)
        return nullptr;
    auto info = std::make_shared<FaceInfo>();
    info->face.file = stringOf(pattern.get(), FC_FILE);
    // The upper half numbers the named instances of a variable font.
    const int index = integerOf(pattern.get(), FC_INDEX, 0);
    info->face.index = index & 0xFFFF;
    if (index >> 16 != 0 || flagOf(pattern.get(), FC_VARIABLE)) {
        info->axes = readAxes(info->face.file, static_cast<size_t>(info->face.index));
    }
    info->face.weight = FcWeightToOpenType(integerOf(pattern.get(), FC_WEIGHT, FC_WEIGHT_REGULAR));
    info->face.italic = integerOf(pattern.get(), FC_SLANT, FC_SLANT_ROMAN) != FC_SLANT_ROMAN;
    info->face.family = stringOf(pattern.get(), FC_FAMILY);
    info->color = flagOf(pattern.get(), FC_COLOR);
    for (int i = 0;; i++) {
        std::string name = stringOf(pattern.get(), FC_FAMILY, i);
        if (name.empty()) break;
        info->names.push_back(std::move(name));
    }
    info->covers = [pattern, coverage](char32_t c) {
        return FcCharSetHasChar(coverage, c) == FcTrue;
    };
    info->addCoverage = [pattern, coverage](CodePointSet& all) { addPages(coverage, all); };
    return info;
}

class InstalledFonts : public FontCatalog {
public:
    FaceInfoPtr nearest(const FaceQuery& query) const override {
        const Owned<FcPattern> pattern(FcPatternCreate());
        const auto addString = [&](const char* object, const std::string& value) {
            FcPatternAddString(pattern.get(), object,
                               reinterpret_cast<const FcChar8*>(value.c_str()));
        };
        addString(FC_FAMILY, query.family);
        if (!query.language.empty()) addString(FC_LANG, query.language);
        FcPatternAddInteger(pattern.get(), FC_WEIGHT,
                            query.bold ? FC_WEIGHT_BOLD : FC_WEIGHT_REGULAR);
        FcPatternAddInteger(pattern.get(), FC_SLANT,
                            query.italic ? FC_SLANT_ITALIC : FC_SLANT_ROMAN);
        FcPatternAddBool(pattern.get(), FC_COLOR, query.color);
        FcPatternAddBool(pattern.get(), FC_VARIABLE, FcFalse);
        if (!query.characters.empty()) {
            const Owned<FcCharSet> characters(FcCharSetCreate());
            for (const char32_t c : query.characters) FcCharSetAddChar(characters.get(), c);
            FcPatternAddCharSet(pattern.get(), FC_CHARSET, characters.get());
        }
        FcConfigSubstitute(nullptr, pattern.get(), FcMatchPattern);
        FcDefaultSubstitute(pattern.get());
        FcResult result = FcResultNoMatch;
        Owned<FcPattern> found(FcFontMatch(nullptr, pattern.get(), &result));
        return found ? describe(std::move(found)) : nullptr;
    }

    std::vector<std::string> families() const override {
        const Owned<FcPattern> any(FcPatternCreate());
        const Owned<FcObjectSet> objects(FcObjectSetBuild(FC_FAMILY, nullptr));
        const Owned<FcFontSet> fonts(FcFontList(nullptr, any.get(), objects.get()));
        std::set<std::string> names;
        for (int i = 0; fonts && i < fonts->nfont; i++) {
            names.insert(stringOf(fonts->fonts[i], FC_FAMILY));
        }
        return {names.begin(), names.end()};
    }

    std::string whereabouts() const override { return "is installed"; }

private:
    void collect(CodePointSet& all) const override {
        for (const FcSetName kind : {FcSetSystem, FcSetApplication}) {
            const FcFontSet* fonts = FcConfigGetFonts(nullptr, kind);
            for (int i = 0; fonts && i < fonts->nfont; i++) {
                FcCharSet* coverage = nullptr;
                if (hasUsableFormat(fonts->fonts[i]) &&
                    FcPatternGetCharSet(fonts->fonts[i], FC_CHARSET, 0, &coverage) ==
                        FcResultMatch) {
                    addPages(coverage, all);
                }
            }
        }
    }
};

}  // namespace

std::shared_ptr<const FontCatalog> installedFonts() {
    return std::make_shared<InstalledFonts>();
}

}  // namespace gxtext
