#include "FontFolder.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

namespace gxfuzz {

namespace {

namespace fs = std::filesystem;

// Removes the folder when this process has ended, be it by a finding, a timeout or a kill, which
// run no destructor: a shell that waits for the end of its input.
void removeAtEnd(const fs::path& folder) {
    static FILE* const shell =
        popen("trap '' HUP INT TERM; read -r folder; read -r end; rm -rf \"$folder\"", "we");
    if (!shell || fprintf(shell, "%s\n", folder.c_str()) < 0 || fflush(shell) != 0) std::abort();
}

fs::path makeFolder() {
    std::string name = (fs::temp_directory_path() / "gxtext-fuzz-XXXXXX").string();
    if (!mkdtemp(name.data())) std::abort();
    const fs::path folder = name;
    removeAtEnd(folder);
    for (int kind = 0; kind < kFontKinds; ++kind) {
        const Bytes& bytes = fontFile(static_cast<FontKind>(kind));
        std::ofstream file(folder / fontFileName(static_cast<FontKind>(kind)), std::ios::binary);
        file.write(reinterpret_cast<const char*>(bytes.data()),
                   static_cast<std::streamsize>(bytes.size()));
    }
    return folder;
}

}  // namespace

const fs::path& fontFolder() {
    static const fs::path folder = makeFolder();
    return folder;
}

const char* fontFileName(FontKind kind) {
    constexpr const char* kNames[] = {"latin.ttf",    "latin-bold.ttf", "arabic.ttf",
                                      "indic.ttf",    "ideographs.ttf", "color.ttf",
                                      "pictures.ttf", "growing.ttf",    "graphs.ttf"};
    return kNames[kind];
}

}  // namespace gxfuzz
