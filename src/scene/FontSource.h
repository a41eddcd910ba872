// Where fonts come from.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "GxExport.h"

namespace gxtext {

class FontLibrary;

// The fonts that texts may be drawn with: those installed, or none but those of a folder or of a
// list of files, so that the pictures are the same on every machine. Fonts are loaded once and kept
// as long as a copy of the source lives.
//
//     Renderer renderer(FontSource::folder("fonts/"));
//
// A value; copies share what is loaded. Copies may be used on different threads at the same time.
class GXTEXT_API FontSource {
public:
    // Families and files as fontconfig knows them. Throws FontError where the library was built
    // without it.
    static FontSource installed();
    // Every .ttf, .otf, .ttc and .otc file in the folder and in the folders below it, in order of
    // path. Throws FontError when it cannot be read or holds no font.
    static FontSource folder(const std::filesystem::path& folder);
    // These files, collections with all their fonts; the first one draws what names no family, the
    // others what it lacks. Throws FontError for a file that is no TrueType or OpenType font.
    static FontSource files(const std::vector<std::filesystem::path>& files);

    // Names of the families that a style may ask for, each once, in alphabetical order.
    std::vector<std::string> families() const;

private:
    friend class Renderer;
    explicit FontSource(std::shared_ptr<FontLibrary> library);

    std::shared_ptr<FontLibrary> library_;
};

}  // namespace gxtext
