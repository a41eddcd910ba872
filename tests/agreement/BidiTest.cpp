// The order and direction of runs against the Unicode Consortium's own test data.
#include <gtest/gtest.h>
#include <unicode/utf16.h>

#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "Figure.h"
#include "minikin/BidiRuns.h"

namespace gxtest {
namespace {

using minikin::Bidi;
using minikin::Range;

constexpr const char* kMissing = "no Unicode test data; scripts/setup peers installs it";

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

std::vector<uint32_t> numbers(const std::string& line) {
    std::vector<uint32_t> result;
    for (const std::string& word : words(line)) {
        result.push_back(static_cast<uint32_t>(std::stoul(word)));
    }
    return result;
}

void append(BidiCase* test, uint32_t codepoint) {
    test->unitOf.push_back(static_cast<uint32_t>(test->text.size()));
    if (codepoint > 0xFFFF) test->text.push_back(U16_LEAD(codepoint));
    test->text.push_back(codepoint > 0xFFFF ? U16_TRAIL(codepoint)
                                            : static_cast<uint16_t>(codepoint));
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
    if (!file) GTEST_SKIP() << kMissing;
    Figure figure("bidi order against BidiCharacterTest.txt, lines");
    Figure parts("bidi order of the second half of a line, lines");
    for (std::string line; std::getline(file, line);) {
        if (line.empty() || line[0] == '#') continue;
        std::istringstream stream(line);
        std::string codepoints, paragraph, level, levels, order;
        std::getline(stream, codepoints, ';');
        std::getline(stream, paragraph, ';');
        std::getline(stream, level, ';');
        std::getline(stream, levels, ';');
        std::getline(stream, order, ';');
        BidiCase test;
        for (const std::string& word : words(codepoints)) {
            append(&test, static_cast<uint32_t>(std::stoul(word, nullptr, 16)));
        }
        test.levels = words(levels);
        test.order = numbers(order);
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

// Each class stands for all its characters.
const std::map<std::string, uint32_t> kCharacterOfClass = {
    {"L", 'a'},      {"R", 0x05D0},   {"AL", 0x0627},  {"EN", '0'},     {"ES", '+'},
    {"ET", '#'},     {"AN", 0x0660},  {"CS", ','},     {"NSM", 0x0300}, {"BN", 0x00AD},
    {"B", 0x2029},   {"S", '\t'},     {"WS", ' '},     {"ON", '!'},     {"LRE", 0x202A},
    {"RLE", 0x202B}, {"PDF", 0x202C}, {"LRO", 0x202D}, {"RLO", 0x202E}, {"LRI", 0x2066},
    {"RLI", 0x2067}, {"FSI", 0x2068}, {"PDI", 0x2069},
};

TEST(BidiTest, ClassesComeInTheOrderOfTheConformanceData) {
    std::ifstream file("/usr/share/unicode/BidiTest.txt");
    if (!file) GTEST_SKIP() << kMissing;
    Figure figure("bidi order against BidiTest.txt, lines and directions");
    BidiCase test;
    for (std::string line; std::getline(file, line);) {
        if (line.rfind("@Levels:", 0) == 0) test.levels = words(line.substr(8));
        if (line.rfind("@Reorder:", 0) == 0) test.order = numbers(line.substr(9));
        const size_t semicolon = line.find(';');
        if (line.empty() || line[0] == '#' || line[0] == '@' || semicolon == std::string::npos)
            continue;
        test.text.clear();
        test.unitOf.clear();
        for (const std::string& word : words(line.substr(0, semicolon))) {
            append(&test, kCharacterOfClass.at(word));
        }
        const unsigned long wanted = std::stoul(line.substr(semicolon + 1), nullptr, 16);
        const Bidi directions[] = {Bidi::DEFAULT_LTR, Bidi::LTR, Bidi::RTL};
        for (unsigned i = 0; i < 3; ++i) {
            if (wanted >> i & 1) {
                EXPECT_TRUE(figure.add(agrees(test, directions[i], 0))) << line;
            }
        }
    }
    EXPECT_GT(figure.compared, 700000u);
}

}  // namespace
}  // namespace gxtest
