// Glyphs, clusters and positions of single words against HarfBuzz called directly.
#include <gtest/gtest.h>
#include <hb-ft.h>
#include <hb.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "Figure.h"
#include "minikin/LocaleList.h"
#include "minikin/SparseBitSet.h"
#include "platform/TextLayout.h"
#include "support/Fonts.h"
#include "support/Random.h"

namespace gxtest {
namespace {

using android::Paint;
using minikin::Bidi;
using minikin::Layout;

// A line of examples/scripts.tsv.
struct Sample {
    std::string name, font, locale;
    std::u16string text;
    int face;
};

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
        const auto units = icu::UnicodeString::fromUTF8(text);
        sample.text.assign(units.getBuffer(), static_cast<size_t>(units.length()));
        findFont(family, &sample);
        result.push_back(sample);
    }
    return result;
}

// Those that have letters of their own.
std::set<hb_script_t> scriptsOf(const std::u16string& text) {
    std::set<hb_script_t> scripts;
    for (size_t i = 0; i < text.size();) {
        UChar32 c = 0;
        U16_NEXT(text, i, text.size(), c);
        scripts.insert(hb_unicode_script(hb_unicode_funcs_get_default(), c));
    }
    scripts.erase(HB_SCRIPT_COMMON);
    scripts.erase(HB_SCRIPT_INHERITED);
    return scripts;
}

std::u16string randomWord(const std::u32string& letters, const std::u32string& marks,
                          Random* random) {
    std::u16string word;
    const auto add = [&](const std::u32string& from) {
        const char32_t c =
            from[static_cast<size_t>(random->between(0, static_cast<int>(from.size()) - 1))];
        if (c > 0xFFFF) word += U16_LEAD(c);
        word += c > 0xFFFF ? U16_TRAIL(c) : static_cast<char16_t>(c);
    };
    add(letters);
    for (int n = random->between(0, 7); n > 0; --n) {
        add(!marks.empty() && random->oneIn(2) ? marks : letters);
        if (random->oneIn(12)) add(U"\u200C\u200D");
    }
    return word;
}

