// What fonts are chosen by: properties of characters and languages against ICU's data, coverage
// against FreeType's reading of the fonts.
#include <gtest/gtest.h>
#include <unicode/uchar.h>
#include <unicode/uloc.h>
#include <unicode/unorm2.h>
#include <unicode/utf16.h>

#include <ft2build.h>
#include FT_FREETYPE_H

#include <set>
#include <string>
#include <utility>

#include "Figure.h"
#include "minikin/FontFamily.h"
#include "minikin/Locale.h"
#include "minikin/Unicode.h"
#include "platform/FreeTypeReference.h"
#include "support/Fonts.h"

namespace gxtest {
namespace {

constexpr UChar32 kLastCodePoint = 0x10FFFF;

// A locale as ICU completes it, cut after the script; empty where it does not know one.
std::string completedByIcu(const std::string& tag) {
    char full[ULOC_FULLNAME_CAPACITY], completed[ULOC_FULLNAME_CAPACITY];
    char script[ULOC_SCRIPT_CAPACITY];
    UErrorCode status = U_ZERO_ERROR;
    uloc_addLikelySubtags(tag.c_str(), full, sizeof(full), &status);
    uloc_toLanguageTag(full, completed, sizeof(completed), false, &status);
    uloc_getScript(full, script, sizeof(script), &status);
    if (U_FAILURE(status) || script[0] == 0) return "";
    const std::string result(completed);
    return result.substr(0, result.find(script) + 4);
}

TEST(UnicodeTest, LocalesAreCompletedAsByIcu) {
    Figure figure("languages and likely scripts against ICU, locales");
    const auto compare = [&figure](const std::string& language, const std::string& region) {
        const std::string expected = completedByIcu(language + region);
        if (expected.empty() || language == "und") return;
        const std::string completed = minikin::Locale(language + region).toString();
        EXPECT_TRUE(figure.add(completed == expected + region)) << language << region;
    };
    for (char a = 'a'; a <= 'z'; ++a) {
        for (char b = 'a'; b <= 'z'; ++b) {
            for (const char* region :
                 {"", "-TW", "-PK", "-CN", "-IN", "-ME", "-US", "-IR", "-RU"}) {
                compare({a, b}, region);
            }
            for (char c = 'a'; c <= 'z'; ++c) compare({a, b, c}, "");
        }
    }
    EXPECT_GT(figure.compared, 2000u);
}

TEST(UnicodeTest, CharactersAreIcus) {
    UErrorCode status = U_ZERO_ERROR;
    const UNormalizer2* normalizer = unorm2_getNFDInstance(&status);
    ASSERT_TRUE(U_SUCCESS(status));
    Figure bases("emoji modifier bases against ICU, code points");
    Figure firsts("first character of decompositions against ICU, code points");
    for (UChar32 c = 0; c <= kLastCodePoint; c++) {
        const auto codePoint = static_cast<uint32_t>(c);
        const bool isBase = u_hasBinaryProperty(c, UCHAR_EMOJI_MODIFIER_BASE);
        EXPECT_TRUE(bases.add(minikin::isEmojiModifierBase(codePoint) == isBase)) << std::hex << c;
        UChar units[8];
        status = U_ZERO_ERROR;
        const int32_t length = unorm2_getRawDecomposition(normalizer, c, units, 8, &status);
        UChar32 first = c;
        if (length > 0) U16_GET_UNSAFE(units, 0, first);
        EXPECT_TRUE(
            firsts.add(minikin::firstOfDecomposition(codePoint) == static_cast<uint32_t>(first)))
            << std::hex << c;
    }
}

std::set<FT_UInt32> listed(const FT_UInt32* list) {
    std::set<FT_UInt32> values;
    for (; list && *list; ++list) values.insert(*list);
    return values;
}

TEST(UnicodeTest, CoverageIsFreeTypes) {
    Figure figure("coverage of 11 fonts against FreeType, code points");
    Figure sequences("variation sequences of 11 fonts against FreeType");
    const std::pair<const char*, int> fonts[] = {
        {kNotoSans, 0}, {kNotoArabic, 0},     {kNotoDevanagari, 0}, {kNotoHebrew, 0},
        {kNotoThai, 0}, {kNotoColorEmoji, 0}, {kDejaVuSans, 0},     {kNotoCjk, 0},
        {kNotoCjk, 1},  {kNotoCjk, 2},        {kNotoCjk, 3},
    };
    for (const auto& [file, index] : fonts) {
        SCOPED_TRACE(std::string(file) + " " + std::to_string(index));
        const auto family = makeFamily(loadFont(file, index));
        FreeTypeReference reference(fontBytes(file), index);
        std::set<FT_ULong> covered;
        FT_UInt glyph = 0;
        for (FT_ULong c = FT_Get_First_Char(reference.face(), &glyph); glyph != 0;
             c = FT_Get_Next_Char(reference.face(), c, &glyph)) {
            covered.insert(c);
        }
        for (uint32_t c = 0; c <= static_cast<uint32_t>(kLastCodePoint); ++c) {
            EXPECT_TRUE(figure.add(family->hasGlyph(c, 0) == (covered.count(c) != 0)))
                << std::hex << c;
        }
        // FreeType's lists last until it is asked for the next one.
        for (const FT_UInt32 selector : listed(FT_Face_GetVariantSelectors(reference.face()))) {
            const auto characters = listed(FT_Face_GetCharsOfVariant(reference.face(), selector));
            for (const FT_ULong c : covered) {
                const bool expected = characters.count(static_cast<FT_UInt32>(c)) != 0;
                EXPECT_TRUE(
                    sequences.add(family->hasGlyph(static_cast<uint32_t>(c), selector) == expected))
                    << std::hex << c << " " << selector;
            }
        }
    }
}

}  // namespace
}  // namespace gxtest
