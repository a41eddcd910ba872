// Text objects over the distribution's fonts, with the verbose calls turned into one-word helpers.
#pragma once

#include <gtest/gtest.h>
#include <hwui/Paint.h>
#include <minikin/LocaleList.h>

#include <memory>
#include <string>
#include <vector>

#include "base/GxString.h"
#include "base/List.h"
#include "effect/GxEffect.h"
#include "font/FontManager.h"
#include "font/GxFontFamily.h"
#include "support/Fonts.h"
#include "support/GoldenImage.h"
#include "text/GxLineInfo.h"
#include "text/GxTextObject.h"
#include "text/GxView.h"

namespace GxFontEffect {

// A system family of one font. `language` as in a font configuration; "" is loaded at once.
struct SystemFamily {
    const char* language;
    const char* font;
    int index;
};

constexpr SystemFamily kSystemFamilies[] = {
    {"", gxtest::kNotoSans, 0},
    {"und-Arab", gxtest::kNotoArabic, 0},
    {"und-Deva", gxtest::kNotoDevanagari, 0},
    {"und-Hebr", gxtest::kNotoHebrew, 0},
    {"und-Thai", gxtest::kNotoThai, 0},
    {"zh-Hans", gxtest::kNotoCjk, 2},
    {"zh-Hant", gxtest::kNotoCjk, 3},
    {"ja", gxtest::kNotoCjk, 0},
    {"ko", gxtest::kNotoCjk, 1},
    {"und-Zsye", gxtest::kNotoColorEmoji, 0},
};

// One text object, for use on any thread.
class TextScene {
protected:
    // The configuration is set once per process: every test sees the same families.
    static const std::vector<GxFontFamily*>& systemFamilies() {
        static const std::vector<GxFontFamily*> families = [] {
            std::vector<GxFontFamily*> made;
            auto* list = new List;
            list->Construct();
            for (const SystemFamily& system : kSystemFamilies) {
                made.push_back(makeFamily(system));
                list->Add(made.back());
            }
            EXPECT_TRUE(FontManager::GetInstance().SetSystemFontFamilies(list));
            for (size_t i = 0; i < made.size(); ++i) {
                const std::string language = kSystemFamilies[i].language;
                if (language.empty() || language == "und-Zsye") {
                    made[i]->loaded = FontManager::GetInstance().BuildMinikinFamily(made[i]);
                }
            }
            return made;
        }();
        return families;
    }

    static GxFontFamily* makeFamily(const SystemFamily& system) {
        auto* entry = new GxFontEntry;
        entry->path = new GxString;
        entry->path->Construct(gxtest::fontPath(system.font).c_str());
        entry->ttcIndex = system.index;
        entry->weight = 400;
        auto* family = new GxFontFamily;
        family->localeListId = minikin::registerLocaleList(system.language);
        family->fonts = new List;
        family->fonts->Construct();
        family->fonts->Add(entry);
        return family;
    }

    void prepare() {
        systemFamilies();
        ASSERT_TRUE(text.Construct());
        setPaint(48);
        text.SetTextColor(0xFF203040);
    }

    void setPaint(float size, uint32_t javaFlags = 0x1 /* antialias */) {
        android::Paint paint;
        paint.setJavaFlags(javaFlags);
        paint.getSkFont().setSize(size);
        text.SetPaint(paint);
    }

    // One line per element, baselines 60 pixels apart from y = 50; the text is their concatenation.
    // A break at the end of a line is not drawn.
    void setLines(const std::vector<std::wstring>& lines, int direction = 1) {
        std::wstring all;
        List records;
        records.Construct();
        int baseline = 50;
        for (const std::wstring& line : lines) {
            auto* record = new GxLineInfo;
            record->x = lineX;
            record->y = baseline;
            record->start = utf16Length(all);
            all += line;
            record->end = utf16Length(all) - (line.ends_with(L'\n') ? 1 : 0);
            record->direction = direction;
            record->rect = GxRect(record->x, baseline - 45, record->x + 1, baseline + 10);
            records.Add(record);
            baseline += 60;
        }
        ASSERT_TRUE(text.SetText(all.c_str()));
        ASSERT_TRUE(text.SetLineInfo(&records));
    }

    static int utf16Length(const std::wstring& wide) {
        int length = 0;
        for (wchar_t c : wide) length += c > 0xFFFF ? 2 : 1;
        return length;
    }

    // View size plus effect margins, as the Java side asks for it.
    gxtest::Image render(int viewWidth, int viewHeight) {
        GxView* view = text.GetView();
        view->SetSize(viewWidth, viewHeight);
        EXPECT_TRUE(text.FitBitmapToView());
        gxtest::Image image;
        image.width = view->GetBitmapWidth();
        image.height = view->GetBitmapHeight();
        const uint32_t* pixels = text.RenderTextEffect(image.width, image.height);
        if (pixels) image.pixels.assign(pixels, pixels + size_t(image.width) * image.height);
        return image;
    }

    GxLineInfo& line(int i) { return *static_cast<GxLineInfo*>(text.GetLineInfo()->Get(i)); }

    int lineX = 4;
    GxTextObject text;
};

class TextFixture : public testing::Test, protected TextScene {
protected:
    void SetUp() override { prepare(); }
};

// Box of the pixels with any alpha: left, top, right, bottom; all 0 when there is none.
inline GxRect inkOf(const gxtest::Image& image) {
    GxRect box(image.width, image.height, 0, 0);
    for (int y = 0; y < image.height; ++y) {
        for (int x = 0; x < image.width; ++x) {
            if (image.pixels[size_t(y) * image.width + x] >> 24 == 0) continue;
            box.left = std::min(box.left, x);
            box.top = std::min(box.top, y);
            box.right = std::max(box.right, x + 1);
            box.bottom = std::max(box.bottom, y + 1);
        }
    }
    return box.isEmpty() ? GxRect() : box;
}

}  // namespace GxFontEffect
