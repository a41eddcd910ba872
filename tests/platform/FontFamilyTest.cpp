#include "minikin/FontFamily.h"

#include <gtest/gtest.h>

#include <cstring>

#include "SkTypeface.h"
#include "hwui/Typeface.h"
#include "minikin/LocaleList.h"
#include "support/Fonts.h"

namespace {

using gxtest::loadFont;
using gxtest::makeFamily;
using minikin::FamilyVariant;
using minikin::Font;
using minikin::FontFamily;
using minikin::FontStyle;
using Slant = minikin::FontStyle::Slant;

// A font that only has a style; enough for matching.
Font styled(uint16_t weight, Slant slant) {
    return Font::Builder(loadFont(gxtest::kNotoSans)).setStyle(FontStyle(weight, slant)).build();
}

TEST(FontTest, StyleComesFromTheFileUnlessSet) {
    const auto italic = loadFont(gxtest::kNotoSansItalic);
    const auto bold = loadFont(gxtest::kNotoSansBold);
    EXPECT_EQ(Font::Builder(italic).build().style(), FontStyle(400, Slant::ITALIC));
    EXPECT_EQ(Font::Builder(bold).build().style(), FontStyle(700, Slant::UPRIGHT));
    EXPECT_EQ(Font::Builder(italic).setWeight(250).build().style(), FontStyle(250, Slant::ITALIC));
    EXPECT_EQ(Font::Builder(bold).setSlant(Slant::ITALIC).build().style(),
              FontStyle(700, Slant::ITALIC));
    EXPECT_EQ(Font::Builder(bold).setStyle(FontStyle()).build().style(), FontStyle());
    EXPECT_EQ(Font::Builder(nullptr).build().style(), FontStyle());
}

TEST(FontTest, CopiesShareTheFace) {
    Font font = Font::Builder(loadFont(gxtest::kNotoSans)).build();
    Font copy = font;
    EXPECT_EQ(copy.typeface(), font.typeface());
    EXPECT_EQ(copy.baseFont().get(), font.baseFont().get());
    Font moved = std::move(font);
    copy = styled(900, Slant::ITALIC);
    EXPECT_EQ(copy.style().weight(), 900);
    copy = moved;
    EXPECT_EQ(copy.style(), moved.style());
}

TEST(FontFamilyTest, ClosestMatchAndFakery) {
    std::vector<Font> fonts;
    for (const uint16_t weight : {400, 700}) {
        for (const Slant slant : {Slant::UPRIGHT, Slant::ITALIC}) {
            if (weight == 700 && slant == Slant::ITALIC) continue;
            fonts.push_back(styled(weight, slant));
        }
    }
    const FontFamily family(std::move(fonts));  // 400, 400 italic, 700
    const struct {
        uint16_t weight;
        Slant slant;
        size_t font;
        bool fakeBold;
        bool fakeItalic;
    } cases[] = {
        {400, Slant::UPRIGHT, 0, false, false},
        {100, Slant::UPRIGHT, 0, false, false},
        {499, Slant::UPRIGHT, 0, false, false},  // hundreds count
        {700, Slant::UPRIGHT, 2, false, false},
        {600, Slant::UPRIGHT, 2, false, false},
        {900, Slant::UPRIGHT, 2, true, false},
        {899, Slant::UPRIGHT, 2, false, false},
        {400, Slant::ITALIC, 1, false, false},
        {600, Slant::ITALIC, 1, true, false},  // slant and weight weigh 2 against 3
        {700, Slant::ITALIC, 2, false, true},
        {550, Slant::UPRIGHT, 0, false, false},  // 1 against 2 hundreds
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.weight << (c.slant == Slant::ITALIC ? " italic" : ""));
        minikin::FakedFont match = family.getClosestMatch(FontStyle(c.weight, c.slant));
        EXPECT_EQ(match.font, family.getFont(c.font));
        EXPECT_EQ(match.fakery.isFakeBold(), c.fakeBold);
        EXPECT_EQ(match.fakery.isFakeItalic(), c.fakeItalic);
    }
}

