#include "text/GxTextObject.h"

#include <gmock/gmock.h>

#include <functional>
#include <string>
#include <utility>

#include "base/Error.h"
#include "support/AllocationFailure.h"
#include "support/LogCapture.h"
#include "text/GxFontDrawing.h"
#include "text/GxTextInstanceManager.h"
#include "text/TextFixture.h"

namespace GxFontEffect {
namespace {

using gxtest::LogCapture;
using testing::ElementsAre;

std::string nativeError(int code, int site) {
    return "@ Native Error " + std::to_string(code) + " : " + std::to_string(site);
}

// --- construction ---

TEST(GxTextObject, UnconstructedAnswersWithError8AtEachSite) {
    GxTextObject text;
    List lines;
    lines.Construct();
    android::Paint paint;
    struct Case {
        int site;
        std::function<bool()> fails;
    };
    const Case cases[] = {
        {248, [&] { return text.RenderTextEffect(1, 1) == nullptr; }},
        {280, [&] { return text.GetResultBitmap() == nullptr; }},
        {374, [&] { return text.GetRuntimeHandle() == -1; }},
        {382, [&] { return text.GetEffect() == nullptr; }},
        {390, [&] { return !text.SetText(static_cast<const GxString*>(nullptr)); }},
        {426, [&] { return !text.SetText(L"a"); }},
        {430, [&] { return !text.SetText(L"a", 1); }},
        {460, [&] { return text.SetTextLocaleListId(), true; }},
        {542, [&] { return text.GetText() == nullptr; }},
        {549, [&] { return !text.SetFontFamilyName("a"); }},
        {572, [&] { return !text.SetFont("a"); }},
        {600, [&] { return !text.SetFont("a", nullptr, 0); }},
        {628, [&] { return text.GetFont() == nullptr; }},
        {636, [&] { return !text.SetLineInfo(&lines); }},
        {664, [&] { return text.GetLineInfo() == nullptr; }},
        {678, [&] { return !text.SetTextStyle(true, true); }},
        {703, [&] { return !text.isBoldTextStyle(); }},
        {710, [&] { return !text.isItalicTextStyle(); }},
        {717, [&] { return text.GetView() == nullptr; }},
        {724, [&] { return text.GetPaint() == android::Paint(); }},
        {730, [&] { return text.SetPaint(paint), true; }},
        {736, [&] { return text.SetBackgroundColor(1, true), true; }},
        {739, [&] { return text.SetBackgroundShape({}), true; }},
        {741, [&] { return text.SetCanvasColor(1), true; }},
        {743, [&] { return text.SetTextColor(1), true; }},
        {749, [&] { return text.GetTextColor() == 0xFF000000u; }},
        {754, [&] { return text.setFadesFill(true), true; }},
        {754, [&] { return !text.getFadesFill(); }},
        {758, [&] { return text.setKeepsWholeInk(true), true; }},
        {758, [&] { return !text.getKeepsWholeInk(); }},
        {762, [&] { return text.setKeepsColorGlyphs(true), true; }},
        {762, [&] { return !text.getKeepsColorGlyphs(); }},
        {758, [&] { return text.GetInkMargins().isEmpty(); }},
    };
    for (const Case& c : cases) {
        Error::SetError(0);
        LogCapture log;
        EXPECT_TRUE(c.fails()) << c.site;
        EXPECT_EQ(Error::GetError(), 8) << c.site;
        EXPECT_THAT(log.lines(),
                    ElementsAre(gxtest::LogLine{6, "GxTextObject", nativeError(8, c.site)}));
    }
    LogCapture log;
    { GxTextObject other; }
    EXPECT_TRUE(log.contains(nativeError(8, 217)));
}

TEST(GxTextObject, ConstructRegistersOnce) {
    LogCapture log;
    GxTextObject text;
    ASSERT_TRUE(text.Construct());
    const int handle = text.GetRuntimeHandle();
    EXPECT_GE(handle, 1);
    EXPECT_EQ(GxTextObject::FindGxTextObject(handle), &text);
    Error::SetError(0);
    EXPECT_FALSE(text.Construct());
    EXPECT_EQ(Error::GetError(), 4);
    EXPECT_TRUE(log.contains(nativeError(4, 229)));
    EXPECT_EQ(text.GetRuntimeHandle(), handle);
    {
        GxTextObject second;
        ASSERT_TRUE(second.Construct());
        EXPECT_EQ(second.GetRuntimeHandle(), handle + 1);
    }
    EXPECT_EQ(GxTextObject::FindGxTextObject(handle + 1), nullptr);
}

TEST(GxTextObject, LastReleaseDeletesTheObject) {
    auto* text = new GxTextObject;
    ASSERT_TRUE(text->Construct());
    const int handle = text->GetRuntimeHandle();
    GxTextInstanceManager::Bind(text);
    LogCapture log;
    EXPECT_TRUE(GxTextInstanceManager::Release(handle));
    EXPECT_EQ(GxTextObject::FindGxTextObject(handle), nullptr);
    EXPECT_THAT(log.texts()[0], testing::StartsWith("Delete GxTextObject by InstanceManager : "));
}

TEST(GxTextObject, NullArgumentsAreError7) {
    GxTextObject text;
    ASSERT_TRUE(text.Construct());
    const std::pair<int, std::function<bool()>> cases[] = {
        {553, [&] { return text.SetFontFamilyName(nullptr); }},
        {576, [&] { return text.SetFont(nullptr); }},
        {604, [&] { return text.SetFont(nullptr, nullptr, 0); }},
        {640, [&] { return text.SetLineInfo(nullptr); }},
        {431, [&] { return text.SetText(L"negative", -1); }},
    };
    for (const auto& [site, call] : cases) {
        Error::SetError(0);
        LogCapture log;
        EXPECT_FALSE(call());
        EXPECT_EQ(Error::GetError(), 7);
        EXPECT_TRUE(log.contains(nativeError(7, site))) << site;
    }
}

// --- text and the families of its scripts ---

class GxTextObjectText : public TextFixture {
protected:
    bool isLoaded(const char* language) {
        for (size_t i = 0; i < systemFamilies().size(); ++i) {
            if (std::string(kSystemFamilies[i].language) == language) {
                return systemFamilies()[i]->loaded != 0;
            }
        }
        ADD_FAILURE() << language;
        return false;
    }
    // A private-use script run loads nothing, so families can be told apart by what a text loads
    // first.
    void unload() {
        for (size_t i = 0; i < systemFamilies().size(); ++i) {
            if (std::string(kSystemFamilies[i].language).size() > 0 &&
                std::string(kSystemFamilies[i].language) != "und-Zsye") {
                systemFamilies()[i]->loaded = 0;
            }
        }
    }
    std::string loadedBy(const wchar_t* string) {
        unload();
        EXPECT_TRUE(text.SetText(string));
        std::string loaded;
        for (const char* language :
             {"und-Arab", "und-Deva", "und-Hebr", "und-Thai", "zh-Hans", "zh-Hant", "ja", "ko"}) {
            if (isLoaded(language)) loaded += std::string(loaded.empty() ? "" : " ") + language;
        }
        return loaded;
    }
};

TEST_F(GxTextObjectText, ScriptsDecideWhichFamiliesAreLoaded) {
    const std::pair<const wchar_t*, const char*> cases[] = {
        {L"Latin and 123", ""},
        {L"\x0645\x0631\x062D\x0628\x0627", "und-Arab"},
        {L"abc \x4E2D", "zh-Hans zh-Hant"},
        {L"\x3053\x3093", "ja"},
        {L"\x30C6\x30B9\x30C8", "ja"},
        {L"\xD55C\x0301 a", "ko"},           // a combining mark stays in the Hangul run
        {L"  12 \x0928\x092E", "und-Deva"},  // leading common characters join the run
        {L"\x05E9\x05DC\x05D5\x05DD \x0E44", "und-Hebr und-Thai"},
        {L"\x1F600", ""},                 // emoji are common
        {L"\x20000", "zh-Hans zh-Hant"},  // a surrogate pair is one Han character
        {L"", ""},
        // Lone surrogates, which GxString passes through to UTF-16, are common.
        {L"\xD840", ""},
        {L"\xDC00\x0E44", "und-Thai"},
        {L"\x0E44\xD840", "und-Thai"},
        {L"\xD840\xDC00", "zh-Hans zh-Hant"},  // together they are U+20000
    };
    for (const auto& [string, loaded] : cases) {
        EXPECT_EQ(loadedBy(string), loaded) << testing::PrintToString(std::wstring(string));
    }
    unload();
    EXPECT_TRUE(text.SetText(L"a\0\x0E44", 3));
    EXPECT_TRUE(isLoaded("und-Thai")) << "counted text goes on after NUL";
}

TEST_F(GxTextObjectText, NullDropsTheText) {
    ASSERT_TRUE(text.SetText(L"abc"));
    ASSERT_NE(text.GetText(), nullptr);
    EXPECT_EQ(text.GetText()->GetLength(), 3);
    GxString other;
    other.Construct("defg");
    ASSERT_TRUE(text.SetText(&other));
    EXPECT_EQ(text.GetText()->GetLength(), 4);
    EXPECT_TRUE(text.SetText(static_cast<const wchar_t*>(nullptr)));
    EXPECT_EQ(text.GetText(), nullptr);
    LogCapture log;
    text.SetTextLocaleListId();
    EXPECT_THAT(log.texts(), ElementsAre("SetTextLocaleListId - text is null."));
}

// --- fonts and lines ---

TEST_F(GxTextObjectText, FontsThatCannotBeLoadedAreRefused) {
    Error::SetError(0);
    EXPECT_FALSE(text.SetFont("/nowhere/Font.ttf"));
    EXPECT_FALSE(text.SetFont(""));
    auto* garbage = new char[100]();
    EXPECT_FALSE(text.SetFont("garbage.ttf", garbage, 100));
    EXPECT_EQ(Error::GetError(), 0) << "a refused font records no code";
    const std::vector<char>& bytes = gxtest::fontBytes(gxtest::kDejaVuSans);
    auto* copy = new char[bytes.size()];
    std::copy(bytes.begin(), bytes.end(), copy);
    EXPECT_TRUE(text.SetFont("Buffer.ttf", copy, static_cast<unsigned>(bytes.size())));
    EXPECT_TRUE(text.SetFont("Buffer.ttf")) << "known by name from now on";
}

TEST_F(GxTextObjectText, LineRecordsChangeHands) {
    setLines({L"a", L"b"});
    EXPECT_EQ(text.GetLineInfo()->GetCount(), 2);
    EXPECT_TRUE(text.SetLineInfo(text.GetLineInfo())) << "its own list";
    EXPECT_EQ(text.GetLineInfo()->GetCount(), 2);
    List none;
    none.Construct();
    EXPECT_TRUE(text.SetLineInfo(&none));
    EXPECT_EQ(text.GetLineInfo()->GetCount(), 0);
}

TEST_F(GxTextObjectText, RenderWithBadSizesKeepsTheLastFrame) {
    EXPECT_EQ(text.RenderTextEffect(-1, 5), nullptr);
    setLines({L"A"});
    const uint32_t* frame = text.RenderTextEffect(30, 20);
    ASSERT_NE(frame, nullptr);
    EXPECT_EQ(text.RenderTextEffect(30, -20), frame);
    EXPECT_EQ(text.RenderTextEffect(INT32_MAX, INT32_MAX), frame);
    ASSERT_NE(text.GetResultBitmap(), nullptr);
    EXPECT_EQ(text.GetResultBitmap()->width, 30u) << "of the frame, not of the failed render";
    EXPECT_NE(text.RenderTextEffect(0, 10), nullptr);
}

TEST_F(GxTextObjectText, RenderWithoutTextIsEmpty) {
    LogCapture log;
    const gxtest::Image image = render(20, 10);
    EXPECT_EQ(image.pixels, std::vector<uint32_t>(200, 0));
    EXPECT_THAT(log.texts(), testing::Contains(testing::EndsWith("- text is NULL")));
    log.clear();
    text.SetText(L"");
    render(20, 10);
    EXPECT_THAT(log.texts(), testing::Contains(testing::EndsWith("- textLength is 0")));
}

TEST_F(GxTextObjectText, SurvivesEveryFailedAllocation) {
    // The paint, the lines and the font are set up by hand each time: all of it may fail.
    const std::string font = gxtest::fontPath(gxtest::kDejaVuSans);
    const auto wholeRender = [&] {
        GxTextObject object;
        if (!object.Construct()) return;
        object.SetFont(font.c_str());
        object.SetText(L"A\x0645");
        auto* record = new (std::nothrow) GxLineInfo;
        List lines;
        if (record && lines.Construct() && lines.Add(record)) {
            record->y = 20;
            record->end = 2;
            if (!object.SetLineInfo(&lines)) delete record;
        } else {
            delete record;
        }
        object.GetView()->SetBitmapWidth(30);
        object.GetView()->SetBitmapHeight(30);
        object.RenderTextEffect(30, 30);
    };
    EXPECT_GT(gxtest::failEachAllocation(wholeRender), 50);
}

}  // namespace
}  // namespace GxFontEffect
