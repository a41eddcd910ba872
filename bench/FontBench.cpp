// Rows of loading a font family: as the font manager does it, against the least that needs doing,
// each once: the file mapped, its character map read by HarfBuzz, the face opened by FreeType,
// which for fonts of many outlines is most of it.
#include <fcntl.h>
#include <ft2build.h>
#include <hb.h>
#include <minikin/FontFamily.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#include FT_FREETYPE_H

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "Bench.h"
#include "base/GxString.h"
#include "font/FontManager.h"

namespace gxbench {

namespace {

// The family of one font, from the file to its coverage; a manager without fonts to begin with.
void loadFamily(const std::string& path) {
    GxFontEffect::FontManager fonts;
    fonts.Construct();
    fonts.AddMinikinFont(path.c_str(), nullptr, 0, 0, true);
    GxFontEffect::GxString name;
    name.Construct(path.c_str());
    std::vector<std::shared_ptr<minikin::FontFamily>> families;
    int weight = 400;
    fonts.GetMinikinFontFamilies(nullptr, families, &name, weight);
    if (families.empty() || !families.front()->hasGlyph(' ', 0)) std::abort();
}

void mapAndOpen(const std::string& path) {
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    struct stat status;
    if (file < 0 || fstat(file, &status) != 0) std::abort();
    const auto size = static_cast<size_t>(status.st_size);
    void* bytes = mmap(nullptr, size, PROT_READ, MAP_SHARED, file, 0);
    close(file);
    if (bytes == MAP_FAILED) std::abort();
    hb_blob_t* blob = hb_blob_create(static_cast<const char*>(bytes), static_cast<unsigned>(size),
                                     HB_MEMORY_MODE_READONLY, nullptr, nullptr);
    hb_face_t* face = hb_face_create(blob, 0);
    hb_set_t* characters = hb_set_create();
    hb_face_collect_unicodes(face, characters);
    if (!hb_set_has(characters, ' ')) std::abort();
    hb_set_destroy(characters);
    static FT_Library library = [] {
        FT_Library started = nullptr;
        return FT_Init_FreeType(&started) == 0 ? started : nullptr;
    }();
    FT_Face opened = nullptr;
    if (FT_New_Memory_Face(library, static_cast<const FT_Byte*>(bytes), status.st_size, 0,
                           &opened) != 0) {
        std::abort();
    }
    FT_Done_Face(opened);
    hb_face_destroy(face);
    hb_blob_destroy(blob);
    munmap(bytes, size);
}

void addFamilyRow(const std::string& name, const std::string& path) {
    addRow({"load a family, " + name, "", {0.77, 0}, 0, [=] {
                return Contenders{{}, [=] { loadFamily(path); }, [=] { mapAndOpen(path); }, {}};
            }});
}

}  // namespace

void addFontRows() {
    addFamilyRow("Latin", GXBENCH_FONT);
#ifdef GXBENCH_ARABIC_FONT
    addFamilyRow("Arabic", GXBENCH_ARABIC_FONT);
#endif
#ifdef GXBENCH_CJK_FONT
    addFamilyRow("CJK", GXBENCH_CJK_FONT);
#endif
}

}  // namespace gxbench
