// Coverage, advances and boxes of glyphs against FreeType called directly with the device's flags.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>
#include <string>
#include <vector>

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

struct GlyphSetting {
    float size, scaleX, skewX;
    Hinting hinting;
    bool linear, alias, embolden, subpixel;
    int quarters;  // of a pixel, where the glyph is drawn

    bool isHinted() const { return hinting.level != SkFontHinting::kNone && !linear && skewX == 0; }
    bool hasLinearAdvance() const {
        return !isHinted() || subpixel || (hinting.level == SkFontHinting::kSlight && !alias);
    }
};

GlyphSetting makeGlyphSetting(Random& random) {
    GlyphSetting s{};
    s.size = kSizes[random.between(0, std::size(kSizes) - 1)];
    s.scaleX = random.oneIn(3) ? 0.75f : 1;
    s.skewX = random.oneIn(3) ? -0.25f : 0;
    s.hinting = kHintings[random.between(0, std::size(kHintings) - 1)];
    s.linear = random.oneIn(6);
    s.alias = random.oneIn(3);
    s.embolden = random.oneIn(3);
    s.subpixel = random.oneIn(2);
    s.quarters = s.subpixel ? random.between(0, 3) : 0;
    return s;
}

SkFont makeFont(const sk_sp<SkTypeface>& typeface, const GlyphSetting& s) {
    SkFont font(typeface, s.size, s.scaleX, s.skewX);
    font.setHinting(s.hinting.level);
    font.setForceAutoHinting(s.hinting.automatic);
    font.setLinearMetrics(s.linear);
    font.setEdging(s.alias ? SkFont::Edging::kAlias : SkFont::Edging::kAntiAlias);
    font.setEmbolden(s.embolden);
    font.setSubpixel(s.subpixel);
    return font;
}

GlyphRequest makeRequest(FT_Face face, const GlyphSetting& s) {
    GlyphRequest request;
    request.width = to26Dot6(s.size * s.scaleX);
    request.height = to26Dot6(s.size);
    request.flags = FT_LOAD_IGNORE_GLOBAL_ADVANCE_WIDTH | FT_LOAD_COLOR | FT_LOAD_NO_BITMAP;
    const FT_Int32 autohint = FT_LOAD_FORCE_AUTOHINT | FT_LOAD_NO_AUTOHINT;
    if (!s.isHinted()) {
        request.flags |= FT_LOAD_NO_HINTING | (s.hinting.flags & autohint);
    } else {
        request.flags |=
            s.alias ? FT_LOAD_TARGET_MONO | (s.hinting.flags & autohint) : s.hinting.flags;
    }
    request.shear = static_cast<FT_Fixed>(-s.skewX * 0x10000);
    request.dx = 16L * s.quarters;
    request.mono = s.alias;
    EXPECT_EQ(FT_Set_Char_Size(face, request.width, request.height, 72, 72), 0);
    if (s.embolden) {
        request.strength = FT_MulFix(face->units_per_EM, face->size->metrics.y_scale) / 34;
    }
    return request;
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
            const GlyphSetting setting = makeGlyphSetting(random);
            const auto glyph = static_cast<SkGlyphID>(random.between(0, last));
            SCOPED_TRACE(std::string(file) + " glyph " + std::to_string(glyph));
            const SkFont font = makeFont(typeface, setting);
            GlyphRequest request = makeRequest(reference.face(), setting);
            const ReferenceGlyph expected = reference.take(glyph, request);

            const int x = static_cast<int>(setting.size) + 8 - std::min(expected.box.fLeft, 0);
            const int y = static_cast<int>(setting.size) + 8 - std::min(expected.box.fTop, 0);
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
                setting.hasLinearAdvance() ? expected.linearAdvance : expected.advance;
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
