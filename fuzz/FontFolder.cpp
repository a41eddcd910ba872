#include "FontFolder.h"

#include <cstdlib>
#include <fstream>
#include <string>
#include <system_error>

namespace gxfuzz {

namespace {

namespace fs = std::filesystem;

struct Folder {
    Folder() {
        std::string name = (fs::temp_directory_path() / "gxtext-fuzz-XXXXXX").string();
        if (!mkdtemp(name.data())) std::abort();
        path = name;
        for (int kind = 0; kind < kFontKinds; ++kind) {
            const Bytes& bytes = fontFile(static_cast<FontKind>(kind));
            std::ofstream file(path / fontFileName(static_cast<FontKind>(kind)), std::ios::binary);
            file.write(reinterpret_cast<const char*>(bytes.data()),
                       static_cast<std::streamsize>(bytes.size()));
        }
    }
    ~Folder() {
        std::error_code ignored;
        fs::remove_all(path, ignored);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    fs::path path;
};

}  // namespace

const fs::path& fontFolder() {
    static const Folder folder;
    return folder.path;
}

const char* fontFileName(FontKind kind) {
    constexpr const char* kNames[] = {"latin.ttf",    "latin-bold.ttf", "arabic.ttf",
                                      "indic.ttf",    "ideographs.ttf", "color.ttf",
                                      "pictures.ttf", "growing.ttf"};
    return kNames[kind];
}

}  // namespace gxfuzz