TEST(FontFamilyTest, EarlierFontWinsATieAndUprightIsNeverFaked) {
    std::vector<Font> fonts;
    fonts.push_back(styled(300, Slant::ITALIC));
    fonts.push_back(styled(500, Slant::ITALIC));
    const FontFamily family(std::move(fonts));
    minikin::FakedFont match = family.getClosestMatch(FontStyle());
    EXPECT_EQ(match.font, family.getFont(0));
    EXPECT_FALSE(match.fakery.isFakeItalic());
}

TEST(FontFamilyTest, CoverageAndSequencesFollowTheCmap) {
    const auto latin = makeFamily(loadFont(gxtest::kNotoSans));
    EXPECT_TRUE(latin->hasGlyph('A', 0));
    EXPECT_TRUE(latin->hasGlyph(0x0416, 0));
    EXPECT_FALSE(latin->hasGlyph(0x0627, 0));
    EXPECT_FALSE(latin->hasGlyph('A', 0xFE0F));
    EXPECT_FALSE(latin->getCoverage().get(0x110000));
    EXPECT_FALSE(latin->getCoverage().get(0xFFFFFFFF));

    const auto cjk = makeFamily(loadFont(gxtest::kNotoCjk));
    EXPECT_TRUE(cjk->hasGlyph(0x4E00, 0));
    EXPECT_TRUE(cjk->hasGlyph(0x20BB7, 0));
    EXPECT_TRUE(cjk->hasGlyph(0x3402, 0xE0100));
    EXPECT_FALSE(cjk->hasGlyph(0x3402, 0xE01EF));
    EXPECT_FALSE(cjk->hasGlyph(0x3042, 0xE0100));
    EXPECT_GT(cjk->getCoverage().length(), 0x20000u);

    const auto emoji = makeFamily(loadFont(gxtest::kNotoColorEmoji));
    EXPECT_TRUE(emoji->hasGlyph('#', 0xFE0F));
    EXPECT_FALSE(emoji->hasGlyph('A', 0xFE0F));
}

TEST(FontFamilyTest, TheLocaleTellsColorEmoji) {
    const auto font = loadFont(gxtest::kNotoColorEmoji);
    EXPECT_TRUE(makeFamily(font, minikin::registerLocaleList("und-Zsye"))->isColorEmojiFamily());
    EXPECT_FALSE(makeFamily(font)->isColorEmojiFamily());
    EXPECT_EQ(makeFamily(font)->getFont(1), nullptr);
}

TEST(FontFamilyTest, NoFontsAndNullFontsCoverNothing) {
    const FontFamily none{std::vector<Font>()};
    EXPECT_EQ(none.getClosestMatch(FontStyle()).font, nullptr);
    EXPECT_FALSE(none.hasGlyph('A', 0));
    EXPECT_FALSE(none.hasGlyph('A', 0xFE0F));
    const auto null = makeFamily(nullptr);
    EXPECT_NE(null->getClosestMatch(FontStyle()).font, nullptr);
    EXPECT_FALSE(null->hasGlyph('A', 0));
    EXPECT_TRUE(null->getCoverage().empty());
}

// Claims other bytes than those its typeface was made from.
class MismatchedFont : public android::MinikinFontSkia {
public:
    MismatchedFont(const void* data, size_t size, int index)
        : MinikinFontSkia(skTypeface(), data, size, "", index, {}) {}

private:
    static sk_sp<SkTypeface> skTypeface() {
        const std::vector<char>& bytes = gxtest::fontBytes(gxtest::kNotoSans);
        return SkTypeface::MakeFromStream(
            std::make_unique<SkMemoryStream>(bytes.data(), bytes.size()));
    }
};

