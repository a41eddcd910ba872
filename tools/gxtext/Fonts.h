// Finds the fonts for a text with fontconfig: the one asked for, and others for what it does not
// cover.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "Style.h"

namespace gxtool {

// One face of a font file.
struct FontFace {
    std::string file;
    int index = 0;  // inside a collection
    int weight = 400;
    bool italic = false;
    std::string family;  // its own name, for messages
    std::string
        locales;  // what it is preferred for: "ja", "und-Arab", ...; empty for no preference
};

struct FontChoice {
    // First the face that the style asks for, then fallbacks in order of preference.
    std::vector<FontFace> faces;
    // The first face is a font file that the caller named (index 0), not an installed family.
    bool userFile = false;
    // The style's family name, empty for a file or the default.
    std::string familyName;
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

// The face that `style` asks for, and as many installed ones as cover the rest of `text`, where any
// do. Throws ToolError for a font file that cannot be used and a family that is not installed.
FontChoice chooseFonts(const Style& style, const std::vector<char32_t>& text);

}  // namespace gxtool
