#include "text/GxFontDrawing.h"

#include <SkBitmap.h>
#include <SkCanvas.h>
#include <SkImageInfo.h>
#include <SkRect.h>
#include <android/log.h>
#include <hwui/MinikinUtils.h>
#include <hwui/Paint.h>
#include <hwui/Typeface.h>
#include <minikin/Layout.h>
#include <minikin/MinikinRect.h>

#include <algorithm>
#include <cstdint>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "base/GxLog.h"
#include "base/GxString.h"
#include "base/List.h"
#include "base/NativeError.h"
#include "effect/ColorGlyphs.h"
#include "effect/GxEffect.h"
#include "font/FontManager.h"
#include "raster/GxBitmap.h"
#include "raster/GxGlyph.h"
#include "raster/GxMath.h"
#include "text/ColorGlyphDrawing.h"
#include "text/GlyphRuns.h"
#include "text/GxLineInfo.h"
#include "text/GxTextObject.h"

namespace GxFontEffect {

namespace {

constexpr const char* kDrawingTag = "GxFontDrawing";
constexpr int kDefaultWeight = 400;
constexpr int kSiteNoLineInfo = 184;
constexpr int kSiteNoMemory = 190;
constexpr int kSiteNoStringMemory = 191;

// A line beyond this many pixels (a 16-bit extent allows 4 Gi) is placed but not drawn: no screen
// shows it.
constexpr size_t kMaxMaskPixels = size_t{1} << 28;

// Positions handed to the stack are in 26.6 fixed point.
constexpr int kFixedShift = 6;

// Pixels to the record's unsigned 16 bits; what is larger is cut.
uint16_t maskExtent(float pixels) {
    return static_cast<uint16_t>(std::clamp(toInt(pixels), 0, 0xFFFF));
}

void deleteGlyph(GxGlyph* glyph) {
    if (!glyph) return;
    delete[] glyph->pixels;
    delete glyph;
}

// UTF-16 range of a line and of the text around it that decides shaping and direction.
struct LineRange {
    LineRange() = default;
    LineRange(const GxLineInfo& line, const uint16_t* text, int length, const LineRange& previous)
        : start(std::clamp(line.start, 0, length)), end(std::clamp(line.end, start, length)) {
        // Back to the line break before the line, the break itself included: it ends a bidi
        // paragraph. Lines come in order: nothing is read twice.
        const int searched = previous.start <= start ? previous.start : 0;
        contextStart = start;
        while (contextStart > searched && text[contextStart] != '\n' &&
               text[contextStart] != '\r') {
            --contextStart;
        }
        if (contextStart == searched && searched > 0) contextStart = previous.contextStart;
    }

