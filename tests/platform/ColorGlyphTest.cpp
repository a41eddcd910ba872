#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <functional>
#include <numbers>
#include <numeric>
#include <vector>

#include "FreeTypeReference.h"
#include "SkDrawing.h"
#include "skia/ColorPaint.h"
#include "support/ColorGraphs.h"
#include "support/Random.h"

namespace gxtest {
namespace {

ColorCanvas colored(const SkFont& font, SkGlyphID glyph, float x, float y, int w, int h,
                    SkColor color = SK_ColorBLACK) {
    ColorCanvas canvas(w, h, kPremul_SkAlphaType);
    SkPaint paint;
    paint.setColor(color);
    SkCanvas(canvas.bitmap).drawTextBlob(makeBlob(font, {{glyph, x, y}}), 0, 0, paint);
    return canvas;
}

SkFont colorFont(const sk_sp<SkTypeface>& typeface, float size) {
    SkFont font(typeface, size);
    font.setColorGlyphs(true);
    return font;
}

TEST(ColorGlyph, PicturesAreTheFontsOwnAndAsCoveringAsTheirMasks) {
    FreeTypeReference emoji(fontBytes(kNotoColorEmoji));
    const SkGlyphID face = emoji.glyph(0x1F600);
    ASSERT_EQ(FT_Select_Size(emoji.face(), 0), 0);
    const float ppem = emoji.face()->size->metrics.x_ppem;
    ASSERT_EQ(FT_Load_Glyph(emoji.face(), face, FT_LOAD_COLOR), 0);
    const FT_GlyphSlot slot = emoji.face()->glyph;
    const FT_Bitmap& picture = slot->bitmap;

    const sk_sp<SkTypeface> font = loadTypeface(kNotoColorEmoji);
    const ColorCanvas native = colored(SkFont(font, ppem), face, 10, 130, 160, 160);
    double nativeInk = 0;
    for (unsigned y = 0; y < picture.rows; ++y) {
        for (unsigned x = 0; x < picture.width; ++x) {
            const uint8_t* bgra = picture.buffer + y * picture.pitch + size_t{4} * x;
            const Pixel expected = {bgra[2], bgra[1], bgra[0], bgra[3]};
            nativeInk += bgra[3];
            ASSERT_EQ(native.at(10 + slot->bitmap_left + static_cast<int>(x),
                                130 - slot->bitmap_top + static_cast<int>(y)),
                      expected);
        }
    }
    for (const float size : {10.0f, 32.0f, ppem, 200.0f}) {
        const float ratio = size / ppem;
        float width = 0;
        SkRect box;
        SkFont(font, size).getWidthsBounds(&face, 1, &width, &box, nullptr);
        EXPECT_NEAR(width, static_cast<float>(slot->advance.x) / 64 * ratio, 0.05);
        EXPECT_EQ(box.fLeft, std::floor(slot->bitmap_left * ratio));
        EXPECT_EQ(box.fTop, std::floor(-slot->bitmap_top * ratio));
        EXPECT_EQ(box.fRight,
                  std::ceil((slot->bitmap_left + static_cast<int>(picture.width)) * ratio));
    }
    // Whatever is drawn first, and for masks too large to keep.
    for (const float size : {12.0f, 40.0f, 72.0f, 190.0f, 300.0f}) {
        for (const float skew : {0.0f, -0.25f}) {
            for (const bool kept : {false, true}) {
                SkFont scaled(font, size, 1, skew);
                scaled.setColorGlyphs(kept);
                if (kept) scaled.setEdging(SkFont::Edging::kAlias);
                MaskCanvas mask(500, 420);
                const std::vector<PlacedGlyph> glyphs = {{face, 10, 330}};
                if (!kept) mask.draw(scaled, glyphs);
                const ColorCanvas color = colored(scaled, face, 10, 330, 500, 420);
                if (kept) mask.draw(scaled, glyphs);
                // Their area follows the size.
                const double ink = std::accumulate(mask.pixels.begin(), mask.pixels.end(), 0.0);
                EXPECT_NEAR(ink / nativeInk * ppem * ppem / (size * size), 1, 0.02) << size;
                for (size_t i = 0; i < mask.pixels.size(); ++i) {
                    const uint8_t* p = &color.bytes[4 * i];
                    ASSERT_EQ(p[3], mask.pixels[i]) << size;
                    ASSERT_LE(std::max({p[0], p[1], p[2]}), p[3]);
                }
            }
        }
    }
}

TEST(ColorGlyph, LayersAreTheirPalettesAndTheTextsColour) {
    SyntheticFont font;
    const uint16_t base = font.addGlyph(boxGlyph({{0, 0, 1, 1}}), 1000);
    const uint16_t low = font.addGlyph(boxGlyph({{0, 0, 800, 500}}), 1000);
    const uint16_t high = font.addGlyph(boxGlyph({{0, 0, 400, 500}}), 1000);
    addColorLayers(font, base, {low, high});  // half of the palette's colour, text's colour
    const Bytes file = font.build();
    const sk_sp<SkTypeface> typeface = makeTypeface(file);
    for (const SkColor color : {SkColorSetARGB(255, 200, 100, 50), SK_ColorWHITE}) {
        const ColorCanvas drawn = colored(SkFont(typeface, 100), base, 0, 60, 100, 80, color);
        const Pixel text = {static_cast<uint8_t>(SkColorGetR(color)),
                            static_cast<uint8_t>(SkColorGetG(color)),
                            static_cast<uint8_t>(SkColorGetB(color)), 255};
        EXPECT_EQ(drawn.at(20, 30), text);
        const Pixel half = drawn.at(60, 30);
        EXPECT_EQ(half, (Pixel{0x30, 0x20, 0x10, 0x80})) << "0x60, 0x40 and 0x20 of 255, halved";
        EXPECT_EQ(drawn.at(90, 30), Pixel{});
        MaskCanvas mask(100, 80);  // has their alphas
        mask.draw(SkFont(typeface, 100), {{base, 0, 60}}, color);
        for (const int x : {20, 60, 90}) EXPECT_EQ(mask.at(x, 30), drawn.at(x, 30)[3]);
    }
    // The paint's alpha fades them as they are.
    const ColorCanvas faded =
        colored(SkFont(typeface, 100), base, 0, 60, 100, 80, SkColorSetARGB(128, 255, 255, 255));
    EXPECT_EQ(faded.at(60, 30), (Pixel{0x18, 0x10, 0x08, 0x40}));
    EXPECT_EQ(faded.at(20, 30), (Pixel{0x80, 0x80, 0x80, 0x80}));
}

// A font of 1,000 units whose glyph `base` is a graph; `box` is a shape from (0, 0) to (800, 600).
// Drawn at 100 pixels, 10 units are a pixel.
class ColorGraphTest : public ::testing::Test {
protected:
    static constexpr int kSize = 100;
    static constexpr int kBaseline = 70;

