// Which fonts a text is drawn with.
#include "scene/FontSource.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <functional>

#include "scene/Renderer.h"
#include "support/Fonts.h"
#include "support/TempFolder.h"

namespace gxtext {
namespace {

using gxtest::fontPath;
using testing::ElementsAre;
using testing::HasSubstr;

Style styleOf(const std::string& font, const std::string& locale = {}) {
    Style style;
    style.font = font;
    style.locale = locale;
    return style;
}

// Family of each font that draws some of the text, in order.
std::vector<std::string> drawnWith(const FontSource& source, const Style& style,
                                   const char8_t* text) {
    const std::string utf8(reinterpret_cast<const char*>(text));
    std::vector<std::string> families;
    for (const UsedFont& font : Renderer(source).arrange(style, utf8).fonts) {
        if (!font.characters.empty()) families.push_back(font.face.family);
    }
    return families;
}

std::string messageOf(const std::function<void()>& call) {
    try {
        call();
    } catch (const Error& error) {
        return error.what();
    }
    return "nothing thrown";
}

// The fonts' order decides; what is installed beside them is never consulted.
TEST(FontSource, AListIsAllThereIs) {
    const FontSource source = FontSource::files(
        {fontPath(gxtest::kNotoSans), fontPath(gxtest::kNotoHebrew), fontPath(gxtest::kNotoCjk)});
    EXPECT_THAT(
        source.families(),
        ElementsAre("Noto Sans", "Noto Sans CJK HK", "Noto Sans CJK JP", "Noto Sans CJK KR",
                    "Noto Sans CJK SC", "Noto Sans CJK TC", "Noto Sans Hebrew",
                    "Noto Sans Mono CJK HK", "Noto Sans Mono CJK JP", "Noto Sans Mono CJK KR",
                    "Noto Sans Mono CJK SC", "Noto Sans Mono CJK TC"));
    EXPECT_THAT(drawnWith(source, styleOf(""), u8"A א"),
                ElementsAre("Noto Sans", "Noto Sans Hebrew"));
    EXPECT_THAT(drawnWith(source, styleOf("noto sans hebrew"), u8"א"),
                ElementsAre("Noto Sans Hebrew"));
    // Arabic and Thai are installed, but not here.
    EXPECT_THAT(Renderer(source).arrange(styleOf(""), "A\u0628\u0E01").missing,
                ElementsAre(U'\u0628', U'\u0E01'));
    // Han characters as the language draws them.
    EXPECT_THAT(drawnWith(source, styleOf(""), u8"直"), ElementsAre("Noto Sans CJK SC"));
    EXPECT_THAT(drawnWith(source, styleOf("", "ja"), u8"直"), ElementsAre("Noto Sans CJK JP"));
    EXPECT_THAT(drawnWith(source, styleOf("", "zh-Hant"), u8"直"), ElementsAre("Noto Sans CJK TC"));
}

TEST(FontSource, AFolderIsReadInOrderOfPath) {
    const gxtest::TempFolder folder;
    std::filesystem::create_directory(folder.path("b"));
    const auto add = [&](const char* font, const char* name) {
        std::filesystem::copy_file(fontPath(font), folder.path(name));
    };
    add(gxtest::kNotoSansBold, "b/1.TTF");
    add(gxtest::kNotoSansItalic, "b/2.ttf");
    add(gxtest::kNotoSans, "b/3.ttf");
    add(gxtest::kDejaVuSans, "c.ttf");
    add(gxtest::kNotoHebrew, "not-a-font.txt");
    const FontSource source = FontSource::folder(folder.path(""));
    EXPECT_THAT(source.families(), ElementsAre("DejaVu Sans", "Noto Sans"));
    Style style = styleOf("");
    const auto firstFile = [&] {
        const Arrangement found = Renderer(source).arrange(style, "A");
        return std::filesystem::path(found.fonts.front().face.file).filename().string();
    };
    EXPECT_EQ(firstFile(), "3.ttf");  // neither bold nor slanted, and before the other family
    style.bold = true;
    EXPECT_EQ(firstFile(), "1.TTF");
    style.bold = false;
    style.italic = true;
    EXPECT_EQ(firstFile(), "2.ttf");
}

TEST(FontSource, MistakesNameThePlaceAndWhatIsThere) {
    const gxtest::TempFolder folder;
    EXPECT_THAT(messageOf([&] { FontSource::folder(folder.path("")); }),
                HasSubstr(": no font in it; allowed: .ttf"));
    EXPECT_THAT(messageOf([&] { FontSource::folder(folder.path("no")); }),
                HasSubstr(folder.path("no") + ": cannot read"));
    EXPECT_THAT(messageOf([&] { FontSource::files({folder.path("no.ttf")}); }),
                HasSubstr("no.ttf: not a TrueType or OpenType font"));
    EXPECT_THAT(messageOf([] { FontSource::files({}); }), HasSubstr("list of font files: empty"));
    const FontSource source = FontSource::files({fontPath(gxtest::kNotoSans)});
    EXPECT_THAT(messageOf([&] { Renderer(source).arrange(styleOf("DejaVu Sans"), "A"); }),
                HasSubstr("font \"DejaVu Sans\": no such family is in the list of font files; the "
                          "nearest is \"Noto Sans\""));
    Style collection = styleOf(fontPath(gxtest::kNotoCjk));
    collection.fontIndex = 10;
    EXPECT_THAT(messageOf([&] { Renderer(source).arrange(collection, "A"); }),
                HasSubstr(": no font 10 in it; allowed: 0-9"));
}

}  // namespace
}  // namespace gxtext
