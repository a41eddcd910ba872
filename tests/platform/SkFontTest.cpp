#include "SkFont.h"

#include <gtest/gtest.h>

#include <cmath>

#include "FreeTypeReference.h"
#include "SfntFile.h"
#include "SkDrawing.h"
#include "SkFontMetrics.h"
#include "support/NotFinite.h"

namespace gxtest {
namespace {

float widthOf(const SkFont& font, SkGlyphID glyph) {
    float width = -1;
    font.getWidths(&glyph, 1, &width);
    return width;
}

SkRect boundsOf(const SkFont& font, SkGlyphID glyph) {
    SkRect bounds = SkRect::MakeWH(-1, -1);
    font.getBounds(&glyph, 1, &bounds, nullptr);
    return bounds;
}

SkRect toRect(const SkIRect& r, float scale = 1) {
    return SkRect::MakeLTRB(r.fLeft * scale, r.fTop * scale, r.fRight * scale, r.fBottom * scale);
}

TEST(SkFontTest, MirroredAndTinyGlyphsKeepTheirProportion) {
    const SkGlyphID glyph = FreeTypeReference(fontBytes(kDejaVuSans)).glyph('m');
    const sk_sp<SkTypeface> typeface = loadTypeface(kDejaVuSans);
    const SkFont mirrored(typeface, 30, -0.7f);
    EXPECT_EQ(widthOf(mirrored, glyph), -widthOf(SkFont(typeface, 30, 0.7f), glyph));
    EXPECT_LT(boundsOf(mirrored, glyph).fLeft, 0);
    SkFont tiny(typeface, 0.5f), large(typeface, 50);
    tiny.setSubpixel(true);
    large.setSubpixel(true);
    EXPECT_NEAR(widthOf(tiny, glyph) * 100, widthOf(large, glyph), 0.05);
}

TEST(SkFontTest, LinearMetricsAndLargeSizesAreMeasuredAtSize64) {
    FreeTypeReference reference(fontBytes(kNotoSans));
    const SkGlyphID glyph = reference.glyph('g');
    const GlyphRequest request{to26Dot6(64), to26Dot6(64), kPlainLoad | FT_LOAD_NO_HINTING};
    const ReferenceGlyph expected = reference.take(glyph, request);

    SkFont linear(loadTypeface(kNotoSans), 20);
    linear.setLinearMetrics(true);
    SkFont large(loadTypeface(kNotoSans), 256.5f);
    for (const SkFont& font : {linear, large}) {
        const float scale = font.getSize() / 64;
        EXPECT_EQ(widthOf(font, glyph), expected.linearAdvance * scale);
        EXPECT_EQ(boundsOf(font, glyph), toRect(expected.box, scale));
    }
    // 256 is not beyond the limit yet; the stretch and the skew count too.
    SkFont font(loadTypeface(kNotoSans), 256);
    const auto isWhole = [&] { return std::fmod(boundsOf(font, glyph).fTop, 1.0f) == 0; };
    EXPECT_TRUE(isWhole());
    font.setSkewX(-0.3f);
    EXPECT_EQ(boundsOf(font, glyph).fTop, expected.box.fTop * 4.0f);
    font = SkFont(loadTypeface(kNotoSans), 150, 2);
    EXPECT_FALSE(isWhole());
}

TEST(SkFontTest, BlankAndMissingGlyphsAndNoSizes) {
    FreeTypeReference reference(fontBytes(kDejaVuSans));
    const SkFont font(loadTypeface(kDejaVuSans), 20);
    const SkGlyphID space = reference.glyph(' ');
    EXPECT_GT(widthOf(font, space), 0);
    EXPECT_EQ(boundsOf(font, space), SkRect::MakeEmpty());
    EXPECT_EQ(widthOf(font, 0xFFFF), 0);
    EXPECT_EQ(boundsOf(font, 0xFFFF), SkRect::MakeEmpty());
    EXPECT_EQ(widthOf(SkFont(), 36), 0);
    for (const float size : {0.0f, -1.0f, kNaN, kInfinity}) {
        EXPECT_EQ(widthOf(SkFont(font.refTypeface(), size), 36), 0) << size;
    }
}

TEST(SkFontTest, LinesAreSpacedByTheFontsTables) {
    FreeTypeReference reference(fontBytes(kDejaVuSans));
    const FT_Face face = reference.face();
    const float unit = 100.0f / face->units_per_EM;
    SkFontMetrics metrics;
    EXPECT_FLOAT_EQ(SkFont(loadTypeface(kDejaVuSans), 100).getMetrics(&metrics),
                    unit * face->height);
    EXPECT_FLOAT_EQ(metrics.fAscent, -unit * face->ascender);
    EXPECT_FLOAT_EQ(metrics.fDescent, -unit * face->descender);
    EXPECT_EQ(SkFont().getMetrics(nullptr), 0);
}

}  // namespace
}  // namespace gxtest