    ColorGraphTest()
        : base(font.addGlyph(boxGlyph({}), 1000)),
          box(font.addGlyph(boxGlyph({{0, 0, 800, 600}}), 1000)) {}

    ColorCanvas draw(const Paint& paint, SkColor color = SK_ColorBLACK,
                     const std::vector<Paint>& layers = {}) {
        return drawAll({{base, paint}}, color, layers);
    }
    ColorCanvas drawAll(const std::vector<GraphGlyph>& glyphs, SkColor color = SK_ColorBLACK,
                        const std::vector<Paint>& layers = {}) {
        addColorGraphs(font, glyphs, kPalette, layers);
        files.push_back(font.build());
        const SkFont drawing = colorFont(makeTypeface(files.back()), kSize);
        return colored(drawing, base, 0, kBaseline, kSize, kSize, color);
    }

    // Of the pixels in the box, by their centres in font units.
    void expectInBox(const ColorCanvas& drawn, double tolerance,
                     const std::function<std::array<double, 4>(double, double)>& colorAt) {
        for (int y = kBaseline - 60; y < kBaseline; ++y) {
            for (int x = 0; x < 80; ++x) {
                const auto expected = colorAt(10 * (x + 0.5), 10 * (kBaseline - y - 0.5));
                const Pixel actual = drawn.at(x, y);
                for (size_t c = 0; c < 4; ++c) {
                    ASSERT_NEAR(actual[c], expected[c], tolerance) << x << ", " << y << " " << c;
                }
            }
        }
    }

