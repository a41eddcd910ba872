#include "base/GxString.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <clocale>
#include <cstring>
#include <cwchar>
#include <functional>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "base/Error.h"
#include "support/AllocationFailure.h"
#include "support/NativeErrors.h"

namespace GxFontEffect {
namespace {

using gxtest::expectSilence;
using gxtest::Failures;

constexpr const char* kTag = "GxString";
constexpr const wchar_t* kNoWide = nullptr;
constexpr const char* kNoNarrow = nullptr;
constexpr const GxString* kNoString = nullptr;

// A constructed string, to be used in one expression or kept.
class Text {
public:
    explicit Text(const wchar_t* text) { EXPECT_TRUE(string_.Construct(text)); }
    GxString* operator->() { return &string_; }
    GxString* get() { return &string_; }
    std::wstring wide() const {
        return string_.GetPointer() ? std::wstring(string_.GetPointer()) : L"(none)";
    }

private:
    GxString string_;
};

std::string utf8(const GxString& string) {
    std::string bytes(static_cast<size_t>(string.GetUTF8Size()), '?');
    EXPECT_TRUE(string.GetUTF8(bytes.data(), static_cast<int>(bytes.size())));
    EXPECT_EQ(bytes.back(), '\0');
    return bytes.c_str();
}

std::vector<uint16_t> utf16(const GxString& string) {
    const std::unique_ptr<uint16_t[]> units(string.GetUTF16());
    return {units.get(), units.get() + string.GetUTF16Size()};
}

TEST(GxString, EveryOperationNeedsConstruct) {
    GxString s;
    char buffer[4];
    wchar_t c;
    Text other(L"x");
    Failures failures(kTag);
    failures.expect(
        8, {s.Set(L"a"), s.Set("a"), s.Set(L"a", 1), s.Set(other.get()), s.Clear(),
            s.GetChar(0, &c), s.Append(L"a"), s.Append("a"), s.Append(kNoString), s.Insert(L"a", 0),
            s.Remove(0, 0), s.SetSubstring(other.get(), 0, 0), s.GetUTF8(buffer, 4)});
    failures.expect(8,
                    {s.GetLength(), s.CompareTo(other.get()), s.CompareTo("a"), s.CompareTo("a", 1),
                     s.Find(L"a"), s.Find("a"), s.ReverseFind(L"a"), s.ReverseFind("a"),
                     s.GetUTF8Size(), s.GetUTF16Size()},
                    -1);
    failures.expect<const void*>(8, {s.GetPointer(), s.GetUTF16()});
}

TEST(GxString, ConstructsFromEverySource) {
    Text source(L"caf\u00e9");
    GxString wide, narrow, copy, cut, padded, copyCut, bare, bareCopy;
    expectSilence([&] {
        EXPECT_TRUE(wide.Construct(L"a\U0001F600"));
        EXPECT_TRUE(narrow.Construct("caf\xC3\xA9"));
        EXPECT_TRUE(copy.Construct(source.get()));
        EXPECT_TRUE(cut.Construct(L"abcdef", 3));
        EXPECT_TRUE(padded.Construct(L"ab", 5));
        EXPECT_TRUE(copyCut.Construct(source.get(), 2));
        EXPECT_TRUE(bare.Construct());
        EXPECT_TRUE(bareCopy.Construct(&bare));
    });
    EXPECT_EQ(wide.GetLength(), 2);
    EXPECT_STREQ(narrow.GetPointer(), L"caf\u00e9");
    EXPECT_STREQ(copy.GetPointer(), L"caf\u00e9");
    EXPECT_STREQ(cut.GetPointer(), L"abc");
    EXPECT_EQ(std::wmemcmp(padded.GetPointer(), L"ab\0\0\0", 6), 0);
    EXPECT_STREQ(copyCut.GetPointer(), L"ca");
    EXPECT_EQ(bare.GetPointer(), nullptr);
    EXPECT_EQ(bareCopy.GetPointer(), nullptr);
}

TEST(GxString, ConstructFailsTwiceAndWithoutASource) {
    Text built(L"a");
    GxString s, unconstructed;
    Failures failures(kTag);
    failures.expect(4, {built->Construct()});
    failures.expect(7, {s.Construct(kNoWide), s.Construct(kNoNarrow), s.Construct(kNoString),
                        s.Construct(&unconstructed), s.Construct(kNoWide, 3),
                        s.Construct(kNoString, 3), s.Construct(L"abc", -1)});
    EXPECT_TRUE(s.Construct("now it works"));
}

TEST(GxString, SetsClearsAndMeasuresNoTextAsEmpty) {
    Text s(L"abc");
    expectSilence([&] {
        EXPECT_TRUE(s->Set(s->GetPointer() + 1));
        EXPECT_EQ(s.wide(), L"bc");
        EXPECT_TRUE(s->Set(s.get()));
        EXPECT_EQ(s.wide(), L"bc");
        EXPECT_TRUE(s->Set("d"));
        EXPECT_EQ(s.wide(), L"d");
        EXPECT_TRUE(s->Set(kNoNarrow));
        EXPECT_EQ(s->GetPointer(), nullptr);
        EXPECT_EQ(s->GetLength(), 0);
        EXPECT_EQ(s->Find(L"a"), -1);
        EXPECT_EQ(s->ReverseFind(L""), 0);
        EXPECT_EQ(s->CompareTo("a"), -1);
        EXPECT_EQ(s->CompareTo(s.get()), 0);
        EXPECT_EQ(utf8(*s.get()), "");
        EXPECT_EQ(utf16(*s.get()), std::vector<uint16_t>{0});
        EXPECT_TRUE(s->Append(L"from nothing"));
        EXPECT_EQ(s.wide(), L"from nothing");
        EXPECT_TRUE(s->Clear());
        EXPECT_EQ(s->GetPointer(), nullptr);
    });
    Failures(kTag).expect(3, {s->Remove(0, 0)});
}

TEST(GxString, AppendsAlsoItself) {
    Text s(L"ab");
    GxString bare;
    ASSERT_TRUE(bare.Construct());
    expectSilence([&] {
        EXPECT_TRUE(s->Append("\xE2\x82\xAC"));
        EXPECT_TRUE(s->Append(s.get()));
        EXPECT_TRUE(s->Append(s->GetPointer() + 5));
        EXPECT_TRUE(s->Append(kNoWide));
        EXPECT_TRUE(s->Append(&bare));
    });
    EXPECT_EQ(s.wide(), L"ab\u20acab\u20ac\u20ac");
}

TEST(GxString, InsertsInsideTheText) {
    Text s(L"bd");
    Text c(L"c");
    expectSilence([&] {
        EXPECT_TRUE(s->Insert(L"a", 0));
        EXPECT_TRUE(s->Insert(c.get(), 2));
        EXPECT_TRUE(s->Insert(L"e", 4));
        EXPECT_TRUE(s->Insert(s.get(), 1));
        EXPECT_TRUE(s->Insert(kNoWide, -5));
    });
    Failures failures(kTag);
    failures.expect(3, {s->Insert(L"x", -1), s->Insert(L"x", 11)});
    failures.expect(7, {s->Insert(L"", 0)});
    EXPECT_EQ(s.wide(), L"aabcdebcde");
}

TEST(GxString, RemovesInPlace) {
    Text s(L"abcdef");
    const wchar_t* buffer = s->GetPointer();
    EXPECT_TRUE(s->Remove(1, 2));
    EXPECT_EQ(s.wide(), L"adef");
    EXPECT_TRUE(s->Remove(3, 1));
    EXPECT_EQ(s.wide(), L"ade");
    EXPECT_TRUE(s->Remove(1, 0));
    Failures failures(kTag);
    failures.expect(3, {s->Remove(-1, 1), s->Remove(3, 0)});
    failures.expect(7, {s->Remove(1, 3), s->Remove(1, INT_MAX), s->Remove(1, -1)});
    EXPECT_TRUE(s->Remove(0, 3));
    EXPECT_EQ(s.wide(), L"");
    EXPECT_EQ(s->GetPointer(), buffer);
}

TEST(GxString, TakesSubstringsInclusively) {
    Text source(L"abcdef"), s(L"old");
    GxString unconstructed;
    for (const auto& [start, end, part] :
         {std::tuple{1, 3, L"bcd"}, {3, 2, L""}, {2, 2, L"c"}, {4, 6, L"ef"}}) {
        EXPECT_TRUE(s->SetSubstring(source.get(), start, end));
        EXPECT_EQ(s.wide(), part);
    }
    EXPECT_TRUE(s->SetSubstring(s.get(), 1, 1));
    const auto from = [&](int start, int end) { return s->SetSubstring(source.get(), start, end); };
    Failures(kTag).expect(
        7, {s->SetSubstring(nullptr, 0, 0), s->SetSubstring(&unconstructed, 0, 0), from(-1, 2),
            from(0, 7), from(3, 1), from(INT_MIN, INT_MAX), from(INT_MAX, 0)});
    EXPECT_EQ(s.wide(), L"f");
}

TEST(GxString, ReadsCharacters) {
    Text s(L"a\U0001F600");
    wchar_t c = 0;
    EXPECT_TRUE(s->GetChar(1, &c));
    EXPECT_EQ(c, L'\U0001F600');
    Failures failures(kTag);
    failures.expect(3, {s->GetChar(2, &c), s->GetChar(-1, &c)});
    failures.expect(7, {s->GetChar(0, nullptr)});
}

TEST(GxString, ComparesLengthBeforeContent) {
    for (const auto& [a, b, sign] : {std::tuple{"ab", "b", 1},
                                     {"b", "ab", -1},
                                     {"ab", "ac", -1},
                                     {"zz", "za", 1},
                                     {"same", "same", 0},
                                     {"", "", 0}}) {
        GxString left, right;
        EXPECT_TRUE(left.Construct(a) && right.Construct(b));
        EXPECT_EQ(std::clamp(left.CompareTo(&right), -1, 1), sign) << a << " " << b;
        EXPECT_EQ(std::clamp(left.CompareTo(b), -1, 1), sign) << a << " " << b;
    }
}

TEST(GxString, ComparesNarrowTextByItsBytesAndByCount) {
    Text e(L"\u00e9");
    EXPECT_EQ(e->CompareTo("\xC3\xA9"), -1);  // two bytes against one character
    EXPECT_EQ(e->CompareTo("\xC3\xA9", 1), 0);
    Text s(L"abcd");
    EXPECT_EQ(s->CompareTo("abxy", 2), 0);
    EXPECT_LT(s->CompareTo("abxy", 3), 0);
    EXPECT_EQ(s->CompareTo("zzz", 0), 0);
    EXPECT_GT(s->CompareTo("abc", 10), 0);
    Failures(kTag).expect(7,
                          {s->CompareTo("a", -1), s->CompareTo(kNoNarrow),
                           s->CompareTo(kNoNarrow, 1), s->CompareTo(kNoString)},
                          -1);
}

TEST(GxString, FindLeavesOutTheLastPosition) {
    for (const auto& [text, pattern, first, last] : {std::tuple{"abc", "abc", -1, 0},
                                                     {"abc", "c", -1, 2},
                                                     {"abc", "b", 1, 1},
                                                     {"abab", "ab", 0, 2},
                                                     {"xab", "ab", -1, 1},
                                                     {"abc", "abcd", -1, -1},
                                                     {"aaaa", "aa", 0, 2},
                                                     {"x", "x", -1, 0},
                                                     {"", "", -1, 0},
                                                     {"ab", "", 0, 2},
                                                     {"", "a", -1, -1},
                                                     {"a-\xC3\xA9-b", "\xC3\xA9", 2, 2}}) {
        GxString s, wide;
        ASSERT_TRUE(s.Construct(text) && wide.Construct(pattern));
        for (const int found : {s.Find(pattern), s.Find(wide.GetPointer())}) {
            EXPECT_EQ(found, first) << pattern;
        }
        for (const int found : {s.ReverseFind(pattern), s.ReverseFind(wide.GetPointer())}) {
            EXPECT_EQ(found, last) << pattern;
        }
    }
    Text s(L"abc");
    Failures(kTag).expect(
        7,
        {s->Find(kNoWide), s->Find(kNoNarrow), s->ReverseFind(kNoWide), s->ReverseFind(kNoNarrow)},
        -1);
}

TEST(GxString, ConvertsToUtf8WithinTheGivenRoom) {
    Text s(L"a\u00e9\u20ac\U0001F600");
    EXPECT_EQ(s->GetUTF8Size(), 1 + 2 + 3 + 4 + 1);
    EXPECT_EQ(utf8(*s.get()), "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80");
    char buffer[8];
    for (auto [size, expected] : {std::pair{1, ""},
                                  {2, "a"},
                                  {3, "a"},
                                  {4, "a\xC3\xA9"},
                                  {6, "a\xC3\xA9"},
                                  {7, "a\xC3\xA9\xE2\x82\xAC"}}) {
        std::memset(buffer, '#', sizeof(buffer));
        EXPECT_TRUE(s->GetUTF8(buffer, size));
        EXPECT_STREQ(buffer, expected);
        EXPECT_EQ(buffer[size - 1], '\0');
        EXPECT_EQ(buffer[size], '#');
    }
    Failures(kTag).expect(7,
                          {s->GetUTF8(nullptr, 8), s->GetUTF8(buffer, -1), s->GetUTF8(buffer, 0)});
}

TEST(GxString, OddCodePointsInUtf8AndUtf16) {
    struct Case {
        uint32_t c;
        int utf8Size;
        std::vector<uint16_t> utf16;
    };
    for (const Case& c : std::vector<Case>{{0x7F, 2, {0x7F, 0}},
                                           {0x80, 3, {0x80, 0}},
                                           {0x7FF, 3, {0x7FF, 0}},
                                           {0x800, 4, {0x800, 0}},
                                           {0xD800, 4, {0xD800, 0}},
                                           {0xFFFE, 4, {0xFFFE, 0}},
                                           {0xFFFF, 4, {0xDBFF, 0xDFFF, 0}},
                                           {0x10000, 5, {0xD800, 0xDC00, 0}},
                                           {0x1F600, 5, {0xD83D, 0xDE00, 0}},
                                           {0x10FFFF, 5, {0xDBFF, 0xDFFF, 0}},
                                           {0x110000, 5, {0xFFFD, 0}},
                                           {0x1FFFFF, 5, {0xFFFD, 0}},
                                           {0x200000, 6, {0xFFFD, 0}},
                                           {0x4000000, 7, {0xFFFD, 0}},
                                           {0xFFFFFFFF, 7, {0xFFFD, 0}}}) {
        const wchar_t text[] = {static_cast<wchar_t>(c.c), 0};
        Text s(text);
        EXPECT_EQ(s->GetUTF8Size(), c.utf8Size) << std::hex << c.c;
        EXPECT_EQ(utf16(*s.get()), c.utf16) << std::hex << c.c;
    }
    EXPECT_EQ(utf16(*Text(L"a\u20ac").get()), (std::vector<uint16_t>{'a', 0x20AC, 0}));
}

TEST(GxString, EveryCodePointMakesTheWayToUtf8AndBackInAnyLocale) {
    ASSERT_STREQ(std::setlocale(LC_CTYPE, nullptr), "C");
    std::wstring all;
    for (uint32_t c = 1; c <= 0x10FFFF; c++) {
        if (c < 0xD800 || c > 0xDFFF) all += static_cast<wchar_t>(c);
    }
    GxString back;
    ASSERT_TRUE(back.Construct(utf8(*Text(all.c_str()).get()).c_str()));
    EXPECT_TRUE(back.GetPointer() == all);
    EXPECT_EQ(utf8(*Text(L"\uFFFE\uFFFF").get()), "\xEF\xBF\xBE\xEF\xBF\xBF");
}

TEST(GxString, WhatIsNoUtf8EndsTheText) {
    const char* const malformed[] = {"\xFF",
                                     "\x80",
                                     "\xE4\xB8",
                                     "\xE4\xB8<",
                                     "\xC0\x80",               // overlong
                                     "\xE0\x9F\xBF",           // overlong
                                     "\xF0\x8F\xBF\xBF",       // overlong
                                     "\xED\xA0\x80",           // U+D800
                                     "\xED\xBF\xBF",           // U+DFFF
                                     "\xF4\x90\x80\x80",       // U+110000
                                     "\xF8\x88\x80\x80\x80"};  // five bytes
    for (const std::string bytes : malformed) {
        GxString s;
        expectSilence([&] { EXPECT_TRUE(s.Construct(("\xC3\xA9" + bytes + "x").c_str())); });
        EXPECT_STREQ(s.GetPointer(), L"\u00e9") << testing::PrintToString(bytes);
        EXPECT_EQ(s.GetLength(), 1);
    }
    for (const uint32_t c : {0xD800u, 0xDFFFu, 0x110000u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
        const wchar_t wide[] = {L'\u00e9', static_cast<wchar_t>(c), L'x', 0};
        EXPECT_EQ(utf8(*Text(wide).get()), "\xC3\xA9") << std::hex << c;
    }
}

TEST(GxString, CountedTextHoldsEveryCharacter) {
    using namespace std::string_literals;
    const std::wstring wide = L"A\0\xFFFF\x1F600"s + L'\xD800';
    const std::vector<uint16_t> units = {'A', 0, 0xFFFF, 0xD83D, 0xDE00, 0xD800, 0};
    Text s(L"before");
    const auto expectWide = [](const GxString& string, const std::wstring& expected) {
        ASSERT_EQ(string.GetLength(), static_cast<int>(expected.size()));
        EXPECT_EQ(std::wstring(string.GetPointer(), expected.size() + 1), expected + L'\0');
    };
    expectSilence([&] {
        EXPECT_TRUE(s->Set(wide.data(), static_cast<int>(wide.size())));
        expectWide(*s.get(), wide);
        EXPECT_EQ(utf16(*s.get()), units);
        EXPECT_EQ(s->GetUTF8Size(), 1 + 1 + 3 + 4 + 3 + 1);
        GxString copy, cut;
        EXPECT_TRUE(copy.Construct(s.get()));
        EXPECT_EQ(utf16(copy), units);
        EXPECT_TRUE(copy.Set(s.get()));
        EXPECT_EQ(s->CompareTo(&copy), 0);
        EXPECT_TRUE(cut.Construct(s.get(), 3));
        EXPECT_EQ(utf16(cut), (std::vector<uint16_t>{'A', 0, 0xFFFF, 0}));
        EXPECT_TRUE(cut.SetSubstring(s.get(), 1, 1));
        expectWide(cut, L"\0"s);
        EXPECT_TRUE(copy.Remove(0, 1));
        EXPECT_TRUE(copy.Insert(&cut, 1));
        EXPECT_TRUE(copy.Append(L"z"));
        expectWide(copy, L"\0\0\xFFFF\x1F600\xD800z"s);
        EXPECT_EQ(copy.Find(L"\x1F600"), 3);
        EXPECT_EQ(copy.ReverseFind("z"), 5);
        EXPECT_EQ(copy.CompareTo("", 2), 1) << "NUL is a character, not the end";
        EXPECT_TRUE(s->Set(L"\xFFFF"));
        EXPECT_EQ(utf16(*s.get()), (std::vector<uint16_t>{0xDBFF, 0xDFFF, 0})) << "no longer";
    });
    Failures(kTag).expect(7, {s->Set(wide.data(), -1)});
}

TEST(GxString, SurvivesEveryFailedAllocation) {
    Text other(L"other text");
    const auto check = [&](const std::function<bool(GxString&)>& change) {
        Text s(L"kept");
        gxtest::failEachAllocation([&] {
            Error::SetError(0);
            const bool changed = change(*s.get());
            if (changed) return;
            EXPECT_EQ(Error::GetError(), 7);
            EXPECT_EQ(s.wide(), L"kept");
        });
        EXPECT_NE(s.wide(), L"kept");
    };
    check([](GxString& s) { return s.Set(L"x"); });
    check([](GxString& s) { return s.Set("x"); });
    check([](GxString& s) { return s.Set(L"x", 1); });
    check([](GxString& s) { return s.Append("x"); });
    check([](GxString& s) { return s.Insert(L"x", 1); });
    check([&](GxString& s) { return s.SetSubstring(other.get(), 0, 3); });

    EXPECT_EQ(gxtest::failEachAllocation([] {
                  GxString s;
                  if (s.Construct("text")) return;
                  EXPECT_EQ(Error::GetError(), 7);
                  EXPECT_TRUE(s.Construct()) << "a failed Construct leaves nothing behind";
              }),
              2);
    gxtest::failEachAllocation([&] { delete[] other->GetUTF16(); });
    gxtest::failEachAllocation(
        [&] { EXPECT_TRUE(other->Find("t") == 1 || Error::GetError() == 7); });
}

}  // namespace
}  // namespace GxFontEffect
