#include "minikin/FontCollection.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include "TextLayout.h"
#include "minikin/LocaleList.h"
#include "support/Fonts.h"

namespace {

using gxtest::Families;
using gxtest::loadFont;
using gxtest::makeFamily;
using minikin::FamilyVariant;
using minikin::FontCollection;
using minikin::FontFamily;
using minikin::FontStyle;

struct Case {
    Families families;
    std::u16string text;
    std::string runs;  // "family:start-end", the family by its place in the list
    const char* locales = "";
    FamilyVariant variant = FamilyVariant::DEFAULT;
};

std::string runsOf(const Case& c) {
    const FontCollection collection(c.families);
    const auto items =
        collection.itemize(minikin::U16StringPiece(gxtest::unitsOf(c.text), c.text.size()),
                           FontStyle(), minikin::registerLocaleList(c.locales), c.variant);
    std::ostringstream result;
    for (const FontCollection::Run& run : items) {
        const auto owner =
            std::find_if(c.families.begin(), c.families.end(), [&run](const auto& family) {
                return family && family->getFont(0) == run.fakedFont.font;
            });
        if (&run != &items.front()) result << " ";
        result << owner - c.families.begin() << ":" << run.start << "-" << run.end;
    }
    return result.str();
}

void expectRuns(const std::vector<Case>& cases) {
    for (const Case& c : cases) {
        EXPECT_EQ(runsOf(c), c.runs) << testing::PrintToString(c.text) << " " << c.locales;
    }
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
    const std::shared_ptr<FontFamily> devanagari = makeFamily(loadFont(gxtest::kNotoDevanagari));
    const std::shared_ptr<FontFamily> emoji =
        makeFamily(loadFont(gxtest::kNotoColorEmoji), minikin::registerLocaleList("und-Zsye"));

    // One face of the CJK collection for a locale list.
    static std::shared_ptr<FontFamily> cjk(int face, const char* locales) {
        return makeFamily(loadFont(gxtest::kNotoCjk, face), minikin::registerLocaleList(locales));
    }
};

TEST_F(FontCollectionTest, EachScriptInTheFamilyThatHasIt) {
    const Families families = {latin, arabic, hebrew, thai};
    expectRuns({
        {families, u"abc", "0:0-3"},
        {families, u"ab\u0628\u0629\u05D0\u0E01x", "0:0-2 1:2-4 2:4-5 3:5-6 0:6-7"},
        // The space belongs to the first family, wherever it stands.
        {families, u"\u0628 \u0628", "1:0-1 0:1-2 1:2-3"},
        {families, u"", ""},
        // What no family has shows the first one's missing glyph.
        {{arabic, thai}, u"\u4E00", "0:0-1"},
        {{arabic, thai}, u"\U0010FFFF", "0:0-2"},
        // Lone surrogates read as U+FFFD, which the Latin family has.
        {{arabic, latin}, std::u16string{0xD800, 0x628, 0xDC00}, "1:0-1 0:1-2 1:2-3"},
        {{latin}, std::u16string(3, u'\0'), "0:0-3"},
        // U+2260 is "=" with a stroke through it; neither family has the whole.
        {{hebrew, devanagari}, u"\u2260", "1:0-1"},
    });
}

TEST_F(FontCollectionTest, NullAndEmptyFamiliesAreLeftOut) {
    const auto none = std::make_shared<FontFamily>(std::vector<minikin::Font>());
    expectRuns({
        {{}, u"abc", ""},
        {{nullptr, none}, u"abc", ""},
        {{nullptr, none, latin}, u"abc", "2:0-3"},
    });
    EXPECT_EQ(FontCollection(Families(400, latin)).getFamilies().size(), 254u);
    EXPECT_NE(FontCollection({}).getId(), FontCollection({}).getId());
}

TEST_F(FontCollectionTest, PunctuationMarksAndInvisibleCharactersStayInTheirFont) {
    // DejaVu has Hebrew and Latin punctuation; Noto Sans is first.
    expectRuns({
        {{latin, dejavu}, u"\u05D0!", "1:0-2"},
        {{latin, dejavu}, u"\u05D0(\u05D1", "1:0-1 0:1-2 1:2-3"},
        {{latin, dejavu}, u"!\u05D0", "0:0-1 1:1-2"},
        {{latin, dejavu}, u"\u05D0\u0301", "1:0-2"},
        // Not in the Thai font: the question mark leaves it.
        {{latin, thai}, u"\u0E01?", thai->hasGlyph('?', 0) ? "1:0-2" : "1:0-1 0:1-2"},
        {{latin, arabic}, u"\u0628\u200D\u200F\u00AD\u0628", "1:0-5"},
        {{latin, arabic}, u"\u200F\u0628", "1:0-2"},
        {{latin, arabic}, u"\u200F\uFE0F", "0:0-2"},
        {{latin, arabic}, u"\u200Ea\u200E", "0:0-3"},
    });
}

TEST_F(FontCollectionTest, MarksAndModifiersPullTheirBaseIntoAFontThatHasBoth) {
    expectRuns({
        // U+06E1 is an Arabic mark: Noto Sans lacks it, the dotted circle is in both.
        {{latin, arabic}, u"a\u25CC\u06E1", "0:0-1 1:1-3"},
        {{latin, arabic}, u"\u25CC\u06E1", "1:0-2"},
        // The base is not in the other font: it stays.
        {{latin, arabic}, u"\u00E6\u06E1", "0:0-1 1:1-2"},
        // A hand, which both have, and a skin tone; beside a letter that tone stands alone.
        {{dejavu, emoji}, u"\u270C\U0001F3FB", "1:0-3"},
        {{dejavu, emoji}, u"A\U0001F3FB", "0:0-1 1:1-3"},
    });
}

TEST_F(FontCollectionTest, LocalesAndVariantsChooseBetweenFamilies) {
    const auto japanese = cjk(0, "ja"), korean = cjk(1, "ko");
    const Families han = {latin, cjk(2, "zh-Hans"), cjk(3, "zh-Hant,zh-Bopo"), japanese, korean};
    const auto custom =
        makeFamily(loadFont(gxtest::kNotoCjk), 0, FamilyVariant::DEFAULT, /*customFallback=*/true);
    const auto thaiFont = loadFont(gxtest::kNotoThai);
    const uint32_t list = minikin::registerLocaleList("und-Thai");
    const Families variants = {latin, makeFamily(thaiFont, list, FamilyVariant::ELEGANT),
                               makeFamily(thaiFont, list, FamilyVariant::COMPACT)};
    expectRuns({
        // The first family and custom fallbacks come before locales.
        {{japanese, korean}, u"\u4E00", "0:0-1", "ko"},
        {{latin, korean, custom}, u"\u4E00", "2:0-1", "ko"},
        {{latin, japanese, korean}, u"\u4E00", "2:0-1", "ko"},
        {{latin, japanese, korean}, u"\u4E00", "1:0-1", "ja,ko"},
        {{latin, japanese, korean}, u"\u4E00", "1:0-1"},
        {han, u"\u4E00", "2:0-1", "zh-TW"},
        {han, u"\u4E00", "1:0-1", "zh-CN"},
        {han, u"\u4E00", "3:0-1", "ja-JP"},
        {han, u"\u4E00", "4:0-1", "en,ko"},
        {han, u"\u4E00", "1:0-1", "fr"},
        {variants, u"\u0E01", "2:0-1"},
        {variants, u"\u0E01", "2:0-1", "th", FamilyVariant::COMPACT},
        {variants, u"\u0E01", "1:0-1", "th", FamilyVariant::ELEGANT},
    });
}

TEST_F(FontCollectionTest, SelectorsAskForEmojiOrText) {
    const Families families = {latin, dejavu, emoji};
    expectRuns({
        {families, u"\u2764", "1:0-1"},
        {families, u"\u2764\uFE0F", "2:0-2"},
        {families, u"\u2764\uFE0E", "1:0-2"},
        {{latin, emoji, dejavu}, u"\u2764\uFE0E", "2:0-2"},
        {families, u"\u2764", "2:0-1", "en-u-em-emoji"},
        {{latin, emoji, dejavu}, u"\u2764", "2:0-1", "en-u-em-text"},
        // A sequence in the font's own table beats the first family's plain glyph.
        {families, u"#\uFE0F", "2:0-2"},
        {{dejavu, cjk(0, "ja")}, u"\u3402\U000E0100", "1:0-3"},
    });
}

}  // namespace
