// Glyphs, clusters and positions of single words against HarfBuzz's own program.
#include <gtest/gtest.h>
#include <hb.h>
#include <sys/wait.h>
#include <unicode/uchar.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <map>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "Figure.h"
#include "hwui/MinikinUtils.h"
#include "hwui/Paint.h"
#include "hwui/Typeface.h"
#include "minikin/LocaleList.h"
#include "minikin/SparseBitSet.h"
#include "platform/FreeTypeReference.h"
#include "support/Fonts.h"
#include "support/Random.h"
#include "support/TempFolder.h"

namespace gxtest {
namespace {

using android::MinikinUtils;
using android::Paint;
using android::Typeface;
using minikin::Bidi;
using minikin::Layout;

// A line of examples/scripts.tsv.
struct Sample {
    std::string name, font, locale;
    std::u32string text;
    int face;
};

std::u32string decoded(const std::string& utf8) {
    std::u32string text;
    for (size_t i = 0; i < utf8.size();) {
        UChar32 c = 0;
        U8_NEXT_UNSAFE(utf8.data(), i, c);
        text += static_cast<char32_t>(c);
    }
    return text;
}

std::string encoded(const std::u32string& text) {
    std::string utf8;
    for (const char32_t c : text) {
        char bytes[4];
        size_t length = 0;
        U8_APPEND_UNSAFE(bytes, length, c);
        utf8.append(bytes, length);
    }
    return utf8;
}

// Where the packages install a family's regular face.
void findFont(const std::string& family, Sample* sample) {
    const std::string collection = "Noto Sans CJK ";
    const std::map<std::string, int> faces = {{"JP", 0}, {"KR", 1}, {"SC", 2}, {"TC", 3}};
    if (family.rfind(collection, 0) == 0) {
        sample->font = kNotoCjk;
        sample->face = faces.at(family.substr(collection.size()));
        return;
    }
    std::string file = family;
    file.erase(std::remove(file.begin(), file.end(), ' '), file.end());
    sample->font = "truetype/noto/" + file + "-Regular.ttf";
    sample->face = 0;
}

std::vector<Sample> samples() {
    std::vector<Sample> result;
    std::ifstream file(GXTEXT_SCRIPTS);
    for (std::string line; std::getline(file, line);) {
        if (line.empty() || line[0] == '#') continue;
        std::istringstream stream(line);
        Sample sample;
        std::string title, family, text;
        std::getline(stream, sample.name, '\t');
        std::getline(stream, title, '\t');
        std::getline(stream, family, '\t');
        std::getline(stream, sample.locale, '\t');
        std::getline(stream, text);
        sample.text = decoded(text);
        findFont(family, &sample);
        result.push_back(sample);
    }
    return result;
}

hb_script_t scriptOf(char32_t c) {
    return hb_unicode_script(hb_unicode_funcs_get_default(), c);
}

bool isReal(hb_script_t script) {
    return script != HB_SCRIPT_COMMON && script != HB_SCRIPT_INHERITED;
}

// The words of the sample, and as many of random letters and marks of its scripts as asked for:
// nobody writes them, but the shapers have rules for all of them.
std::vector<std::u32string> wordsOf(const Sample& sample, const minikin::FontFamily& family,
                                    int randomWords, Random* random) {
    std::vector<std::u32string> words(1);
    std::set<hb_script_t> scripts;
    for (const char32_t c : sample.text) {
        if (c == ' ') {
            words.emplace_back();
        } else {
            words.back() += c;
        }
        if (isReal(scriptOf(c))) scripts.insert(scriptOf(c));
    }
    const auto hasNoLetter = [](const std::u32string& word) {
        return std::none_of(word.begin(), word.end(),
                            [](char32_t c) { return isReal(scriptOf(c)); });
    };
    words.erase(std::remove_if(words.begin(), words.end(), hasNoLetter), words.end());
    for (const hb_script_t script : scripts) {
        std::u32string letters, marks;
        for (uint32_t c = 0; c < family.getCoverage().length(); ++c) {
            if (scriptOf(c) != script || !family.getCoverage().get(c)) continue;
            if (U_GET_GC_MASK(c) & U_GC_L_MASK) letters += c;
            if (U_GET_GC_MASK(c) & U_GC_M_MASK) marks += c;
        }
        const auto pick = [random](const std::u32string& from) {
            return from[static_cast<size_t>(random->between(0, static_cast<int>(from.size()) - 1))];
        };
        for (int i = 0; i < randomWords; ++i) {
            std::u32string word(1, pick(letters));
            for (int n = random->between(0, 7); n > 0; --n) {
                const bool isMark = !marks.empty() && random->oneIn(2);
                word += isMark ? pick(marks) : pick(letters);
                if (random->oneIn(12))
                    word += U'\u200C' + static_cast<char32_t>(random->between(0, 1));
            }
            words.push_back(word);
        }
    }
    return words;
}

// How a font is set up on both sides.
struct Setting {
    const char* name;
    int size;
    float scaleX;
    const char* features;
    bool hinted;
    // Positions of HarfBuzz's program per pixel: as many as in layout where the advances come from
    // the font's tables, those of FreeType where it has to hint them.
    int unitsPerPixel() const { return hinted ? 64 : 256; }
};

constexpr Setting kSettings[] = {
    {"as they are", 40, 1, "", false},
    {"features off", 17, 1, "-kern,-liga,-clig,-calt,-mark", false},
    {"features on, narrow", 40, 0.75f, "dlig,smcp,ss01=1,'frac' on", false},
    {"hinted", 23, 1, "", true},
};

constexpr int kLoadFlags = FT_LOAD_TARGET_NORMAL | FT_LOAD_NO_AUTOHINT | FT_LOAD_NO_BITMAP |
                           FT_LOAD_IGNORE_GLOBAL_ADVANCE_WIDTH | FT_LOAD_COLOR;

struct ShapedGlyph {
    int id, cluster, dx, dy, ax, ay;
};

// One line of HarfBuzz's output.
std::vector<ShapedGlyph> parseGlyphs(const std::string& line) {
    std::vector<ShapedGlyph> glyphs;
    for (size_t at = line.find('{'); at != std::string::npos; at = line.find('{', at + 1)) {
        ShapedGlyph g;
        EXPECT_EQ(
            std::sscanf(line.c_str() + at, R"({"g":%d,"cl":%d,"dx":%d,"dy":%d,"ax":%d,"ay":%d})",
                        &g.id, &g.cluster, &g.dx, &g.dy, &g.ax, &g.ay),
            6)
            << line;
        glyphs.push_back(g);
    }
    return glyphs;
}

std::vector<std::vector<ShapedGlyph>> shapeByProgram(const Sample& sample, const Setting& setting,
                                                     const std::string& wordFile) {
    const auto pair = [&](int units) {
        const auto x = static_cast<int>(static_cast<float>(setting.size * units) * setting.scaleX);
        return "'" + std::to_string(x) + " " + std::to_string(setting.size * units) + "' ";
    };
    std::string command = "hb-shape --output-format=json --no-glyph-names --font-size=" +
                          pair(setting.unitsPerPixel()) + "--font-ppem=" + pair(1) +
                          "--face-index=" + std::to_string(sample.face) +
                          " --language=" + sample.locale + " --features=\"" + setting.features +
                          "\" --text-file='" + wordFile + "' --font-file='" +
                          fontPath(sample.font) + "'";
    if (setting.hinted) {
        command += " --font-funcs=ft --ft-load-flags=" + std::to_string(kLoadFlags);
    }
    std::vector<std::vector<ShapedGlyph>> result;
    FILE* pipe = popen(command.c_str(), "r");
    std::string line;
    for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe)) {
        if (c != '\n') {
            line += static_cast<char>(c);
            continue;
        }
        result.push_back(parseGlyphs(line));
        line.clear();
    }
    EXPECT_EQ(pclose(pipe), 0) << command;
    return result;
}

