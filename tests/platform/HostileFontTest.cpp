// Fonts that no tool would write: each gets an answer, in bounded time and memory. Without a limit
// most of them cost minutes, and the test runs out of its time.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "TextLayout.h"
#include "skia/GlyphEffort.h"
#include "support/NotFinite.h"
#include "support/SyntheticFont.h"

namespace gxtest {
namespace {

using portable::GlyphEffort;

uint16_t addBox(SyntheticFont& font, const Bytes& instructions = {}) {
    return font.addGlyph(boxGlyph({{0, 0, 500, 700}}, instructions), 500);
}

// `count` times the same glyph, all in one place.
uint16_t addPile(SyntheticFont& font, size_t count, uint16_t glyph,
                 const Bytes& instructions = {}) {
    return font.addGlyph(compositeGlyph(std::vector<Component>(count, {glyph}), instructions), 500);
}

// Repeats the operations, then jumps back to the first of them until the interpreter gives up.
Bytes endless(const Bytes& before, const Bytes& operations, int count) {
    Bytes out = before;
    for (int i = 0; i < count; ++i) out.insert(out.end(), operations.begin(), operations.end());
    const int back = static_cast<int>(before.size() - out.size()) - 3;
    out.insert(out.end(),
               {0xB8, static_cast<uint8_t>(back >> 8), static_cast<uint8_t>(back), 0x1C});
    return out;
}

// Set zone pointers and reference points, then shift all points of the zone again and again.
Bytes endlessShifting(uint8_t zone) {
    return endless({0xB0, zone, 0x16, 0xB0, 0, 0x11, 0xB0, 0, 0x12}, {0xB0, zone, 0x37}, 9000);
}

// The program of a simple glyph of one contour, which has none yet.
Bytes withProgram(Bytes glyph, const Bytes& program) {
    writeBig(glyph, 12, 2, static_cast<uint32_t>(program.size()));
    glyph.insert(glyph.begin() + 14, program.begin(), program.end());
    return glyph;
}

struct HostileFont {
    const char* name;
    // Gives 'a' a glyph.
    uint16_t (*make)(SyntheticFont&);
    bool isFont = true;
    bool isDrawn = true;

