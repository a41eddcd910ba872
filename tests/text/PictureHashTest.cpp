// Whole pictures, letters to pixels, by hashes that every machine must give: x86-64 and ARM, any
// instruction set, any compiler. The font is made up, so that no package decides.
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "TextFixture.h"
#include "effect/GxEffect.h"
#include "support/ColorGraphs.h"
#include "support/Fonts.h"

namespace GxFontEffect {
namespace {

constexpr GxGradient kStops[] = {{0xFFFF2000, 1, 0}, {0xFF20FF40, 0.8f, 0.4f}, {0xFF1020F0, 1, 1}};

// FNV-1a of the extents and the pixels, low byte first.
uint64_t hashOf(const gxtest::Image& image) {
    uint64_t hash = 0xCBF29CE484222325u;
    const auto add = [&hash](uint32_t word) {
        for (int shift = 0; shift < 32; shift += 8) {
            hash = (hash ^ (word >> shift & 0xFF)) * 0x100000001B3u;
        }
    };
    add(static_cast<uint32_t>(image.width));
    add(static_cast<uint32_t>(image.height));
    for (const uint32_t pixel : image.pixels) add(pixel);
    return hash;
}

class PictureHash : public TextFixture {
protected:
    void SetUp() override {
        TextFixture::SetUp();
        using namespace gxtest;
        SyntheticFont font;
        const uint16_t letters = font.addLetters('a', 'f');
        const uint16_t box = font.addGlyph(boxGlyph({{0, 0, 500, 700}}), 1000);
        const std::vector<ColorStop> stops = {{0, 0}, {0.4, 0xFFFF, 0.5}, {1, 1}};
        const Paint sweep = glyphPaint(box, sweepPaint(250, 300, 20, 330, stops));
        const Paint radial =
            glyphPaint(box, radialPaint({250, 350, 20, 300, 350, 300}, stops, Extend::kReflect));
        addColorGraphs(
            font,
            {{letters, rotatePaint(0.1, 250, 350, sweep)},
             {static_cast<uint16_t>(letters + 1),
              compositePaint(20, skewPaint(0.1, 0, radial), scalePaint(1.2, 0.8, 0, 0, sweep))}},
            {0xFF3060C0, 0xC0F0D010});
        static const Bytes file = font.build();
        const auto family = gxtest::makeFamily(makeFont(file.data(), file.size()));
        ASSERT_TRUE(text.SetFontFamilies({family}, 400));
        setLines({L"abc fed\n", L"dab"});
    }
    GxEffect& stack() { return *text.GetEffect(); }
    uint64_t drawn() { return hashOf(render(230, 140)); }
};

TEST_F(PictureHash, IsTheSameOnEveryMachine) {
    const std::vector<std::pair<uint64_t, std::function<void()>>> looks = {
        {0x2025CF1B411D5F9Fu, [] {}},
        {0x973421B0AB6F9C93u,
         [&] { stack().addStrokeText(7, 0xFF804020, 0.7f, 0, GxStrokeProperty::kOutside); }},
        {0xDFE3BD766FB802F5u,
         [&] { stack().addStrokeText(5, 0xFF804020, 1, 0, GxStrokeProperty::kCenter); }},
        {0x88A8FC36DDFEDAB6u,
         [&] {
             stack().addOuterShadowText(30, 6, 9, 0xFF000000, 0.6f);
             stack().addInnerShadowText(200, 4, 5, 0xFF102040, 0.9f);
             stack().addLinearGradientText(35, 1.2f, 1, 3, kStops);
         }},
        {0x7AD59A676D21DD14u,
         [&] {
             stack().addOuterGlowText(12, 0xFFFFFF00, 0.8f, 3, kStops);
             stack().addInnerGlowText(6, 0xFFFFFFFF, 0.7f, 0, nullptr);
             stack().addRadialGradientText(0.8f, 0.9f, 3, kStops);
         }},
        {0x38AD9B14D1EAA9CFu,
         [&] {
             stack().addBevelText(1, 8, 4, 1, 0, 2, 1, 120, 30, 0xFFFFFFFF, 0.8f, 0xFF000000, 0.7f);
             stack().addEmbossText(0, 6, 3, 0, 0, 1, 1, 60, 40, 0xFFFFFFFF, 0.8f, 0xFF000000, 0.7f);
         }},
    };
    for (size_t i = 0; i < looks.size(); ++i) {
        stack().cleanAllEffect();
        looks[i].second();
        EXPECT_EQ(drawn(), looks[i].first) << "look " << i;
    }
    text.setKeepsWholeInk(true);
    EXPECT_EQ(drawn(), 0x38AD9B14D1EAA9CFu) << "whole ink";
    text.setKeepsColorGlyphs(true);
    EXPECT_EQ(drawn(), 0x593576AA252AD0F2u) << "colour glyphs";
    text.setFadesFill(true);
    stack().setTextOpacity(0.4f);
    EXPECT_EQ(drawn(), 0xC0B2A02D2F4CE912u) << "faded fill";
    setPaint(300);
    EXPECT_EQ(hashOf(render(900, 300)), 0xE19A0CF9FF9CD380u) << "beyond the size of masks";
}

}  // namespace
}  // namespace GxFontEffect
