#include "minikin/Layout.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <new>
#include <string>
#include <tuple>
#include <vector>

#include "FreeTypeReference.h"
#include "TextLayout.h"
#include "minikin/LocaleList.h"
#include "support/AllocationFailure.h"
#include "support/Fonts.h"

namespace {

using android::MinikinUtils;
using android::Paint;
using android::Typeface;
using gxtest::glyphsOf;
using gxtest::lengthsOf;
using gxtest::loadFont;
using gxtest::makeFamily;
using gxtest::typefaceOf;
using gxtest::unitsOf;
using minikin::Bidi;
using minikin::Layout;

constexpr uint32_t kAntiAlias = 0x001;
constexpr uint32_t kLinear = 0x040;
constexpr uint32_t kSubpixel = 0x080;

// One step of the 24.8 fixed point that HarfBuzz counts in.
constexpr float kStep = 1.0f / 256;

class LayoutTest : public testing::Test {
protected:
    LayoutTest() {
        paint.setJavaFlags(kAntiAlias | kSubpixel);
        paint.getSkFont().setSize(40);
    }

    void setFont(const char* name) { typeface = typefaceOf({makeFamily(loadFont(name))}); }
    Layout layOut(const std::u16string& text, Bidi bidi = Bidi::DEFAULT_LTR, size_t start = 0,
                  size_t count = std::u16string::npos) const {
        return gxtest::layOut(text, *typeface, paint, bidi, start, count);
    }
    std::vector<uint32_t> glyphs(const std::u16string& text) const {
        return glyphsOf(layOut(text));
    }