    friend void PrintTo(const HostileFont& font, std::ostream* out) { *out << font.name; }
};

uint16_t moveEm(SyntheticFont& font, uint32_t unitsPerEm) {
    font.unitsPerEm = unitsPerEm;
    return font.addGlyph(boxGlyph({{-8000, -8000, 8000, 8000}}), 32767);
}

const HostileFont kHostileFonts[] = {
    {"as many parts as are allowed",
     [](SyntheticFont& f) { return addPile(f, GlyphEffort::kMaxParts - 1, addBox(f)); }},
    {"one part more",
     [](SyntheticFont& f) { return addPile(f, GlyphEffort::kMaxParts, addBox(f)); }, true, false},
    {"made of itself", [](SyntheticFont& f) { return addPile(f, 2, 1); }, true, false},
    {"60 levels of two",
     [](SyntheticFont& f) {
         uint16_t glyph = f.addGlyph({}, 0);
         for (int level = 0; level < 60; ++level) glyph = addPile(f, 2, glyph);
         return glyph;
     },
     true, false},
    {"an endless program",
     [](SyntheticFont& f) {
         return addBox(f, endless({}, {0x20, 0x21}, 9000));
     }},
    {"an endless program over 30,000 points",
     [](SyntheticFont& f) {
         return f.addGlyph(withProgram(densePointGlyph(30000), endlessShifting(1)), 500);
     },
     true, false},
    {"an endless program over the points of its parts",
     [](SyntheticFont& f) {
         const uint16_t part = f.addGlyph(densePointGlyph(1000), 500);
         const uint16_t box = addBox(f);
         return f.addGlyph(compositeGlyph({{part}, {part}, {part}, {box}}, endlessShifting(1)),
                           500);
     }},
    {"endless programs of as many parts as are allowed",
     [](SyntheticFont& f) {
         return addPile(f, GlyphEffort::kMaxParts - 1, addBox(f, endlessShifting(1)));
     }},
    {"an endless program over 65,000 points of its own",
     [](SyntheticFont& f) {
         f.twilightPoints = 65000;
         f.tables["prep"] = endlessShifting(0);
         return addBox(f);
     }},
    {"60,000 layers of colour",
     [](SyntheticFont& f) {
         const uint16_t layer = addBox(f);
         const uint16_t base = addBox(f);
         addColorLayers(f, base, std::vector<uint16_t>(60000, layer));
         return base;
     }},
    {"65,535 glyphs",
     [](SyntheticFont& f) {
         for (int i = 0; i < 65533; ++i) f.addGlyph({}, 500);
         return addBox(f);
     }},
    {"a letter that grows 60-fold, 40 times over",
     [](SyntheticFont& f) {
         const uint16_t a = addBox(f);
         const LayoutFeature more = {"ccmp", 2, multiplication(a, std::vector<uint16_t>(60, a))};
         f.tables["GSUB"] = layoutTable(std::vector<LayoutFeature>(40, more));
         return a;
     }},
    {"no units per em", [](SyntheticFont& f) { return moveEm(f, 0); }, false},
    {"1 unit per em", [](SyntheticFont& f) { return moveEm(f, 1); }, false},
    {"16 units per em, a box of 16,000", [](SyntheticFont& f) { return moveEm(f, 16); }},
    {"65,535 units per em", [](SyntheticFont& f) { return moveEm(f, 65535); }, false},
    {"a picture of 120 pixels at 1 pixel per em",
     [](SyntheticFont& f) {
         const uint16_t a = addBox(f);
         addPicture(f, a, 1, 120, 120);
         return a;
     }},
};

class HostileFontTest : public testing::TestWithParam<HostileFont> {};

// Lays out and draws; returns the ink.
int layOutAndDraw(const std::u16string& text, const android::Typeface& typeface,
                  const android::Paint& paint) {
    const minikin::Layout layout = layOut(text, typeface, paint);
    for (const float length : lengthsOf(layout)) EXPECT_TRUE(std::isfinite(length));
    MaskCanvas mask(40, 40);
    drawLayout(layout, paint, 0, 30, &mask);
    return static_cast<int>(
        std::count_if(mask.pixels.begin(), mask.pixels.end(), [](uint8_t c) { return c != 0; }));
}

TEST_P(HostileFontTest, GetsAnAnswerSoon) {
    const HostileFont& hostile = GetParam();
    SyntheticFont made;
    made.map('a', hostile.make(made));
    const Bytes bytes = made.build();
    const auto font = makeFont(bytes.data(), bytes.size());
    ASSERT_EQ(font != nullptr, hostile.isFont);
    if (!font) return;
    const auto typeface = typefaceOf({makeFamily(font)});
    android::Paint paint;
    paint.setAntiAlias(true);
    for (const float size : {257.0f, 20.0f}) {
        paint.getSkFont().setSize(size);
        EXPECT_EQ(layOutAndDraw(u"aa", *typeface, paint) > 0, hostile.isDrawn) << size;
    }
    void (*const settings[])(android::Paint*, float) = {
        [](android::Paint* p, float v) { p->getSkFont().setSize(v); },
        [](android::Paint* p, float v) { p->getSkFont().setScaleX(v); },
        [](android::Paint* p, float v) { p->getSkFont().setSkewX(v); },
        [](android::Paint* p, float v) { p->setLetterSpacing(v); },
        [](android::Paint* p, float v) { p->setWordSpacing(v); },
    };
    for (const auto set : settings) {
        for (const float value : {0.0f, 1e-40f, 0.01f, -5.0f, 256.0f, 4000.0f, 1e9f, -3e38f,
                                  kInfinity, -kInfinity, kNaN}) {
            SCOPED_TRACE(value);
            android::Paint odd = paint;
            set(&odd, value);
            layOutAndDraw(u"a a", *typeface, odd);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Fonts, HostileFontTest, testing::ValuesIn(kHostileFonts),
                         [](const auto& info) { return std::to_string(info.index); });

TEST(HostileSizeTest, GlyphsOfTensOfThousandsOfPixelsFillTheirMask) {
    SyntheticFont made;
    const uint16_t glyph = moveEm(made, 16);  // 1,000 em wide and high
    const Bytes bytes = made.build();
    SkFont font(makeTypeface(bytes), 200);
    for (const auto edging : {SkFont::Edging::kAlias, SkFont::Edging::kAntiAlias}) {
        font.setEdging(edging);
        for (const int length : {32767, 32768, 65535, 70000}) {
            for (const bool wide : {true, false}) {
                MaskCanvas mask(wide ? length : 8, wide ? 8 : length);
                mask.draw(font, {{glyph, 0, 4}});
                EXPECT_EQ(std::count(mask.pixels.begin(), mask.pixels.end(), 255), 8 * length);
            }
        }
    }
}

// The fonts one behind the other in one file, their tables found from the file's start.
Bytes collection(const std::vector<Bytes>& fonts) {
    Bytes out = {'t', 't', 'c', 'f', 0, 1, 0, 0};
    appendBig(out, 4, static_cast<uint32_t>(fonts.size()));
    size_t start = out.size() + 4 * fonts.size();
    for (const Bytes& font : fonts) {
        appendBig(out, 4, static_cast<uint32_t>(start));
        start += font.size();
    }
    for (const Bytes& font : fonts) {
        const size_t directory = out.size();
        out.insert(out.end(), font.begin(), font.end());
        for (size_t i = 0; i < size_t{font[5]}; ++i) {
            const size_t offset = 12 + 16 * i + 8;
            const uint32_t inFont = readBig(font, offset, 4);
            writeBig(out, directory + offset, 4, static_cast<uint32_t>(directory) + inFont);
        }
    }
    return out;
}

TEST(FontFileTest, PartsAreCountedInEachFontOfACollection) {
    SyntheticFont modest;
    const uint16_t few = addPile(modest, 3, addBox(modest));
    SyntheticFont hostile;
    const uint16_t many = addPile(hostile, GlyphEffort::kMaxParts, addBox(hostile));
    ASSERT_EQ(few, many);
    const Bytes file = collection({modest.build(), hostile.build(), modest.build()});
    for (const int index : {0, 1, 2}) {
        const sk_sp<SkTypeface> typeface = SkTypeface::MakeFromStream(
            std::make_unique<SkMemoryStream>(file.data(), file.size()), index);
        ASSERT_TRUE(typeface) << index;
        MaskCanvas mask(40, 40);
        mask.draw(SkFont(typeface, 20), {{few, 5, 30}});
        const bool drawn =
            std::any_of(mask.pixels.begin(), mask.pixels.end(), [](uint8_t c) { return c != 0; });
        EXPECT_EQ(drawn, index != 1) << index;
    }
}

}  // namespace
}  // namespace gxtest
