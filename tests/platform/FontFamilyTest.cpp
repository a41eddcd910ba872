#include "minikin/FontFamily.h"

#include <gtest/gtest.h>

#include "SkDrawing.h"
#include "hwui/Typeface.h"
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

TEST(FontFamilyTest, ClosestMatchAndFakery) {
    std::vector<Font> fonts;
    fonts.push_back(styled(400, Slant::UPRIGHT));
    fonts.push_back(styled(400, Slant::ITALIC));
    fonts.push_back(styled(700, Slant::UPRIGHT));
    fonts.push_back(styled(400, Slant::UPRIGHT));  // the earlier of equals wins
    const FontFamily family(std::move(fonts));
    const struct {
        FontStyle wanted;
        size_t font;
        bool fakeBold;
        bool fakeItalic;
    } cases[] = {
        {FontStyle(400, Slant::UPRIGHT), 0, false, false},
        {FontStyle(100, Slant::UPRIGHT), 0, false, false},
        {FontStyle(499, Slant::UPRIGHT), 0, false, false},  // hundreds count
        {FontStyle(550, Slant::UPRIGHT), 0, false, false},  // 1 against 2 of them
        {FontStyle(600, Slant::UPRIGHT), 2, false, false},
        {FontStyle(700, Slant::UPRIGHT), 2, false, false},
        {FontStyle(899, Slant::UPRIGHT), 2, false, false},
        {FontStyle(900, Slant::UPRIGHT), 2, true, false},
        {FontStyle(400, Slant::ITALIC), 1, false, false},
        {FontStyle(600, Slant::ITALIC), 1, true, false},  // slant and weight weigh 2 against 3
        {FontStyle(700, Slant::ITALIC), 2, false, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.wanted.weight() << " " << c.font);
        const minikin::FakedFont match = family.getClosestMatch(c.wanted);
        EXPECT_EQ(match.font, family.getFont(c.font));
        EXPECT_EQ(match.fakery, minikin::FontFakery(c.fakeBold, c.fakeItalic));
    }
    // An upright style is never faked.
    std::vector<Font> italics;
    italics.push_back(styled(300, Slant::ITALIC));
    EXPECT_FALSE(FontFamily(std::move(italics)).getClosestMatch(FontStyle()).fakery.isFakeItalic());
}

TEST(FontFamilyTest, NoFontsAndNullFontsCoverNothing) {
    const FontFamily none{std::vector<Font>()};
    EXPECT_EQ(none.getClosestMatch(FontStyle()).font, nullptr);
    EXPECT_EQ(none.getFont(1), nullptr);
    EXPECT_FALSE(none.hasGlyph('A', 0xFE0F));
    const auto null = makeFamily(nullptr);
    EXPECT_EQ(null->getFont(0)->style(), FontStyle());
    EXPECT_FALSE(null->hasGlyph('A', 0));
    EXPECT_FALSE(makeFamily(loadFont(gxtest::kNotoSans))->hasGlyph(0xFFFFFFFF, 0));
}

TEST(FontFamilyTest, DamagedFilesActAsFontsWithoutGlyphs) {
    const std::vector<char>& good = gxtest::fontBytes(gxtest::kNotoSans);
    const std::vector<char>& collection = gxtest::fontBytes(gxtest::kNotoCjk);
    const sk_sp<SkTypeface> typeface = gxtest::makeTypeface(good);
    const auto expectBlank = [&](const char* data, size_t size, int index) {
        // Other bytes than those that the typeface was made from.
        const auto family = makeFamily(std::make_shared<android::MinikinFontSkia>(
            typeface, data, size, "", index, std::vector<minikin::FontVariation>()));
        EXPECT_FALSE(family->hasGlyph('A', 0)) << size;
        EXPECT_EQ(family->getFont(0)->style(), FontStyle()) << size;
    };
    for (const size_t size : {0u, 3u, 12u, 100u, 300u}) expectBlank(good.data(), size, 0);
    expectBlank(nullptr, 1000, 0);
    for (const int index : {-1, 1000}) expectBlank(collection.data(), collection.size(), index);
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

TEST(TypefaceTest, KeepsTheCallersFamiliesAndStandsInForNull) {
    std::vector<std::shared_ptr<FontFamily>> families = {makeFamily(loadFont(gxtest::kNotoSans))};
    const std::unique_ptr<android::Typeface> face(
        android::Typeface::createFromFamilies(std::move(families), 400, 0));
    ASSERT_EQ(families.size(), 1u);  // NOLINT(bugprone-use-after-move): part of the interface
    EXPECT_EQ(face->fFontCollection->getFamilies(), families);
    EXPECT_DEATH(android::Typeface::resolveDefault(nullptr), "");
    android::Typeface::setDefault(face.get());
    EXPECT_EQ(android::Typeface::resolveDefault(nullptr), face.get());
    android::Typeface::setDefault(nullptr);
    EXPECT_EQ(android::Typeface::resolveDefault(face.get()), face.get());
}

}  // namespace
