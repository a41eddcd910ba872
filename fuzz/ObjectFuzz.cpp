// Sequences of operations on text objects, their effects, views, bindings and fonts.
#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "Drawing.h"
#include "FontFolder.h"
#include "base/GxString.h"
#include "base/List.h"
#include "effect/GxEffect.h"
#include "font/FontManager.h"
#include "font/GxFontFamily.h"
#include "minikin/LocaleList.h"
#include "raster/GxBitmap.h"
#include "text/GxLineInfo.h"
#include "text/GxTextInstanceManager.h"
#include "text/GxTextObject.h"
#include "text/GxView.h"

using namespace GxFontEffect;
using namespace gxfuzz;

namespace {

constexpr int kMaxOperations = 48;
constexpr int kMaxText = 24;

int chooseInt(FuzzedDataProvider& input) {
    constexpr int kEdges[] = {0, 1, -1, 30, 100, INT32_MAX, INT32_MIN, 65535, 1 << 24};
    return input.ConsumeBool() ? input.ConsumeIntegralInRange(-20, 120)
                               : input.PickValueInArray(kEdges);
}

std::string fontFilePath(FuzzedDataProvider& input) {
    const int kind = input.ConsumeIntegralInRange<int>(0, kFontKinds);
    if (kind == kFontKinds) return "no such file";
    return (fontFolder() / fontFileName(static_cast<FontKind>(kind))).string();
}

GxFontFamily* systemFamily(FontKind kind, const char* locales) {
    auto* entry = new GxFontEntry;
    entry->path = new GxString;
    entry->path->Construct((fontFolder() / fontFileName(kind)).c_str());
    entry->weight = 400;
    auto* family = new GxFontFamily;
    family->localeListId = minikin::registerLocaleList(locales);
    family->fonts = new List;
    family->fonts->Construct();
    family->fonts->Add(entry);
    return family;
}

// A bit each: a byte more would shift those of every kept input.
void keepMore(GxTextObject& object, unsigned what) {
    object.setKeepsWholeInk(what & 1);
    object.setKeepsColorGlyphs(what & 2);
}

void setSystemFamilies() {
    auto* list = new List;
    list->Construct();
    list->Add(systemFamily(kLatin, ""));
    list->Add(systemFamily(kArabic, "und-Arab"));
    list->Add(systemFamily(kIndic, "und-Deva"));
    list->Add(systemFamily(kIdeographs, "ja"));
    list->Add(systemFamily(kColor, "und-Zsye"));
    list->Add(systemFamily(kGraphs, "und-Zsym"));
    FontManager& fonts = FontManager::GetInstance();
    fonts.ClearFontFamilies();
    if (fonts.SetSystemFontFamilies(list)) fonts.LoadMinikinFontFamily(0);
}

std::wstring takeText(FuzzedDataProvider& input) {
    const std::string bytes = input.ConsumeRandomLengthString(2 * kMaxText);
    std::wstring text;
    // One character for each pair of bytes; the upper half of the pairs is spread beyond 16 bits.
    for (size_t i = 0; i + 1 < bytes.size(); i += 2) {
        const auto unit = static_cast<uint32_t>(static_cast<uint8_t>(bytes[i + 1]) << 8 |
                                                static_cast<uint8_t>(bytes[i]));
        text += static_cast<wchar_t>(unit >= 0xF800 ? unit * 0x21u : unit);
    }
    return text;
}

void setLines(FuzzedDataProvider& input, GxTextObject& object) {
    List lines;
    lines.Construct();
    for (int i = input.ConsumeIntegralInRange(0, 3); i > 0; --i) {
        auto* line = new GxLineInfo;
        line->x = chooseInt(input);
        line->y = chooseInt(input);
        line->start = input.ConsumeBool() ? 0 : chooseInt(input);
        line->end = input.ConsumeBool() ? kMaxText : chooseInt(input);
        line->direction = input.ConsumeBool() ? 1 : -1;
        line->rect = GxRect(chooseInt(input), chooseInt(input), chooseInt(input), chooseInt(input));
        lines.Add(line);
    }
    if (object.SetLineInfo(&lines)) return;
    for (int i = 0; i < lines.GetCount(); ++i) delete static_cast<GxLineInfo*>(lines.Get(i));
}

// Effects reach at most this far here, so that pictures stay small.
float chooseReach(FuzzedDataProvider& input) {
    const float reach = chooseFactor(input);
    return reach < 12 ? reach : 12;
}

void addEffect(FuzzedDataProvider& input, GxEffect& effect) {
    const auto color = input.ConsumeIntegral<uint32_t>();
    const float opacity = chooseFactor(input);
    const float size = chooseReach(input);
    GxGradient stops[4];
    for (GxGradient& stop : stops) {
        stop = {input.ConsumeIntegral<uint32_t>(), opacity, chooseFactor(input)};
    }
    const int count = input.ConsumeIntegralInRange(-1, 4);
    switch (input.ConsumeIntegralInRange(0, 10)) {
        case 0:
            effect.addStrokeText(size, color, opacity, 0, input.ConsumeIntegralInRange(-1, 3));
            break;
        case 9: {
            const int position = input.ConsumeIntegralInRange(-1, 3);
            GxBitmap pattern(2, 2, 4);
            effect.addPatternStrokeText(size, 0, position, &pattern, opacity, opacity);
            effect.addLinearGradientStrokeText(size, 0, position, size, opacity, opacity, count,
                                               stops);
            break;
        }
        case 1:
            effect.addOuterShadowText(chooseFactor(input) * 90, size, size, color, opacity);
            break;
        case 2:
            effect.addInnerShadowText(chooseFactor(input) * 90, size, size, color, opacity);
            break;
        case 3:
            effect.addOuterGlowText(size, color, opacity, count, stops);
            break;
        case 4:
            effect.addInnerGlowText(size, color, opacity, count, stops);
            break;
        case 5:
            effect.addLinearGradientText(chooseFactor(input) * 90, size, opacity, count, stops);
            break;
        case 6:
            effect.addRadialGradientText(size, opacity, count, stops);
            break;
        case 7: {
            GxBitmap pattern(3, 2, 4);
            if (pattern.data) std::memset(pattern.data, static_cast<int>(color & 0xFF), 24);
            effect.addPatternText(input.ConsumeBool() ? &pattern : nullptr, size, opacity);
            break;
        }
        case 8: {
            const auto choice = [&](uint32_t place, uint32_t values) {
                return static_cast<int>((color >> place) % values);
            };
            const auto add = choice(0, 2) == 0 ? &GxEffect::addBevelText : &GxEffect::addEmbossText;
            (effect.*add)(choice(1, 2), size, size, choice(2, 3), choice(8, 2), choice(9, 17),
                          opacity, size, size, color, opacity, color, opacity);
            break;
        }
        default:
            effect.addText(color, opacity);
    }
}

void changeEffects(FuzzedDataProvider& input, GxEffect& effect) {
    switch (input.ConsumeIntegralInRange(0, 8)) {
        case 0:
            effect.removeEffect(input.ConsumeIntegralInRange(-1, 9));
            break;
        case 1:
            effect.releaseEffect();
            break;
        case 2:
            effect.setTextOpacity(chooseFactor(input));
            break;
        case 3:
            effect.setConfineInside(input.ConsumeBool());
            break;
        case 4:
            delete[] effect.getMapKey(input.ConsumeIntegral<uint32_t>());
            break;
        case 5:
            effect.setRepeats(input.ConsumeBool());
            break;
        case 7:
            effect.setSpan(input.ConsumeIntegralInRange(-1, 9),
                           input.ConsumeIntegralInRange(-1, 2));
            break;
        case 6:
            effect.setSilhouette(input.ConsumeIntegralInRange(-1, 9),
                                 {input.ConsumeIntegralInRange(-1, 2), chooseReach(input)});
            break;
        default: {
            const GxEffect copy(effect);
            require(copy.hasEffects() == effect.hasEffects(), "a copy has the same effects");
        }
    }
}

void changeView(FuzzedDataProvider& input, GxTextObject& object) {
    GxView& view = *object.GetView();
    view.SetSize(chooseInt(input), chooseInt(input));
    view.SetPadding(chooseInt(input), chooseInt(input), chooseInt(input), chooseInt(input));
    if (input.ConsumeBool()) object.FitBitmapToView();
    view.SetBitmapWidth(chooseInt(input));
    view.SetBitmapHeight(chooseInt(input));
    view.gravity = input.ConsumeIntegral<uint32_t>();
}

// The image is as asked for, or the one before.
void render(FuzzedDataProvider& input, GxTextObject& object) {
    const int width = input.ConsumeIntegralInRange(-1, 90);
    const int height = input.ConsumeIntegralInRange(-1, 60);
    const uint32_t* pixels = object.RenderTextEffect(width, height);
    const GxBitmap* result = object.GetResultBitmap();
    if (!pixels) return;
    require(result && reinterpret_cast<const uint32_t*>(result->data) == pixels, "the image");
    if (width < 0 || height < 0) return;
    require(result->width == static_cast<uint32_t>(width) &&
                result->height == static_cast<uint32_t>(height),
            "an image of this size");
    // Reads every pixel.
    const size_t count = size_t{result->width} * result->height;
    require(std::vector<uint32_t>(pixels, pixels + count).size() == count, "all pixels");
}

void setPaint(FuzzedDataProvider& input, GxTextObject& object) {
    android::Paint paint = choosePaint(input);
    SkFont& font = paint.getSkFont();
    // Masks grow with the square of the size, 1,000 pixels make one of 24 megabytes: seldom.
    if (font.getSize() > 16) {
        const auto chance = input.ConsumeIntegral<uint8_t>();
        const float largest = chance == 1 ? 1000.0f : chance < 16 ? 64.0f : 16.0f;
        font.setSize(std::min(font.getSize(), largest));
    }
    if (std::fabs(font.getScaleX()) > 2) font.setScaleX(2);
    if (std::fabs(paint.getLetterSpacing()) > 2) paint.setLetterSpacing(1);
    object.SetPaint(paint);
}

void setFont(FuzzedDataProvider& input, GxTextObject& object) {
    const std::string path = fontFilePath(input);
    if (input.ConsumeBool()) {
        object.SetFont(path.c_str());
        return;
    }
    const Bytes& file = fontFile(kBoldLatin);
    const size_t size = input.ConsumeBool() ? file.size() : input.ConsumeIntegralInRange(0, 400);
    char* data = new char[size];
    std::memcpy(data, file.data(), size);
    const std::string name = input.ConsumeBool() ? "bytes-Bold" : path;
    object.SetFont(name.c_str(), data, static_cast<unsigned>(size));
}

class Objects {
public:
    ~Objects() {
        for (const int handle : handles_) delete GxTextObject::FindGxTextObject(handle);
    }