// Scripts that letter spacing would tear apart.
bool isSpaced(hb_script_t script) {
    for (const hb_script_t joined : {HB_SCRIPT_ARABIC, HB_SCRIPT_NKO, HB_SCRIPT_MONGOLIAN,
                                     HB_SCRIPT_DEVANAGARI, HB_SCRIPT_BENGALI, HB_SCRIPT_GURMUKHI}) {
        if (script == joined) return false;
    }
    return true;
}

struct Figures {
    Figure words{"shaping against hb-shape, words"};
    Figure glyphs{"glyph ids and offsets against hb-shape, glyphs"};
    Figure units{"clusters against hb-shape, UTF-16 units"};
    Figure advances{"advances against hb-shape, glyphs"};
    Figure bounds{"bounds against FreeType's boxes at these positions, words"};
    float widest = 0;
    ~Figures() {
        char text[80];
        std::snprintf(text, sizeof text, " by more than 1/64 px, the widest difference %.4f px",
                      widest);
        advances.note = text;
    }
};

// A little of it shows where clusters begin, too little to take ligatures apart.
constexpr float kLetterSpacing = 0.025f;

bool isSame(const Layout& layout, const std::vector<ShapedGlyph>& expected,
            const std::u32string& word, const Setting& setting, Figures* figures) {
    const auto unit = 1.0f / static_cast<float>(setting.unitsPerPixel());
    // Chains of marks and joined letters add up offsets, each rounded to other steps.
    const float tolerance = setting.hinted ? unit * static_cast<float>(expected.size()) : 0;
    std::vector<size_t> unitOf;
    size_t unitCount = 0;
    for (const char32_t c : word) {
        unitOf.push_back(unitCount);
        unitCount += c > 0xFFFF ? 2 : 1;
    }
    hb_script_t script = HB_SCRIPT_COMMON;
    for (const char32_t c : word) {
        if (!isReal(script)) script = scriptOf(c);
    }
    const double spacing =
        isSpaced(script) ? static_cast<double>(kLetterSpacing) * setting.size * setting.scaleX : 0;

    bool same = layout.nGlyphs() == expected.size();
    std::vector<double> advances(unitCount);
    double x = 0;
    double slack = 1e-4;
    for (size_t i = 0; same && i < expected.size(); ++i) {
        const ShapedGlyph& g = expected[i];
        const auto index = static_cast<int>(i);
        const bool begins = i == 0 || g.cluster != expected[i - 1].cluster;
        if (begins) {
            advances[unitOf[g.cluster]] += spacing;
            x += i == 0 ? spacing / 2 : spacing;
        }
        const bool glyphIsSame =
            static_cast<int>(layout.getGlyphId(index)) == g.id &&
            std::fabs(layout.getY(index) + static_cast<float>(g.dy) * unit) <= tolerance &&
            std::fabs(layout.getX(index) - (x + g.dx * unit)) <= tolerance + slack;
        same = figures->glyphs.add(glyphIsSame) && same;
        advances[unitOf[g.cluster]] += g.ax * unit;
        x += g.ax * unit;
        // Layout cuts advances to its fixed point, HarfBuzz rounds them.
        slack += setting.hinted ? unit : unit * 1.001;
        const float end = i + 1 < expected.size() ? layout.getX(index + 1) : layout.getAdvance();
        const bool nextBegins = i + 1 < expected.size() && expected[i + 1].cluster != g.cluster;
        const double gap = i + 1 == expected.size() ? spacing / 2 : nextBegins ? spacing : 0;
        const double nextDx = i + 1 < expected.size() ? expected[i + 1].dx * unit : 0;
        const double advance = end - nextDx - gap - (layout.getX(index) - g.dx * unit);
        const auto off = static_cast<float>(std::fabs(advance - g.ax * unit));
        figures->advances.add(off <= 1.0f / 64);
        figures->widest = std::max(figures->widest, off);
    }
    same = same && layout.getAdvances().size() == unitCount;
    for (size_t i = 0; same && i < unitCount; ++i) {
        same =
            figures->units.add(std::fabs(layout.getCharAdvance(i) - advances[i]) <= slack) && same;
    }
    return same;
}

