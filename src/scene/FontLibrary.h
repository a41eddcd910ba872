// Fonts opened for drawing.
#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "font/FontManager.h"
#include "scene/FontCatalog.h"
#include "scene/FontChoice.h"

namespace gxtext {

// What a text is laid out with.
struct LoadedFonts {
    std::vector<std::shared_ptr<minikin::FontFamily>> families;  // one a face, at least one
    std::vector<FontFace> faces;
    int weight = 400;  // to choose among the fonts of a family
};

// A catalogue and the fonts of it that are open. Safe from any thread.
class FontLibrary {
public:
    explicit FontLibrary(std::shared_ptr<const FontCatalog> catalog);

    const FontCatalog& catalog() const { return *catalog_; }
    // Opens the faces of a choice. The same families for the same faces as long as the library
    // lives, so that what layout remembers of them stays of use. Throws FontError when one
    // cannot be opened.
    LoadedFonts load(const FontChoice& choice);
    // A FaceReader that reads each face once.
    FaceInfoPtr readFile(const std::filesystem::path& file, size_t index);

private:
    using FamilyPointer = std::shared_ptr<minikin::FontFamily>;

    FamilyPointer openUserFile(const FontFace& face, int& weight);
    FamilyPointer openFace(const FontFace& face);

    const std::shared_ptr<const FontCatalog> catalog_;
    GxFontEffect::FontManager manager_;
    std::mutex lock_;  // guards what follows
    std::map<std::pair<std::string, size_t>, FaceInfoPtr> files_;
    // By file, index, weight, italic, locales, variations.
    std::map<std::tuple<std::string, int, int, bool, std::string, std::string>, FamilyPointer>
        families_;
};

}  // namespace gxtext
