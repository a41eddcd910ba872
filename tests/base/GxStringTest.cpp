#include "base/GxString.h"

#include <gtest/gtest.h>

#include <climits>
#include <clocale>
#include <cstring>
#include <cwchar>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "base/Error.h"
#include "support/AllocationFailure.h"
#include "support/NativeErrors.h"

namespace GxFontEffect {
namespace {

using gxtest::expectSilence;

constexpr const wchar_t* kNoWide = nullptr;
constexpr const char* kNoNarrow = nullptr;
constexpr const GxString* kNoString = nullptr;

void expectError(int code, const std::function<void()>& operation) {
    gxtest::expectNativeError("GxString", code, operation);
}

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
    const std::vector<std::function<void()>> operations = {
        [&] { EXPECT_FALSE(s.Set(L"a")); },
        [&] { EXPECT_FALSE(s.Set("a")); },
        [&] { EXPECT_FALSE(s.Set(L"a", 1)); },
        [&] { EXPECT_FALSE(s.Set(other.get())); },
        [&] { EXPECT_FALSE(s.Clear()); },
        [&] { EXPECT_EQ(s.GetLength(), -1); },
        [&] { EXPECT_EQ(s.GetPointer(), nullptr); },
        [&] { EXPECT_FALSE(s.GetChar(0, &c)); },
        [&] { EXPECT_FALSE(s.Append(L"a")); },
        [&] { EXPECT_FALSE(s.Append("a")); },
        [&] { EXPECT_FALSE(s.Append(kNoString)); },
        [&] { EXPECT_FALSE(s.Insert(L"a", 0)); },
        [&] { EXPECT_FALSE(s.Remove(0, 0)); },
        [&] { EXPECT_FALSE(s.SetSubstring(other.get(), 0, 0)); },
        [&] { EXPECT_EQ(s.CompareTo(other.get()), -1); },
        [&] { EXPECT_EQ(s.CompareTo("a"), -1); },
        [&] { EXPECT_EQ(s.CompareTo("a", 1), -1); },
        [&] { EXPECT_EQ(s.Find(L"a"), -1); },
        [&] { EXPECT_EQ(s.Find("a"), -1); },
        [&] { EXPECT_EQ(s.ReverseFind(L"a"), -1); },
        [&] { EXPECT_EQ(s.ReverseFind("a"), -1); },
        [&] { EXPECT_EQ(s.GetUTF8Size(), -1); },
        [&] { EXPECT_FALSE(s.GetUTF8(buffer, 4)); },
        [&] { EXPECT_EQ(s.GetUTF16Size(), -1); },
        [&] { EXPECT_EQ(s.GetUTF16(), nullptr); },
    };
    for (const auto& operation : operations) expectError(8, operation);
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
    expectError(4, [&] { EXPECT_FALSE(built->Construct()); });
    GxString s, unconstructed;
    expectError(7, [&] { EXPECT_FALSE(s.Construct(kNoWide)); });
    expectError(7, [&] { EXPECT_FALSE(s.Construct(kNoNarrow)); });
    expectError(7, [&] { EXPECT_FALSE(s.Construct(kNoString)); });
    expectError(7, [&] { EXPECT_FALSE(s.Construct(&unconstructed)); });
    expectError(7, [&] { EXPECT_FALSE(s.Construct(kNoWide, 3)); });
    expectError(7, [&] { EXPECT_FALSE(s.Construct(kNoString, 3)); });
    expectError(7, [&] { EXPECT_FALSE(s.Construct(L"abc", -1)); });
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
    expectError(3, [&] { EXPECT_FALSE(s->Remove(0, 0)); });
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
    EXPECT_EQ(s.wide(), L"aabcdebcde");
    expectError(3, [&] { EXPECT_FALSE(s->Insert(L"x", -1)); });
    expectError(3, [&] { EXPECT_FALSE(s->Insert(L"x", 11)); });
    expectError(7, [&] { EXPECT_FALSE(s->Insert(L"", 0)); });
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
    expectError(3, [&] { EXPECT_FALSE(s->Remove(-1, 1)); });
    expectError(3, [&] { EXPECT_FALSE(s->Remove(3, 0)); });
    expectError(7, [&] { EXPECT_FALSE(s->Remove(1, 3)); });
    expectError(7, [&] { EXPECT_FALSE(s->Remove(1, INT_MAX)); });
    expectError(7, [&] { EXPECT_FALSE(s->Remove(1, -1)); });
    EXPECT_TRUE(s->Remove(0, 3));
    EXPECT_EQ(s.wide(), L"");
    EXPECT_EQ(s->GetPointer(), buffer);
}

TEST(GxString, TakesSubstringsInclusively) {
    Text source(L"abcdef");
    Text s(L"old");
    GxString unconstructed;
    EXPECT_TRUE(s->SetSubstring(source.get(), 1, 3));
    EXPECT_EQ(s.wide(), L"bcd");
    EXPECT_TRUE(s->SetSubstring(s.get(), 2, 2));
    EXPECT_EQ(s.wide(), L"d");
    EXPECT_TRUE(s->SetSubstring(source.get(), 3, 2));
    EXPECT_EQ(s.wide(), L"");
    EXPECT_TRUE(s->SetSubstring(source.get(), 4, 6));
    EXPECT_EQ(s.wide(), L"ef");
    expectError(7, [&] { EXPECT_FALSE(s->SetSubstring(nullptr, 0, 0)); });
    expectError(7, [&] { EXPECT_FALSE(s->SetSubstring(&unconstructed, 0, 0)); });
    for (auto [start, end] : {std::pair{-1, 2}, {0, 7}, {3, 1}, {INT_MIN, INT_MAX}, {INT_MAX, 0}}) {
        expectError(7, [&, start = start, end = end] {
            EXPECT_FALSE(s->SetSubstring(source.get(), start, end));
        });
    }
    EXPECT_EQ(s.wide(), L"ef");
}

TEST(GxString, ReadsCharacters) {
    Text s(L"a\U0001F600");
    wchar_t c = 0;
    EXPECT_TRUE(s->GetChar(1, &c));
    EXPECT_EQ(c, L'\U0001F600');
    expectError(3, [&] { EXPECT_FALSE(s->GetChar(2, &c)); });
    expectError(3, [&] { EXPECT_FALSE(s->GetChar(-1, &c)); });
    expectError(7, [&] { EXPECT_FALSE(s->GetChar(0, nullptr)); });
}

TEST(GxString, ComparesLengthBeforeContent) {
    struct Case {
        const wchar_t* a;
        const wchar_t* b;
        const char* narrow;
        int sign;
    };
    for (const Case& c : std::vector<Case>{{L"ab", L"b", "b", 1},
                                           {L"b", L"ab", "ab", -1},
                                           {L"ab", L"ac", "ac", -1},
                                           {L"zz", L"za", "za", 1},
                                           {L"same", L"same", "same", 0},
                                           {L"", L"", "", 0}}) {
        Text a(c.a), b(c.b);
        const auto sign = [](int v) { return (v > 0) - (v < 0); };
        EXPECT_EQ(sign(a->CompareTo(b.get())), c.sign) << c.narrow;
        EXPECT_EQ(sign(a->CompareTo(c.narrow)), c.sign) << c.narrow;
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
    expectError(7, [&] { EXPECT_EQ(s->CompareTo("a", -1), -1); });
    expectError(7, [&] { EXPECT_EQ(s->CompareTo(kNoNarrow), -1); });
    expectError(7, [&] { EXPECT_EQ(s->CompareTo(kNoNarrow, 1), -1); });
    expectError(7, [&] { EXPECT_EQ(s->CompareTo(kNoString), -1); });
}

TEST(GxString, FindLeavesOutTheLastPosition) {
    struct Case {
        const wchar_t* text;
        const char* pattern;
        int first;
        int last;
    };
    const std::vector<Case> cases = {
        {L"abc", "abc", -1, 0},
        {L"abc", "c", -1, 2},
        {L"abc", "b", 1, 1},
        {L"abc", "a", 0, 0},
        {L"abab", "ab", 0, 2},
        {L"xab", "ab", -1, 1},
        {L"abc", "abcd", -1, -1},
        {L"aaaa", "aa", 0, 2},
        {L"x", "x", -1, 0},
        {L"", "", -1, 0},
        {L"ab", "", 0, 2},
        {L"", "a", -1, -1},
        {L"a-\u00e9-b", "\xC3\xA9", 2, 2},
    };
    for (const Case& c : cases) {
        Text s(c.text), pattern(L"");
        ASSERT_TRUE(pattern->Set(c.pattern));
        EXPECT_EQ(s->Find(c.pattern), c.first) << c.pattern;
        EXPECT_EQ(s->Find(pattern->GetPointer()), c.first) << c.pattern;
        EXPECT_EQ(s->ReverseFind(c.pattern), c.last) << c.pattern;
        EXPECT_EQ(s->ReverseFind(pattern->GetPointer()), c.last) << c.pattern;
    }
    Text s(L"abc");
    expectError(7, [&] { EXPECT_EQ(s->Find(kNoWide), -1); });
    expectError(7, [&] { EXPECT_EQ(s->Find(kNoNarrow), -1); });
    expectError(7, [&] { EXPECT_EQ(s->ReverseFind(kNoWide), -1); });
    expectError(7, [&] { EXPECT_EQ(s->ReverseFind(kNoNarrow), -1); });
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
    expectError(7, [&] { EXPECT_FALSE(s->GetUTF8(nullptr, 8)); });
    expectError(7, [&] { EXPECT_FALSE(s->GetUTF8(buffer, -1)); });
    expectError(7, [&] { EXPECT_FALSE(s->GetUTF8(buffer, 0)); });
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
    expectError(7, [&] { EXPECT_FALSE(s->Set(wide.data(), -1)); });
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
