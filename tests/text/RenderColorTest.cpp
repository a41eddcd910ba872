#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "TextFixture.h"
#include "effect/GxEffect.h"
#include "raster/kernels/BlendPixel.h"
#include "support/ColorGraphs.h"
#include "support/Fonts.h"

namespace GxFontEffect {
namespace {

using gxtest::Image;

constexpr const wchar_t* kMixed = L"Ag\U0001F600\U0001F680 jW";

// Text in Noto Sans and the emoji of Noto, at their strikes' size or at others.
class ColorGlyphText : public TextFixture {
protected:
    void SetUp() override {
        TextFixture::SetUp();
        useFonts({gxtest::loadFont(gxtest::kNotoSans), gxtest::loadFont(gxtest::kNotoArabic),
                  gxtest::loadFont(gxtest::kNotoColorEmoji)});
        text.SetTextColor(0xFF000000);
        text.setKeepsWholeInk(true);
        text.setKeepsColorGlyphs(true);
        stack().setConfineInside(true);
    }

    void useFonts(const std::vector<std::shared_ptr<minikin::MinikinFont>>& fonts) {
        std::vector<std::shared_ptr<minikin::FontFamily>> families;
        for (const auto& font : fonts) families.push_back(gxtest::makeFamily(font));
        ASSERT_TRUE(text.SetFontFamilies(families, 400));
    }
    GxEffect& stack() { return *text.GetEffect(); }
    Image drawn() { return render(380, 90); }
    Image silhouettes() {
        text.setKeepsColorGlyphs(false);
        const Image image = drawn();
        text.setKeepsColorGlyphs(true);
        return image;
    }
};

uint32_t alphaOf(uint32_t pixel) {
    return pixel >> 24;
}

// What lies under and over the letters leaves opaque colours as the font has them, and everything
// else as it is around silhouettes.
TEST_F(ColorGlyphText, ComeOverTheirEffectsAndLeaveTheLettersAlone) {
    constexpr GxGradient kStops[] = {{0xFFFF0000, 1, 0}, {0xFF00FF00, 1, 1}};
    const std::vector<std::function<void()>> looks = {
        [&] { stack().addStrokeText(6, 0xFF203060, 1, 0, GxStrokeProperty::kOutside); },
        [&] { stack().addStrokeText(6, 0xFF203060, 1, 0, GxStrokeProperty::kCenter); },
        [&] { stack().addStrokeText(3, 0xFF203060, 1, 0, GxStrokeProperty::kInside); },
        [&] { stack().addOuterShadowText(45, 8, 8, 0xFF000000, 0.8f); },
        [&] {
            stack().addOuterGlowText(9, 0xFF00FFFF, 1, 0, nullptr);
            stack().addInnerGlowText(5, 0xFFFFFF00, 0.9f, 0, nullptr);
            stack().addInnerShadowText(45, 3, 4, 0xFF000000, 0.7f);
        },
        [&] { stack().addLinearGradientText(90, 1, 1, 2, kStops); },
        [&] {
            stack().addEmbossText(0, 5, 3, 0, 0, 0, 1, 120, 30, 0xFFFFFFFF, 0.75f, 0xFF000000,
                                  0.75f);
        },
        [&] {
            stack().setSpan(stack().addLinearGradientText(0, 1, 1, 2, kStops), GXE_SPAN_LINE);
            const int shadow = stack().addOuterShadowText(90, 4, 3, 0xFF000000, 1);
            stack().setSilhouette(shadow, {GxSilhouette::kOutline, 4});
            stack().addStrokeText(4, 0xFFFFFFFF, 1, 0, GxStrokeProperty::kOutside);
        },
    };
    for (const float size : {33.0f, 72.0f}) {
        setPaint(size);
        setLines({kMixed});
        const Image bare = drawn();
        const Image bareSilhouettes = silhouettes();
        text.SetTextColor(0xFF00FF00);
        const Image bareInGreen = drawn();
        text.SetTextColor(0xFF000000);
        ASSERT_EQ(bare.width, bareSilhouettes.width);
        // Of emoji the colours do not follow the text's.
        const auto isEmoji = [&](size_t i) {
            return alphaOf(bare.pixels[i]) == 255 && bare.pixels[i] == bareInGreen.pixels[i];
        };
        size_t opaque = 0;
        for (size_t i = 0; i < bare.pixels.size(); ++i) {
            opaque += isEmoji(i) ? 1 : 0;
            ASSERT_EQ(alphaOf(bare.pixels[i]), alphaOf(bareSilhouettes.pixels[i]));
        }
        EXPECT_GT(opaque, static_cast<size_t>(size * size));
        for (size_t look = 0; look < looks.size(); ++look) {
            stack().cleanAllEffect();
            looks[look]();
            const Image effects = drawn();
            const Image around = silhouettes();
            const int left = stack().getLeftOffset(), top = stack().getTopOffset();
            size_t differ = 0;
            for (int y = 0; y < effects.height; ++y) {
                for (int x = 0; x < effects.width; ++x) {
                    const uint32_t pixel = effects.pixels[size_t(y) * effects.width + x];
                    const int bx = x - left, by = y - top;
                    const bool inside = bx >= 0 && by >= 0 && bx < bare.width && by < bare.height;
                    const size_t i = size_t(by) * bare.width + bx;
                    if (inside && isEmoji(i)) {
                        ASSERT_EQ(pixel, bare.pixels[i]) << look << " at " << x << ", " << y;
                    } else if (!inside || alphaOf(bare.pixels[i]) == 0) {
                        // Only bevels and inner effects of touching glyphs could tell.
                        differ += pixel != around.pixels[size_t(y) * effects.width + x] ? 1 : 0;
                    }
                }
            }
            EXPECT_EQ(differ, 0u) << look;
        }
        stack().cleanAllEffect();
    }
}

TEST_F(ColorGlyphText, FadeLikeLetters) {
    setPaint(72);
    setLines({kMixed});
    stack().addStrokeText(4, 0xFF804020, 1, 0, GxStrokeProperty::kOutside);
    const Image opaque = drawn();
    text.SetTextColor(0x60000000);
    const Image faded = drawn();
    for (size_t i = 0; i < opaque.pixels.size(); ++i) {
        const uint32_t alpha = alphaOf(opaque.pixels[i]);
        ASSERT_EQ(alphaOf(faded.pixels[i]), kernels::scale(alpha, 0x60));
    }
    text.SetTextColor(0xFF000000);

    // At 0 letters and emoji leave the same hole.
    text.setFadesFill(true);
    stack().setTextOpacity(0);
    const Image hollow = drawn();
    EXPECT_EQ(hollow.pixels, silhouettes().pixels);
    // Half of it, over nothing: what is beneath does not shine through.
    stack().setTextOpacity(0.5f);
    const Image half = drawn();
    size_t inside = 0;
    for (size_t i = 0; i < half.pixels.size(); ++i) {
        const bool isInside = alphaOf(hollow.pixels[i]) == 0 && alphaOf(opaque.pixels[i]) == 255;
        if (!isInside) continue;
        ++inside;
        ASSERT_NEAR(alphaOf(half.pixels[i]), 128, 1);
        for (const int shift : {0, 8, 16}) {
            ASSERT_NEAR(static_cast<int>(half.pixels[i] >> shift & 0xFF),
                        static_cast<int>(opaque.pixels[i] >> shift & 0xFF), 3);
        }
    }
    EXPECT_GT(inside, 5000u);
}

// Lines, directions and a view that shows only a part are those of the silhouettes.
TEST_F(ColorGlyphText, LieWhereTheirSilhouettesDo) {
    setPaint(40);
    stack().addOuterShadowText(45, 3, 2, 0xFF000000, 1);
    for (const bool wholeInk : {false, true}) {
        text.setKeepsWholeInk(wholeInk);
        for (const int direction : {1, -1}) {
            setLines({L"a\U0001F680\n", L"\u0645\U0001F600\u0631\U0001F469\u200D\U0001F680"},
                     direction);
            for (const int width : {300, 70}) {
                const Image color = render(width, 140);
                text.setKeepsColorGlyphs(false);
                const Image black = render(width, 140);
                text.setKeepsColorGlyphs(true);
                ASSERT_EQ(color.width, black.width);
                size_t colored = 0;
                for (size_t i = 0; i < color.pixels.size(); ++i) {
                    ASSERT_NEAR(alphaOf(color.pixels[i]), alphaOf(black.pixels[i]), 1);
                    colored += color.pixels[i] != black.pixels[i] ? 1 : 0;
                }
                EXPECT_GT(colored, 500u);
            }
        }
    }
}

// A font whose 'a' is a graph, half of it in the text's colour, and whose 'b' is a plain letter.
TEST_F(ColorGlyphText, GraphsAreDrawnWithTheirShadows) {
    gxtest::SyntheticFont font;
    const uint16_t letters = font.addLetters('a', 'b');
    const uint16_t box = font.addGlyph(gxtest::boxGlyph({{0, 0, 400, 600}}), 1000);
    const auto part = [&](int palette) {
        return gxtest::glyphPaint(box, gxtest::solidPaint(palette));
    };
    gxtest::addColorGraphs(font, {{letters, gxtest::layersPaint(2, 0)}}, {0xFF3060C0},
                           {part(0), gxtest::translatePaint(400, 0, part(0xFFFF))});
    static const gxtest::Bytes file = font.build();
    useFonts({gxtest::makeFont(file.data(), file.size())});
    setPaint(50);
    text.SetTextColor(0xFFC02000);
    setLines({L"ab"});
    const Image image = drawn();
    const auto at = [](const Image& i, int x, int y) { return i.pixels[size_t(y) * i.width + x]; };
    EXPECT_EQ(at(image, lineX + 10, 35), 0xFF3060C0u);
    EXPECT_EQ(at(image, lineX + 30, 35), 0xFFC02000u);
    EXPECT_EQ(at(image, lineX + 45, 20), 0xFFC02000u);
    stack().addOuterShadowText(0, 10, 0, 0xFF102030, 1);  // what the graph leaves in place
    stack().addStrokeText(2, 0xFFFFFFFF, 1, 0, GxStrokeProperty::kOutside);
    const Image cast = drawn();
    const int dx = stack().getLeftOffset(), dy = stack().getTopOffset();
    EXPECT_EQ(at(cast, lineX + 10 + dx, 35 + dy), 0xFF3060C0u);
    EXPECT_EQ(at(cast, lineX - 1 + dx, 35 + dy), 0xFFFFFFFFu);
    // A font of letters alone is drawn as ever.
    useFonts({gxtest::loadFont(gxtest::kNotoSans)});
    setLines({L"Wolf"});
    EXPECT_EQ(drawn().pixels, silhouettes().pixels);
}

}  // namespace
}  // namespace GxFontEffect
