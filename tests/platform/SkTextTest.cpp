#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <numeric>
#include <utility>
#include <vector>

#include "FreeTypeReference.h"
#include "PlainBlend.h"
#include "SkDrawing.h"
#include "skia/GlyphCache.h"
#include "skia/TextGamma.h"
#include "support/NotFinite.h"

namespace gxtest {
namespace {

GlyphRequest plainRequest(float size) {
    const auto fixedSize = to26Dot6(size);
    return {fixedSize, fixedSize, kPlainLoad};
}

// The glyph of a font drawn alone.
MaskCanvas drawn(const SkFont& font, SkGlyphID glyph, float x, float y, int w = 60, int h = 60) {
    MaskCanvas mask(w, h);
    mask.draw(font, {{glyph, x, y}});
    return mask;
}

class SkTextTest : public ::testing::Test {
protected:
    FreeTypeReference reference{fontBytes(kDejaVuSans)};
    sk_sp<SkTypeface> typeface = loadTypeface(kDejaVuSans);
    SkGlyphID g = reference.glyph('g');
};

TEST_F(SkTextTest, PositionsAreSummedThenRoundedOrCutToQuarters) {
    const struct {
        bool subpixel;
        float originX, originY, x, y;
        int pixelX, pixelY, quarters;
    } cases[] = {
        {false, 10.4f, 20, 0.4f, 0, 11, 20, 0},  // each part alone would round to 10
        {false, 10, 20.25f, 0.5f, 0.25f, 11, 21, 0},
        {false, 10.5f, 20.5f, 0, 0, 11, 21, 0},
        {false, 10.49f, 20.49f, 0, 0, 10, 20, 0},
        {false, 0, 0, -0.5f, 20, 0, 20, 0},
        {false, 0, 0, -0.51f, 20, -1, 20, 0},
        {true, 10, 20, 0, 0, 10, 20, 0},
        {true, 10, 20.4f, 0.12f, 0, 10, 20, 0},
        {true, 10.1f, 20.25f, 0.025f, 0.25f, 10, 21, 1},
        {true, 10.375f, 20, 0, 0, 10, 20, 2},
        {true, 10.74f, 20, 0, 0, 10, 20, 3},
        {true, 10.875f, 20, 0, 0, 11, 20, 0},
        {true, -0.2f, 20, 0, 0, -1, 20, 3},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.originX << " + " << c.x);
        SkFont font(typeface, 20);
        font.setSubpixel(c.subpixel);
        GlyphRequest request = plainRequest(20);
        request.dx = 16L * c.quarters;
        MaskCanvas mask(40, 40);
        mask.canvas->drawTextBlob(makeBlob(font, {{g, c.x, c.y}}), c.originX, c.originY, SkPaint());
        EXPECT_TRUE(holds(mask, reference.take(g, request), c.pixelX, c.pixelY, blackTextGamma));
    }
}

TEST_F(SkTextTest, GlyphsGoOverWhatIsThereByTheirAlpha) {
    const SkFont font(typeface, 30);
    const MaskCanvas once = drawn(font, g, 10, 30);
    for (const int alpha : {255, 77}) {
        MaskCanvas mask(60, 60);
        mask.canvas->drawColor(SkColorSetARGB(90, 0, 0, 0), SkBlendMode::kSrc);
        mask.draw(font, {{g, 10, 30}, {g, 11, 30}}, SkColorSetARGB(alpha, 0, 0, 0));
        for (int y = 0; y < 60; ++y) {
            for (int x = 1; x < 60; ++x) {
                const uint8_t first = overMask(90, once.at(x, y), alpha);
                ASSERT_EQ(mask.at(x, y), overMask(first, once.at(x - 1, y), alpha));
            }
        }
    }
}

TEST_F(SkTextTest, TheColourChoosesTheCurve) {
    const std::pair<uint8_t, uint8_t> white[] = {{0, 0},     {16, 35},   {64, 94},  {128, 155},
                                                 {192, 208}, {240, 244}, {255, 255}};
    for (const auto& [in, out] : white) EXPECT_EQ(portable::textGamma(SK_ColorWHITE)[in], out);
    for (int c = 0; c < 256; ++c) {
        const auto in = static_cast<uint8_t>(c);
        EXPECT_EQ(portable::textGamma(SK_ColorBLACK)[in], blackTextGamma(in));
    }
    MaskCanvas mask(60, 60);
    mask.draw(SkFont(typeface, 30), {{g, 10, 30}}, SK_ColorWHITE);
    const auto curve = [](uint8_t c) { return portable::textGamma(SK_ColorWHITE)[c]; };
    EXPECT_TRUE(holds(mask, reference.take(g, plainRequest(30)), 10, 30, curve));
    // The top three bits of (54 r + 183 g + 19 b) / 256 choose; alpha does not count.
    const auto table = [](SkColor c) { return &portable::textGamma(c); };
    EXPECT_EQ(table(0xFF1F1F1F), table(SK_ColorBLACK));
    EXPECT_NE(table(0xFF202020), table(SK_ColorBLACK));
    EXPECT_EQ(table(0x00E0E0E0), table(SK_ColorWHITE));
    EXPECT_EQ(table(0xFF0000FF), table(SK_ColorBLACK));
    EXPECT_EQ(table(0xFFFF0000), table(0xFF202020));
    EXPECT_EQ(table(0xFF00FF00), table(0xFFA0A0A0));
}

TEST_F(SkTextTest, InkIsCutAtEverySideOfBitmapAndClip) {
    constexpr int kSize = 40;
    constexpr size_t kRowBytes = 50;
    const SkFont font(typeface, 40);
    const MaskCanvas whole = drawn(font, g, 50, 60, 120, 120);
    for (int dx = -45; dx <= 25; dx += 7) {
        for (int dy = -40; dy <= 40; dy += 8) {
            std::vector<uint8_t> memory(kRowBytes * kSize, 7);
            SkBitmap bitmap;
            ASSERT_TRUE(
                bitmap.installPixels(SkImageInfo::MakeA8(kSize, kSize), memory.data(), kRowBytes));
            SkCanvas canvas(bitmap);
            canvas.clipRect(SkRect::MakeLTRB(3, 5, 33, 37), SkClipOp::kIntersect, false);
            canvas.drawColor(0, SkBlendMode::kSrc);
            canvas.drawTextBlob(makeBlob(font, {{g, 20.0f + dx, 20.0f + dy}}), 0, 0, SkPaint());
            for (int y = 0; y < kSize; ++y) {
                for (int x = 0; x < static_cast<int>(kRowBytes); ++x) {
                    const bool inside = x >= 3 && x < 33 && y >= 5 && y < 37;
                    ASSERT_EQ(memory[y * kRowBytes + x],
                              inside ? whole.at(x - dx + 30, y - dy + 40) : 7);
                }
            }
        }
    }
}

// Coverage summed, in pixels.
double ink(const MaskCanvas& mask) {
    return std::accumulate(mask.pixels.begin(), mask.pixels.end(), 0.0) / 255;
}

TEST_F(SkTextTest, LargeTextIsScaledOutlinesAtExactPositionsWithoutCurve) {
    // The outline of size 64, 4.5 times as large.
    const SkGlyphID o = reference.glyph('o');
    GlyphRequest request = plainRequest(64);
    request.flags |= FT_LOAD_NO_HINTING;
    reference.take(o, request);
    ASSERT_EQ(FT_Load_Glyph(reference.face(), o, request.flags), 0);
    FT_Outline* outline = &reference.face()->glyph->outline;
    const FT_Matrix larger = {0x48000, 0, 0, 0x48000};
    FT_Outline_Transform(outline, &larger);
    FT_Outline_Translate(outline, 10 * 64 + 22, 100 * 64 - 22);  // x 10.34375, y 0.34375 down
    std::vector<uint8_t> expected(size_t{300} * 300);
    FT_Bitmap bitmap = {};
    bitmap.width = bitmap.rows = 300;
    bitmap.pitch = 300;
    bitmap.buffer = expected.data();
    bitmap.num_grays = 256;
    bitmap.pixel_mode = FT_PIXEL_MODE_GRAY;
    ASSERT_EQ(FT_Outline_Get_Bitmap(reference.face()->glyph->library, outline, &bitmap), 0);
    const MaskCanvas mask = drawn(SkFont(typeface, 288), o, 10.34375f, 200.34375f, 300, 300);
    for (size_t i = 0; i < expected.size(); ++i) {
        ASSERT_NEAR(mask.pixels[i], expected[i], 4) << i;  // points are rounded to 1/64 once more
    }
}

TEST_F(SkTextTest, TheLimitBetweenMasksAndOutlinesDoesNotShow) {
    const MaskCanvas below = drawn(SkFont(typeface, 256), g, 20, 220, 300, 300);
    const MaskCanvas above = drawn(SkFont(typeface, 257), g, 20, 220, 300, 300);
    EXPECT_NEAR(ink(above) / ink(below), 257.0 * 257 / (256 * 256),
                0.02);  // the curve lightens edges
    SkFont aliased(typeface, 257);
    aliased.setEdging(SkFont::Edging::kAlias);
    const MaskCanvas jagged = drawn(aliased, g, 20, 220, 300, 300);
    EXPECT_TRUE(std::all_of(jagged.pixels.begin(), jagged.pixels.end(),
                            [](uint8_t c) { return c == 0 || c == 255; }));
    EXPECT_NEAR(ink(jagged) / ink(above), 1, 0.01);
    SkFont bold(typeface, 257);
    bold.setEmbolden(true);
    EXPECT_GT(ink(drawn(bold, g, 20, 220, 300, 300)), ink(above) * 1.1);
}

TEST_F(SkTextTest, HugeTextShowsThePartInsideTheClip) {
    // The stem of an l at 20,000 pixels is far wider than the canvas.
    const SkGlyphID l = reference.glyph('l');
    const MaskCanvas mask = drawn(SkFont(typeface, 20000), l, -2700, 5000);
    EXPECT_EQ(ink(mask), 60 * 60);
    for (const float size : {1e6f, 1e9f, 3e38f}) drawn(SkFont(typeface, size), l, 0, 0);
}

TEST_F(SkTextTest, GlyphsTooLargeToKeepAreTheSameInParts) {
    FreeTypeReference arabic(fontBytes(kNotoArabic));
    const SkGlyphID basmala = arabic.glyph(0xFDFD);  // a phrase in one glyph
    SkFont font(loadTypeface(kNotoArabic), 256);
    GlyphRequest request = plainRequest(256);
    const ReferenceGlyph expected = arabic.take(basmala, request);
    ASSERT_GT(expected.coverage.size(), portable::GlyphCache::kMaxMaskPixels);
    const MaskCanvas part = drawn(font, basmala, -700, 150, 200, 200);
    EXPECT_GT(ink(part), 4000);
    EXPECT_TRUE(holds(part, expected, -700, 150, blackTextGamma));

    font.setEdging(SkFont::Edging::kAlias);
    request.flags |= FT_LOAD_TARGET_MONO;
    request.mono = true;
    EXPECT_TRUE(holds(drawn(font, basmala, -700, 150, 200, 200), arabic.take(basmala, request),
                      -700, 150, std::identity()));
}

TEST_F(SkTextTest, PositionsThatAreNoNumbersSkipTheGlyph) {
    for (const float size : {20.0f, 300.0f}) {
        const SkFont font(typeface, size);
        const MaskCanvas alone = drawn(font, g, 10, 30);
        MaskCanvas mask(60, 60);
        std::vector<PlacedGlyph> glyphs = {{g, 10, 30}};
        for (const float bad : {kInfinity, -kInfinity, kNaN, 1e9f, -1e9f, 3e38f}) {
            glyphs.push_back({g, bad, 30});
            glyphs.push_back({g, 10, bad});
        }
        mask.draw(font, glyphs);
        mask.canvas->drawTextBlob(makeBlob(font, {{g, 0, 0}}), kNaN, kInfinity, SkPaint());
        EXPECT_EQ(mask.pixels, alone.pixels);
    }
}

TEST_F(SkTextTest, BuilderGivesBlobsOfAllRunsWithTheirBounds) {
    SkTextBlobBuilder builder;
    EXPECT_EQ(builder.allocRunPos(SkFont(), 0).glyphs, nullptr);
    EXPECT_EQ(builder.allocRunPos(SkFont(), -5).pos, nullptr);
    EXPECT_FALSE(builder.make());

    const SkFont font(typeface, 20);
    const auto draw = [&](const SkRect* bounds) {
        for (const float x : {10.0f, 30.0f}) {
            const auto& run = builder.allocRunPos(font, 1, bounds);
            run.glyphs[0] = g;
            run.pos[0] = x;
            run.pos[1] = 30;
        }
        MaskCanvas mask(60, 60);
        mask.canvas->drawTextBlob(builder.make(), 0, 0, SkPaint());
        EXPECT_FALSE(builder.make());
        return mask.pixels;
    };
    MaskCanvas both(60, 60);
    both.draw(font, {{g, 10, 30}, {g, 30, 30}});
    // Blobs outside by their bounds are not drawn; an edge that touches does not reject.
    const std::pair<SkRect, bool> cases[] = {{SkRect::MakeLTRB(10, 10, 30, 40), true},
                                             {SkRect::MakeEmpty(), true},
                                             {SkRect::MakeLTRB(70, 10, 80, 40), false},
                                             {SkRect::MakeLTRB(10, -40, 30, -10), false}};
    for (const auto& [bounds, isDrawn] : cases) {
        EXPECT_EQ(draw(&bounds), isDrawn ? both.pixels : MaskCanvas(60, 60).pixels);
    }
    EXPECT_EQ(draw(nullptr), both.pixels);
    both.canvas->drawTextBlob(nullptr, 0, 0, SkPaint());
}

TEST_F(SkTextTest, ColourCanvasesGetTheColourByCoverage) {
    const SkFont font(typeface, 30);
    MaskCanvas mask(60, 60);
    const SkColor color = SkColorSetARGB(200, 250, 100, 20);
    mask.draw(font, {{g, 10, 30}}, color | 0xFF000000);
    ColorCanvas canvas(60, 60);
    SkPaint paint;
    paint.setColor(color);
    SkCanvas(canvas.bitmap).drawTextBlob(makeBlob(font, {{g, 10, 30}}), 0, 0, paint);
    for (size_t i = 0; i < mask.pixels.size(); ++i) {
        const uint8_t* pixel = &canvas.bytes[4 * i];
        ASSERT_NEAR(pixel[3], mask.pixels[i] * 200 / 255.0, 0.51);
        if (pixel[3] < 8) continue;
        ASSERT_NEAR(pixel[0], 250, 1);
        ASSERT_NEAR(pixel[2], 20, 1);
    }
}

TEST_F(SkTextTest, CacheStaysInItsBoundAndChangesNothing) {
    const portable::GlyphCache& cache = portable::GlyphCache::shared();
    const SkFont font(typeface, 33);
    const MaskCanvas first = drawn(font, g, 10, 40);
    for (int i = 0; i < 300; ++i) {
        drawn(SkFont(typeface, 200 + static_cast<float>(i) / 8), 40, 0, 50);
        ASSERT_LE(cache.bytes(), portable::GlyphCache::kMaxBytes);
    }
    EXPECT_EQ(drawn(font, g, 10, 40).pixels, first.pixels);
}

}  // namespace
}  // namespace gxtest
