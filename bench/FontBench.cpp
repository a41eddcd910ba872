// Rows of loading a font family: as the font manager does it, against the least that needs doing,
// each once: the file loaded, its character map read by HarfBuzz, the face opened by FreeType,
// which for fonts of many outlines is most of it.
#include <ft2build.h>
#include <hb.h>
#include <minikin/FontFamily.h>
#include FT_FREETYPE_H

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "Bench.h"
#include "base/GxString.h"
#include "font/FontBuffer.h"
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

void loadAndOpen(const std::string& path) {
    const auto bytes = GxFontEffect::FontBuffer::LoadFile(path.c_str());
    if (bytes->length() == 0) std::abort();
    hb_blob_t* blob =
        hb_blob_create(bytes->data(), bytes->length(), HB_MEMORY_MODE_READONLY, nullptr, nullptr);
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
    if (FT_New_Memory_Face(library, reinterpret_cast<const FT_Byte*>(bytes->data()),
                           bytes->length(), 0, &opened) != 0) {
        std::abort();
    }
    FT_Done_Face(opened);
    hb_face_destroy(face);
    hb_blob_destroy(blob);
}

void addFamilyRow(const std::string& name, const std::string& path) {
    addRow({"load a family, " + name, "", {0.77, 0}, 0, [=] {
                return Contenders{{}, [=] { loadFamily(path); }, [=] { loadAndOpen(path); }, {}};
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
