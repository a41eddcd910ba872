#include "minikin/LocaleList.h"

#include <gtest/gtest.h>

#include "minikin/Locale.h"

namespace {

using minikin::EmojiStyle;
using minikin::Locale;
using minikin::LocaleList;
using minikin::registerLocaleList;

uint32_t score(const char* requested, const char* supported) {
    return Locale(requested).scoreFor(LocaleList(supported).locales());
}

TEST(LocaleListTest, SameStringSameIdOtherSpellingOtherId) {
    const uint32_t first = registerLocaleList("und-Arab,fa");
    EXPECT_NE(first, 0u);
    EXPECT_EQ(registerLocaleList("und-Arab,fa"), first);
    EXPECT_EQ(registerLocaleList("und-arab,fa"), first + 1);
    // Lists without a locale are none and take no id.
    for (const char* text : {"", ",", ",,,", "x", "english-is-not-a-tag-x", "i-klingon", "en--US",
                             "e\xC3\xA9", "12", "-", "und_"}) {
        EXPECT_EQ(registerLocaleList(text), 0u) << text;
    }
    // Duplicates parse away, the string stays another one.
    EXPECT_EQ(registerLocaleList("und-Arab,fa,fa"), first + 2);
    EXPECT_EQ(minikin::localeListById(first + 2).locales().size(), 2u);
    EXPECT_TRUE(minikin::localeListById(0).empty());
    EXPECT_TRUE(minikin::localeListById(0xFFFFFFFF).empty());
    EXPECT_EQ(LocaleList("aa,ab,ac,ad,ae,af,ag,ah,ai,aj,ak,al,am,an").locales().size(),
              minikin::kLocaleLimit);
}

TEST(LocaleListTest, TagsAreCompletedByTheLikelyScript) {
    const struct {
        const char* tag;
        const char* completed;
    } cases[] = {
        {"EN-us", "en-Latn-US"},     {"zh-SG", "zh-Hans-SG"},    {"zh_Hant_HK", "zh-Hant-HK"},
        {"de-1996", "de-Latn-1996"}, {"zh-yue-Hant", "zh-Hant"}, {"und", "und"},
        {"und-Arab", "und-Arab"},    {"und-Zsye", "und-Zsye"},   {"es-419", "es-Latn-419"},
        {"ar-u-nu-latn", "ar-Arab"},
    };
    for (const auto& c : cases) EXPECT_EQ(Locale(c.tag).toString(), c.completed) << c.tag;
}

TEST(LocaleListTest, EmojiStyles) {
    EXPECT_EQ(Locale("und-Zsye").emojiStyle(), EmojiStyle::EMOJI);
    EXPECT_EQ(Locale("und-Zsym").emojiStyle(), EmojiStyle::TEXT);
    EXPECT_EQ(Locale("en-US-u-em-emoji").emojiStyle(), EmojiStyle::EMOJI);
    EXPECT_EQ(Locale("en-u-ca-buddhist-em-text").emojiStyle(), EmojiStyle::TEXT);
    EXPECT_EQ(Locale("en-u-em-default").emojiStyle(), EmojiStyle::DEFAULT);
    EXPECT_EQ(Locale("en-t-em-emoji").emojiStyle(), EmojiStyle::EMPTY);
    EXPECT_EQ(Locale("en-x-u-em-emoji").emojiStyle(), EmojiStyle::EMPTY);
    EXPECT_EQ(LocaleList("en,fr-u-em-text,und-Zsye").emojiStyle(), EmojiStyle::TEXT);
}

TEST(LocaleListTest, ScoresRankLanguageScriptAndEmojiStyle) {
    const struct {
        const char* requested;
        const char* supported;
        uint32_t score;
    } cases[] = {
        {"ja", "ja", 3},
        {"ja", "ko", 0},  // Han and Hangul do not make kana
        {"und-Hani", "ko", 1},
        {"und-Hani", "ja", 1},
        {"zh-Hans", "zh-Hans", 3},
        {"zh-Hans", "zh-Hant,zh-Bopo", 0},
        {"zh-Hanb", "zh-Hant", 0},
        {"zh-Hanb", "zh-Hant,zh-Bopo", 3},  // neither alone, both together
        {"zh-Hanb", "zh-Hant,ja-Bopo", 1},
        {"ar", "und-Arab", 1},
        {"und-Arab", "und-Arab", 3},
        {"en", "und-Arab", 0},
        {"en-u-em-emoji", "und-Zsye", 2},
        {"und-Zsye", "und-Zsye", 4},
        {"en", "", 0},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(score(c.requested, c.supported), c.score) << c.requested << " " << c.supported;
    }
}

}  // namespace
