// What is read of a font file against what fontconfig reads, by FreeType, of the same one.
#include "scene/FaceFile.h"

#include <fontconfig/fontconfig.h>
#include <gtest/gtest.h>
#include <unicode/uchar.h>

#include <fstream>
#include <iterator>
#include <string>

#include "support/Fonts.h"
#include "support/TempFolder.h"

// fontconfig loses a little memory while it reads its configuration. The name is the sanitizer's.
// NOLINTNEXTLINE(bugprone-reserved-identifier)
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions() {
    return "leak:libfontconfig";
}

namespace gxtext {
namespace {

std::string stringOf(const FcPattern* pattern, const char* object) {
    FcChar8* value = nullptr;
    FcPatternGetString(pattern, object, 0, &value);
    return value ? reinterpret_cast<const char*>(value) : "";
}

int integerOf(const FcPattern* pattern, const char* object) {
    int value = 0;
    FcPatternGetInteger(pattern, object, 0, &value);
    return value;
}

bool isControl(char32_t c) {
    return c < 0x20;
}

TEST(FaceFile, AgreesWithFontconfigOnEveryInstalledFont) {
    const FcFontSet* fonts = FcConfigGetFonts(nullptr, FcSetSystem);
    ASSERT_NE(fonts, nullptr);
    int compared = 0;
    for (int i = 0; i < fonts->nfont; i++) {
        const FcPattern* pattern = fonts->fonts[i];
        const std::string format = stringOf(pattern, FC_FONTFORMAT);
        const int index = integerOf(pattern, FC_INDEX);
        FcBool variable = FcFalse;
        FcPatternGetBool(pattern, FC_VARIABLE, 0, &variable);
        // Instances of variable fonts have no tables of their own.
        if ((format != "TrueType" && format != "CFF") || index > 0xFFFF || variable) continue;
        const std::string file = stringOf(pattern, FC_FILE);
        SCOPED_TRACE(file + "#" + std::to_string(index));
        const FaceInfoPtr info = readFace(file, static_cast<size_t>(index));
        ASSERT_NE(info, nullptr);
        EXPECT_EQ(info->face.family, stringOf(pattern, FC_FAMILY));
        EXPECT_EQ(info->face.weight, FcWeightToOpenType(integerOf(pattern, FC_WEIGHT)));
        EXPECT_EQ(info->face.italic, integerOf(pattern, FC_SLANT) != FC_SLANT_ROMAN);
        FcBool color = FcFalse;
        FcPatternGetBool(pattern, FC_COLOR, 0, &color);
        EXPECT_EQ(info->color, color == FcTrue);
        FcCharSet* coverage = nullptr;
        FcPatternGetCharSet(pattern, FC_CHARSET, 0, &coverage);
        CodePointSet set;
        info->addCoverage(set);
        for (char32_t c = 0; c < kCodePoints; c++) {
            if (isControl(c)) continue;
            const bool theirs = FcCharSetHasChar(coverage, c) == FcTrue;
            if (set[c] != theirs) ADD_FAILURE() << "U+" << std::hex << uint32_t(c);
        }
        compared++;
    }
    EXPECT_GT(compared, 20);
}

TEST(FaceFile, AnythingElseIsNoFace) {
    const gxtest::TempFolder folder;
    const std::vector<char>& whole = gxtest::fontBytes(gxtest::kDejaVuSans);
    const auto write = [&](const char* name, std::string bytes) {
        std::ofstream(folder.path(name), std::ios::binary) << bytes;
        return folder.path(name);
    };
    // Cut within the header, the directory and the tables; a collection that points past its end.
    for (const size_t length : {0u, 3u, 12u, 100u, 2000u}) {
        const std::string file = write("cut.ttf", std::string(whole.data(), length));
        const FaceInfoPtr info = readFace(file, 0);
        EXPECT_TRUE(!info || !info->covers('A')) << length;
    }
    const std::string collection =
        write("wild.ttc", std::string("ttcf\0\1\0\0\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xF0", 16));
    EXPECT_EQ(readFace(collection, 0), nullptr);
    EXPECT_EQ(readFace(collection, 70000), nullptr);
    EXPECT_EQ(countFaces(folder.path("none.ttf")), 0u);
    EXPECT_EQ(countFaces(folder.path("")), 0u);
    EXPECT_EQ(countFaces(gxtest::fontPath(gxtest::kNotoCjk)), 10u);
}

}  // namespace
}  // namespace gxtext