// The control boxes of FreeType's glyphs in whole pixels where the layout has them, put together;
// as long as there is no ink, the last blank's place.
minikin::MinikinRect boxAround(const Layout& layout, FT_Face face, const Setting& setting) {
    const auto size = static_cast<float>(setting.size * 64);
    EXPECT_EQ(FT_Set_Char_Size(face, static_cast<FT_F26Dot6>(size * setting.scaleX),
                               static_cast<FT_F26Dot6>(size), 72, 72),
              0);
    minikin::MinikinRect around;
    bool hasInk = false;
    for (int i = 0; i < static_cast<int>(layout.nGlyphs()); ++i) {
        EXPECT_EQ(FT_Load_Glyph(face, layout.getGlyphId(i), kLoadFlags), 0);
        FT_BBox box;
        FT_Outline_Get_CBox(&face->glyph->outline, &box);
        const bool isBlank = box.xMin == box.xMax || box.yMin == box.yMax;
        minikin::MinikinRect glyph;
        if (!isBlank) {
            glyph = {std::floor(static_cast<float>(box.xMin) / 64),
                     -std::ceil(static_cast<float>(box.yMax) / 64),
                     std::ceil(static_cast<float>(box.xMax) / 64),
                     -std::floor(static_cast<float>(box.yMin) / 64)};
        }
        glyph.offset(layout.getX(i), layout.getY(i));
        if (!hasInk) around = glyph;
        if (hasInk && !isBlank) {
            around = {std::min(around.mLeft, glyph.mLeft), std::min(around.mTop, glyph.mTop),
                      std::max(around.mRight, glyph.mRight),
                      std::max(around.mBottom, glyph.mBottom)};
        }
        hasInk = hasInk || !isBlank;
    }
    return around;
}

