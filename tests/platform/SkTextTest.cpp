#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numeric>
#include <string>
#include <vector>

#include "FreeTypeReference.h"
#include "PlainBlend.h"
#include "SfntFile.h"
#include "SkDrawing.h"
#include "skia/GlyphCache.h"
#include "skia/TextGamma.h"
#include "support/NotFinite.h"
#include "support/Random.h"

namespace gxtest {
namespace {

// The canvas must hold the glyph at (x, y), its coverage through `curve`, and nothing else.
template <typename Curve>
void expectGlyph(const MaskCanvas& mask, const ReferenceGlyph& glyph, int x, int y, Curve curve) {
    for (int j = 0; j < mask.height; ++j) {
        for (int i = 0; i < mask.width; ++i) {
            const int gx = i - x - glyph.left;
            const int gy = j - y - glyph.top;
            const bool inside = gx >= 0 && gy >= 0 && gx < glyph.width && gy < glyph.height;
            const uint8_t c = inside ? glyph.coverage[gy * glyph.width + gx] : 0;
            ASSERT_EQ(mask.at(i, j), curve(c)) << "at " << i << ", " << j;
        }
    }
}

uint8_t unchanged(uint8_t c) {
    return c;
}

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

TEST_F(SkTextTest, WholePixelPositionsRoundTheSumHalvesUp) {
    const ReferenceGlyph expected = reference.take(g, plainRequest(20));
    const struct {
        float originX, originY, x, y;
        int pixelX, pixelY;
    } cases[] = {
        {10.4f, 20, 0.4f, 0, 11, 20},  // each part alone would round to 10
        {10, 20.25f, 0.5f, 0.25f, 11, 21}, {10.5f, 20.5f, 0, 0, 11, 21},
        {10.49f, 20.49f, 0, 0, 10, 20},    {0, 0, -0.5f, 20, 0, 20},
        {0, 0, -0.51f, 20, -1, 20},
    };
    for (const auto& c : cases) {
        MaskCanvas mask(40, 40);
        mask.canvas->drawTextBlob(makeBlob(SkFont(typeface, 20), {{g, c.x, c.y}}), c.originX,
                                  c.originY, SkPaint());
        expectGlyph(mask, expected, c.pixelX, c.pixelY, blackTextGamma);
    }
}

TEST_F(SkTextTest, SubpixelPositionsFallIntoQuarters) {
    SkFont font(typeface, 20);
    font.setSubpixel(true);
    const struct {
        float x, y;
        int pixelX, pixelY, quarters;
    } cases[] = {
        {10, 20, 10, 20, 0},      {10.12f, 20.4f, 10, 20, 0}, {10.125f, 20.5f, 10, 21, 1},
        {10.3f, 20, 10, 20, 1},   {10.375f, 20, 10, 20, 2},   {10.74f, 20, 10, 20, 3},
        {10.875f, 20, 11, 20, 0}, {-0.2f, 20, -1, 20, 3},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.x);
        GlyphRequest request = plainRequest(20);
        request.dx = 16L * c.quarters;
        const ReferenceGlyph expected = reference.take(g, request);
        expectGlyph(drawn(font, g, c.x, c.y), expected, c.pixelX, c.pixelY, blackTextGamma);
    }
}

TEST_F(SkTextTest, OverlapsMoveTowardsFullCoverage) {
    const auto lerp = [](uint8_t d, uint8_t c) { return overMask(d, c, 255); };
    EXPECT_EQ(lerp(128, 128), 192);
    SkFont font(typeface, 30);
    const MaskCanvas once = drawn(font, g, 10, 30);
    MaskCanvas twice(60, 60);
    twice.draw(font, {{g, 10, 30}, {g, 10, 30}, {g, 11, 30}});
    for (int y = 0; y < 60; ++y) {
        for (int x = 1; x < 60; ++x) {
            const uint8_t c = once.at(x, y);
            ASSERT_EQ(twice.at(x, y), lerp(lerp(c, c), once.at(x - 1, y)));
        }
    }
}

TEST_F(SkTextTest, TranslucentTextGoesOverWhatIsThere) {
    SkFont font(typeface, 30);
    const MaskCanvas opaque = drawn(font, g, 10, 30);
    MaskCanvas mask(60, 60);
    mask.canvas->drawColor(SkColorSetARGB(90, 0, 0, 0), SkBlendMode::kSrc);
    mask.draw(font, {{g, 10, 30}}, SkColorSetARGB(77, 0, 0, 0));
    for (size_t i = 0; i < mask.pixels.size(); ++i) {
        ASSERT_EQ(mask.pixels[i], overMask(90, opaque.pixels[i], 77));
    }
}

TEST(TextGammaTest, CurvesOfBlackAndWhite) {
    const struct {
        uint8_t in, out;
    } black[] = {{0, 0},     {8, 6},     {16, 12},   {32, 23},   {64, 48},
                 {96, 73},   {128, 101}, {160, 130}, {192, 162}, {224, 199},
                 {240, 222}, {248, 236}, {254, 250}, {255, 255}},
      white[] = {{0, 0}, {16, 35}, {64, 94}, {128, 155}, {192, 208}, {240, 244}, {255, 255}};
    for (const auto& c : black) EXPECT_EQ(portable::textGamma(SK_ColorBLACK)[c.in], c.out);
    for (const auto& c : white) EXPECT_EQ(portable::textGamma(SK_ColorWHITE)[c.in], c.out);
    // The top three bits of (54 r + 183 g + 19 b) / 256 choose; alpha does not count.
    const auto table = [](SkColor c) { return &portable::textGamma(c); };
    EXPECT_EQ(table(0xFF1F1F1F), table(SK_ColorBLACK));
    EXPECT_NE(table(0xFF202020), table(SK_ColorBLACK));
    EXPECT_EQ(table(0x00E0E0E0), table(SK_ColorWHITE));
    EXPECT_EQ(table(0xFF0000FF), table(SK_ColorBLACK));
    EXPECT_EQ(table(0xFFFF0000), table(0xFF202020));
    EXPECT_EQ(table(0xFF00FF00), table(0xFFA0A0A0));
}

TEST_F(SkTextTest, TheColourChoosesTheCurve) {
    const ReferenceGlyph expected = reference.take(g, plainRequest(30));
    MaskCanvas mask(60, 60);
    mask.draw(SkFont(typeface, 30), {{g, 10, 30}}, SK_ColorWHITE);
    expectGlyph(mask, expected, 10, 30,
                [](uint8_t c) { return portable::textGamma(SK_ColorWHITE)[c]; });
}

TEST_F(SkTextTest, InkIsCutAtEverySideOfBitmapAndClip) {
    const SkFont font(typeface, 40);
    MaskCanvas whole(120, 120);
    whole.draw(font, {{g, 50, 60}});
    for (int dx = -45; dx <= 25; dx += 7) {
        for (int dy = -40; dy <= 40; dy += 8) {
            MaskCanvas mask(40, 40);
            mask.canvas->clipRect(SkRect::MakeLTRB(3, 5, 33, 37), SkClipOp::kIntersect, false);
            mask.draw(font, {{g, 20.0f + dx, 20.0f + dy}});
            for (int y = 0; y < 40; ++y) {
                for (int x = 0; x < 40; ++x) {
                    const bool inside = x >= 3 && x < 33 && y >= 5 && y < 37;
                    ASSERT_EQ(mask.at(x, y), inside ? whole.at(x - dx + 30, y - dy + 40) : 0);
                }
            }
        }
    }
}

TEST_F(SkTextTest, RowsBeyondTheWidthAreNotTouched) {
    std::vector<uint8_t> memory(size_t{50} * 40, 7);
    SkBitmap bitmap;
    ASSERT_TRUE(bitmap.installPixels(SkImageInfo::MakeA8(20, 40), memory.data(), 50));
    SkCanvas canvas(bitmap);
    canvas.drawColor(0, SkBlendMode::kSrc);
    canvas.drawTextBlob(makeBlob(SkFont(typeface, 40), {{g, 5, 30}}), 0, 0, SkPaint());
    for (int y = 0; y < 40; ++y) {
        for (int x = 20; x < 50; ++x) ASSERT_EQ(memory[y * 50 + x], 7);
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
    // 16 units per em instead of 2048 make each glyph 128 times as large.
    SfntFile file(fontBytes(kDejaVuSans));
    writeBig(file.tables["head"], 18, 2, 16);
    const Bytes bytes = file.build();
    FreeTypeReference giant(bytes);
    const SkFont font(makeTypeface(bytes), 20);
    const ReferenceGlyph expected = giant.take(g, plainRequest(20));
    ASSERT_GT(static_cast<size_t>(expected.width) * expected.height,
              portable::GlyphCache::kMaxMaskPixels);
    expectGlyph(drawn(font, g, -700, 500, 200, 200), expected, -700, 500, blackTextGamma);

    SkFont aliased = font;
    aliased.setEdging(SkFont::Edging::kAlias);
    GlyphRequest request = plainRequest(20);
    request.flags |= FT_LOAD_TARGET_MONO;
    request.mono = true;
    expectGlyph(drawn(aliased, g, -700, 500, 200, 200), giant.take(g, request), -700, 500,
                unchanged);
}

TEST_F(SkTextTest, EmojiGiveTheirAlpha) {
    FreeTypeReference emoji(fontBytes(kNotoColorEmoji));
    const SkGlyphID face = emoji.glyph(0x1F600);
    ASSERT_EQ(FT_Select_Size(emoji.face(), 0), 0);
    const float ppem = emoji.face()->size->metrics.x_ppem;
    ASSERT_EQ(FT_Load_Glyph(emoji.face(), face, FT_LOAD_COLOR), 0);
    const FT_GlyphSlot slot = emoji.face()->glyph;
    const FT_Bitmap& picture = slot->bitmap;
    ASSERT_EQ(picture.pixel_mode, FT_PIXEL_MODE_BGRA);

    // At the strike's own size, alpha for alpha, without the curve.
    const sk_sp<SkTypeface> font = loadTypeface(kNotoColorEmoji);
    const MaskCanvas mask = drawn(SkFont(font, ppem), face, 10, 130, 160, 160);
    double alpha = 0;
    for (unsigned y = 0; y < picture.rows; ++y) {
        for (unsigned x = 0; x < picture.width; ++x) {
            const uint8_t expected = picture.buffer[y * picture.pitch + 4 * x + 3];
            alpha += expected;
            ASSERT_EQ(mask.at(10 + slot->bitmap_left + static_cast<int>(x),
                              130 - slot->bitmap_top + static_cast<int>(y)),
                      expected);
        }
    }
    // At others the area follows the size, also beyond the mask limit and leaning.
    for (const float size : {12.0f, 40.0f, 190.0f, 300.0f}) {
        for (const float skew : {0.0f, -0.25f}) {
            SkFont scaled(font, size, 1, skew);
            const MaskCanvas drawnMask = drawn(scaled, face, 100, 400, 600, 500);
            const double ratio = size / ppem;
            EXPECT_NEAR(ink(drawnMask) / (alpha / 255 * ratio * ratio), 1, 0.02) << size;
        }
    }
    SkFont aliased(font, 40);
    aliased.setEdging(SkFont::Edging::kAlias);
    EXPECT_EQ(drawn(aliased, face, 5, 50).pixels, drawn(SkFont(font, 40), face, 5, 50).pixels);
}

TEST_F(SkTextTest, ColourLayersAreUnitedByTheirAlpha) {
    // 'A' becomes a half-transparent 'H' below an opaque 'I' in the text colour.
    const SkGlyphID a = reference.glyph('A');
    const SkGlyphID h = reference.glyph('H');
    const SkGlyphID i = reference.glyph('I');
    SfntFile file(fontBytes(kDejaVuSans));
    Bytes& colr = file.tables["COLR"];
    for (const uint32_t word : {0u, 1u, 0u, 14u, 0u, 20u, 2u}) appendBig(colr, 2, word);
    for (const uint32_t word : {uint32_t{a}, 0u, 2u}) appendBig(colr, 2, word);
    for (const uint32_t word : {uint32_t{h}, 0u, uint32_t{i}, 0xFFFFu}) appendBig(colr, 2, word);
    Bytes& cpal = file.tables["CPAL"];
    for (const uint32_t word : {0u, 1u, 1u, 1u, 0u, 14u, 0u}) appendBig(cpal, 2, word);
    appendBig(cpal, 4, 0x20FF6080);  // blue, green, red, alpha 128

    const Bytes bytes = file.build();
    const SkFont font(makeTypeface(bytes), 30);
    const ReferenceGlyph below = reference.take(h, plainRequest(30));
    const ReferenceGlyph above = reference.take(i, plainRequest(30));
    const MaskCanvas mask = drawn(font, a, 10, 40);
    const auto at = [](const ReferenceGlyph& glyph, int x, int y) -> unsigned {
        x -= 10 + glyph.left;
        y -= 40 + glyph.top;
        const bool inside = x >= 0 && y >= 0 && x < glyph.width && y < glyph.height;
        return inside ? glyph.coverage[y * glyph.width + x] : 0;
    };
    for (int y = 0; y < 60; ++y) {
        for (int x = 0; x < 60; ++x) {
            const double lower = at(below, x, y) * 128 / 255.0;
            const double upper = at(above, x, y);
            ASSERT_NEAR(mask.at(x, y), upper + lower * (255 - upper) / 255, 1.5);
        }
    }
    EXPECT_GT(ink(mask), 20);
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
        EXPECT_EQ(mask.pixels, alone.pixels);
        mask.canvas->drawTextBlob(makeBlob(font, {{g, 0, 0}}), kNaN, kInfinity, SkPaint());
        EXPECT_EQ(mask.pixels, alone.pixels);
    }
}

TEST_F(SkTextTest, BlobsOutsideByTheirBoundsAreNotDrawn) {
    const SkFont font(typeface, 20);
    const auto draw = [&](const SkRect& bounds) {
        MaskCanvas mask(60, 60);
        SkTextBlobBuilder builder;
        const auto& run = builder.allocRunPos(font, 1, &bounds);
        run.glyphs[0] = g;
        run.pos[0] = 10;
        run.pos[1] = 30;
        mask.canvas->drawTextBlob(builder.make(), 0, 0, SkPaint());
        return ink(mask);
    };
    EXPECT_GT(draw(SkRect::MakeLTRB(10, 10, 30, 40)), 0);
    EXPECT_GT(draw(SkRect::MakeEmpty()), 0);  // an edge that touches does not reject
    EXPECT_EQ(draw(SkRect::MakeLTRB(70, 10, 80, 40)), 0);
    EXPECT_EQ(draw(SkRect::MakeLTRB(10, -40, 30, -10)), 0);
}

TEST_F(SkTextTest, BuilderGivesBlobsOfAllRuns) {
    SkTextBlobBuilder builder;
    EXPECT_FALSE(builder.make());
    EXPECT_EQ(builder.allocRunPos(SkFont(), 0).glyphs, nullptr);
    EXPECT_EQ(builder.allocRunPos(SkFont(), -5).pos, nullptr);
    EXPECT_FALSE(builder.make());

    const SkFont font(typeface, 20);
    MaskCanvas expected(60, 60);
    expected.draw(font, {{g, 10, 30}, {g, 30, 30}});
    for (const float x : {10.0f, 30.0f}) {
        const auto& run = builder.allocRunPos(font, 1);
        run.glyphs[0] = g;
        run.pos[0] = x;
        run.pos[1] = 30;
    }
    MaskCanvas mask(60, 60);
    mask.canvas->drawTextBlob(builder.make(), 0, 0, SkPaint());
    EXPECT_EQ(mask.pixels, expected.pixels);
    EXPECT_FALSE(builder.make());
    mask.canvas->drawTextBlob(nullptr, 0, 0, SkPaint());
}

TEST_F(SkTextTest, ColourCanvasesGetTheColourByCoverage) {
    const SkFont font(typeface, 30);
    MaskCanvas mask(60, 60);
    const SkColor color = SkColorSetARGB(200, 250, 100, 20);
    mask.draw(font, {{g, 10, 30}}, color | 0xFF000000);
    std::vector<uint8_t> pixels(size_t{60} * 60 * 4);
    SkBitmap bitmap;
    ASSERT_TRUE(bitmap.installPixels(
        SkImageInfo::Make(60, 60, kRGBA_8888_SkColorType, kUnpremul_SkAlphaType), pixels.data(),
        size_t{60} * 4));
    SkCanvas canvas(bitmap);
    SkPaint paint;
    paint.setColor(color);
    canvas.drawTextBlob(makeBlob(font, {{g, 10, 30}}), 0, 0, paint);
    for (size_t i = 0; i < mask.pixels.size(); ++i) {
        ASSERT_NEAR(pixels[4 * i + 3], mask.pixels[i] * 200 / 255.0, 0.51);
        if (pixels[4 * i + 3] < 8) continue;
        ASSERT_NEAR(pixels[4 * i], 250, 1);
        ASSERT_NEAR(pixels[4 * i + 2], 20, 1);
    }
}

TEST_F(SkTextTest, CacheStaysInItsBoundAndChangesNothing) {
    portable::GlyphCache& cache = portable::GlyphCache::shared();
    const SkFont font(typeface, 33);
    const MaskCanvas first = drawn(font, g, 10, 40);
    const size_t before = cache.bytes();
    {
        const sk_sp<SkTypeface> other = loadTypeface(kNotoSans);
        for (int i = 0; i < 300; ++i) {
            drawn(SkFont(other, 200 + static_cast<float>(i) / 8), 40, 0, 50);
            ASSERT_LE(cache.bytes(), portable::GlyphCache::kMaxBytes);
        }
        EXPECT_GT(cache.bytes(), before);
    }
    EXPECT_LE(cache.bytes(), before);
    EXPECT_EQ(drawn(font, g, 10, 40).pixels, first.pixels);
    EXPECT_EQ(drawn(font, g, 10, 40).pixels, first.pixels);
}

}  // namespace
}  // namespace gxtest
