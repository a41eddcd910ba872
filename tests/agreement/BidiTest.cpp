// The order and direction of runs against the Unicode Consortium's own test data.
#include <gtest/gtest.h>
#include <unicode/utf16.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "Figure.h"
#include "minikin/BidiRuns.h"

namespace gxtest {
namespace {

using minikin::Bidi;
using minikin::Range;

// Levels are digits, or x where the algorithm removes the character; the order is that of the
// characters left, from left to right.
struct BidiCase {
    std::vector<uint16_t> text;
    std::vector<uint32_t> unitOf;  // of each character
    std::vector<std::string> levels;
    std::vector<uint32_t> order;
};

std::vector<std::string> words(const std::string& line) {
    std::istringstream stream(line);
    std::vector<std::string> result;
    for (std::string word; stream >> word;) result.push_back(word);
    return result;
}

// Whether the runs give the order and, in each character, the level's direction; of the characters
// from `first` on, the others being context.
bool agrees(const BidiCase& test, Bidi bidi, size_t first) {
    const minikin::U16StringPiece text(test.text.data(), test.text.size());
    const auto textSize = static_cast<uint32_t>(test.text.size());
    std::vector<uint32_t> characterAt(test.text.size(), ~0u);
    for (size_t i = 0; i < test.unitOf.size(); ++i) {
        characterAt[test.unitOf[i]] = static_cast<uint32_t>(i);
    }
    std::vector<uint32_t> expected;
    for (const uint32_t i : test.order) {
        if (i >= first) expected.push_back(i);
    }
    std::vector<uint32_t> order;
    for (const auto& run : visualRuns(text, Range(test.unitOf[first], textSize), bidi)) {
        const Range range = run.range;
        for (uint32_t i = 0; i < range.getLength(); ++i) {
            const uint32_t unit = run.isRtl ? range.getEnd() - 1 - i : range.getStart() + i;
            const uint32_t character = characterAt[unit];
            if (character == ~0u || test.levels[character] == "x") continue;
            order.push_back(character);
            const bool isOdd = (test.levels[character].back() - '0') % 2;
            if (isOdd != run.isRtl) return false;
        }
    }
    return order == expected;
}

TEST(BidiTest, CharactersComeInTheOrderOfTheConformanceData) {
    std::ifstream file("/usr/share/unicode/BidiCharacterTest.txt");
    if (!file) GTEST_SKIP() << "no Unicode test data; scripts/setup peers installs it";
    Figure figure("bidi order against BidiCharacterTest.txt, lines");
    Figure parts("bidi order of the second half of a line, lines");
    for (std::string line; std::getline(file, line);) {
        if (line.empty() || line[0] == '#') continue;
        std::istringstream stream(line);
        std::string codepoints, paragraph, level, levels, order;
        for (std::string* field : {&codepoints, &paragraph, &level, &levels, &order}) {
            std::getline(stream, *field, ';');
        }
        BidiCase test;
        for (const std::string& word : words(codepoints)) {
            const auto codePoint = static_cast<uint32_t>(std::stoul(word, nullptr, 16));
            test.unitOf.push_back(static_cast<uint32_t>(test.text.size()));
            if (codePoint > 0xFFFF) test.text.push_back(U16_LEAD(codePoint));
            test.text.push_back(codePoint > 0xFFFF ? U16_TRAIL(codePoint)
                                                   : static_cast<uint16_t>(codePoint));
        }
        test.levels = words(levels);
        for (const std::string& word : words(order)) {
            test.order.push_back(static_cast<uint32_t>(std::stoul(word)));
        }
        const Bidi directions[] = {Bidi::LTR, Bidi::RTL, Bidi::DEFAULT_LTR};
        const Bidi bidi = directions[paragraph[0] - '0'];
        figure.add(agrees(test, bidi, 0));
        parts.add(agrees(test, bidi, test.unitOf.size() / 2));
    }
    // ICU's own: overrides beside isolates and brackets, marks on closing brackets, and more than
    // 63 brackets open at once. Devices order lines by ICU, too.
    EXPECT_LE(figure.differing, 30u);
    EXPECT_LE(parts.differing, figure.differing);
    EXPECT_GT(figure.compared, 90000u);
}

}  // namespace
}  // namespace gxtest
