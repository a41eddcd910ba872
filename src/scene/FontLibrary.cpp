#include "scene/FontLibrary.h"

#include <minikin/Font.h>
#include <minikin/FontFamily.h>
#include <minikin/FontVariation.h>
#include <minikin/LocaleList.h>
#include <minikin/MinikinFont.h>

#include <algorithm>
#include <utility>

#include "base/GxString.h"
#include "font/VariedFont.h"
#include "scene/FaceFile.h"
#include "scene/SceneError.h"
#include "style/TextSettings.h"

namespace gxtext {

namespace {

using FontPointer = std::shared_ptr<minikin::MinikinFont>;

FontPointer varied(const FontPointer& font, const std::string& settings) {
    std::vector<minikin::FontVariation> axes;
    for (const AxisSetting& setting :
         parseFontVariations(settings).value_or(std::vector<AxisSetting>())) {
        uint32_t tag = 0;
        for (const char c : setting.tag) tag = tag << 8 | static_cast<unsigned char>(c);
        axes.emplace_back(tag, setting.value);
    }
    return GxFontEffect::VariedFont(font, axes);
}

}  // namespace

FontLibrary::FontLibrary(std::shared_ptr<const FontCatalog> catalog)
    : catalog_(std::move(catalog)) {
    if (!manager_.Construct()) throw std::bad_alloc();
}

LoadedFonts FontLibrary::load(const FontChoice& choice) {
    LoadedFonts loaded;
    for (size_t i = 0; i < choice.faces.size(); i++) {
        const FontFace& face = choice.faces[i];
        const bool isUserFile = i == 0 && choice.userFile;
        FamilyPointer family = isUserFile ? openUserFile(face, loaded.weight) : openFace(face);
        if (!family) throw FontError(face.file, "not a TrueType or OpenType font");
        loaded.families.push_back(std::move(family));
        loaded.faces.push_back(face);
    }
    return loaded;
}

FaceInfoPtr FontLibrary::readFile(const std::filesystem::path& file, size_t index) {
    const std::lock_guard guard(lock_);
    FaceInfoPtr& known = files_[{file.string(), index}];
    if (!known) known = readFace(file, index);
    return known;
}

// As a text object treats its own font file: name and path tell weight and slant.
FontLibrary::FamilyPointer FontLibrary::openUserFile(const FontFace& face, int& weight) {
    GxFontEffect::GxString path;
    if (!path.Construct(face.file.c_str())) throw std::bad_alloc();
    if (!manager_.AddMinikinFont(&path, nullptr, 0, 0, true)) return nullptr;
    std::vector<FamilyPointer> families;
    manager_.GetMinikinFontFamilies(nullptr, families, &path, weight);
    return families.empty() ? nullptr : families.front();
}

FontLibrary::FamilyPointer FontLibrary::openFace(const FontFace& face) {
    const std::lock_guard guard(lock_);
    FamilyPointer& known =
        families_[{face.file, face.index, face.weight, face.italic, face.locales, face.variations}];
    if (known) return known;
    GxFontEffect::GxString path;
    if (!path.Construct(face.file.c_str())) throw std::bad_alloc();
    std::shared_ptr<minikin::MinikinFont> font;
    if (!manager_.AddMinikinFont(&path, nullptr, 0, face.index, true) ||
        !manager_.GetMinikinFont(font, &path, face.index)) {
        return nullptr;
    }
    if (!face.variations.empty()) font = varied(font, face.variations);
    if (!font) return nullptr;
    using Slant = minikin::FontStyle::Slant;
    std::vector<minikin::Font> fonts;
    fonts.push_back(minikin::Font::Builder(font)
                        .setWeight(static_cast<uint16_t>(std::clamp(face.weight, 1, 1000)))
                        .setSlant(face.italic ? Slant::ITALIC : Slant::UPRIGHT)
                        .build());
    known = std::make_shared<minikin::FontFamily>(minikin::registerLocaleList(face.locales),
                                                  minikin::FamilyVariant::DEFAULT, std::move(fonts),
                                                  false);
    return known;
}

}  // namespace gxtext
