// Coverage, advances and boxes of glyphs against FreeType called directly with the device's flags.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <numeric>
#include <string>

#include "Figure.h"
#include "platform/FreeTypeReference.h"
#include "platform/SkDrawing.h"
#include "support/Random.h"

namespace gxtest {
namespace {

// With TrueType instructions, with those of an automatic hinter, with none worth the name, and CFF.
constexpr const char* kFonts[] = {kDejaVuSans, kNotoSans, kNotoArabic, kNotoDevanagari, kNotoCjk};
constexpr float kSizes[] = {5, 9, 12.5f, 16, 23.3f, 42.7f, 96, 171.9f, 240};

struct Hinting {
    SkFontHinting level;
    bool automatic;
    FT_Int32 flags;
};

constexpr Hinting kHintings[] = {
    {SkFontHinting::kNone, false, FT_LOAD_NO_HINTING | FT_LOAD_NO_AUTOHINT},
    {SkFontHinting::kSlight, false, FT_LOAD_TARGET_LIGHT | FT_LOAD_NO_AUTOHINT},
    {SkFontHinting::kNormal, false, FT_LOAD_TARGET_NORMAL | FT_LOAD_NO_AUTOHINT},
    {SkFontHinting::kFull, false, FT_LOAD_TARGET_NORMAL | FT_LOAD_NO_AUTOHINT},
    {SkFontHinting::kNormal, true, FT_LOAD_TARGET_NORMAL | FT_LOAD_FORCE_AUTOHINT},
};

// A font set up at random, and what it asks of FreeType.
struct GlyphSetting {
    SkFont font;
    GlyphRequest request;
    bool linear, alias, hasLinearAdvance;
    int quarters;  // of a pixel, where the glyph is drawn
};

GlyphSetting makeGlyphSetting(const sk_sp<SkTypeface>& typeface, FT_Face face, Random& random) {
    const float size = kSizes[random.between(0, std::size(kSizes) - 1)];
    const float scaleX = random.oneIn(3) ? 0.75f : 1;
    const float skewX = random.oneIn(3) ? -0.25f : 0;
    const Hinting& hinting = kHintings[random.between(0, std::size(kHintings) - 1)];
    const bool linear = random.oneIn(6), alias = random.oneIn(3);
    const bool embolden = random.oneIn(3), subpixel = random.oneIn(2);
    const int quarters = subpixel ? random.between(0, 3) : 0;
    GlyphSetting s{SkFont(typeface, size, scaleX, skewX), {}, linear, alias, false, quarters};
    s.font.setHinting(hinting.level);
    s.font.setForceAutoHinting(hinting.automatic);
    s.font.setLinearMetrics(linear);
    s.font.setEdging(alias ? SkFont::Edging::kAlias : SkFont::Edging::kAntiAlias);
    s.font.setEmbolden(embolden);
    s.font.setSubpixel(subpixel);

    const bool hinted = hinting.level != SkFontHinting::kNone && !linear && skewX == 0;
    s.hasLinearAdvance = !hinted || subpixel || (hinting.level == SkFontHinting::kSlight && !alias);
    const FT_Int32 autohint = hinting.flags & (FT_LOAD_FORCE_AUTOHINT | FT_LOAD_NO_AUTOHINT);
    s.request.width = to26Dot6(size * scaleX);
    s.request.height = to26Dot6(size);
    s.request.flags = FT_LOAD_IGNORE_GLOBAL_ADVANCE_WIDTH | FT_LOAD_COLOR | FT_LOAD_NO_BITMAP |
                      (!hinted ? FT_LOAD_NO_HINTING | autohint
                       : alias ? FT_LOAD_TARGET_MONO | autohint
                               : hinting.flags);
    s.request.shear = static_cast<FT_Fixed>(-skewX * 0x10000);
    s.request.dx = 16L * s.quarters;
    s.request.mono = alias;
    EXPECT_EQ(FT_Set_Char_Size(face, s.request.width, s.request.height, 72, 72), 0);
    if (embolden) {
        s.request.strength = FT_MulFix(face->units_per_EM, face->size->metrics.y_scale) / 34;
    }
    return s;
}

TEST(RasterTest, GlyphsAreFreeTypes) {
    constexpr int kGlyphs = 20000;
    Random random(61);
    GX_TRACE_SEED(random);
    std::array<uint8_t, 256> grey, plain;
    std::iota(plain.begin(), plain.end(), uint8_t{0});
    std::transform(plain.begin(), plain.end(), grey.begin(), blackTextGamma);
    Figure coverage("coverage against FreeType, glyphs");
    Figure advances("advances against FreeType, glyphs");
    Figure boxes("boxes against FreeType, glyphs");
    for (const char* file : kFonts) {
        FreeTypeReference reference(fontBytes(file));
        const sk_sp<SkTypeface> typeface = loadTypeface(file);
        const auto last = std::min<int>(reference.face()->num_glyphs, 30000) - 1;
        for (int n = 0; n < kGlyphs / static_cast<int>(std::size(kFonts)); ++n) {
            const GlyphSetting setting = makeGlyphSetting(typeface, reference.face(), random);
            const auto glyph = static_cast<SkGlyphID>(random.between(0, last));
            SCOPED_TRACE(std::string(file) + " glyph " + std::to_string(glyph));
            const SkFont& font = setting.font;
            const ReferenceGlyph expected = reference.take(glyph, setting.request);
            const int x = static_cast<int>(font.getSize()) + 8 - std::min(expected.box.fLeft, 0);
            const int y = static_cast<int>(font.getSize()) + 8 - std::min(expected.box.fTop, 0);
            MaskCanvas mask(x + std::max(expected.box.fRight, 0) + 8,
                            y + std::max(expected.box.fBottom, 0) + 8);
            mask.draw(font, {{glyph, static_cast<float>(x) + setting.quarters * 0.25f,
                              static_cast<float>(y)}});
            const auto curve = [&](uint8_t c) { return setting.alias ? plain[c] : grey[c]; };
            EXPECT_TRUE(coverage.add(holds(mask, expected, x, y, curve)));

            // Linear metrics are taken at another size, and boxes at the first phase.
            if (setting.linear || setting.quarters != 0) continue;
            float advance = -1;
            SkRect box = SkRect::MakeWH(-1, -1);
            font.getWidths(&glyph, 1, &advance);
            font.getBounds(&glyph, 1, &box, nullptr);
            const float expectedAdvance =
                setting.hasLinearAdvance ? expected.linearAdvance : expected.advance;
            EXPECT_TRUE(advances.add(advance == expectedAdvance))
                << advance << " " << expectedAdvance;
            const SkIRect& e = expected.box;
            const SkRect expectedBox = e.isEmpty()
                                           ? SkRect::MakeEmpty()
                                           : SkRect::MakeLTRB(e.fLeft, e.fTop, e.fRight, e.fBottom);
            EXPECT_TRUE(boxes.add(box == expectedBox));
        }
    }
}

}  // namespace
}  // namespace gxtest
