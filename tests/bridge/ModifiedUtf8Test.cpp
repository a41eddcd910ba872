#include "bridge/ModifiedUtf8.h"

#include <gtest/gtest.h>

#include <string>

namespace GxFontEffect {
namespace {

using namespace std::string_literals;

struct Case {
    const char* what;
    std::string chars;
    std::wstring wide;
    std::string utf8;
};

const std::string kBad = "\xEF\xBF\xBD";  // U+FFFD

const Case kCases[] = {
    {"nothing", "", L"", ""},
    {"one to three bytes", "aé한", L"aé한", "aé한"},
    {"the ends of each form", "\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF",
     L"\x7F\x80\x7FF\x800\xFFFF", "\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF"},
    {"NUL in two bytes", "a\xC0\x80z", L"a\0z"s, "a\0z"s},
    {"a pair of surrogates (U+1F600)", "<\xED\xA0\xBD\xED\xB8\x80>", L"<\U0001F600>", "<😀>"},
    {"the highest pair (U+10FFFF)", "\xED\xAF\xBF\xED\xBF\xBF", L"\U0010FFFF", "\xF4\x8F\xBF\xBF"},
    {"four bytes, as some runtimes write", "\xF0\x9F\x98\x80", L"\U0001F600", "😀"},
    {"a lead alone", "\xED\xA0\xBDx", L"\xD83D"s + L"x", kBad + "x"},
    {"a lead at the end", "\xED\xA0\xBD", L"\xD83D", kBad},
    {"a trail alone", "\xED\xB8\x80x", L"\xDE00"s + L"x", kBad + "x"},
    {"two leads, one trail", "\xED\xA0\xBD\xED\xA0\xBD\xED\xB8\x80", L"\xD83D"s + L"\U0001F600",
     kBad + "😀"},
    {"cut after one of two", "a\xC3", L"a\xFFFD", "a" + kBad},
    {"cut after two of three", "\xED\x95", L"\xFFFD\xFFFD", kBad + kBad},
    {"cut after three of four", "\xF0\x9F\x98", L"\xFFFD\xFFFD\xFFFD", kBad + kBad + kBad},
    {"cut in the second surrogate", "\xED\xA0\xBD\xED\xB8", L"\xD83D\xFFFD\xFFFD",
     kBad + kBad + kBad},
    {"a continuation alone", "\x80z", L"\xFFFDz", kBad + "z"},
    {"a missing continuation", "\xE4zz", L"\xFFFDzz", kBad + "zz"},
    {"overlong but for NUL", "\xC1\x81\xE0\x81\x81", L"\xFFFD\xFFFD\xFFFD\xFFFD\xFFFD",
     kBad + kBad + kBad + kBad + kBad},
    {"beyond U+10FFFF", "\xF4\x90\x80\x80", L"\xFFFD\xFFFD\xFFFD\xFFFD", kBad + kBad + kBad + kBad},
    {"no lead byte at all", "\xFE\xFF", L"\xFFFD\xFFFD", kBad + kBad},
};

TEST(ModifiedUtf8Test, ReadsCodePoints) {
    for (const Case& c : kCases) {
        EXPECT_EQ(WideFromModifiedUtf8(c.chars), c.wide) << c.what;
        EXPECT_EQ(Utf8FromModifiedUtf8(c.chars), c.utf8) << c.what;
    }
}

}  // namespace
}  // namespace GxFontEffect
