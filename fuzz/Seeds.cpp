// Writes first inputs for the font target: gxtext_fuzz_seeds FOLDER
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "FontFolder.h"
#include "support/SyntheticFont.h"

using namespace gxfuzz;

namespace {

// What FontFuzz reads behind the font, from the end: size, what else is given, flags, hinting,
// variant, text, index, direction, canvas.
Bytes settings(uint8_t size, uint8_t text, bool antialias, uint8_t given = 0) {
    return {0, 0, 0, text, 0, 2, 0, antialias, given, size, 0};
}

void write(const std::filesystem::path& file, Bytes font, const Bytes& tail) {
    font.insert(font.end(), tail.begin(), tail.end());
    std::ofstream stream(file, std::ios::binary);
    stream.write(reinterpret_cast<const char*>(font.data()),
                 static_cast<std::streamsize>(font.size()));
    if (!stream) throw std::runtime_error("cannot write " + file.string());
}

// A collection of one font.
Bytes collection(const Bytes& font) {
    Bytes out = {'t', 't', 'c', 'f', 0, 1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 16};
    Bytes moved = font;
    for (uint32_t i = 0; i < gxtest::readBig(font, 4, 2); ++i) {
        const size_t offset = 12 + 16 * size_t{i} + 8;
        gxtest::writeBig(moved, offset, 4, gxtest::readBig(font, offset, 4) + 16);
    }
    out.insert(out.end(), moved.begin(), moved.end());
    return out;
}

void writeSeeds(const std::filesystem::path& folder) {
    constexpr uint8_t kTexts[] = {0, 0, 1, 2, 3, 4, 4, 0, 4};  // which of kSampleTexts, by FontKind
    for (int kind = 0; kind < kFontKinds; ++kind) {
        const Bytes& font = fontFile(static_cast<FontKind>(kind));
        const std::string name = fontFileName(static_cast<FontKind>(kind));
        constexpr uint8_t kColors = 64;
        write(folder / name, font,
              settings(static_cast<uint8_t>(kind), kTexts[kind], kind % 2,
                       kind == kGraphs ? kColors : 0));
    }
    write(folder / "collection.ttc", collection(fontFile(kArabic)), settings(2, 1, true));
}

}  // namespace

int main(int argc, char** argv) try {
    if (argc != 2) {
        fprintf(stderr, "usage: gxtext_fuzz_seeds FOLDER\n");
        return 2;
    }
    writeSeeds(argv[1]);
    return 0;
} catch (const std::exception& error) {
    fprintf(stderr, "gxtext_fuzz_seeds: %s\n", error.what());
    return 1;
}