TEST(FontFamilyTest, DamagedFilesActAsFontsWithoutGlyphs) {
    const std::vector<char>& good = gxtest::fontBytes(gxtest::kNotoSans);
    for (const size_t size : {0u, 3u, 12u, 100u, 300u}) {
        const auto family = makeFamily(std::make_shared<MismatchedFont>(good.data(), size, 0));
        EXPECT_FALSE(family->hasGlyph('A', 0)) << size;
        EXPECT_EQ(family->getFont(0)->style(), FontStyle()) << size;
    }
    EXPECT_FALSE(makeFamily(std::make_shared<MismatchedFont>(nullptr, 1000, 0))->hasGlyph('A', 0));
    const std::vector<char>& collection = gxtest::fontBytes(gxtest::kNotoCjk);
    for (const int index : {-1, 1000}) {
        EXPECT_FALSE(makeFamily(std::make_shared<MismatchedFont>(collection.data(),
                                                                 collection.size(), index))
                         ->hasGlyph('A', 0));
    }
}

TEST(TypefaceTest, StylesAreResolvedAndClamped) {
    const auto bold = makeFamily(loadFont(gxtest::kNotoSansBold));
    const auto italic = makeFamily(loadFont(gxtest::kNotoSansItalic));
    const struct {
        std::shared_ptr<FontFamily> family;
        int weight;
        int italic;
        FontStyle style;
        android::Typeface::Style apiStyle;
    } cases[] = {
        {bold, 400, 0, FontStyle(400, Slant::UPRIGHT), android::Typeface::kNormal},
        {bold, -1, -1, FontStyle(700, Slant::UPRIGHT), android::Typeface::kBold},
        {italic, -1, -1, FontStyle(400, Slant::ITALIC), android::Typeface::kItalic},
        {italic, 600, -1, FontStyle(600, Slant::ITALIC), android::Typeface::kBoldItalic},
        {bold, -1, 1, FontStyle(700, Slant::ITALIC), android::Typeface::kBoldItalic},
        {bold, -7, 0, FontStyle(400, Slant::UPRIGHT), android::Typeface::kNormal},
        {bold, 0, 0, FontStyle(1, Slant::UPRIGHT), android::Typeface::kNormal},
        {bold, 5000, 0, FontStyle(1000, Slant::UPRIGHT), android::Typeface::kBold},
        {nullptr, -1, -1, FontStyle(400, Slant::UPRIGHT), android::Typeface::kNormal},
    };
    for (const auto& c : cases) {
        std::vector<std::shared_ptr<FontFamily>> families = {c.family};
        const std::unique_ptr<android::Typeface> face(
            android::Typeface::createFromFamilies(std::move(families), c.weight, c.italic));
        EXPECT_EQ(face->fStyle, c.style) << c.weight << " " << c.italic;
        EXPECT_EQ(face->fAPIStyle, c.apiStyle) << c.weight << " " << c.italic;
    }
}

TEST(TypefaceTest, TheCallersVectorKeepsItsFamilies) {
    std::vector<std::shared_ptr<FontFamily>> families = {makeFamily(loadFont(gxtest::kNotoSans))};
    const std::unique_ptr<android::Typeface> face(
        android::Typeface::createFromFamilies(std::move(families), 400, 0));
    ASSERT_EQ(families.size(), 1u);  // NOLINT(bugprone-use-after-move): part of the interface
    EXPECT_NE(families[0], nullptr);
    EXPECT_EQ(face->fFontCollection->getFamilies(), families);
}

TEST(TypefaceTest, DefaultStandsInForNull) {
    std::vector<std::shared_ptr<FontFamily>> none;
    const std::unique_ptr<android::Typeface> face(
        android::Typeface::createFromFamilies(std::move(none), 400, 0));
    EXPECT_DEATH(android::Typeface::resolveDefault(nullptr), "");
    android::Typeface::setDefault(face.get());
    EXPECT_EQ(android::Typeface::resolveDefault(nullptr), face.get());
    android::Typeface::setDefault(nullptr);
    EXPECT_EQ(android::Typeface::resolveDefault(face.get()), face.get());
}

}  // namespace
