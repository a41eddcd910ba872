#include "scene/Wrap.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <hwui/Paint.h>
#include <unicode/ubrk.h>
#include <unicode/uchar.h>

#include <algorithm>

#include "scene/Measurer.h"
#include "scene/SceneError.h"
#include "support/Fonts.h"
#include "support/Random.h"
#include "support/TextMaker.h"

namespace gxtext {
namespace {

// Each UTF-16 unit 10 pixels wide. Counts the units measured.
TextMeasures tenPixelUnits(int64_t* measured = nullptr) {
    const auto count = [measured](const TextLine& line) {
        if (measured) *measured += line.end - line.start;
        return static_cast<size_t>(line.end - line.start);
    };
    return {[count](const TextLine& line) { return 10.0f * static_cast<float>(count(line)); },
            [count](const TextLine& line) { return std::vector<float>(count(line), 10.0f); }};
}

// Lines as text; "<" marks a right-to-left line.
std::vector<std::string> wrapped(const std::string& utf8, std::optional<float> width) {
    const std::u16string text = decodeUtf8(utf8, "text");
    std::vector<std::string> result;
    for (const TextLine& line : wrapText(text, width, "", tenPixelUnits())) {
        std::string shown = encodeUtf8(text.substr(line.start, line.end - line.start));
        if (line.rightToLeft) shown.insert(0, 1, '<');
        result.push_back(std::move(shown));
    }
    return result;
}

struct WrapCase {
    const char* text;
    std::optional<float> width;
    std::vector<std::string> lines;
};

TEST(Wrap, BreaksLines) {
    const WrapCase cases[] = {
        // Hard breaks, with and without a width.
        {"ab", {}, {"ab"}},
        {"a\nb\r\nc\rd", {}, {"a", "b", "c", "d"}},
        {"a\u0085b\u2028c\u2029d\ve", {}, {"a", "b", "c", "d", "e"}},
        {"a\n\nb\n", {}, {"a", "", "b", ""}},
        {"\r\n", 50, {"", ""}},
        {"ab cd\nef gh", 20, {"ab", "cd", "ef", "gh"}},
        // Wraps at the last opportunity that fits; a line may be exactly as wide as the limit.
        {"aa bb cc", 50, {"aa bb", "cc"}},
        {"aa bb cc", 49, {"aa", "bb", "cc"}},
        {"aa-bb", 40, {"aa-", "bb"}},
        // Spaces at the end of a line hang: they neither count nor belong to it.
        {"aa   bb", 20, {"aa", "bb"}},
        {"aa   ", 20, {"aa"}},
        {"aa ", 50, {"aa "}},
        {"aa\u00A0bb c", 30, {"aa\u00A0", "bb", "c"}},
        // Words without an opportunity break between characters, at least one per line.
        {"abcdef", 30, {"abc", "def"}},
        {"abc", 5, {"a", "b", "c"}},
        {"x abcdef", 30, {"x", "abc", "def"}},
        // A base and its mark, and a surrogate pair, stay together.
        {"e\u0301e\u0301e\u0301", 30, {"e\u0301", "e\u0301", "e\u0301"}},
        {"\U0001F600\U0001F600", 15, {"\U0001F600", "\U0001F600"}},
        // Ideographs break anywhere but before closing punctuation; Thai has a dictionary.
        {"\u4E2D\u6587\u5B57\u3002", 30, {"\u4E2D\u6587", "\u5B57\u3002"}},
        {"\u0E2A\u0E27\u0E31\u0E2A\u0E14\u0E35\u0E0A\u0E32\u0E27\u0E42\u0E25\u0E01",
         60,
         {"\u0E2A\u0E27\u0E31\u0E2A\u0E14\u0E35", "\u0E0A\u0E32\u0E27\u0E42\u0E25\u0E01"}},
        // Direction is each paragraph's first strong character's, on all its lines.
        {"\u05D0\u05D1 abc\nabc \u05D0", {}, {"<\u05D0\u05D1 abc", "abc \u05D0"}},
        {"12 \u05D0\u05D1 cd", 50, {"<12 \u05D0\u05D1", "<cd"}},
        {"", 50, {""}},
    };
    for (const WrapCase& c : cases) {
        EXPECT_THAT(wrapped(c.text, c.width), testing::ElementsAreArray(c.lines))
            << c.text << " at " << c.width.value_or(-1);
    }
}

TEST(Wrap, LeavesNothingOutButSpacesAndLineEnds) {
    const std::string text = "The quick brown fox\njumps over \xE7\x8B\x97 dogs  and\r\nmore";
    for (float width = 5; width < 300; width += 5) {
        std::string kept;
        for (const std::string& line : wrapped(text, width)) kept += line;
        std::string expected = text;
        const auto isSpace = [](char c) { return c == ' ' || c == '\n' || c == '\r'; };
        std::erase_if(kept, isSpace);
        std::erase_if(expected, isSpace);
        EXPECT_EQ(kept, expected) << width;
    }
}

// Else the time is quadratic in the lines or in the words.
TEST(Wrap, MeasuresInProportionToTheText) {
    for (const char16_t* repeated :
         {u"abc ", u"x", u"\u4E2D", u"\u200B", u"\u3000", u"a-", u"e\u0301"}) {
        std::u16string text = u"abc ";
        while (text.size() < 20000) text += repeated;
        for (const float width : {10.0f, 300.0f, 5120.0f, 99999.0f, 199990.0f}) {
            int64_t measured = 0;
            wrapText(text, width, "", tenPixelUnits(&measured));
            EXPECT_LT(measured, 20 * 20000) << encodeUtf8(repeated) << " at " << width;
        }
    }
}

std::vector<int32_t> breaksOf(UBreakIteratorType type, const std::u16string& text) {
    UErrorCode status = U_ZERO_ERROR;
    UBreakIterator* iterator =
        ubrk_open(type, "", text.data(), static_cast<int32_t>(text.size()), &status);
    std::vector<int32_t> breaks;
    while (ubrk_next(iterator) != UBRK_DONE) breaks.push_back(ubrk_current(iterator));
    ubrk_close(iterator);
    return breaks;
}

// Ends of the lines of a text without line breaks and hanging spaces, by measuring all candidates.
std::vector<int32_t> plainEnds(const std::u16string& text, float width, bool rightToLeft,
                               const TextMeasures& measures) {
    const std::vector<int32_t> words = breaksOf(UBRK_LINE, text);
    const std::vector<int32_t> characters = breaksOf(UBRK_CHARACTER, text);
    const auto size = static_cast<int32_t>(text.size());
    std::vector<int32_t> ends;
    for (int32_t start = 0; start < size; start = ends.back()) {
        // The last one before the first that does not fit.
        const auto lastFitting = [&](const std::vector<int32_t>& candidates, int32_t last) {
            for (const int32_t end : candidates) {
                if (end <= last) continue;
                if (measures.advance({start, end, rightToLeft}) > width) break;
                last = end;
            }
            return last;
        };
        const int32_t word = lastFitting(words, start);
        const int32_t character = *std::upper_bound(characters.begin(), characters.end(), start);
        ends.push_back(word > start ? word : lastFitting(characters, character));
    }
    return ends;
}

// In fonts that join, kern and have ligatures, so that a line is not as wide as its parts.
TEST(Wrap, BreaksWhereMeasuringEveryCandidateWould) {
    gxtest::Random random(12);
    GX_TRACE_SEED(random);
    std::vector<std::shared_ptr<minikin::FontFamily>> families;
    for (const char* name : {gxtest::kDejaVuSans, gxtest::kNotoArabic, gxtest::kNotoCjk}) {
        families.push_back(gxtest::makeFamily(gxtest::loadFont(name)));
    }
    android::Paint paint;
    paint.getSkFont().setSize(20);
    for (int round = 0; round < 300; round++) {
        std::u16string text = gxtest::TextMaker(random).text(random.between(5, 60));
        std::erase_if(text, [](char16_t c) {
            return c == u' ' ? false : u_isspace(c) || u_charDirection(c) == U_BLOCK_SEPARATOR;
        });
        std::replace(text.begin(), text.end(), u' ', u'\u200B');
        if (text.empty()) continue;
        const Measurer measurer(paint, families, 400, false, text);
        const auto width = static_cast<float>(random.between(5, 400));
        const std::vector<TextLine> lines = wrapText(text, width, "", measurer.measures());
        std::vector<int32_t> ends;
        for (const TextLine& line : lines) ends.push_back(line.end);
        EXPECT_EQ(ends, plainEnds(text, width, lines.front().rightToLeft, measurer.measures()))
            << gxtest::hexUnits(text) << " at " << width;
    }
}

TEST(Utf8, RefusesWhatIsMalformed) {
    for (const std::string& bad :
         {std::string("a\xFF"), std::string("\xC3"), std::string("\xED\xA0\x80"),
          std::string("\xC0\x80"), std::string("a\0b", 3)}) {
        EXPECT_THROW(decodeUtf8(bad, "the text"), SceneError);
    }
    EXPECT_EQ(decodeUtf8("a\u00E9\U0001F600", "t"), u"a\u00E9\U0001F600");
    EXPECT_THAT(codePoints(u"a\U0001F600"), testing::ElementsAre(U'a', U'\U0001F600'));
}

}  // namespace
}  // namespace gxtext
