#include "minikin/LayoutCache.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "TextLayout.h"
#include "minikin/LocaleList.h"
#include "skia/GlyphCache.h"
#include "support/Fonts.h"
#include "support/Random.h"

namespace {

using android::Paint;
using gxtest::layOut;
using gxtest::loadFont;
using gxtest::makeFamily;
using minikin::Bidi;
using minikin::Layout;
using minikin::LayoutCache;

std::unique_ptr<android::Typeface> makeTypeface() {
    return gxtest::typefaceOf({makeFamily(loadFont(gxtest::kNotoSans)),
                               makeFamily(loadFont(gxtest::kNotoArabic)),
                               makeFamily(loadFont(gxtest::kNotoCjk, 2))});
}

// Everything that a layout answers.
std::vector<float> answers(const Layout& layout) {
    std::vector<float> all = gxtest::lengthsOf(layout);
    for (int i = 0; i < static_cast<int>(layout.nGlyphs()); i++) {
        minikin::FontFakery fakery = layout.getFakery(i);
        all.insert(all.end(), {float(layout.getGlyphId(i)), float(layout.getFont(i)->GetUniqueId()),
                               float(fakery.isFakeBold() + 2 * fakery.isFakeItalic())});
    }
    return all;
}

Paint randomPaint(gxtest::Random& random) {
    Paint paint;
    paint.setJavaFlags(random.word() & 0xCE1);
    SkFont& font = paint.getSkFont();
    font.setSize(static_cast<float>(random.between(8, 11)) + (random.oneIn(2) ? 0.5f : 0.0f));
    font.setScaleX(random.oneIn(3) ? 1.25f : 1.0f);
    font.setSkewX(random.oneIn(3) ? -0.25f : 0.0f);
    paint.setLetterSpacing(random.oneIn(3) ? 0.1f : 0.0f);
    paint.setWordSpacing(random.oneIn(3) ? 2.0f : 0.0f);
    const char* const settings[] = {"", "", "-liga", "-kern", "liga"};
    paint.setFontFeatureSettings(settings[random.between(0, 4)]);
    const char* const locales[] = {"", "en", "ja", "ar"};
    paint.setMinikinLocaleListId(minikin::registerLocaleList(locales[random.between(0, 3)]));
    paint.setFamilyVariant(static_cast<minikin::FamilyVariant>(random.between(0, 2)));
    return paint;
}

// Few letters, so that words and paints come back again and again in other company.
TEST(LayoutCache, KeptPiecesChangeNothing) {
    gxtest::Random random(5);
    GX_TRACE_SEED(random);
    std::unique_ptr<android::Typeface> typefaces[] = {makeTypeface(), makeTypeface(), nullptr};
    typefaces[2] = gxtest::typefaceOf(typefaces[0]->fFontCollection->getFamilies(), 700, 1);
    const std::u16string letters = u"fi AV\u0644\u0627\u0645 \u4E2D\u6587\u0301-";
    constexpr int kCases = 150;
    std::vector<std::vector<float>> alone;
    for (const bool cached : {false, true}) {
        gxtest::Random cases(random.seed() + 1);
        LayoutCache::shared().clear();
        for (int i = 0; i < kCases; i++) {
            std::u16string text;
            for (int n = cases.between(1, 12); n > 0; n--) {
                text += letters[static_cast<size_t>(
                    cases.between(0, static_cast<int>(letters.size()) - 1))];
            }
            const Paint paint = randomPaint(cases);
            const auto bidi = static_cast<Bidi>(cases.between(0, 5));
            const auto start =
                static_cast<size_t>(cases.between(0, static_cast<int>(text.size()) - 1));
            const android::Typeface& typeface =
                *typefaces[static_cast<size_t>(cases.between(0, 2))];
            if (!cached) LayoutCache::shared().clear();
            std::vector<float> found = answers(layOut(text, typeface, paint, bidi, start));
            if (!cached) {
                alone.push_back(std::move(found));
            } else {
                ASSERT_EQ(found, alone[static_cast<size_t>(i)]) << "case " << i;
            }
        }
    }
    EXPECT_GT(LayoutCache::shared().bytes(), 0u);
}

TEST(LayoutCache, FontsThatAreGoneLeaveNothing) {
    LayoutCache::shared().clear();
    portable::GlyphCache::shared().clear();
    const auto kept = makeTypeface();
    Paint paint;
    layOut(u"kept words", *kept, paint);
    const size_t before = LayoutCache::shared().bytes();
    const size_t glyphsBefore = portable::GlyphCache::shared().bytes();
    {
        const auto gone = makeTypeface();
        layOut(u"other words \u0645\u0631\u062D", *gone, paint);
        EXPECT_GT(LayoutCache::shared().bytes(), before);
        EXPECT_GT(portable::GlyphCache::shared().bytes(), glyphsBefore);
    }
    EXPECT_EQ(LayoutCache::shared().bytes(), before);
    EXPECT_EQ(portable::GlyphCache::shared().bytes(), glyphsBefore);
}

std::u16string numbered(const char16_t* word, int i) {
    std::u16string text = word;
    for (const char digit : std::to_string(i)) text += static_cast<char16_t>(digit);
    return text;
}

TEST(LayoutCache, StaysInItsBound) {
    const auto typeface = makeTypeface();
    const Paint paint;
    size_t most = 0;
    for (int i = 0; i < 6000; i++) {
        layOut(numbered(u"title", i), *typeface, paint);
        most = std::max(most, LayoutCache::shared().bytes());
    }
    EXPECT_LE(most, LayoutCache::kMaxBytes);
    EXPECT_GT(most, LayoutCache::kMaxBytes / 2);  // the bound was reached
    // Words too long to keep are laid out all the same.
    const size_t before = LayoutCache::shared().bytes();
    const std::u16string endless(LayoutCache::kMaxWordLength + 1, u'm');
    EXPECT_EQ(layOut(endless, *typeface, paint).nGlyphs(), endless.size());
    EXPECT_EQ(LayoutCache::shared().bytes(), before);
}

TEST(LayoutCache, ThreadsShareWordsGlyphsAndLocales) {
    const auto typeface = makeTypeface();
    const std::u16string text = u"shared words";
    const auto draw = [&](const Paint& paint) {
        const Layout layout = layOut(text, *typeface, paint);
        gxtest::MaskCanvas mask(200, 40);
        drawLayout(layout, paint, 0, 30, &mask);
        return std::pair(answers(layout), mask.pixels);
    };
    const auto expected = draw(Paint());
    std::vector<std::vector<uint32_t>> locales(4);
    std::vector<std::thread> threads;
    for (size_t t = 0; t < locales.size(); t++) {
        threads.emplace_back([&, t] {
            for (int i = 0; i < 100; i++) {
                Paint paint;
                locales[t].push_back(minikin::registerLocaleList("fr-x-no" + std::to_string(i)));
                paint.setMinikinLocaleListId(locales[t].back());
                EXPECT_EQ(draw(paint), expected);
                layOut(numbered(u"own ", 100 * static_cast<int>(t) + i), *typeface, paint);
                if (i % 25 == static_cast<int>(t)) LayoutCache::shared().clear();
                if (i % 25 == 20) layOut(u"short-lived", *makeTypeface(), paint);
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_THAT(locales, testing::Each(locales[0]));
}

}  // namespace
