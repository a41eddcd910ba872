// Chooses the fonts for a text: the one asked for, and others for what it does not cover.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "scene/FontCatalog.h"

namespace gxtext {

// What a style says of its font.
struct FontRequest {
    std::string font;            // file, or family name; empty for the catalogue's own choice
    std::filesystem::path base;  // folder that a relative font file is looked up in
    int index = 0;               // inside a collection file
    bool bold = false;
    bool italic = false;
    std::string locale;        // BCP 47 tags, comma-separated: decides how Han characters are drawn
    std::string variations{};  // axis settings of a style
};

struct FontChoice {
    // First the face that is asked for, then fallbacks in order of preference.
    std::vector<FontFace> faces;
    // The first face is a font file named by the style, of index 0, and not slanted twice if it is
    // taken for upright.
    bool userFile = false;
    // Bold is asked for and the first face is not.
    bool fakeBold = false;
};

// Whether a code point that no font has leaves a visible gap: not so for controls, separators and
// characters that are ignored by default (joiners, variation selectors, ...).
bool needsGlyph(char32_t codePoint);

// Names of files and of families share one field: what looks like a path, or is there, is a file.
// Its path, or nothing for a family.
std::optional<std::filesystem::path> asFontFile(const std::string& font,
                                                const std::filesystem::path& folder);

// Face `index` of a font file, null when it is no font; readFace or what remembers it.
using FaceReader = std::function<FaceInfoPtr(const std::filesystem::path& file, size_t index)>;

// The face that `request` asks for, and as many others as cover the rest of `text`, where any do.
// Throws FontError for a font file that cannot be used and a family that is not there.
FontChoice chooseFonts(const FontCatalog& catalog, const FaceReader& readFile,
                       const FontRequest& request, const std::vector<char32_t>& text);

}  // namespace gxtext