    static constexpr uint32_t kRed = 0xFFFF0000, kBlue = 0xFF0000FF, kHalfGreen = 0x8000FF00;
    const std::vector<uint32_t> kPalette = {kRed, kBlue, kHalfGreen};
    const std::vector<ColorStop> kRedToBlue = {{0, 0}, {1, 1}};
    static std::array<double, 4> redToBlue(double t) {
        t = std::clamp(t, 0.0, 1.0);
        return {255 * (1 - t), 0, 255 * t, 255};
    }

    SyntheticFont font;
    uint16_t base;
    uint16_t box;
    std::vector<Bytes> files;
};

TEST_F(ColorGraphTest, GradientsFollowTheirGeometry) {
    const auto boxOf = [&](const Paint& fill) { return draw(glyphPaint(box, fill)); };
    // Along (400, 300) turned by 90 degrees to (-300, 400): lines of one colour are slanted.
    expectInBox(boxOf(linearPaint({0, 0, 800, 0, -300, 400}, kRedToBlue)), 1,
                [](double x, double y) { return redToBlue((x * 400 + y * 300) / (800.0 * 400)); });
    for (const Extend extend : {Extend::kRepeat, Extend::kReflect}) {
        const std::vector<ColorStop> inner = {{0.75, 1}, {0.25, 0}};  // in any order
        expectInBox(boxOf(linearPaint({200, 0, 360, 0, 200, 100}, inner, extend)), 6,
                    [&](double x, double) {
                        const double turns = ((x - 200) / 160 - 0.25) / 0.5;
                        const double part = turns - std::floor(turns);
                        const bool back = static_cast<int64_t>(std::floor(turns)) % 2 != 0;
                        return redToBlue(extend == Extend::kReflect && back ? 1 - part : part);
                    });
    }
    expectInBox(
        boxOf(radialPaint({400, 300, 50, 400, 300, 350}, kRedToBlue)), 1,
        [](double x, double y) { return redToBlue((std::hypot(x - 400, y - 300) - 50) / 300); });
    // A cone that opens to the right: nothing is painted behind its tip.
    const ColorCanvas cone = boxOf(radialPaint({200, 300, 0, 600, 300, 200}, kRedToBlue));
    EXPECT_EQ(cone.at(10, kBaseline - 30)[3], 0);
    EXPECT_EQ(cone.at(30, kBaseline - 55)[3], 0);
    // The last circle that holds a point of the axis has it on its left: x = 200 + 400 t - 200 t.
    EXPECT_NEAR(cone.at(30, kBaseline - 30)[2], 255 * (305.0 - 200) / 200, 3);
    // Counter-clockwise from the right, from 90 to 360 degrees.
    expectInBox(boxOf(sweepPaint(400, 300, 90, 360, kRedToBlue)), 1, [](double x, double y) {
        const double turn = std::atan2(y - 300, x - 400) * 180 / std::numbers::pi;
        return redToBlue(((turn < 0 ? turn + 360 : turn) - 90) / 270);
    });
    // Between premultiplied colours.
    const std::vector<ColorStop> fading = {{0, 0, 0}, {1, 1}};
    expectInBox(boxOf(linearPaint({0, 0, 800, 0, 0, 100}, fading)), 1, [](double x, double) {
        return std::array{0.0, 0.0, 255 * x / 800, 255 * x / 800};
    });
    // Degenerate ones paint nothing.
    EXPECT_EQ(boxOf(linearPaint({5, 5, 5, 5, 9, 9}, kRedToBlue)).bytes,
              boxOf(radialPaint({5, 5, 9, 5, 5, 9}, kRedToBlue)).bytes);
    EXPECT_EQ(boxOf(linearPaint({0, 0, 9, 0, 0, 9}, {})).at(40, 40), Pixel{});
}

TEST_F(ColorGraphTest, TransformsMoveShapesAndFills) {
    const Paint fill = linearPaint({0, 0, 800, 0, 0, 100}, kRedToBlue);
    const Paint shape = glyphPaint(box, fill);
    const ColorCanvas plain = draw(shape);
    // The same mapping said in other ways.
    const std::vector<std::vector<Paint>> same = {
        {shape, translatePaint(200, -100, translatePaint(-200, 100, shape)),
         scalePaint(0.5, 1.5, 300, 200, scalePaint(1.99996, 0.66667, 300, 200, shape)),
         rotatePaint(0.25, 10, 20, rotatePaint(-0.25, 10, 20, shape))},
        {transformPaint({0, 1, -1, 0, 600, 0}, shape), rotatePaint(0.5, 300, 300, shape)},
        {transformPaint({1, 0, -0.5, 1, 0, 0}, shape), skewPaint(0.147584, 0, shape)},
        {transformPaint({1, 0.5, 0, 1, 0, 0}, shape), skewPaint(0, 0.147584, shape)},
        {scalePaint(0.5, 0.5, 0, 0, glyphPaint(box, fill)),
         transformPaint({0.5, 0, 0, 0.5, 0, 0}, glyphPaint(box, fill))},
    };
    for (size_t i = 0; i < same.size(); ++i) {
        const ColorCanvas first = draw(same[i].front());
        EXPECT_EQ(i == 0, first.bytes == plain.bytes);
        for (const Paint& other : same[i]) {
            const ColorCanvas drawn = draw(other);
            for (size_t p = 0; p < drawn.bytes.size(); ++p) {
                ASSERT_NEAR(drawn.bytes[p], first.bytes[p], 2) << i << " at " << p;
            }
        }
    }
    EXPECT_EQ(draw(scalePaint(0, 1, 0, 0, shape)).at(0, 40), Pixel{});
    // Text that is turned around is so from the units on.
    draw(shape);
    SkFont mirrored = colorFont(makeTypeface(files.back()), kSize);
    mirrored.setScaleX(-1);
    const ColorCanvas turned = colored(mirrored, base, 80, kBaseline, kSize, kSize);
    for (int x = 0; x < 80; ++x) {
        EXPECT_EQ(turned.at(79 - x, 40), plain.at(x, 40));
    }
}

TEST_F(ColorGraphTest, ClipBoxesAndNestedGlyphs) {
    const uint16_t inner = font.addGlyph(boxGlyph({}), 1000);
    const Paint red = glyphPaint(box, solidPaint(0));
    const Paint blue = translatePaint(100, 100, glyphPaint(box, solidPaint(1)));
    const ColorCanvas both = drawAll({{base, layersPaint(2, 0), {{0, 0, 500, 400}}}, {inner, red}},
                                     SK_ColorBLACK, {red, blue});
    EXPECT_EQ(both.at(5, kBaseline - 5), (Pixel{255, 0, 0, 255}));
    EXPECT_EQ(both.at(30, kBaseline - 30), (Pixel{0, 0, 255, 255}));
    EXPECT_EQ(both.at(60, kBaseline - 30), Pixel{}) << "beyond the clip box";
    const ColorCanvas nested = drawAll(
        {{base, translatePaint(100, 0, colorGlyphPaint(inner))}, {inner, red, {{0, 0, 300, 300}}}});
    EXPECT_EQ(nested.at(15, kBaseline - 5), (Pixel{255, 0, 0, 255}));
    EXPECT_EQ(nested.at(5, kBaseline - 5), Pixel{});
    EXPECT_EQ(nested.at(45, kBaseline - 5), Pixel{}) << "beyond the nested clip box";
    // The text's colour, only there.
    const Paint own = glyphPaint(box, solidPaint(0xFFFF, 0.5));
    EXPECT_EQ(draw(own, SkColorSetARGB(255, 200, 100, 50)).at(9, 40), (Pixel{100, 50, 25, 128}));
    EXPECT_EQ(draw(own, SkColorSetARGB(255, 20, 10, 250)).at(9, 40), (Pixel{10, 5, 125, 128}));
    // Where colours are not asked for, the outline is drawn, here none.
    const SkFont plain(makeTypeface(files.back()), kSize);
    EXPECT_EQ(colored(plain, base, 0, kBaseline, kSize, kSize).at(9, 40), Pixel{});
    SkRect bounds;
    plain.getBounds(&base, 1, &bounds, nullptr);
    EXPECT_EQ(bounds, SkRect::MakeEmpty());
    colorFont(makeTypeface(files.back()), kSize).getBounds(&base, 1, &bounds, nullptr);
    EXPECT_EQ(bounds, SkRect::MakeLTRB(0, -60, 80, 0));
}

double softLight(double s, double d) {
    const double bent = d <= 0.25 ? ((16 * d - 12) * d + 4) * d : std::sqrt(d);
    return s <= 0.5 ? d - (1 - 2 * s) * d * (1 - d) : d + (2 * s - 1) * (bent - d);
}

double hardLight(double s, double d) {
    return s <= 0.5 ? 2 * s * d : 1 - 2 * (1 - s) * (1 - d);
}

// The blend modes of Compositing and Blending Level 1 from kScreen on, of straight colours.
double (*const kBlends[])(double s, double d) = {
    [](double s, double d) { return 1 - (1 - s) * (1 - d); },
    [](double s, double d) { return hardLight(d, s); },
    [](double s, double d) { return std::min(s, d); },
    [](double s, double d) { return std::max(s, d); },
    [](double s, double d) { return d == 0   ? 0
                                    : s == 1 ? 1
                                             : std::min(1.0, d / (1 - s)); },
    [](double s, double d) { return d == 1   ? 1
                                    : s == 0 ? 0
                                             : 1 - std::min(1.0, (1 - d) / s); },
    hardLight,
    softLight,
    [](double s, double d) { return std::fabs(s - d); },
    [](double s, double d) { return s + d - 2 * s * d; },
    [](double s, double d) { return s * d; },
};

// Premultiplied, from 0 to 255; of the modes before the HSL ones.
std::array<double, 4> compositeExactly(int mode, const Pixel& s, const Pixel& d) {
    const double as = s[3] / 255.0, ad = d[3] / 255.0;
    // What Porter and Duff's operators take of source and backdrop.
    const double factors[][2] = {
        {0, 0},      {1, 0},      {0, 1},       {1, 1 - as},  {1 - ad, 1},      {ad, 0}, {0, as},
        {1 - ad, 0}, {0, 1 - as}, {ad, 1 - as}, {1 - ad, as}, {1 - ad, 1 - as}, {1, 1}};
    std::array<double, 4> out;
    for (size_t c = 0; c < 4; ++c) {
        if (mode < static_cast<int>(std::size(factors))) {
            out[c] = std::min(s[c] * factors[mode][0] + d[c] * factors[mode][1], 255.0);
        } else {
            const double mixed =
                c == 3 ? 1
                       : kBlends[mode - FT_COLR_COMPOSITE_SCREEN](as > 0 ? s[c] / (255 * as) : 0,
                                                                  ad > 0 ? d[c] / (255 * ad) : 0);
            out[c] = s[c] * (1 - ad) + d[c] * (1 - as) + 255 * as * ad * mixed;
        }
    }
    return out;
}

Pixel premultipliedPixel(Random& random) {
    const uint8_t alpha = random.edgeByte();
    const auto channel = [&] {
        return static_cast<uint8_t>(random.oneIn(4) ? alpha : random.between(0, alpha));
    };
    return {channel(), channel(), channel(), alpha};
}

TEST(ColorComposite, ModesAreTheStandards) {
    const auto lum = [](const Pixel& p) { return 0.3 * p[0] + 0.59 * p[1] + 0.11 * p[2]; };
    const auto isGrey = [](const Pixel& p) { return p[0] == p[1] && p[1] == p[2]; };
    Random random(7);
    GX_TRACE_SEED(random);
    for (int round = 0; round < 60000; ++round) {
        const int mode = random.between(0, FT_COLR_COMPOSITE_MAX);
        SCOPED_TRACE(mode);
        const Pixel source = premultipliedPixel(random), backdrop = premultipliedPixel(random);
        Pixel out = backdrop;
        portable::composite(mode, source.data(), out.data(), 1);
        ASSERT_LE(std::max({out[0], out[1], out[2]}), out[3]);
        if (mode == FT_COLR_COMPOSITE_MAX) {
            ASSERT_EQ(out, Pixel());
        } else if (mode < FT_COLR_COMPOSITE_HSL_HUE) {
            const auto expected = compositeExactly(mode, source, backdrop);
            const double tolerance = mode <= FT_COLR_COMPOSITE_PLUS ? 1.01 : 0.51;
            for (size_t c = 0; c < 4; ++c) ASSERT_NEAR(out[c], expected[c], tolerance);
        } else if (source[3] == 255 && backdrop[3] == 255) {
            // What the names say.
            const bool ofSource = mode == FT_COLR_COMPOSITE_HSL_LUMINOSITY;
            ASSERT_NEAR(lum(out), lum(ofSource ? source : backdrop), 1.3);
            if (mode == FT_COLR_COMPOSITE_HSL_SATURATION && isGrey(backdrop)) {
                ASSERT_TRUE(isGrey(out));
            }
        }
    }
}

TEST_F(ColorGraphTest, CompositesAreOfWholePicturesInsideTheClip) {
    const Paint lower = glyphPaint(box, solidPaint(0));
    const Paint upper = translatePaint(400, 0, glyphPaint(box, solidPaint(2)));
    const ColorCanvas out = draw(compositePaint(FT_COLR_COMPOSITE_SRC_OUT, upper, lower));
    EXPECT_EQ(out.at(10, 40), Pixel{}) << "the backdrop goes";
    EXPECT_EQ(out.at(60, 40), Pixel{}) << "the source where the backdrop was";
    EXPECT_EQ(out.at(90, 40), (Pixel{0, 128, 0, 128}));
    const ColorCanvas clipped =
        draw(glyphPaint(box, compositePaint(FT_COLR_COMPOSITE_PLUS, upper, lower)));
    EXPECT_EQ(clipped.at(60, 40), (Pixel{255, 128, 0, 255}));
    EXPECT_EQ(clipped.at(90, 40), Pixel{});
}

// Every graph ends.
TEST_F(ColorGraphTest, HostileGraphsEnd) {
    const uint16_t other = font.addGlyph(boxGlyph({}), 1000);
    const Paint shape = glyphPaint(box, solidPaint(0));
    Paint deep = shape;
    for (int i = 0; i < 200; ++i) deep = translatePaint(1, 0, deep);
    std::vector<Paint> doubling = {shape};
    for (int i = 1; i < 40; ++i) {
        doubling.push_back(
            compositePaint(FT_COLR_COMPOSITE_PLUS, layersPaint(1, i - 1), layersPaint(1, i - 1)));
    }
    std::vector<Paint> crowd(255, layersPaint(255, 0));
    crowd.front() = shape;
    const auto middle = [&](const std::vector<GraphGlyph>& glyphs,
                            const std::vector<Paint>& layers) {
        return drawAll(glyphs, SK_ColorBLACK, layers).at(40, 40);
    };
    const Pixel red = {255, 0, 0, 255};
    // A cycle ends where it closes: what is beside it is drawn.
    EXPECT_EQ(middle({{base, layersPaint(2, 0)}}, {shape, layersPaint(2, 0)}), red);
    EXPECT_EQ(middle({{base, colorGlyphPaint(other)}, {other, colorGlyphPaint(base)}}, {}),
              Pixel{});
    EXPECT_EQ(middle({{base, deep}}, {}), Pixel{}) << "beyond the depth";
    EXPECT_EQ(middle({{base, layersPaint(255, 0)}}, crowd), red);
    middle({{base, layersPaint(1, 39)}}, doubling);
    EXPECT_EQ(middle({{base, glyphPaint(999, solidPaint(0))}}, {}), Pixel{});
    EXPECT_EQ(middle({{base, solidPaint(0)}}, {}), Pixel{}) << "no shape, no box";
    EXPECT_EQ(middle({{base, solidPaint(0), {{300, 200, 500, 400}}}}, {}), red);
    middle({{base, solidPaint(0), {{-32768, -32768, 32767, 32767}}}}, {});
    middle({{base, scalePaint(1.9, 1.9, 30000, -30000, shape)}}, {});

    // Tables that end anywhere, and any byte of which is wrong.
    const Paint full =
        compositePaint(FT_COLR_COMPOSITE_SRC_ATOP,
                       glyphPaint(box, sweepPaint(0, 0, 0, 90, kRedToBlue)), layersPaint(2, 0));
    addColorGraphs(font, {{base, full, {{0, 0, 900, 900}}}}, kPalette, {shape, shape});
    const Bytes table = font.tables["COLR"];
    for (size_t i = 0; i < table.size(); ++i) {
        for (const bool cut : {false, true}) {
            Bytes& broken = font.tables["COLR"];
            broken = table;
            if (cut) broken.resize(i);
            if (!cut) broken[i] ^= i % 3 == 0 ? 0xFF : 1 << i % 8;
            files.push_back(font.build());
            const sk_sp<SkTypeface> typeface = makeTypeface(files.back());
            if (typeface) colored(colorFont(typeface, 20), base, 0, 20, 30, 30);
        }
    }
}

}  // namespace
}  // namespace gxtest
