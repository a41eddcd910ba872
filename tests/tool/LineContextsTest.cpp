#include "LineContexts.h"

#include <gtest/gtest.h>
#include <hwui/MinikinUtils.h>
#include <hwui/Paint.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <string>
#include <tuple>

#include "Measurer.h"
#include "minikin/BidiRuns.h"
#include "support/Fonts.h"
#include "support/Random.h"

namespace gxtool {
namespace {

using gxtest::Random;
using minikin::Range;

using Run = std::tuple<uint32_t, uint32_t, bool>;  // first and last unit in the text, right to left

const uint16_t* units(const std::u16string& text) {
    return reinterpret_cast<const uint16_t*>(text.data());
}

std::vector<Run> runsIn(const std::u16string& text, const TextLine& line,
                        const LineContext& context) {
    const auto origin = static_cast<uint32_t>(context.start);
    const auto start = static_cast<uint32_t>(line.start) - origin;
    const auto end = static_cast<uint32_t>(line.end) - origin;
    std::vector<Run> runs;
    for (const minikin::BidiRun& run :
         minikin::visualRuns({units(text) + origin, end}, Range(start, end), context.bidi)) {
        runs.emplace_back(run.range.getStart() + origin, run.range.getEnd() + origin, run.isRtl);
    }
    return runs;
}

// In hexadecimal, where letters of several directions would stand in no clear order.
std::string shown(const std::u16string& text, int32_t start, int32_t end) {
    std::string result;
    for (int32_t i = start; i < end; i++) {
        char unit[8];
        snprintf(unit, sizeof(unit), " %X", static_cast<unsigned>(text[static_cast<size_t>(i)]));
        result += unit;
    }
    return result;
}

// Texts of pieces that favour what reaches far: brackets, numbers, embeddings, isolates.
class TextMaker {
public:
    explicit TextMaker(Random& random) : random_(random) {}

    std::u16string text(int pieces) {
        // Few kinds to a text, so that some have no letters of one direction, no controls, ...
        kinds_ = random_.word() | 1u << random_.between(0, kKinds - 1);
        std::u16string text;
        for (int i = 0; i < pieces; i++) addPiece(text, 0);
        return text;
    }

private:
    static constexpr int kKinds = 12;

    void add(std::u16string& text, std::u16string_view from) {
        const int at = random_.between(0, static_cast<int>(from.size()) - 1);
        text += from[static_cast<size_t>(at)];
    }
    void addSome(std::u16string& text, std::u16string_view from) {
        for (int i = random_.between(1, 6); i > 0; i--) add(text, from);
    }

    void addPiece(std::u16string& text, int depth) {
        const int kind = random_.between(0, kKinds - 1);
        if (!(kinds_ >> kind & 1)) return addSome(text, u" .");
        switch (kind) {
            case 0:
                return addSome(text, u"abcxyz");
            case 1:
                return addSome(text, u"\u05D0\u05D1\u05D2");
            case 2:
                return addSome(text, u"\u0627\u0628\u0644\u0645");
            case 3:
                return addSome(text, u"0123456789");
            case 4:
                return addSome(text, u"\u0660\u0661\u0669");
            case 5:
                return addSome(text, u" !*-+,:/%$#\u00A0\u2028\t\u200B\u0301");
            case 6:
                return add(text, u"()[]\u2329\u232A\u3008\u3009<>");
            case 7:
                return add(text, u"\u202A\u202B\u202D\u202E\u202C\u202C\u2066\u2067\u2068\u2069");
            case 8:
                text += random_.oneIn(2) ? u"\U0001F468\u200D\U0001F469" : u"\U0001F44D\U0001F3FD";
                return;
            case 9:
                return add(text, u"\u200E\u200F\u061C\u4E2D\u6587");
            case 10:
                return random_.oneIn(4) ? add(text, u"\n\r\u2029\u0085\u001C")
                                        : addSome(text, u" ");
            default:
                return addSpan(text, depth);
        }
    }

    // Well-formed, as people write them.
    void addSpan(std::u16string& text, int depth) {
        constexpr const char16_t* kSpans[] = {u"()",           u"[]",           u"\u202A\u202C",
                                              u"\u202B\u202C", u"\u202D\u202C", u"\u202E\u202C",
                                              u"\u2066\u2069", u"\u2067\u2069", u"\u2068\u2069"};
        const char16_t* span = kSpans[random_.between(0, static_cast<int>(std::size(kSpans)) - 1)];
        text += span[0];
        for (int i = random_.between(0, 4); i > 0 && depth < 70; i--) addPiece(text, depth + 1);
        text += span[1];
    }

