#include "bridge/FontConfigRules.h"

#include <gtest/gtest.h>

#include <string>

#include "support/TempFolder.h"

namespace GxFontEffect {
namespace {

TEST(FontConfigRulesTest, ConsidersTheFirstNamedFamilyAndBuildsThoseForAnyLanguageAtOnce) {
    struct {
        bool named;
        const char* languages;
        bool considered, now;
    } const cases[] = {
        {false, "", true, true},         {false, "und-Arab", true, false},
        {false, "und-Zsym", true, true}, {false, "zh-Hans,zh-Hant", true, false},
        {true, "und-Arab", true, true},  {false, "und-Zsye", true, true},
        {true, "", false, false},        {false, "und-Zsym,und-Zsye", true, false},
    };
    FontConfigRules rules;
    for (const auto& c : cases) {
        ASSERT_EQ(rules.Considers(c.named), c.considered) << c.languages;
        EXPECT_EQ(c.considered && rules.BuildsNow(c.languages), c.now) << c.languages;
    }
}

TEST(FontConfigRulesTest, KeepsReadableUprightFontsForEveryFamily) {
    const gxtest::TempFolder folder;
    const std::string font = folder.write("font.ttf", "x");
    EXPECT_TRUE(FontConfigRules::Keeps(font, false, std::nullopt));
    EXPECT_TRUE(FontConfigRules::Keeps(font, false, ""));
    EXPECT_FALSE(FontConfigRules::Keeps(font, true, std::nullopt)) << "italic";
    EXPECT_FALSE(FontConfigRules::Keeps(font, false, "serif")) << "for one family only";
    EXPECT_FALSE(FontConfigRules::Keeps(folder.path("missing.ttf"), false, std::nullopt));
    EXPECT_FALSE(FontConfigRules::Keeps("", false, std::nullopt));
}

TEST(FontConfigRulesTest, CutsLongPathsBeforeTheyAreRead) {
    EXPECT_EQ(FontConfigRules::CutPath(std::string(1100, 'a')), std::string(1023, 'a'));
    EXPECT_EQ(FontConfigRules::CutPath(std::string(1023, 'a')).size(), 1023u);
    // A path that is only readable once it is cut: 1,023 bytes of "./././" before the name.
    const gxtest::TempFolder folder;
    const std::string font = folder.write("f", "x");
    const std::string root = font.substr(0, font.size() - 1);
    std::string path = root;
    while (path.size() + 1 < FontConfigRules::kMaxPathBytes) path += '/';
    path += "f";
    ASSERT_EQ(path.size(), FontConfigRules::kMaxPathBytes);
    EXPECT_FALSE(FontConfigRules::Keeps(path + "g", false, std::nullopt));
    EXPECT_TRUE(FontConfigRules::Keeps(FontConfigRules::CutPath(path + "g"), false, std::nullopt));
}

}  // namespace
}  // namespace GxFontEffect
