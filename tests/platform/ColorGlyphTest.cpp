#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <functional>
#include <numbers>
#include <optional>
#include <string>
#include <vector>

#include "FreeTypeReference.h"
#include "SkDrawing.h"
#include "skia/ColorPaint.h"
#include "skia/GlyphCache.h"
#include "support/ColorGraphs.h"

namespace gxtest {
namespace {

struct Premultiplied {
    uint8_t r, g, b, a;
    bool operator==(const Premultiplied&) const = default;
};

struct ColorCanvas {
    ColorCanvas(int w, int h) : width(w), height(h), pixels(static_cast<size_t>(w) * h) {}
    void draw(const SkFont& font, const std::vector<PlacedGlyph>& glyphs,
              SkColor color = SK_ColorBLACK) {
        SkBitmap bitmap;
        const SkImageInfo info =
            SkImageInfo::Make(width, height, kRGBA_8888_SkColorType, kPremul_SkAlphaType);
        ASSERT_TRUE(bitmap.installPixels(info, pixels.data(), size_t{4} * width));
        SkPaint paint;
        paint.setColor(color);
        SkCanvas(bitmap).drawTextBlob(makeBlob(font, glyphs), 0, 0, paint);
    }
    Premultiplied at(int x, int y) const { return pixels[static_cast<size_t>(y) * width + x]; }

