#include "Wrap.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "ToolError.h"

namespace gxtool {
namespace {

// Lines as text, each UTF-16 unit 10 pixels wide; "<" marks a right-to-left line.
std::vector<std::string> wrapped(const std::string& utf8, std::optional<float> width) {
    const std::u16string text = decodeUtf8(utf8, "text");
    std::vector<std::string> result;
    const auto lines = wrapText(text, width, "", [](const TextLine& line) {
        return 10.0f * static_cast<float>(line.end - line.start);
    });
    for (const TextLine& line : lines) {
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

// Else the time is quadratic in the word.
TEST(Wrap, MeasuresNoMoreOfALongWordThanALineNeeds) {
    const std::u16string text = u"ab " + std::u16string(20000, u'x');
    const auto lineUnits = [&](float width, int32_t* longest) {
        std::vector<int32_t> result;
        for (const TextLine& line : wrapText(text, width, "", [&](const TextLine& tried) {
                 *longest = std::max(*longest, tried.end - tried.start);
                 return static_cast<float>(tried.end - tried.start);
             })) {
            result.push_back(line.end - line.start);
        }
        return result;
    };
    for (const int32_t width : {3, 100, 511, 512, 513, 700, 3000, 9999}) {
        std::vector<int32_t> expected = {2};
        for (int32_t left = 20000; left > 0; left -= width) {
            expected.push_back(std::min(left, width));
        }
        int32_t longest = 0;
        EXPECT_EQ(lineUnits(static_cast<float>(width), &longest), expected) << width;
        EXPECT_LE(longest, 2048 + 4 * width) << width;
    }
}

TEST(Utf8, RefusesWhatIsMalformed) {
    for (const std::string& bad :
         {std::string("a\xFF"), std::string("\xC3"), std::string("\xED\xA0\x80"),
          std::string("\xC0\x80"), std::string("a\0b", 3)}) {
        EXPECT_THROW(decodeUtf8(bad, "the text"), ToolError);
    }
    EXPECT_EQ(decodeUtf8("a\u00E9\U0001F600", "t"), u"a\u00E9\U0001F600");
    EXPECT_THAT(codePoints(u"a\U0001F600"), testing::ElementsAre(U'a', U'\U0001F600'));
}

}  // namespace
}  // namespace gxtool
