#include "font/GxFontStyle.h"

#include <gtest/gtest.h>

#include <vector>

#include "base/GxString.h"

namespace GxFontEffect {
namespace {

TEST(GxFontStyle, ComesFromTheFirstMarkerInTheName) {
    struct Case {
        const char* path;
        const char* family;  // null for none
        int weight;
        bool italic;
    };
    const std::vector<Case> cases = {
        {"/f/Font-Italic.ttf", nullptr, 400, true},
        {"/f/Font-Thin.ttf", nullptr, 100, false},
        {"/f/Font-Light.ttf", nullptr, 300, false},
        {"/f/Font-Medium.ttf", nullptr, 500, false},
        {"/f/Font-Medium.ttf", "qrn-roboto-light", 700, false},
        {"/f/Font-Medium.ttf", "sans-serif", 500, false},
        {"/f/Font-Black.ttf", nullptr, 900, false},
        {"/f/Font-Bold.ttf", nullptr, 700, false},
        {"/f/Font-Bold.ttf", "qrn-roboto-light", 700, false},
        {"/f/Font-Regular.ttf", nullptr, 400, false},
        {"/f/Font.ttf", nullptr, 400, false},
        // One marker written into another, and two of them.
        {"/f/Font-BoldItalic.ttf", nullptr, 700, false},
        {"/f/Font-Bold-Italic.ttf", nullptr, 400, true},
        {"/f/Font-Bold-Thin.ttf", nullptr, 100, false},
        {"/f/Font-Black-Medium.ttf", nullptr, 500, false},
        {"/f/Font-LightItalic.ttf", nullptr, 300, false},
        // Anywhere in the path but at its start and its very end; capitals matter.
        {"/f-Bold/Font.ttf", nullptr, 700, false},
        {"-Bold.ttf", nullptr, 400, false},
        {"x-Bold", nullptr, 400, false},
        {"/f/Font-bold.ttf", nullptr, 400, false},
        {"", nullptr, 400, false},
    };
    for (const Case& c : cases) {
        GxString path, family;
        ASSERT_TRUE(path.Construct(c.path));
        ASSERT_TRUE(family.Construct(c.family ? c.family : ""));
        const GxFontStyle style = DeriveFontStyle(path, c.family ? &family : nullptr, 400);
        EXPECT_EQ(style.weight, c.weight) << c.path;
        EXPECT_EQ(style.italic, c.italic) << c.path;
    }
}

TEST(GxFontStyle, KeepsTheWantedWeightWithoutAWeightMarker) {
    for (const char* name : {"/f/Font.ttf", "/f/Font-Italic.ttf"}) {
        GxString path;
        ASSERT_TRUE(path.Construct(name));
        EXPECT_EQ(DeriveFontStyle(path, nullptr, 650).weight, 650) << name;
    }
}

}  // namespace
}  // namespace GxFontEffect