    Paint paint;
    std::unique_ptr<Typeface> typeface;
};

TEST_F(LayoutTest, LettersJoinAcrossTheRangeButNotAcrossSpaces) {
    setFont(gxtest::kNotoArabic);
    const std::u16string word = u"\u0628\u0628\u0628";
    // The middle letter alone keeps its medial form because its neighbours are in the context.
    const auto medial = glyphsOf(layOut(word, Bidi::DEFAULT_LTR, 1, 1));
    EXPECT_EQ(medial.at(0), glyphs(word).at(1));
    const auto isolated = glyphs(u"\u0628");
    EXPECT_NE(medial, isolated);
    // Without the neighbours in the context it stands alone.
    const Layout alone = MinikinUtils::doLayout(&paint, Bidi::DEFAULT_LTR, typeface.get(),
                                                unitsOf(word), 3, 1, 1, 1, 1, nullptr);
    EXPECT_EQ(glyphsOf(alone), isolated);
    // A space ends the joining, a joiner does not.
    const auto spaced = glyphs(u"\u0628 \u0628");
    ASSERT_EQ(spaced.size(), 3u);
    EXPECT_EQ(spaced.front(), isolated.front());
    EXPECT_EQ(spaced.back(), isolated.back());
    EXPECT_NE(glyphs(u"\u0628\u200D"), isolated);
}

TEST_F(LayoutTest, MixedDirectionsComeInVisualOrder) {
    setFont(gxtest::kDejaVuSans);
    // The letters of the glyphs from left to right.
    const auto shown = [this](const std::u16string& text, Bidi bidi, size_t start = 0,
                              size_t count = std::u16string::npos) {
        const std::u16string letters = u"ab \u05D0\u05D112";
        const auto known = glyphsOf(layOut(letters, Bidi::FORCE_LTR));
        std::u16string result;
        for (const uint32_t id : glyphsOf(layOut(text, bidi, start, count))) {
            const auto found = std::find(known.begin(), known.end(), id);
            result += letters.at(static_cast<size_t>(found - known.begin()));
        }
        return result;
    };
    const std::u16string mixed = u"ab \u05D0\u05D1 1";
    EXPECT_EQ(shown(mixed, Bidi::LTR), u"ab 1 \u05D1\u05D0");
    EXPECT_EQ(shown(mixed, Bidi::RTL), u"1 \u05D1\u05D0 ab");
    EXPECT_EQ(shown(mixed, Bidi::FORCE_LTR), u"ab \u05D0\u05D1 1");
    EXPECT_EQ(shown(mixed, Bidi::FORCE_RTL), u"1 \u05D1\u05D0 ba");
    // The default direction only counts without a strong character.
    EXPECT_EQ(shown(mixed, Bidi::DEFAULT_LTR), shown(mixed, Bidi::LTR));
    EXPECT_EQ(shown(mixed, Bidi::DEFAULT_RTL), shown(mixed, Bidi::LTR));
    EXPECT_EQ(shown(u"\u05D0b", Bidi::DEFAULT_LTR), u"b\u05D0");
    EXPECT_EQ(shown(u"1 2", Bidi::DEFAULT_RTL), u"2 1");
    // The context decides for a part, and the part alone would not.
    EXPECT_EQ(shown(u"\u05D0 1 2", Bidi::DEFAULT_LTR, 2, 3), u"2 1");
    EXPECT_EQ(shown(u"\u05D0 a b", Bidi::DEFAULT_LTR, 0, 3), u"a \u05D0");
}

TEST_F(LayoutTest, IdeographsStandAloneAndLanguagesShapeThem) {
    setFont(gxtest::kNotoCjk);
    const Layout layout = layOut(u"\u4E00\u76F4\u9AA8");
    ASSERT_EQ(layout.nGlyphs(), 3u);
    for (int i = 0; i < 3; i++) {
        EXPECT_NEAR(layout.getX(i), 40.0f * static_cast<float>(i), 3 * kStep);
    }
    const auto boneIn = [this](const char* locale) {
        paint.setMinikinLocaleListId(minikin::registerLocaleList(locale));
        return glyphs(u"\u9AA8");
    };
    EXPECT_NE(boneIn("ja"), boneIn("zh-Hans"));
    // A sequence is one glyph, which the font's own table names.
    const Layout variant = layOut(u"\u5026\U000E0100");
    gxtest::FreeTypeReference reference(gxtest::fontBytes(gxtest::kNotoCjk));
    EXPECT_EQ(glyphsOf(variant),
              std::vector{FT_Face_GetCharVariantIndex(reference.face(), 0x5026, 0xE0100)});
    EXPECT_NE(glyphsOf(variant), glyphs(u"\u5026"));
    EXPECT_EQ(variant.getAdvances().size(), 3u);
}

TEST_F(LayoutTest, SizeIsCutToWholePixelsUnlessLinear) {
    setFont(gxtest::kNotoSans);
    const auto width = [this](float size) {
        paint.getSkFont().setSize(size);
        return layOut(u"width").getAdvance();
    };
    const float at42 = width(42);
    EXPECT_FLOAT_EQ(width(42.7f), at42);
    paint.setJavaFlags(kAntiAlias | kLinear);
    EXPECT_NEAR(width(42.7f), at42 * 42.7f / 42, 0.2f);
}

TEST_F(LayoutTest, SkewMovesRaisedMarks) {
    setFont(gxtest::kNotoThai);
    const std::u16string text = u"\u0E01\u0E35\u0E49";  // two marks stacked on a letter
    const Layout plain = layOut(text);
    paint.getSkFont().setSkewX(-0.5f);
    const Layout skewed = layOut(text);
    ASSERT_EQ(skewed.nGlyphs(), plain.nGlyphs());
    for (int i = 0; i < static_cast<int>(plain.nGlyphs()); i++) {
        EXPECT_NEAR(skewed.getX(i), plain.getX(i) - 0.5f * plain.getY(i), kStep);
    }
}

TEST_F(LayoutTest, FeaturesAndWideLetterSpacingTakeLigaturesApart) {
    setFont(gxtest::kDejaVuSans);
    const auto glyphsWith = [this](const char* features, float letterSpacing) {
        paint.setFontFeatureSettings(features);
        paint.setLetterSpacing(letterSpacing);
        return layOut(u"office").nGlyphs();
    };
    const size_t ligature = glyphsWith("", 0);
    ASSERT_LT(ligature, 6u);
    EXPECT_EQ(glyphsWith("", 0.03f), ligature);
    EXPECT_EQ(glyphsWith("", 0.031f), 6u);
    EXPECT_EQ(glyphsWith("", -0.031f), 6u);
    // The paint's own settings come later and win.
    EXPECT_EQ(glyphsWith("liga", 0.031f), ligature);
    for (const char* off : {"-liga", "'liga' off", "\"liga\" 0", "liga=0", "kern, liga 0",
                            ",,liga off,", "%%%,-liga"}) {
        EXPECT_EQ(glyphsWith(off, 0), 6u) << off;
    }
    for (const char* ignored : {",", "liga[0:3]=0", "li ga", "nonsense is ignored", "\xFF\xFE"}) {
        EXPECT_EQ(glyphsWith(ignored, 0), ligature) << ignored;
    }
}

TEST_F(LayoutTest, SpacesAreWidenedAndEndKerning) {
    setFont(gxtest::kNotoSans);
    const auto width = [this](const std::u16string& text) { return layOut(text).getAdvance(); };
    EXPECT_LT(width(u"AV"), width(u"A") + width(u"V"));
    EXPECT_FLOAT_EQ(width(u"AV AV"), 2 * width(u"AV") + width(u" "));
    const Layout plain = layOut(u"a b\u2003c");
    paint.setWordSpacing(7);
    const Layout spaced = layOut(u"a b\u2003c");
    EXPECT_FLOAT_EQ(spaced.getAdvance(), plain.getAdvance() + 7);
    EXPECT_FLOAT_EQ(spaced.getCharAdvance(1), plain.getCharAdvance(1) + 7);
    EXPECT_FLOAT_EQ(spaced.getX(2), plain.getX(2) + 7);
}

TEST_F(LayoutTest, BlanksAreOutsideTheBounds) {
    setFont(gxtest::kNotoSans);
    const minikin::MinikinRect ink = layOut(u"Hg").getBounds();
    EXPECT_EQ(layOut(u"Hg ").getBounds(), ink);
    const Layout indented = layOut(u" Hg");
    EXPECT_FLOAT_EQ(indented.getBounds().mLeft - ink.mLeft, indented.getX(1));
    // Without ink there is no height, and the place is that of the last blank.
    const float width = layOut(u" ").getAdvance();
    EXPECT_EQ(layOut(u"   ").getBounds(), minikin::MinikinRect(2 * width, 0, 2 * width, 0));
}

TEST_F(LayoutTest, RangesOutsideTheTextAreCutOff) {
    setFont(gxtest::kNotoSans);
    const std::u16string text = u"abcdef";
    constexpr size_t kHuge = std::numeric_limits<size_t>::max();
    const auto layOutRange = [&](const Paint* p, const uint16_t* data, size_t start, size_t count,
                                 size_t contextStart, size_t contextCount) {
        return MinikinUtils::doLayout(p, Bidi::LTR, typeface.get(), data, text.size(), start, count,
                                      contextStart, contextCount, nullptr);
    };
    const struct {
        size_t start, count, contextStart, contextCount;
        size_t glyphs;
    } cases[] = {
        {0, kHuge, 0, kHuge, 6}, {4, 10, 0, 6, 2},        {9, 2, 0, 6, 0}, {kHuge, kHuge, 0, 6, 0},
        {0, 6, 2, 2, 2},         {0, 3, 4, 2, 0},         {5, 1, 0, 3, 0}, {0, 6, kHuge, 5, 0},
        {1, 2, 3, kHuge, 0},     {kHuge - 2, 9, 0, 6, 0}, {1, 0, 0, 6, 0},
    };
    for (const auto& c : cases) {
        const Layout layout =
            layOutRange(&paint, unitsOf(text), c.start, c.count, c.contextStart, c.contextCount);
        EXPECT_EQ(layout.nGlyphs(), c.glyphs) << c.start << " " << c.count;
        EXPECT_EQ(layout.getAdvances().size(), c.glyphs);
        EXPECT_EQ(layout.getAdvance() > 0, c.glyphs > 0);
    }
    EXPECT_EQ(layOutRange(&paint, nullptr, 0, 6, 0, 6).nGlyphs(), 0u);
    EXPECT_EQ(layOutRange(nullptr, unitsOf(text), 0, 6, 0, 6).nGlyphs(), 0u);
}

TEST_F(LayoutTest, LoneSurrogatesAndNulsAreLaidOut) {
    setFont(gxtest::kNotoSans);
    const uint32_t replacement = glyphs(u"\uFFFD").at(0);
    const auto broken = glyphs(std::u16string{'a', 0xD83D, 'b', 0xDE00, 0xD83D});
    ASSERT_EQ(broken.size(), 5u);
    EXPECT_EQ(broken[1], replacement);
    EXPECT_EQ(broken[3], replacement);
    EXPECT_EQ(broken[4], replacement);
    EXPECT_EQ(layOut(std::u16string(4, u'\0')).getAdvances().size(), 4u);
    // A range that cuts a pair in two.
    EXPECT_EQ(glyphsOf(layOut(u"\U0001F600", Bidi::DEFAULT_LTR, 1, 1)),
              std::vector<uint32_t>{replacement});
}

// Quadratic work would take minutes, and the test runs out of its time.
TEST_F(LayoutTest, LongLinesAreLaidOut) {
    typeface = typefaceOf(
        {makeFamily(loadFont(gxtest::kNotoSans)), makeFamily(loadFont(gxtest::kNotoHebrew)),
         makeFamily(loadFont(gxtest::kNotoThai)), makeFamily(loadFont(gxtest::kNotoArabic)),
         makeFamily(loadFont(gxtest::kNotoCjk))});
    for (const std::u16string& pattern :
         {std::u16string(u"a"), std::u16string(u" "), std::u16string(u"a\u05D0"),
          std::u16string(u"a\u0E01"), std::u16string(u"\u0301"),
          std::u16string(u"ab \u05D0\u05D1 "), std::u16string(u"\u202E\u0E01"),
          std::u16string(u"\u4E2D"), std::u16string(1, 0xD800)}) {
        std::u16string text;
        while (text.size() < 100000) text += pattern;
        EXPECT_EQ(layOut(text).getAdvances().size(), text.size());
    }
    // Words stay joined at any length.
    const auto ids = glyphs(std::u16string(100000, u'\u0628'));
    const auto shortWord = glyphs(std::u16string(3, u'\u0628'));
    ASSERT_EQ(ids.size(), 100000u);
    EXPECT_EQ(ids.front(), shortWord.front());
    EXPECT_EQ(ids.back(), shortWord.back());
    EXPECT_EQ(std::count(ids.begin(), ids.end(), shortWord[1]), 99998);
}

TEST_F(LayoutTest, WhateverAllocationFailsTheSameFontsDrawAfterwards) {
    // What is laid out, and the mask that it draws.
    const auto draw = [this] {
        const Layout layout = layOut(u"ab\u00E9 \u05D0\u0301 \U0001F600");
        gxtest::MaskCanvas mask(200, 60);
        drawLayout(layout, paint, 4, 45, &mask);
        return std::tuple(glyphsOf(layout), lengthsOf(layout), mask.pixels);
    };
    const auto loadAll = [this] {
        typeface = typefaceOf({makeFamily(loadFont(gxtest::kNotoSans)),
                               makeFamily(loadFont(gxtest::kNotoHebrew)),
                               makeFamily(loadFont(gxtest::kNotoColorEmoji))});
        paint.setMinikinLocaleListId(minikin::registerLocaleList("he,en"));
    };
    loadAll();
    const auto expected = draw();
    ASSERT_GE(std::get<0>(expected).size(), 7u);
    // The platform's answer is bad_alloc or, in drawing, blank glyphs.
    const auto surviving = [](const auto& body) {
        return [&body] {
            try {
                body();
            } catch (const std::bad_alloc&) {
                return;
            }
        };
    };
    EXPECT_GT(gxtest::failEachAllocation(surviving(loadAll)), 50);
    EXPECT_EQ(draw(), expected);  // the last run had all it asked for

    // Fonts of their own for each failure, so that no cache knows a glyph or a word of theirs.
    loadAll();
    const int failures = gxtest::failEachAllocation(surviving(draw), [&](int n) {
        ASSERT_EQ(draw(), expected) << n;
        loadAll();
    });
    EXPECT_GT(failures, 100);
}

}  // namespace
