// The grammars of a style's strings against those who read them in the end.
#include <gtest/gtest.h>
#include <hb.h>

#include <string>
#include <vector>

#include "minikin/LocaleList.h"
#include "style/TextSettings.h"
#include "support/Random.h"

namespace gxtest {
namespace {

std::string randomText(Random& random, const std::vector<std::string>& parts) {
    std::string text;
    for (int i = random.between(1, 5); i > 0; i--) {
        text += parts[static_cast<size_t>(random.between(0, static_cast<int>(parts.size()) - 1))];
    }
    return text;
}

TEST(Grammar, FontFeaturesAreThoseThatTheShaperTakes) {
    Random random;
    GX_TRACE_SEED(random);
    const std::vector<std::string> parts{
        "kern", "ss01", "a", "'",          "\"",         "+", "-", "=", " ", "on",
        "OFF",  "1",    "0", "4294967295", "4294967296", "_", "[", "]", ":", "\xC3"};
    int accepted = 0;
    for (int i = 0; i < 200000; i++) {
        const std::string text = randomText(random, parts);
        if (gxtext::checkFontFeatures(text)) continue;  // the shaper takes more
        accepted++;
        hb_feature_t feature;
        ASSERT_TRUE(hb_feature_from_string(text.data(), static_cast<int>(text.size()), &feature))
            << text;
        ASSERT_TRUE(feature.start == HB_FEATURE_GLOBAL_START &&
                    feature.end == HB_FEATURE_GLOBAL_END)
            << text;
    }
    EXPECT_GT(accepted, 10000);
}

TEST(Grammar, LocalesAreThoseThatTheLayoutTakes) {
    Random random;
    GX_TRACE_SEED(random);
    const std::vector<std::string> parts{"en",   "zh",    "yue",    "-Hant", "-Latn",     "-TW",
                                         "-419", "-1901", "-rozaj", "-u",    "-em",       "-emoji",
                                         "-x",   "-a",    "-",      "_",     "-abcdefghi"};
    int accepted = 0;
    for (int i = 0; i < 20000; i++) {
        const std::string tag = randomText(random, parts);
        if (gxtext::checkLocale(tag)) continue;
        accepted++;
        ASSERT_NE(minikin::registerLocaleList(tag), 0u) << tag;
    }
    EXPECT_GT(accepted, 1000);
}

}  // namespace
}  // namespace gxtest
