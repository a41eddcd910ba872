#include "minikin/FontCollection.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include "minikin/LocaleList.h"
#include "support/Fonts.h"

namespace {

using gxtest::loadFont;
using gxtest::makeFamily;
using minikin::FamilyVariant;
using minikin::FontCollection;
using minikin::FontFamily;
using minikin::FontStyle;

using Families = std::vector<std::shared_ptr<FontFamily>>;

// Runs as "family start-end", the family by its place in the list.
std::string runs(const Families& families, const std::u16string& text, const char* locales = "",
                 FamilyVariant variant = FamilyVariant::DEFAULT) {
    const FontCollection collection(families);
    const auto items = collection.itemize(
        minikin::U16StringPiece(reinterpret_cast<const uint16_t*>(text.data()), text.size()),
        FontStyle(), minikin::registerLocaleList(locales), variant);
    std::ostringstream result;
    for (const FontCollection::Run& run : items) {
        const auto owner = std::find_if(
            families.begin(), families.end(), [&run](const std::shared_ptr<FontFamily>& family) {
                return family && family->getFont(0) == run.fakedFont.font;
            });
        if (&run != &items.front()) result << " ";
        result << owner - families.begin() << ":" << run.start << "-" << run.end;
    }
    return result.str();
}

class FontCollectionTest : public testing::Test {
protected:
    const std::shared_ptr<FontFamily> latin = makeFamily(loadFont(gxtest::kNotoSans));
    const std::shared_ptr<FontFamily> arabic =
        makeFamily(loadFont(gxtest::kNotoArabic), minikin::registerLocaleList("und-Arab"));
    const std::shared_ptr<FontFamily> hebrew =
        makeFamily(loadFont(gxtest::kNotoHebrew), minikin::registerLocaleList("und-Hebr"));
    const std::shared_ptr<FontFamily> thai =
        makeFamily(loadFont(gxtest::kNotoThai), minikin::registerLocaleList("und-Thai"));
    const std::shared_ptr<FontFamily> dejavu = makeFamily(loadFont(gxtest::kDejaVuSans));
    const std::shared_ptr<FontFamily> emoji =
        makeFamily(loadFont(gxtest::kNotoColorEmoji), minikin::registerLocaleList("und-Zsye"));