bool isNear(const minikin::MinikinRect& a, const minikin::MinikinRect& b) {
    constexpr float kNear = 1e-3f;
    return std::fabs(a.mLeft - b.mLeft) < kNear && std::fabs(a.mTop - b.mTop) < kNear &&
           std::fabs(a.mRight - b.mRight) < kNear && std::fabs(a.mBottom - b.mBottom) < kNear;
}

Layout layOutWord(const Paint& paint, const Typeface& typeface, const std::u32string& word) {
    std::vector<uint16_t> units;
    for (const char32_t c : word) {
        if (c > 0xFFFF) units.push_back(U16_LEAD(c));
        units.push_back(c > 0xFFFF ? U16_TRAIL(c) : static_cast<uint16_t>(c));
    }
    hb_script_t script = HB_SCRIPT_COMMON;
    for (const char32_t c : word) {
        if (!isReal(script)) script = scriptOf(c);
    }
    const bool rtl = hb_script_get_horizontal_direction(script) == HB_DIRECTION_RTL;
    return MinikinUtils::doLayout(&paint, rtl ? Bidi::FORCE_RTL : Bidi::FORCE_LTR, &typeface,
                                  units.data(), units.size(), 0, units.size(), 0, units.size(),
                                  nullptr);
}

TEST(ShapingTest, WordsOfAllScriptsAreHarfBuzzs) {
    if (std::system("hb-shape --version > /dev/null 2>&1") != 0) {
        GTEST_SKIP() << "no hb-shape on this machine; scripts/setup peers installs it";
    }
    constexpr int kRandomWords = 150;
    Random random(51);
    GX_TRACE_SEED(random);
    const TempFolder folder;
    Figures figures;
    for (const Sample& sample : samples()) {
        SCOPED_TRACE(sample.name);
        const auto family = makeFamily(loadFont(sample.font, sample.face));
        std::vector<std::shared_ptr<minikin::FontFamily>> families = {family};
        FreeTypeReference reference(fontBytes(sample.font), sample.face);
        const std::unique_ptr<Typeface> typeface(
            Typeface::createFromFamilies(std::move(families), 400, 0));
        const auto words = wordsOf(sample, *family, kRandomWords, &random);
        std::string lines;
        for (const std::u32string& word : words) lines += encoded(word) + "\n";
        const std::string wordFile = folder.write("words", lines);
        for (const Setting& setting : kSettings) {
            SCOPED_TRACE(setting.name);
            // Its letters are joined at points of the outlines: with FreeType's advances the
            // program takes hinted outlines, layout those that the anchors' tables were made for.
            if (setting.hinted && sample.name == "urdu") continue;
            Paint paint;
            paint.setJavaFlags(setting.hinted ? 0x001 : 0x001 | 0x080);
            paint.getSkFont().setSize(static_cast<float>(setting.size));
            paint.getSkFont().setScaleX(setting.scaleX);
            paint.setFontFeatureSettings(setting.features);
            paint.setLetterSpacing(kLetterSpacing);
            paint.setMinikinLocaleListId(minikin::registerLocaleList(sample.locale));
            const auto shaped = shapeByProgram(sample, setting, wordFile);
            ASSERT_EQ(shaped.size(), words.size());
            for (size_t i = 0; i < words.size(); ++i) {
                const Layout layout = layOutWord(paint, *typeface, words[i]);
                EXPECT_TRUE(
                    figures.words.add(isSame(layout, shaped[i], words[i], setting, &figures)))
                    << encoded(words[i]);
                EXPECT_TRUE(figures.bounds.add(
                    isNear(layout.getBounds(), boxAround(layout, reference.face(), setting))))
                    << encoded(words[i]);
            }
        }
    }
    // Several kerning rules at one glyph, each rounded to 1/64 there.
    EXPECT_LE(figures.widest, 1.0f / 32);
}

}  // namespace
}  // namespace gxtest