    Random& random_;
    uint32_t kinds_ = 0;
};

// Some line of the text, without a line break in it.
TextLine someLine(const std::u16string& text, Random& random) {
    const auto size = static_cast<int32_t>(text.size());
    TextLine line{random.between(0, size), 0, random.oneIn(2)};
    line.end = std::min(size, line.start + random.between(0, 40));
    const size_t lineBreak = text.find_first_of(u"\n\r", static_cast<size_t>(line.start));
    if (lineBreak != std::u16string::npos) {
        line.end = std::min(line.end, static_cast<int32_t>(lineBreak));
    }
    return line;
}

TEST(LineContexts, ShortContextsKeepTheRunsAndTheirOrder) {
    Random random(11);
    GX_TRACE_SEED(random);
    int cases = 0, shortened = 0;
    for (int round = 0; round < 3000; round++) {
        const std::u16string text = TextMaker(random).text(random.between(1, 120));
        const LineContexts contexts(text);
        for (int i = 0; i < 40; i++) {
            const TextLine line = someLine(text, random);
            const LineContext whole = contexts.whole(line);
            const LineContext shortest = contexts.shortest(line);
            ASSERT_GE(shortest.start, whole.start);
            ASSERT_LE(shortest.start, line.start);
            ASSERT_EQ(runsIn(text, line, shortest), runsIn(text, line, whole))
                << "line" << shown(text, line.start, line.end) << "\nbehind"
                << shown(text, shortest.start, line.start) << "\nbehind"
                << shown(text, whole.start, shortest.start);
            cases++;
            shortened += shortest.start > whole.start;
        }
    }
    EXPECT_GT(shortened, cases / 4);
}

// Context that grows with the paragraph makes wrapping it quadratic.
TEST(LineContexts, StayShortInLongParagraphs) {
    const std::u16string hebrew = u"\u05D0\u05D1\u05D2 ";
    struct Case {
        const char* name;
        std::u16string begin;
        std::u16string repeated;
    };
    const Case cases[] = {
        {"Latin", u"", u"abc "},
        {"Hebrew", u"", hebrew},
        {"without spaces", u"", u"\u0628"},
        {"numbers alone", u"", u"123 "},
        {"Arabic numbers", hebrew, u"\u0628\u0629 \u0661\u0662 "},
        {"both directions", u"", hebrew + u"abc (" + hebrew + u") 12 "},
        {"emoji", u"", u"\U0001F468\u200D\U0001F469"},
        {"letters, then emoji", u"Hello ", u"\U0001F44D\U0001F3FD"},
        {"isolates", u"a ", hebrew + u"\u2066abc\u2069 "},
        {"overrides", u"a ", hebrew + u"abc \u202Eabc\u202C "},
        {"a bracket left open", u"\u05D0 :( ", hebrew},
        {"a bracket closed at the end", u"(", hebrew},
    };
    for (const Case& c : cases) {
        std::u16string text = c.begin;
        while (text.size() < 5000) text += c.repeated;
        const LineContexts contexts(text);
        for (int32_t start = 100; start + 40 < 5000; start++) {
            const LineContext context = contexts.shortest({start, start + 40, false});
            ASSERT_LT(start - context.start, 60) << c.name << " at " << start;
        }
    }
}

// What wrapping takes from lines: against the whole context, in fonts that join and that have
// ligatures.
TEST(LineContexts, LinesBreakAndMeasureAsWithTheirWholeContext) {
    Random random(12);
    GX_TRACE_SEED(random);
    std::vector<std::shared_ptr<minikin::FontFamily>> families;
    for (const char* name : {gxtest::kDejaVuSans, gxtest::kNotoArabic, gxtest::kNotoCjk}) {
        families.push_back(gxtest::makeFamily(gxtest::loadFont(name)));
    }
    auto copy = families;
    const std::unique_ptr<android::Typeface> typeface(
        android::Typeface::createFromFamilies(std::move(copy), 400, 0));
    android::Paint paint;
    paint.getSkFont().setSize(20);

    for (int round = 0; round < 150; round++) {
        const std::u16string text = TextMaker(random).text(random.between(20, 120));
        const LineContexts contexts(text);
        const MeasureText plain = [&](const TextLine& line) {
            const LineContext context = contexts.whole(line);
            const auto start = static_cast<size_t>(line.start);
            const auto end = static_cast<size_t>(line.end);
            const auto from = static_cast<size_t>(context.start);
            return android::MinikinUtils::doLayout(&paint, context.bidi, typeface.get(),
                                                   units(text), text.size(), start, end - start,
                                                   from, end - from, nullptr)
                .getAdvance();
        };
        const Measurer measurer(paint, families, 400, false, text);
        const auto width = static_cast<float>(random.between(20, 400));
        const std::vector<TextLine> lines = wrapText(text, width, "", plain);
        ASSERT_EQ(
            wrapText(text, width, "", [&](const TextLine& line) { return measurer.advance(line); }),
            lines)
            << "round " << round;
        for (const TextLine& line : lines) {
            ASSERT_EQ(measurer.advance(line), plain(line)) << "round " << round;
        }
    }
}

}  // namespace
}  // namespace gxtool
