#include "hwui/Paint.h"

#include <gtest/gtest.h>

#include <numeric>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "TextLayout.h"
#include "support/Fonts.h"

namespace {

using android::MinikinFontSkia;
using android::MinikinUtils;
using android::Paint;

// Callers must do with what the platform's headers have.
static_assert(!std::is_default_constructible_v<minikin::Layout>);
static_assert(
    std::is_same_v<decltype(std::declval<Paint&>().getFontFeatureSettings()), std::string>);
static_assert(std::is_same_v<decltype(std::declval<Paint&>().getAndroidTypeface()),
                             const android::Typeface*>);

TEST(PaintTest, EachJavaFlagDrivesItsSetting) {
    const struct {
        uint32_t flag;
        bool (*isSet)(const Paint&);
    } flags[] = {
        {0x001, [](const Paint& p) { return p.isAntiAlias(); }},
        {0x002, [](const Paint& p) { return p.getFilterQuality() == kLow_SkFilterQuality; }},
        {0x004, [](const Paint& p) { return p.isDither(); }},
        {0x008, [](const Paint& p) { return p.isUnderline(); }},
        {0x010, [](const Paint& p) { return p.isStrikeThru(); }},
        {0x020, [](const Paint& p) { return p.getSkFont().isEmbolden(); }},
        {0x040, [](const Paint& p) { return p.getSkFont().isLinearMetrics(); }},
        {0x080, [](const Paint& p) { return p.getSkFont().isSubpixel(); }},
        {0x100, [](const Paint& p) { return p.isDevKern(); }},
        {0x400, [](const Paint& p) { return p.getSkFont().isEmbeddedBitmaps(); }},
        {0x800, [](const Paint& p) { return p.getSkFont().isForceAutoHinting(); }},
    };
    Paint paint;
    EXPECT_EQ(paint.getJavaFlags(), 0u);
    paint.setJavaFlags(0xFFFFFFFF);
    EXPECT_NE(paint, Paint());
    EXPECT_EQ(paint.getJavaFlags(), 0xDFFu);  // the LCD flag has no setting
    for (const auto& set : flags) {
        paint.setJavaFlags(set.flag);  // clears all others
        EXPECT_EQ(paint.getJavaFlags(), set.flag);
        for (const auto& other : flags) {
            EXPECT_EQ(other.isSet(paint), other.flag == set.flag) << set.flag << " " << other.flag;
        }
        const bool isSmooth = paint.getSkFont().getEdging() == SkFont::Edging::kAntiAlias;
        EXPECT_EQ(isSmooth, set.flag == 0x001);
    }
}

TEST(MinikinFontSkiaTest, FlagsSurvivePacking) {
    SkFont font;
    for (uint32_t flags = 0; flags < 0x40000; flags++) {
        const uint32_t hinting = flags >> 16, edging = flags >> 8 & 0xFF, settings = flags & 0xFF;
        if (edging > 2 || settings > 31) continue;
        MinikinFontSkia::unpackFontFlags(&font, flags);
        EXPECT_EQ(static_cast<uint32_t>(font.getHinting()), hinting);
        EXPECT_EQ(static_cast<uint32_t>(font.getEdging()), edging);
        EXPECT_EQ(MinikinFontSkia::packFontFlags(font), flags);
    }
}

// A layout over three fonts and what forFontRun made of it.
class FontRunTest : public testing::Test {
protected:
    FontRunTest() {
        paint.getSkFont().setSize(20);
        paint.getSkFont().setSkewX(-0.125f);
    }

    Paint paint;
    const std::unique_ptr<android::Typeface> typeface =
        gxtest::typefaceOf({gxtest::makeFamily(gxtest::loadFont(gxtest::kNotoSansBold)),
                            gxtest::makeFamily(gxtest::loadFont(gxtest::kNotoThai))},
                           700);
};

TEST_F(FontRunTest, RunsComeInOrderWithTheFontSetUpAndRestored) {
    struct Run {
        size_t start, end;
        const SkTypeface* face;
        bool embolden;
        float skew;
        bool operator==(const Run&) const = default;
    };
    const minikin::Layout layout = gxtest::layOut(u"ab \u0E01\u0E02c", *typeface, paint);
    std::vector<Run> runs;
    const auto record = [&](size_t start, size_t end) {
        const SkFont& font = paint.getSkFont();
        runs.push_back({start, end, font.getTypeface(), font.isEmbolden(), font.getSkewX()});
    };
    MinikinUtils::forFontRun(gxtest::layOut(u"", *typeface, paint), &paint, record);
    EXPECT_TRUE(runs.empty());
    MinikinUtils::forFontRun(layout, &paint, record);
    const auto face = [&](int glyph) {
        return static_cast<const MinikinFontSkia*>(layout.getFont(glyph))->GetSkTypeface();
    };
    // The Thai font alone has no bold.
    const std::vector<Run> expected = {{0, 3, face(0), false, -0.125f},
                                       {3, 5, face(3), true, -0.125f},
                                       {5, 6, face(0), false, -0.125f}};
    EXPECT_EQ(runs, expected);
    EXPECT_NE(face(0), face(3));
    EXPECT_FALSE(paint.getSkFont().isEmbolden());
    EXPECT_EQ(paint.getSkFont().getSkewX(), -0.125f);
}

TEST_F(FontRunTest, MeasureTextAgreesWithTheLayout) {
    const std::u16string text = u"ab \u0E01\u0E02c";
    const minikin::Layout whole = gxtest::layOut(text, *typeface, paint);
    for (const size_t start : {1, 4}) {
        std::vector<float> advances(4, -1);
        const float width = MinikinUtils::measureText(&paint, minikin::Bidi::LTR, typeface.get(),
                                                      gxtest::unitsOf(text), start, 4, text.size(),
                                                      advances.data());
        for (size_t i = 0; i < 4; i++) {
            // Units beyond the text have no advance.
            const bool isInside = start + i < text.size();
            EXPECT_FLOAT_EQ(advances[i], isInside ? whole.getCharAdvance(start + i) : 0);
        }
        EXPECT_FLOAT_EQ(width, std::accumulate(advances.begin(), advances.end(), 0.0f));
    }
}

}  // namespace