    int width;
    int height;
    std::vector<Premultiplied> pixels;
};

ColorCanvas colored(const SkFont& font, SkGlyphID glyph, float x, float y, int w, int h,
                    SkColor color = SK_ColorBLACK) {
    ColorCanvas canvas(w, h);
    canvas.draw(font, {{glyph, x, y}}, color);
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
    for (unsigned y = 0; y < picture.rows; ++y) {
        for (unsigned x = 0; x < picture.width; ++x) {
            const uint8_t* bgra = picture.buffer + y * picture.pitch + size_t{4} * x;
            const Premultiplied expected = {bgra[2], bgra[1], bgra[0], bgra[3]};
            ASSERT_EQ(native.at(10 + slot->bitmap_left + static_cast<int>(x),
                                130 - slot->bitmap_top + static_cast<int>(y)),
                      expected);
        }
    }
    // Whatever is drawn first, and for masks too large to keep.
    for (const float size : {7.0f, 40.0f, 72.0f, 190.0f, 300.0f}) {
        for (const float skew : {0.0f, -0.25f}) {
            for (const bool kept : {false, true}) {
                SkFont scaled(font, size, 1, skew);
                scaled.setColorGlyphs(kept);
                MaskCanvas mask(500, 420);
                const std::vector<PlacedGlyph> glyphs = {{face, 10, 330}};
                if (!kept) mask.draw(scaled, glyphs);
                const ColorCanvas color = colored(scaled, face, 10, 330, 500, 420);
                if (kept) mask.draw(scaled, glyphs);
                for (size_t i = 0; i < mask.pixels.size(); ++i) {
                    const Premultiplied& p = color.pixels[i];
                    ASSERT_EQ(p.a, mask.pixels[i]) << size;
                    ASSERT_LE(std::max({p.r, p.g, p.b}), p.a);
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
        const Premultiplied text = {static_cast<uint8_t>(SkColorGetR(color)),
                                    static_cast<uint8_t>(SkColorGetG(color)),
                                    static_cast<uint8_t>(SkColorGetB(color)), 255};
        EXPECT_EQ(drawn.at(20, 30), text);
        const Premultiplied half = drawn.at(60, 30);
        EXPECT_EQ(half, (Premultiplied{0x30, 0x20, 0x10, 0x80}))
            << "0x60, 0x40 and 0x20 of 255, halved";
        EXPECT_EQ(drawn.at(90, 30), Premultiplied{});
    }
    // The paint's alpha fades them as they are.
    const ColorCanvas faded =
        colored(SkFont(typeface, 100), base, 0, 60, 100, 80, SkColorSetARGB(128, 255, 255, 255));
    EXPECT_EQ(faded.at(60, 30), (Premultiplied{0x18, 0x10, 0x08, 0x40}));
    EXPECT_EQ(faded.at(20, 30), (Premultiplied{0x80, 0x80, 0x80, 0x80}));
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
                const Premultiplied p = drawn.at(x, y);
                const std::array<uint8_t, 4> actual = {p.r, p.g, p.b, p.a};
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
    EXPECT_EQ(cone.at(10, kBaseline - 30).a, 0);
    EXPECT_EQ(cone.at(30, kBaseline - 55).a, 0);
    // The last circle that holds a point of the axis has it on its left: x = 200 + 400 t - 200 t.
    EXPECT_NEAR(cone.at(30, kBaseline - 30).b, 255 * (305.0 - 200) / 200, 3);
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
    EXPECT_EQ(boxOf(linearPaint({5, 5, 5, 5, 9, 9}, kRedToBlue)).pixels,
              boxOf(radialPaint({5, 5, 9, 5, 5, 9}, kRedToBlue)).pixels);
    EXPECT_EQ(boxOf(linearPaint({0, 0, 9, 0, 0, 9}, {})).at(40, 40), Premultiplied{});
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
        EXPECT_EQ(i == 0, first.pixels == plain.pixels);
        for (const Paint& other : same[i]) {
            const ColorCanvas drawn = draw(other);
            for (size_t p = 0; p < drawn.pixels.size(); ++p) {
                ASSERT_NEAR(drawn.pixels[p].b, first.pixels[p].b, 2) << i << " at " << p;
                ASSERT_NEAR(drawn.pixels[p].a, first.pixels[p].a, 2) << i << " at " << p;
            }
        }
    }
    EXPECT_EQ(draw(scalePaint(0, 1, 0, 0, shape)).at(0, 40), Premultiplied{});
    // Text that is turned around, leaning or beyond the mask size is so from the units on.
    SkFont mirrored = colorFont(makeTypeface(files.front()), kSize);
    addColorGraphs(font, {{base, shape}}, kPalette);
    files.push_back(font.build());
    mirrored = colorFont(makeTypeface(files.back()), kSize);
    mirrored.setScaleX(-1);
    const ColorCanvas turned = colored(mirrored, base, 80, kBaseline, kSize, kSize);
    for (int x = 0; x < 80; ++x) {
        EXPECT_EQ(turned.at(79 - x, 40), plain.at(x, 40));
    }
    const ColorCanvas large =
        colored(colorFont(makeTypeface(files.back()), 400), base, 0, 280, 400, 300);
    for (int y = 10; y < kBaseline; y += 7) {
        for (int x = 0; x < 80; x += 7) {
            EXPECT_NEAR(large.at(4 * x + 2, 4 * y + 2).b, plain.at(x, y).b, 2);
        }
    }
}

TEST_F(ColorGraphTest, ClipBoxesAndNestedGlyphs) {
    const uint16_t inner = font.addGlyph(boxGlyph({}), 1000);
    const Paint red = glyphPaint(box, solidPaint(0));
    const Paint blue = translatePaint(100, 100, glyphPaint(box, solidPaint(1)));
    const ColorCanvas both = drawAll({{base, layersPaint(2, 0), {{0, 0, 500, 400}}}, {inner, red}},
                                     SK_ColorBLACK, {red, blue});
    EXPECT_EQ(both.at(5, kBaseline - 5), (Premultiplied{255, 0, 0, 255}));
    EXPECT_EQ(both.at(30, kBaseline - 30), (Premultiplied{0, 0, 255, 255}));
    EXPECT_EQ(both.at(60, kBaseline - 30), Premultiplied{}) << "beyond the clip box";
    const ColorCanvas nested = drawAll(
        {{base, translatePaint(100, 0, colorGlyphPaint(inner))}, {inner, red, {{0, 0, 300, 300}}}});
    EXPECT_EQ(nested.at(15, kBaseline - 5), (Premultiplied{255, 0, 0, 255}));
    EXPECT_EQ(nested.at(5, kBaseline - 5), Premultiplied{});
    EXPECT_EQ(nested.at(45, kBaseline - 5), Premultiplied{}) << "beyond the nested clip box";
    // The text's colour, only there.
    const Paint own = glyphPaint(box, solidPaint(0xFFFF, 0.5));
    EXPECT_EQ(draw(own, SkColorSetARGB(255, 200, 100, 50)).at(9, 40),
              (Premultiplied{100, 50, 25, 128}));
    EXPECT_EQ(draw(own, SkColorSetARGB(255, 20, 10, 250)).at(9, 40),
              (Premultiplied{10, 5, 125, 128}));
    // Where colours are not asked for, the outline is drawn, here none.
    const SkFont plain(makeTypeface(files.back()), kSize);
    EXPECT_EQ(colored(plain, base, 0, kBaseline, kSize, kSize).at(9, 40), Premultiplied{});
    SkRect bounds;
    plain.getBounds(&base, 1, &bounds, nullptr);
    EXPECT_EQ(bounds, SkRect::MakeEmpty());
    colorFont(makeTypeface(files.back()), kSize).getBounds(&base, 1, &bounds, nullptr);
    EXPECT_EQ(bounds, SkRect::MakeLTRB(0, -60, 80, 0));
}

// The blend modes of Compositing and Blending Level 1, straight colours and alphas from 0 to 1.
double blendChannel(int mode, double s, double d) {
    const auto hard = [](double a, double b) {
        return a <= 0.5 ? 2 * a * b : 1 - 2 * (1 - a) * (1 - b);
    };
    switch (mode) {
        case FT_COLR_COMPOSITE_SCREEN:
            return 1 - (1 - s) * (1 - d);
        case FT_COLR_COMPOSITE_OVERLAY:
            return hard(d, s);
        case FT_COLR_COMPOSITE_DARKEN:
            return std::min(s, d);
        case FT_COLR_COMPOSITE_LIGHTEN:
            return std::max(s, d);
        case FT_COLR_COMPOSITE_COLOR_DODGE:
            return d == 0 ? 0 : s == 1 ? 1 : std::min(1.0, d / (1 - s));
        case FT_COLR_COMPOSITE_COLOR_BURN:
            return d == 1 ? 1 : s == 0 ? 0 : 1 - std::min(1.0, (1 - d) / s);
        case FT_COLR_COMPOSITE_HARD_LIGHT:
            return hard(s, d);
        case FT_COLR_COMPOSITE_SOFT_LIGHT: {
            const double bent = d <= 0.25 ? ((16 * d - 12) * d + 4) * d : std::sqrt(d);
            return s <= 0.5 ? d - (1 - 2 * s) * d * (1 - d) : d + (2 * s - 1) * (bent - d);
        }
        case FT_COLR_COMPOSITE_DIFFERENCE:
            return std::fabs(s - d);
        case FT_COLR_COMPOSITE_EXCLUSION:
            return s + d - 2 * s * d;
        case FT_COLR_COMPOSITE_MULTIPLY:
            return s * d;
        default:
            return s;
    }
}

TEST(ColorComposite, ModesAreTheStandards) {
    const auto lum = [](const std::array<double, 3>& c) {
        return 0.3 * c[0] + 0.59 * c[1] + 0.11 * c[2];
    };
    const auto sat = [](const std::array<double, 3>& c) {
        return std::max({c[0], c[1], c[2]}) - std::min({c[0], c[1], c[2]});
    };
    const auto factors = [](int mode, double as,
                            double ad) -> std::optional<std::array<double, 2>> {
        const std::array<double, 2> all[] = {
            {0, 0},       {1, 0},           {0, 1},      {1, 1 - as}, {1 - ad, 1},
            {ad, 0},      {0, as},          {1 - ad, 0}, {0, 1 - as}, {ad, 1 - as},
            {1 - ad, as}, {1 - ad, 1 - as}, {1, 1}};
        return mode < 13 ? std::optional(all[mode]) : std::nullopt;
    };
    constexpr uint8_t kLevels[] = {0, 60, 128, 200, 255};
    for (int mode = 0; mode <= FT_COLR_COMPOSITE_MAX; ++mode) {
        for (const uint8_t as : kLevels) {
            for (const uint8_t ad : kLevels) {
                for (int seed = 0; seed < 25; ++seed) {
                    uint8_t s[4] = {0, 0, 0, as};
                    uint8_t d[4] = {0, 0, 0, ad};
                    for (int c = 0; c < 3; ++c) {
                        s[c] = static_cast<uint8_t>(as * ((seed * 7 + c * 5) % 11) / 10);
                        d[c] = static_cast<uint8_t>(ad * ((seed * 3 + c * 4) % 11) / 10);
                    }
                    const double sa = as / 255.0, da = ad / 255.0;
                    std::array<double, 3> sc{}, dc{};
                    for (size_t c = 0; c < 3; ++c) {
                        sc[c] = as ? s[c] / double(as) : 0;
                        dc[c] = ad ? d[c] / double(ad) : 0;
                    }
                    uint8_t out[4];
                    std::copy_n(d, 4, out);
                    portable::composite(mode, s, out, 1);
                    ASSERT_LE(std::max({out[0], out[1], out[2]}), out[3]) << mode;
                    if (mode == FT_COLR_COMPOSITE_MAX) {
                        ASSERT_EQ(out[3], 0);
                        continue;
                    }
                    if (const auto f = factors(mode, sa, da)) {
                        for (size_t c = 0; c < 4; ++c) {
                            ASSERT_NEAR(out[c], std::min(s[c] * (*f)[0] + d[c] * (*f)[1], 255.0),
                                        1.01)
                                << mode;
                        }
                        continue;
                    }
                    ASSERT_NEAR(out[3], 255 * (sa + da - sa * da), 0.51);
                    if (mode >= FT_COLR_COMPOSITE_HSL_HUE) {
                        // What the names say, where nothing has to be cut.
                        if (as != 255 || ad != 255) continue;
                        const std::array<double, 3> result = {out[0] / 255.0, out[1] / 255.0,
                                                              out[2] / 255.0};
                        const bool ofSource = mode == FT_COLR_COMPOSITE_HSL_LUMINOSITY;
                        ASSERT_NEAR(lum(result), lum(ofSource ? sc : dc), 0.005) << mode;
                        if (mode == FT_COLR_COMPOSITE_HSL_SATURATION && sat(dc) == 0) {
                            ASSERT_NEAR(sat(result), 0, 0.005);
                        }
                        continue;
                    }
                    for (size_t c = 0; c < 3; ++c) {
                        const double mixed = blendChannel(mode, sc[c], dc[c]);
                        const double expected =
                            sa * (1 - da) * sc[c] + da * (1 - sa) * dc[c] + sa * da * mixed;
                        ASSERT_NEAR(out[c], 255 * expected, 0.51) << mode;
                    }
                }
            }
        }
    }
}

TEST_F(ColorGraphTest, CompositesAreOfWholePicturesInsideTheClip) {
    const Paint lower = glyphPaint(box, solidPaint(0));
    const Paint upper = translatePaint(400, 0, glyphPaint(box, solidPaint(2)));
    const ColorCanvas out = draw(compositePaint(FT_COLR_COMPOSITE_SRC_OUT, upper, lower));
    EXPECT_EQ(out.at(10, 40), Premultiplied{}) << "the backdrop goes";
    EXPECT_EQ(out.at(60, 40), Premultiplied{}) << "the source where the backdrop was";
    EXPECT_EQ(out.at(90, 40), (Premultiplied{0, 128, 0, 128}));
    const ColorCanvas clipped =
        draw(glyphPaint(box, compositePaint(FT_COLR_COMPOSITE_PLUS, upper, lower)));
    EXPECT_EQ(clipped.at(60, 40), (Premultiplied{255, 128, 0, 255}));
    EXPECT_EQ(clipped.at(90, 40), Premultiplied{});
}

// Every graph ends, and gives the same picture twice.
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
    const auto twice = [&](const std::vector<GraphGlyph>& glyphs,
                           const std::vector<Paint>& layers) {
        const ColorCanvas first = drawAll(glyphs, SK_ColorBLACK, layers);
        portable::GlyphCache::shared().clear();
        EXPECT_EQ(drawAll(glyphs, SK_ColorBLACK, layers).pixels, first.pixels);
        return first.at(40, 40);
    };
    const Premultiplied red = {255, 0, 0, 255};
    // A cycle ends where it closes: what is beside it is drawn.
    EXPECT_EQ(twice({{base, layersPaint(2, 0)}}, {shape, layersPaint(2, 0)}), red);
    EXPECT_EQ(twice({{base, colorGlyphPaint(other)}, {other, colorGlyphPaint(base)}}, {}),
              Premultiplied{});
    EXPECT_EQ(twice({{base, deep}}, {}), Premultiplied{}) << "beyond the depth";
    EXPECT_EQ(twice({{base, layersPaint(255, 0)}}, crowd), red);
    twice({{base, layersPaint(1, 39)}}, doubling);
    EXPECT_EQ(twice({{base, glyphPaint(999, solidPaint(0))}}, {}), Premultiplied{});
    EXPECT_EQ(twice({{base, solidPaint(0)}}, {}), Premultiplied{}) << "no shape, no box";
    EXPECT_EQ(twice({{base, solidPaint(0), {{300, 200, 500, 400}}}}, {}), red);
    twice({{base, solidPaint(0), {{-32768, -32768, 32767, 32767}}}}, {});
    twice({{base, scalePaint(1.9, 1.9, 30000, -30000, shape)}}, {});

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