    // One face of the CJK collection for a locale list.
    static std::shared_ptr<FontFamily> cjk(int face, const char* locales) {
        return makeFamily(loadFont(gxtest::kNotoCjk, face), minikin::registerLocaleList(locales));
    }
};

TEST_F(FontCollectionTest, EachScriptInTheFamilyThatHasIt) {
    const Families families = {latin, arabic, hebrew, thai};
    EXPECT_EQ(runs(families, u"abc"), "0:0-3");
    EXPECT_EQ(runs(families, u"ab\u0628\u0629\u05D0\u0E01x"), "0:0-2 1:2-4 2:4-5 3:5-6 0:6-7");
    // The space belongs to the first family, wherever it stands.
    EXPECT_EQ(runs(families, u"\u0628 \u0628"), "1:0-1 0:1-2 1:2-3");
    EXPECT_EQ(runs(families, u""), "");
}

TEST_F(FontCollectionTest, UncoveredCodePointsShowTheFirstFamilysMissingGlyph) {
    const Families families = {arabic, thai};
    EXPECT_EQ(runs(families, u"\u4E00"), "0:0-1");
    EXPECT_EQ(runs(families, u"\U0010FFFF"), "0:0-2");
    // Lone surrogates read as U+FFFD, which the Latin family has.
    EXPECT_EQ(runs({arabic, latin}, std::u16string{0xD800, 0x628, 0xDC00}), "1:0-1 0:1-2 1:2-3");
    EXPECT_EQ(runs({latin}, std::u16string(3, u'\0')), "0:0-3");
}

TEST_F(FontCollectionTest, PunctuationAndMarksStayInTheirFont) {
    // DejaVu has Hebrew and Latin punctuation; Noto Sans is first.
    const Families families = {latin, dejavu};
    EXPECT_EQ(runs(families, u"\u05D0!"), "1:0-2");
    EXPECT_EQ(runs(families, u"\u05D0(\u05D1"), "1:0-1 0:1-2 1:2-3");
    EXPECT_EQ(runs(families, u"!\u05D0"), "0:0-1 1:1-2");
    EXPECT_EQ(runs(families, u"\u05D0\u0301"), "1:0-2");
    // Not in the Hebrew font: the full stop leaves it.
    EXPECT_EQ(runs({latin, thai}, u"\u0E01?"), thai->hasGlyph('?', 0) ? "1:0-2" : "1:0-1 0:1-2");
}

TEST_F(FontCollectionTest, AMarkPullsItsBaseIntoAFontThatHasBoth) {
    // U+06E1 is an Arabic mark: Noto Sans lacks it, the dotted circle is in both.
    ASSERT_TRUE(latin->hasGlyph(0x25CC, 0));
    ASSERT_TRUE(arabic->hasGlyph(0x25CC, 0));
    ASSERT_FALSE(latin->hasGlyph(0x06E1, 0));
    EXPECT_EQ(runs({latin, arabic}, u"a\u25CC\u06E1"), "0:0-1 1:1-3");
    EXPECT_EQ(runs({latin, arabic}, u"\u25CC\u06E1"), "1:0-2");
    // The base is not in the other font: it stays.
    EXPECT_EQ(runs({latin, arabic}, u"\u00E6\u06E1"), "0:0-1 1:1-2");
}

TEST_F(FontCollectionTest, AnEmojiModifierPullsItsBase) {
    const auto hand = u"\u270C\U0001F3FB";
    ASSERT_TRUE(dejavu->hasGlyph(0x270C, 0));
    ASSERT_FALSE(dejavu->hasGlyph(0x1F3FB, 0));
    EXPECT_EQ(runs({dejavu, emoji}, hand), "1:0-3");
    EXPECT_EQ(runs({dejavu, emoji}, u"A\U0001F3FB"), "0:0-1 1:1-3");
}

TEST_F(FontCollectionTest, InvisibleCharactersNeverChooseAFont) {
    const Families families = {latin, arabic};
    EXPECT_EQ(runs(families, u"\u0628\u200D\u200F\u00AD\u0628"), "1:0-5");
    EXPECT_EQ(runs(families, u"\u200F\u0628"), "1:0-2");
    EXPECT_EQ(runs(families, u"\u200F\uFE0F"), "0:0-2");
    EXPECT_EQ(runs(families, u"\u200Ea\u200E"), "0:0-3");
}

TEST_F(FontCollectionTest, FirstFamilyAndCustomFallbacksComeBeforeLocales) {
    const auto japanese = cjk(0, "ja");
    const auto korean = cjk(1, "ko");
    EXPECT_EQ(runs({japanese, korean}, u"\u4E00", "ko"), "0:0-1");
    EXPECT_EQ(runs({latin, japanese, korean}, u"\u4E00", "ko"), "2:0-1");
    EXPECT_EQ(runs({latin, japanese, korean}, u"\u4E00", "ja,ko"), "1:0-1");
    EXPECT_EQ(runs({latin, japanese, korean}, u"\u4E00"), "1:0-1");
    const auto custom =
        makeFamily(loadFont(gxtest::kNotoCjk), 0, FamilyVariant::DEFAULT, /*customFallback=*/true);
    EXPECT_EQ(runs({latin, korean, custom}, u"\u4E00", "ko"), "2:0-1");
}

TEST_F(FontCollectionTest, LocalesChooseBetweenHanFamilies) {
    const Families families = {latin, cjk(2, "zh-Hans"), cjk(3, "zh-Hant,zh-Bopo"), cjk(0, "ja"),
                               cjk(1, "ko")};
    EXPECT_EQ(runs(families, u"\u4E00", "zh-TW"), "2:0-1");
    EXPECT_EQ(runs(families, u"\u4E00", "zh-CN"), "1:0-1");
    EXPECT_EQ(runs(families, u"\u4E00", "ja-JP"), "3:0-1");
    EXPECT_EQ(runs(families, u"\u4E00", "en,ko"), "4:0-1");
    EXPECT_EQ(runs(families, u"\u4E00", "fr"), "1:0-1");
}

TEST_F(FontCollectionTest, VariantsBreakTies) {
    const auto thaiFont = loadFont(gxtest::kNotoThai);
    const uint32_t list = minikin::registerLocaleList("und-Thai");
    const Families families = {latin, makeFamily(thaiFont, list, FamilyVariant::ELEGANT),
                               makeFamily(thaiFont, list, FamilyVariant::COMPACT)};
    EXPECT_EQ(runs(families, u"\u0E01"), "2:0-1");
    EXPECT_EQ(runs(families, u"\u0E01", "th", FamilyVariant::COMPACT), "2:0-1");
    EXPECT_EQ(runs(families, u"\u0E01", "th", FamilyVariant::ELEGANT), "1:0-1");
}

TEST_F(FontCollectionTest, SelectorsAskForEmojiOrText) {
    const Families families = {latin, dejavu, emoji};
    ASSERT_FALSE(latin->hasGlyph(0x2764, 0));
    ASSERT_TRUE(dejavu->hasGlyph(0x2764, 0));
    EXPECT_EQ(runs(families, u"\u2764"), "1:0-1");
    EXPECT_EQ(runs(families, u"\u2764\uFE0F"), "2:0-2");
    EXPECT_EQ(runs(families, u"\u2764\uFE0E"), "1:0-2");
    EXPECT_EQ(runs({latin, emoji, dejavu}, u"\u2764\uFE0E"), "2:0-2");
    EXPECT_EQ(runs(families, u"\u2764", "en-u-em-emoji"), "2:0-1");
    EXPECT_EQ(runs({latin, emoji, dejavu}, u"\u2764", "en-u-em-text"), "2:0-1");
    // A sequence in the font's own table beats the first family's plain glyph.
    EXPECT_EQ(runs(families, u"#\uFE0F"), "2:0-2");
    EXPECT_EQ(runs({dejavu, cjk(0, "ja")}, u"\u3402\U000E0100"), "1:0-3");
}

TEST_F(FontCollectionTest, DecomposedWhenNoFamilyHasTheWhole) {
    // U+2260 is "=" with a stroke through it.
    const auto devanagari = makeFamily(loadFont(gxtest::kNotoDevanagari));
    ASSERT_FALSE(hebrew->hasGlyph('=', 0));
    ASSERT_TRUE(devanagari->hasGlyph('=', 0));
    ASSERT_FALSE(devanagari->hasGlyph(0x2260, 0));
    EXPECT_EQ(runs({hebrew, devanagari}, u"\u2260"), "1:0-1");
}

TEST_F(FontCollectionTest, NullAndEmptyFamiliesAreLeftOut) {
    const auto none = std::make_shared<FontFamily>(std::vector<minikin::Font>());
    EXPECT_EQ(runs({}, u"abc"), "");
    EXPECT_EQ(runs({nullptr, none}, u"abc"), "");
    EXPECT_EQ(runs({nullptr, none, latin}, u"abc"), "2:0-3");
    const FontCollection many(Families(400, latin));
    EXPECT_EQ(many.getFamilies().size(), 254u);
    EXPECT_NE(FontCollection({}).getId(), FontCollection({}).getId());
}

}  // namespace
