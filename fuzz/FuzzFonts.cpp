#include "FuzzFonts.h"

#include <array>
#include <string>

#include "SkStream.h"
#include "SkTypeface.h"
#include "hwui/MinikinSkia.h"
#include "minikin/Font.h"
#include "support/ColorGraphs.h"
#include "support/SyntheticFont.h"

namespace gxfuzz {

namespace {

using namespace gxtest;

SyntheticFont latin() {
    SyntheticFont font;
    font.addLetters(' ', '~');
    const uint16_t mark = font.addLetters(0x0300, 0x0304);
    font.addLetters(0x2010, 0x2014);
    font.map(0xE9, font.addGlyph(compositeGlyph({{font.glyphOf('e')}, {mark, 100, 200}}), 500));
    font.map(0xE8, font.addGlyph(compositeGlyph({{font.glyphOf(0xE9)}, {mark, 0, 300}}), 500));
    const uint16_t joined = font.addGlyph(boxGlyph({{0, 0, 300, 700}, {400, 0, 600, 700}}), 650);
    font.tables["GSUB"] =
        layoutTable({{"liga", 4, ligature(font.glyphOf('f'), font.glyphOf('i'), joined)},
                     {"smcp", 1, singleSubstitution({{font.glyphOf('a'), font.glyphOf('A')}})}});
    font.tables["GPOS"] = layoutTable({{"kern", 1, adjustment(font.glyphOf('V'), -40, -80)},
                                       {"mark", 1, adjustment(mark, -300, 0)}});
    // PUSHB[0] 1, SRP0, IUP[y]: enough for the interpreter to run.
    font.map('#', font.addGlyph(boxGlyph({{40, 0, 500, 700}}, {0xB0, 1, 0x10, 0x30}), 560));
    return font;
}

SyntheticFont boldLatin() {
    SyntheticFont font;
    font.addLetters(' ', '~');
    font.weight = 700;
    font.addWeightAxis(100, 700, 900, 90);
    return font;
}

SyntheticFont arabic() {
    SyntheticFont font;
    font.map(' ', font.addGlyph({}, 250));
    font.addLetters(0x0627, 0x064A);
    font.addLetters(0x064B, 0x0652);
    std::vector<LayoutFeature> features;
    for (const char* tag : {"init", "medi", "fina"}) {
        const uint16_t form = font.addLetters(0xE000, 0xE000);
        features.push_back({tag, 1, singleSubstitution({{font.glyphOf(0x0628), form}})});
    }
    features.push_back(
        {"rlig", 4, ligature(font.glyphOf(0x0644), font.glyphOf(0x0627), font.glyphOf(0x064A))});
    font.tables["GSUB"] = layoutTable(features);
    return font;
}

SyntheticFont indic() {
    SyntheticFont font;
    font.addLetters(0x0901, 0x094D);
    font.addLetters(0x0E01, 0x0E3A);
    font.addLetters(0x25CC, 0x25CC);
    return font;
}

SyntheticFont ideographs() {
    SyntheticFont font;
    font.unitsPerEm = 256;
    font.addLetters(0x3000, 0x3020);
    font.addLetters(0x3041, 0x3060);
    font.addLetters(0x4E00, 0x4E20);
    font.addLetters(0xAC00, 0xAC20);
    font.addLetters(0x1100, 0x1105);
    return font;
}

SyntheticFont color() {
    SyntheticFont font;
    const uint16_t first = font.addLetters(0x1F600, 0x1F606);
    font.addLetters(0x2764, 0x2764);
    const auto next = static_cast<uint16_t>(first + 1);
    const auto third = static_cast<uint16_t>(first + 2);
    addColorLayers(font, first, {next, third, next});
    return font;
}

SyntheticFont pictures() {
    SyntheticFont font;
    const uint16_t first = font.addLetters(0x1F600, 0x1F606);
    font.addLetters('0', '9');
    font.addLetters(0x0301, 0x0301);
    addPicture(font, first, 20, 18, 20);
    return font;
}

SyntheticFont growing() {
    SyntheticFont font;
    const uint16_t a = font.addLetters('a', 'c');
    std::vector<LayoutFeature> features;
    for (const char* tag : {"ccmp", "liga", "calt"}) {
        features.push_back({tag, 2, multiplication(a, {a, a, a, a})});
    }
    font.tables["GSUB"] = layoutTable(features);
    return font;
}

SyntheticFont graphs() {
    SyntheticFont font;
    const uint16_t first = font.addLetters(0x1F600, 0x1F603);
    font.addLetters('0', '9');
    const auto shape = static_cast<uint16_t>(first + 4);
    const auto glyph = [&](int i) { return static_cast<uint16_t>(first + i); };
    const std::vector<ColorStop> stops = {{0, 0}, {0.5, 0xFFFF, 0.5}, {1, 1}};
    const Paint linear = linearPaint({0, 0, 400, 100, 0, 300}, stops, Extend::kReflect);
    const Paint radial = radialPaint({200, 200, 10, 300, 200, 400}, stops, Extend::kRepeat);
    const Paint sweep = sweepPaint(200, 200, 30, 300, stops);
    const Paint turned =
        rotatePaint(0.3, 100, 100,
                    skewPaint(0.1, -0.1, scalePaint(1.5, -0.5, 50, 50, glyphPaint(shape, sweep))));
    addColorGraphs(
        font,
        {{glyph(0), layersPaint(3, 0), {{0, 0, 500, 500}}},
         {glyph(1), compositePaint(24, glyphPaint(shape, linear), colorGlyphPaint(glyph(0)))},
         {glyph(2), translatePaint(50, -50, transformPaint({1, 0.5, -0.5, 1, 10, 10}, turned))},
         {glyph(3), colorGlyphPaint(glyph(3))}},
        {0xFF205080, 0x80FF8000}, {glyphPaint(shape, radial), turned, layersPaint(3, 0)});
    return font;
}

Bytes make(FontKind kind) {
    switch (kind) {
        case kLatin:
            return latin().build();
        case kBoldLatin:
            return boldLatin().build();
        case kArabic:
            return arabic().build();
        case kIndic:
            return indic().build();
        case kIdeographs:
            return ideographs().build();
        case kColor:
            return color().build();
        case kPictures:
            return pictures().build();
        case kGrowing:
            return growing().build();
        case kGraphs:
            return graphs().build();
        case kFontKinds:
            break;
    }
    return {};
}

}  // namespace

const Bytes& fontFile(FontKind kind) {
    static std::array<Bytes, kFontKinds> files;
    Bytes& file = files[static_cast<size_t>(kind)];
    if (file.empty()) file = make(kind);
    return file;
}

std::shared_ptr<minikin::FontFamily> loadFamily(const Bytes& file, int index) {
    sk_sp<SkTypeface> typeface = SkTypeface::MakeFromStream(
        std::make_unique<SkMemoryStream>(file.data(), file.size()), index);
    if (!typeface) return nullptr;
    const auto font = std::make_shared<android::MinikinFontSkia>(
        std::move(typeface), file.data(), file.size(), "", index,
        std::vector<minikin::FontVariation>());
    std::vector<minikin::Font> fonts;
    fonts.push_back(minikin::Font::Builder(font).build());
    return std::make_shared<minikin::FontFamily>(std::move(fonts));
}

std::shared_ptr<minikin::FontFamily> fontFamily(FontKind kind) {
    static std::array<std::shared_ptr<minikin::FontFamily>, kFontKinds> families;
    std::shared_ptr<minikin::FontFamily>& family = families[static_cast<size_t>(kind)];
    if (!family) family = loadFamily(fontFile(kind), 0);
    return family;
}

}  // namespace gxfuzz