// The words of the sample, and as many of random letters and marks of its scripts as asked for:
// nobody writes them, but the shapers have rules for all of them.
std::vector<std::u16string> wordsOf(const Sample& sample, const minikin::FontFamily& family,
                                    int randomWords, Random* random) {
    std::vector<std::u16string> words(1);
    for (const char16_t c : sample.text) {
        if (c == ' ') {
            words.emplace_back();
        } else {
            words.back() += c;
        }
    }
    std::erase_if(words, [](const std::u16string& word) { return scriptsOf(word).empty(); });
    for (const hb_script_t script : scriptsOf(sample.text)) {
        std::u32string letters, marks;
        for (uint32_t c = 0; c < family.getCoverage().length(); ++c) {
            const bool isOf = hb_unicode_script(hb_unicode_funcs_get_default(), c) == script;
            if (!isOf || !family.getCoverage().get(c)) continue;
            if (U_GET_GC_MASK(c) & U_GC_L_MASK) letters += c;
            if (U_GET_GC_MASK(c) & U_GC_M_MASK) marks += c;
        }
        for (int i = 0; i < randomWords; ++i) words.push_back(randomWord(letters, marks, random));
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
    // HarfBuzz's positions per pixel: as many as in layout where the advances come from the font's
    // tables, those of FreeType where it has to hint them.
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

// HarfBuzz's font and features for a sample in a setting.
class Shaper {
public:
    Shaper(const Sample& sample, const Setting& setting)
        : language_(hb_language_from_string(sample.locale.c_str(), -1)) {
        const std::vector<char>& bytes = fontBytes(sample.font);
        hb_blob_t* blob = hb_blob_create(bytes.data(), static_cast<unsigned>(bytes.size()),
                                         HB_MEMORY_MODE_READONLY, nullptr, nullptr);
        hb_face_t* face = hb_face_create(blob, static_cast<unsigned>(sample.face));
        font_ = hb_font_create(face);
        hb_face_destroy(face);
        hb_blob_destroy(blob);
        const int height = setting.size * setting.unitsPerPixel();
        hb_font_set_scale(font_, static_cast<int>(static_cast<float>(height) * setting.scaleX),
                          height);
        hb_font_set_ppem(font_,
                         static_cast<unsigned>(static_cast<float>(setting.size) * setting.scaleX),
                         static_cast<unsigned>(setting.size));
        if (setting.hinted) {
            hb_ft_font_set_funcs(font_);
            hb_ft_font_set_load_flags(font_, kLoadFlags);
        }
        std::istringstream stream(setting.features);
        for (std::string feature; std::getline(stream, feature, ',');) {
            EXPECT_TRUE(hb_feature_from_string(feature.data(), -1, &features_.emplace_back()));
        }
    }
    ~Shaper() {
        hb_font_destroy(font_);
        hb_buffer_destroy(buffer_);
    }
    Shaper(const Shaper&) = delete;
    Shaper& operator=(const Shaper&) = delete;

    // The buffer is good until the next word.
    hb_buffer_t* shape(const std::u16string& word) {
        const auto size = static_cast<int>(word.size());
        hb_buffer_reset(buffer_);
        hb_buffer_add_utf16(buffer_, unitsOf(word), size, 0, size);
        hb_buffer_set_language(buffer_, language_);
        hb_buffer_guess_segment_properties(buffer_);
        hb_shape(font_, buffer_, features_.data(), static_cast<unsigned>(features_.size()));
        return buffer_;
    }

private:
    hb_language_t language_;
    hb_font_t* font_ = nullptr;
    hb_buffer_t* buffer_ = hb_buffer_create();
    std::vector<hb_feature_t> features_;
};

// Scripts that letter spacing would tear apart.
bool isSpaced(hb_script_t script) {
    const std::set<hb_script_t> joined = {HB_SCRIPT_ARABIC,    HB_SCRIPT_NKO,
                                          HB_SCRIPT_MONGOLIAN, HB_SCRIPT_DEVANAGARI,
                                          HB_SCRIPT_BENGALI,   HB_SCRIPT_GURMUKHI};
    return joined.count(script) == 0;
}

struct Figures {
    Figure words{"shaping against HarfBuzz, words"};
    Figure glyphs{"glyph ids and offsets against HarfBuzz, glyphs"};
    Figure units{"clusters and advances against HarfBuzz, UTF-16 units"};
    Figure bounds{"bounds against the glyphs' boxes at these positions, words"};
};

// A little of it shows where clusters begin, too little to take ligatures apart.
constexpr float kLetterSpacing = 0.025f;

bool isSame(const Layout& layout, hb_buffer_t* shaped, size_t units, const Setting& setting,
            Figures* figures) {
    unsigned count = 0;
    const hb_glyph_info_t* glyphs = hb_buffer_get_glyph_infos(shaped, &count);
    const hb_glyph_position_t* places = hb_buffer_get_glyph_positions(shaped, &count);
    if (layout.nGlyphs() != count || layout.getAdvances().size() != units) return false;

    const auto unit = 1.0f / static_cast<float>(setting.unitsPerPixel());
    // Chains of marks and joined letters add up offsets, each rounded to other steps.
    const float tolerance = setting.hinted ? unit * static_cast<float>(count) : 0;
    const double spacing = isSpaced(hb_buffer_get_script(shaped))
                               ? static_cast<double>(kLetterSpacing) * setting.size * setting.scaleX
                               : 0;
    bool same = true;
    std::vector<double> advances(units);
    double x = spacing / 2;
    double slack = 1e-4;
    for (unsigned i = 0; i < count; ++i) {
        const auto index = static_cast<int>(i);
        const hb_glyph_position_t& place = places[i];
        const uint32_t cluster = glyphs[i].cluster;
        const bool glyphIsSame =
            layout.getGlyphId(index) == glyphs[i].codepoint &&
            std::fabs(layout.getY(index) + static_cast<float>(place.y_offset) * unit) <=
                tolerance &&
            std::fabs(layout.getX(index) - (x + place.x_offset * unit)) <= tolerance + slack;
        same = figures->glyphs.add(glyphIsSame) && same;
        const bool ends = i + 1 == count || glyphs[i + 1].cluster != cluster;
        const double advance = place.x_advance * unit + (ends ? spacing : 0);
        advances[cluster] += advance;
        x += advance;
        // Layout cuts advances to its fixed point, HarfBuzz rounds them.
        slack += setting.hinted ? unit : unit * 1.001;
    }
    for (size_t i = 0; i < units; ++i) {
        const bool isNear = std::fabs(layout.getCharAdvance(i) - advances[i]) <= slack;
        same = figures->units.add(isNear) && same;
    }
    return same;
}

// The glyphs' boxes where the layout has them, joined.
minikin::MinikinRect boxAround(const Layout& layout, const SkFont& font) {
    minikin::MinikinRect around;
    for (int i = 0; i < static_cast<int>(layout.nGlyphs()); ++i) {
        const auto glyph = static_cast<SkGlyphID>(layout.getGlyphId(i));
        SkRect box;
        font.getBounds(&glyph, 1, &box, nullptr);
        minikin::MinikinRect placed(box.fLeft, box.fTop, box.fRight, box.fBottom);
        placed.offset(layout.getX(i), layout.getY(i));
        around.join(placed);
    }
    return around;
}

bool isNear(const minikin::MinikinRect& a, const minikin::MinikinRect& b) {
    constexpr float kNear = 1e-3f;
    return std::fabs(a.mLeft - b.mLeft) < kNear && std::fabs(a.mTop - b.mTop) < kNear &&
           std::fabs(a.mRight - b.mRight) < kNear && std::fabs(a.mBottom - b.mBottom) < kNear;
}

TEST(ShapingTest, WordsOfAllScriptsAreHarfBuzzs) {
    constexpr int kRandomWords = 150;
    Random random(51);
    GX_TRACE_SEED(random);
    Figures figures;
    for (const Sample& sample : samples()) {
        SCOPED_TRACE(sample.name);
        const auto family = makeFamily(loadFont(sample.font, sample.face));
        const auto typeface = typefaceOf({family});
        const auto words = wordsOf(sample, *family, kRandomWords, &random);
        for (const Setting& setting : kSettings) {
            SCOPED_TRACE(setting.name);
            // Its letters are joined at points of the outlines: with FreeType's advances HarfBuzz
            // takes hinted outlines, layout those that the anchors' tables were made for.
            if (setting.hinted && sample.name == "urdu") continue;
            Paint paint;
            paint.setJavaFlags(setting.hinted ? 0x001 : 0x001 | 0x080);
            paint.getSkFont().setSize(static_cast<float>(setting.size));
            paint.getSkFont().setScaleX(setting.scaleX);
            paint.getSkFont().setTypeface(loadTypeface(sample.font, sample.face));
            paint.setFontFeatureSettings(setting.features);
            paint.setLetterSpacing(kLetterSpacing);
            paint.setMinikinLocaleListId(minikin::registerLocaleList(sample.locale));
            Shaper shaper(sample, setting);
            for (const std::u16string& word : words) {
                hb_buffer_t* shaped = shaper.shape(word);
                const bool isRtl = HB_DIRECTION_IS_BACKWARD(hb_buffer_get_direction(shaped));
                const Layout layout =
                    layOut(word, *typeface, paint, isRtl ? Bidi::FORCE_RTL : Bidi::FORCE_LTR);
                EXPECT_TRUE(
                    figures.words.add(isSame(layout, shaped, word.size(), setting, &figures)))
                    << testing::PrintToString(word);
                EXPECT_TRUE(figures.bounds.add(
                    isNear(layout.getBounds(), boxAround(layout, paint.getSkFont()))))
                    << testing::PrintToString(word);
            }
        }
    }
}

}  // namespace
}  // namespace gxtest