    int start = 0;
    int end = 0;
    int contextStart = 0;
};

minikin::Layout layOut(const LineRange& range, int direction, const uint16_t* text, int length,
                       const android::Paint& paint, const android::Typeface& typeface) {
    const minikin::Bidi bidi =
        direction < 0 ? minikin::Bidi::DEFAULT_RTL : minikin::Bidi::DEFAULT_LTR;
    return android::MinikinUtils::doLayout(
        &paint, bidi, &typeface, text, static_cast<size_t>(length),
        static_cast<size_t>(range.start), static_cast<size_t>(range.end - range.start),
        static_cast<size_t>(range.contextStart),
        static_cast<size_t>(range.end - range.contextStart), nullptr);
}

using OwnedGlyph = std::unique_ptr<GxGlyph, void (*)(GxGlyph*)>;

// The mask of a laid-out line, without pixels: as high as its ink, and as wide as its advance or,
// with whole ink, as the ink, which then keeps its place.
GxGlyph maskOf(const minikin::Layout& layout, bool wholeInk) {
    minikin::MinikinRect bounds;
    layout.getBounds(&bounds);
    GxGlyph glyph;
    if (wholeInk) {
        glyph.xOffset = toInt(std::floor(bounds.mLeft));
        glyph.baseline = toInt(-std::floor(bounds.mTop));
        glyph.width = maskExtent(std::ceil(bounds.mRight) - std::floor(bounds.mLeft));
        glyph.height = maskExtent(std::ceil(bounds.mBottom) - std::floor(bounds.mTop));
    } else {
        glyph.width = maskExtent(layout.getAdvance());
        glyph.height = maskExtent(bounds.mBottom - bounds.mTop);
        glyph.baseline = toInt(-bounds.mTop);
    }
    return glyph;
}

bool isEmpty(const GxGlyph& glyph) {
    return glyph.width == 0 || glyph.height == 0;
}

// The point of the layout that lands at the mask's corner.
LayoutCorner cornerOf(const minikin::Layout& layout, const GxGlyph& glyph, bool wholeInk) {
    if (wholeInk) {
        return {static_cast<float>(glyph.xOffset), static_cast<float>(-glyph.baseline)};
    }
    minikin::MinikinRect ink;
    layout.getBounds(&ink);
    return {ink.mLeft, ink.mTop};
}

// With the line's coverage; without pixels when that is too large. Null when memory runs out.
// `colors` receives what the line's colour glyphs are painted with, if it is to and there are any.
OwnedGlyph drawMask(const minikin::Layout& layout, android::Paint& paint, bool wholeInk,
                    const ColorGlyphDrawing* coloring, std::unique_ptr<ColorGlyphs>* colors) {
    OwnedGlyph glyph(new (std::nothrow) GxGlyph(maskOf(layout, wholeInk)), deleteGlyph);
    if (!glyph) return glyph;
    const size_t pixelCount = size_t{glyph->width} * glyph->height;
    if (pixelCount > kMaxMaskPixels) return glyph;
    glyph->pixels = new (std::nothrow) uint8_t[pixelCount]();
    if (!glyph->pixels) {
        glyph.reset();
        return glyph;
    }
    if (pixelCount == 0) return glyph;

    const LayoutCorner corner = cornerOf(layout, *glyph, wholeInk);
    // First: what it keeps in the platform's cache serves the mask.
    if (coloring) *colors = coloring->draw(layout, paint, *glyph, corner);
    drawGlyphs(layout, paint, corner, nullptr, SkImageInfo::MakeA8(glyph->width, glyph->height),
               glyph->pixels);
    return glyph;
}

// Where _DoRender starts, in 26.6 fixed point, and where it places a mask from there.
int penOf(int line, int margin) {
    return saturateInt((int64_t{line} + margin) << kFixedShift);
}

int maskLeft(const GxGlyph& glyph, int64_t penX) {
    return saturateInt(glyph.xOffset + (penX >> kFixedShift));
}

int maskTop(const GxGlyph& glyph, int64_t penY) {
    return saturateInt((penY >> kFixedShift) - glyph.baseline);
}

// Box of masks, some of which may have no pixels.
class MaskBox {
public:
    void add(const GxGlyph& glyph, int penX, int penY) {
        const int left = maskLeft(glyph, penX);
        const int top = maskTop(glyph, penY);
        box_.left = std::min(box_.left, left);
        box_.top = std::min(box_.top, top);
        box_.right = std::max(box_.right, saturateInt(int64_t{left} + glyph.width));
        box_.bottom = std::max(box_.bottom, saturateInt(int64_t{top} + glyph.height));
    }
    const GxRect& get() const { return box_; }

private:
    GxRect box_{INT32_MAX, INT32_MAX, INT32_MIN, INT32_MIN};
};

struct LaidOutLine {
    GxLineInfo* info;
    int penX;
    int penY;
    minikin::Layout layout;
};

// A line without ink does not stretch the box of whole ink.
GxRect boxOf(const std::vector<LaidOutLine>& lines, bool wholeInk) {
    MaskBox box;
    for (const LaidOutLine& line : lines) {
        const GxGlyph mask = maskOf(line.layout, wholeInk);
        if (!wholeInk || !isEmpty(mask)) box.add(mask, line.penX, line.penY);
    }
    return box.get();
}

// Makes the string on first use; null empties it.
bool storeString(std::unique_ptr<GxString>& string, const char* text) {
    if (string) return string->Set(text);
    std::unique_ptr<GxString> fresh(new (std::nothrow) GxString);
    if (!fresh)
        return ReportNativeError(kDrawingTag, GXE_ERROR_INVALID_ARGUMENT, kSiteNoStringMemory);
    if (!fresh->Construct() || !fresh->Set(text)) return false;
    string = std::move(fresh);
    return true;
}

void moveBackgroundBox(GxLineInfo& line, int left, int top, float advance) {
    line.rect.left = saturateInt(int64_t{line.x} + left);
    line.rect.top = saturateInt(int64_t{line.rect.top} + top);
    line.rect.right = saturateInt(int64_t{line.rect.left} + toInt(advance));
    line.rect.bottom = saturateInt(int64_t{line.rect.bottom} + top);
}

}  // namespace

GxFontDrawing::GxFontDrawing() : glyphList(std::make_unique<List>()) {
    if (!glyphList->Construct()) throw std::bad_alloc();
}

GxFontDrawing::~GxFontDrawing() {
    ClearGlyphList();
}

bool GxFontDrawing::SetFontPath(const char* path) {
    return !path || storeString(fontPath, path);
}

bool GxFontDrawing::SetFontFamilyName(const char* name) {
    return storeString(familyName, name);
}

void GxFontDrawing::SetFontFamilies(std::vector<std::shared_ptr<minikin::FontFamily>> families,
                                    int weight) {
    ownFamilies = std::move(families);
    ownWeight = weight;
}

void GxFontDrawing::ClearGlyphList() {
    for (int i = 0, count = glyphList->GetCount(); i < count; ++i) {
        deleteGlyph(static_cast<GxGlyph*>(glyphList->Get(i)));
    }
    glyphList->RemoveAll();
}

bool GxFontDrawing::DrawTextEffect(GxTextObject* text, GxBitmap* destination) {
    const GxString* string = text ? text->GetText() : nullptr;
    if (!string) {
        __android_log_print(ANDROID_LOG_ERROR, kDrawingTag, "DrawTextEffect(%p) - text is NULL",
                            this);
        return true;
    }
    if (string->GetUTF16Size() - 1 < 1) {
        __android_log_print(ANDROID_LOG_ERROR, kDrawingTag, "DrawTextEffect(%p) - textLength is 0",
                            this);
        return true;
    }
    GxEffect* effect = text->GetEffect();
    if (!effect) {
        __android_log_print(ANDROID_LOG_ERROR, kDrawingTag, "DrawTextEffect(%p) - Effect is NULL",
                            this);
        return true;
    }
    if (!destination) return true;

    const int fill = text->getFadesFill()
                         ? effect->addText(text->GetTextColor(), effect->getTextOpacity())
                         : effect->addText(text->GetTextColor());
    if (fill < 0) return false;
    effect->initEffect(destination->width, destination->height);
    if (effect->hasFailed()) return false;
    effect->setDstBitmap(destination);
    if (!text->GetLineInfo()) {
        __android_log_print(ANDROID_LOG_ERROR, kDrawingTag,
                            "DrawTextEffect(%p) - lineInfoList is NULL", this);
        ReportNativeError(kDrawingTag, GXE_ERROR_NOT_CONSTRUCTED, kSiteNoLineInfo);
        return true;
    }
    if (!drawLines(text, effect)) return false;
    effect->doEffectPostProcessing();
    effect->compositeLayers(destination);
    return !effect->hasFailed();
}

bool GxFontDrawing::collectFamilies(std::vector<std::shared_ptr<minikin::FontFamily>>& families,
                                    int& weight) const {
    if (HasFontFamilies()) {
        families = ownFamilies;
        weight = ownWeight;
        return true;
    }
    weight = kDefaultWeight;
    if (!FontManager::GetInstance().GetMinikinFontFamilies(familyName.get(), families,
                                                           fontPath.get(), weight)) {
        __android_log_print(ANDROID_LOG_ERROR, kDrawingTag,
                            "DrawTextEffect(%p) - GetMinikinFontFamilies failed",
                            static_cast<const void*>(this));
        return false;
    }
    if (GxLog::IsAllLogEnable()) {
        __android_log_print(
            ANDROID_LOG_DEBUG, kDrawingTag, "DrawTextEffect(%p) fontPath[%s] weight=%d",
            static_cast<const void*>(this), GxLog::ConvertLog(fontPath.get()), weight);
    }
    return true;
}

template <typename Use>
bool GxFontDrawing::withLines(const GxTextObject* text, int left, int top, Use use) {
    std::vector<std::shared_ptr<minikin::FontFamily>> families;
    int weight = kDefaultWeight;
    if (!collectFamilies(families, weight)) return false;
    if (families.empty()) return true;  // a collection needs a family; nothing to draw with

    // Layouts hold pointers into the typeface's fonts: it goes last.
    const std::shared_ptr<const android::Typeface> typeface =
        FontManager::GetInstance().GetTypeface(families, weight, text->isItalicTextStyle());
    const std::unique_ptr<uint16_t[]> utf16(text->GetText()->GetUTF16());
    if (!typeface || !utf16)
        return ReportNativeError(kDrawingTag, GXE_ERROR_INVALID_ARGUMENT, kSiteNoMemory);

    const int length = text->GetText()->GetUTF16Size() - 1;
    android::Paint paint(text->paint());
    if (text->getKeepsColorGlyphs()) askForColorGlyphs(paint);
    List& lines = *text->GetLineInfo();
    std::vector<LaidOutLine> laidOut;
    LineRange range;
    for (int i = 0, count = lines.GetCount(); i < count; ++i) {
        auto* line = static_cast<GxLineInfo*>(lines.Get(i));
        if (!line) continue;
        range = LineRange(*line, utf16.get(), length, range);
        laidOut.push_back({line, penOf(line->x, left), penOf(line->y, top),
                           layOut(range, line->direction, utf16.get(), length, paint, *typeface)});
    }
    return use(laidOut, paint, *typeface);
}

bool GxFontDrawing::drawLines(GxTextObject* text, GxEffect* effect) {
    const bool wholeInk = text->getKeepsWholeInk();
    const GxRect ink = text->GetInkMargins();
    const int left = saturateInt(int64_t{effect->getLeftOffset()} + ink.left);
    const int top = saturateInt(int64_t{effect->getTopOffset()} + ink.top);
    const auto draw = [&](const std::vector<LaidOutLine>& lines, android::Paint& paint,
                          const android::Typeface& typeface) {
        const ColorGlyphDrawing coloring(typeface, text->GetTextColor());
        effect->setTextBox(boxOf(lines, wholeInk));
        if (effect->hasFailed()) return false;
        for (const LaidOutLine& line : lines) {
            ClearGlyphList();
            std::unique_ptr<ColorGlyphs> colors;
            auto mask = drawMask(line.layout, paint, wholeInk,
                                 text->getKeepsColorGlyphs() ? &coloring : nullptr, &colors);
            if (!mask || !glyphList->Add(mask.get())) {
                return ReportNativeError(kDrawingTag, GXE_ERROR_INVALID_ARGUMENT, kSiteNoMemory);
            }
            const GxGlyph& glyph = *mask.release();  // the list's from here on
            if (colors) {
                effect->renderEffectLayer(maskLeft(glyph, line.penX), maskTop(glyph, line.penY),
                                          &glyph, std::move(colors));
            } else if (!wholeInk || !isEmpty(glyph)) {
                _DoRender(line.penX, line.penY, glyphList.get(), effect, line.info->direction);
            }
            moveBackgroundBox(*line.info, left, top, line.layout.getAdvance());
        }
        ClearGlyphList();  // the effects need its memory
        return true;
    };
    return withLines(text, left, top, draw);
}

bool GxFontDrawing::MeasureInk(const GxTextObject* text, GxRect* ink) {
    *ink = GxRect();
    const GxString* string = text->GetText();
    const List* lines = text->GetLineInfo();
    if (!string || string->GetUTF16Size() - 1 < 1 || !lines || lines->GetCount() < 1) return true;
    const auto measure = [ink](const std::vector<LaidOutLine>& laidOut, android::Paint&,
                               const android::Typeface&) {
        *ink = boxOf(laidOut, true);
        if (ink->isEmpty()) *ink = GxRect();
        return true;
    };
    return withLines(text, 0, 0, measure);
}

void GxFontDrawing::_DoRender(int x, int y, List* glyphs, GxEffect* effect, int direction) {
    const int count = glyphs ? glyphs->GetCount() : 0;
    if (count < 1 || !effect) return;
    int64_t penX = x;
    for (int i = 0; i < count; ++i) {
        const auto* glyph =
            static_cast<const GxGlyph*>(glyphs->Get(direction < 0 ? count - 1 - i : i));
        if (!glyph) continue;
        effect->renderEffectLayer(maskLeft(*glyph, penX), maskTop(*glyph, y), glyph);
        penX += int64_t{glyph->width} << kFixedShift;
    }
}

}  // namespace GxFontEffect