    void operate(FuzzedDataProvider& input);

private:
    void bind(FuzzedDataProvider& input, GxTextObject* object, int handle);

    std::vector<int> handles_;
};

void Objects::bind(FuzzedDataProvider& input, GxTextObject* object, int handle) {
    switch (input.ConsumeIntegralInRange(0, 3)) {
        case 0:
            GxTextInstanceManager::Bind(object);
            break;
        case 1:
            GxTextInstanceManager::Release(handle);
            break;
        case 2:
            GxTextInstanceManager::Release(object, input.ConsumeBool());
            break;
        default:
            GxTextInstanceManager::Lock();
            GxTextInstanceManager::Release(handle);
            if (input.ConsumeBool()) GxTextInstanceManager::Bind(object);
            GxTextInstanceManager::Unlock();
    }
}

void Objects::operate(FuzzedDataProvider& input) {
    if (handles_.empty() || (handles_.size() < 3 && input.ConsumeIntegral<uint8_t>() < 8)) {
        auto* fresh = new GxTextObject;
        fresh->SetText(L"unconstructed");
        require(fresh->Construct(), "construction");
        handles_.push_back(fresh->GetRuntimeHandle());
    }
    const int handle = handles_[input.ConsumeIntegralInRange<size_t>(0, handles_.size() - 1)];
    GxTextObject* object = GxTextObject::FindGxTextObject(handle);
    if (!object) {  // its last binding was released
        std::erase(handles_, handle);
        return;
    }
    switch (input.ConsumeIntegralInRange(0, 15)) {
        case 0:
        case 1:
            object->SetText(takeText(input).c_str());
            break;
        case 2:
            object->SetText(static_cast<const GxString*>(nullptr));
            break;
        case 3:
        case 4:
            setLines(input, *object);
            break;
        case 5:
            setPaint(input, *object);
            break;
        case 6:
        case 7:
            addEffect(input, *object->GetEffect());
            break;
        case 8:
            changeEffects(input, *object->GetEffect());
            break;
        case 9:
            changeView(input, *object);
            break;
        case 10:
            setFont(input, *object);
            break;
        case 11:
            bind(input, object, handle);
            break;
        case 12:
            object->SetTextStyle(input.ConsumeBool(), input.ConsumeBool());
            object->SetTextColor(input.ConsumeIntegral<uint32_t>());
            object->SetBackgroundColor(input.ConsumeIntegral<uint32_t>(), input.ConsumeBool());
            object->SetFontFamilyName(input.ConsumeBool() ? "Sans Bold" : "");
            object->SetBackgroundShape({chooseInt(input), chooseInt(input), input.ConsumeBool()});
            object->SetCanvasColor(input.ConsumeIntegral<uint32_t>());
            object->setFadesFill(input.ConsumeBool());
            keepMore(*object, input.ConsumeIntegral<uint8_t>());
            break;
        case 13:
            if (input.ConsumeIntegral<uint8_t>() == 1) FontManager::GetInstance().ClearFontMaps();
            if (input.ConsumeIntegral<uint8_t>() == 1) setSystemFamilies();
            break;
        default:
            render(input, *object);
    }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    setSystemFamilies();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzedDataProvider input(data, size);
    Objects objects;
    for (int i = 0; i < kMaxOperations && input.remaining_bytes() > 0; ++i) objects.operate(input);
    return 0;
}
