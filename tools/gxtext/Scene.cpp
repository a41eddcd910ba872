#include "Scene.h"

#include <minikin/FontFamily.h>
#include <minikin/LocaleList.h>

#include <algorithm>
#include <cmath>
#include <string_view>

#include "PngIo.h"
#include "ToolError.h"
#include "base/GxString.h"
#include "base/List.h"
#include "effect/GxEffect.h"
#include "font/FontManager.h"
#include "font/GxFontFamily.h"
#include "raster/GxMath.h"
#include "style/EffectStack.h"
#include "text/GxLineInfo.h"
#include "text/GxView.h"

namespace gxtool {

namespace {

using namespace GxFontEffect;

// Flags of android.graphics.Paint: what a text view's paint has, and fake bold.
constexpr uint32_t kPaintFlags = 0x001 | 0x100 | 0x400;  // anti-alias, dev-kern, embedded bitmaps
constexpr uint32_t kFakeBoldFlag = 0x020;

constexpr int kMaxViewHeight = 1 << 26;

// A mask's sides are 16-bit.
constexpr int kMaxLineSide = 65535;

android::Paint makePaint(const Style& style, bool fakeBold) {
    android::Paint paint;
    SkFont& font = paint.getSkFont();
    font.setScaleX(style.scaleX);
    font.setSkewX(style.skewX);
    font.setSize(style.size);
    paint.setLetterSpacing(style.letterSpacing);
    paint.setJavaFlags(kPaintFlags | (fakeBold ? kFakeBoldFlag : 0));
    paint.setFontFeatureSettings(style.fontFeatures);
    paint.setMinikinLocaleListId(minikin::registerLocaleList(style.locale));
    paint.setTextAlign(style.align == Align::kRight    ? android::Paint::kRight_Align
                       : style.align == Align::kCenter ? android::Paint::kCenter_Align
                                                       : android::Paint::kLeft_Align);
    return paint;
}

// The text colour's alpha fades the whole picture, which is what opacity asks for: the stack's own
// text opacity only chooses the composition.
uint32_t fadedColor(const Style& style) {
    const auto alpha = static_cast<float>(style.color.argb >> 24);
    const auto faded = static_cast<uint32_t>(toInt(alpha * style.opacity + 0.5f));
    return faded << 24 | (style.color.argb & 0x00FFFFFFu);
}

Align resolve(Align align, bool rightToLeft) {
    if (align != Align::kStart) return align;
    return rightToLeft ? Align::kRight : Align::kLeft;
}

struct FamilyDeleter {
    void operator()(GxFontFamily* family) const { DeleteFontFamily(family); }
};
using FamilyPtr = std::unique_ptr<GxFontFamily, FamilyDeleter>;

// The record of a system configuration for one face.
FamilyPtr makeFamily(const FontFace& face) {
    FamilyPtr family(new GxFontFamily);
    family->localeListId = minikin::registerLocaleList(face.locales);
    family->fonts = new List;
    family->fonts->Construct();
    auto entry = std::make_unique<GxFontEntry>();
    entry->path = new GxString;
    entry->path->Construct(face.file.c_str());
    entry->ttcIndex = face.index;
    entry->weight = face.weight;
    entry->italic = face.italic;
    family->fonts->Add(entry.release());
    return family;
}

std::u16string readText(const Style& style) {
    if (!style.text)
        throw ToolError("there is no text; give --text or a style with a text", kUsage);
    std::u16string text = decodeUtf8(*style.text, "the text");
    if (text.empty()) throw ToolError("the text is empty");
    // Fonts have no glyph for a tab.
    std::replace(text.begin(), text.end(), u'\t', u' ');
    return text;
}

void checkLine(const LineMetrics& metrics, size_t index) {
    if (metrics.advance <= kMaxLineSide && metrics.inkBottom - metrics.inkTop <= kMaxLineSide)
        return;
    throw ToolError("line " + std::to_string(index + 1) + " is " +
                    std::to_string(toInt(metrics.advance)) + " x " +
                    std::to_string(toInt(metrics.inkBottom - metrics.inkTop)) +
                    " pixels; at most " + std::to_string(kMaxLineSide) + " are possible");
}

// The line with its top at `top`, its left end at 0.
SceneLine stackLine(const TextLine& range, const LineMetrics& metrics, int top) {
    SceneLine line;
    line.range = range;
    line.advance = metrics.advance;
    line.baseline = top + toInt(std::ceil(-metrics.ascent));
    const int advance = toInt(metrics.advance);
    line.box = {0, top, advance, line.baseline + toInt(std::ceil(metrics.descent))};
    // Drawing puts the ink's left edge at the line's left end and cuts it at the advance.
    const int inkWidth = toInt(std::ceil(metrics.inkRight - metrics.inkLeft));
    line.ink = {0, line.baseline + toInt(std::floor(metrics.inkTop)), std::min(inkWidth, advance),
                line.baseline + toInt(std::ceil(metrics.inkBottom))};
    return line;
}

void shift(SceneLine& line, int x, int y) {
    line.x += x;
    line.baseline += y;
    for (Box* box : {&line.box, &line.ink}) {
        box->left += x;
        box->right += x;
        box->top += y;
        box->bottom += y;
    }
}

// A line that is wider than the view begins at the padding whatever the alignment.
int leftOf(const Style& style, const SceneLine& line, int viewWidth) {
    const int left = style.padding.left;
    const float free = static_cast<float>(viewWidth - left - style.padding.right) - line.advance;
    switch (resolve(style.align, line.range.rightToLeft)) {
        case Align::kCenter:
            return left + std::max(0, toInt(free / 2));
        case Align::kRight:
            return left + std::max(0, toInt(free));
        default:
            return left;
    }
}

// Bits of android.view.Gravity.
uint32_t horizontalGravity(Align align) {
    constexpr uint32_t kCenterHorizontal = 0x01;
    if (align == Align::kCenter) return kCenterHorizontal;
    return align == Align::kRight ? GxView::kGravityRight : GxView::kGravityLeft;
}

}  // namespace

Scene::Scene(const Style& style) {
    const std::u16string text = readText(style);
    const std::vector<char32_t> characters = codePoints(text);
    if (!object_.Construct()) throw ToolError("cannot create the text object");
    fonts_ = chooseFonts(style, characters);
    loadFonts();

    android::Paint paint = makePaint(style, fonts_.fakeBold);
    object_.SetPaint(paint);
    object_.SetTextStyle(style.bold, style.italic);
    object_.SetTextColor(fadedColor(style));
    object_.SetBackgroundColor(style.background.value_or(Color{0}).argb,
                               style.background.has_value());
    const std::wstring wide(characters.begin(), characters.end());
    if (!object_.SetText(wide.c_str())) throw ToolError("cannot set the text");
    object_.GetEffect()->setTextOpacity(style.opacity);
    gxtext::dress(*object_.GetEffect(), style, loadPattern);

    makeMeasurer(paint, style);
    std::copy_if(characters.begin(), characters.end(), std::back_inserter(codePoints_), needsGlyph);
    std::sort(codePoints_.begin(), codePoints_.end());
    codePoints_.erase(std::unique(codePoints_.begin(), codePoints_.end()), codePoints_.end());
    std::copy_if(codePoints_.begin(), codePoints_.end(), std::back_inserter(missing_),
                 [&](char32_t c) { return !measurer_->covers(c); });
    layOutLines(style);
}

// The style's own font file goes to the text object, installed families to the font manager in the
// form of a system configuration, already loaded.
void Scene::loadFonts() {
    FontManager& manager = FontManager::GetInstance();
    std::vector<FamilyPtr> families;
    for (size_t i = 0; i < fonts_.faces.size(); i++) {
        const FontFace& face = fonts_.faces[i];
        bool ok = false;
        if (i == 0 && fonts_.userFile) {
            ok = object_.SetFont(face.file.c_str());
        } else {
            families.push_back(makeFamily(face));
            ok = manager.BuildMinikinFamily(families.back().get());
            families.back()->loaded = ok;
        }
        if (!ok) throw ToolError("cannot load the font " + face.file);
    }
    auto list = std::make_unique<List>();
    list->Construct();
    for (FamilyPtr& family : families) list->Add(family.release());
    manager.ClearFontFamilies();  // of an earlier scene
    if (!manager.SetSystemFontFamilies(list.release())) throw ToolError("cannot set the fonts");
    if (!fonts_.familyName.empty()) object_.SetFontFamilyName(fonts_.familyName.c_str());
}

void Scene::makeMeasurer(const android::Paint& paint, const Style& style) {
    GxString path;
    const bool hasPath = fonts_.userFile && path.Construct(fonts_.faces.front().file.c_str());
    GxString name;
    const bool hasName = !fonts_.familyName.empty() && name.Construct(fonts_.familyName.c_str());
    std::vector<std::shared_ptr<minikin::FontFamily>> families;
    int weight = 400;
    FontManager::GetInstance().GetMinikinFontFamilies(hasName ? &name : nullptr, families,
                                                      hasPath ? &path : nullptr, weight);
    if (families.empty()) throw ToolError("no font could be loaded");
    const std::unique_ptr<uint16_t[]> units(object_.GetText()->GetUTF16());
    const auto length = static_cast<size_t>(object_.GetText()->GetUTF16Size() - 1);
    measurer_ = std::make_unique<Measurer>(paint, std::move(families), weight, style.italic,
                                           std::u16string(units.get(), units.get() + length));
}

// Breaks the text, then measures every line once and stacks them from the top padding downwards.
void Scene::layOutLines(const Style& style) {
    const int sides = style.padding.left + style.padding.right;
    std::optional<float> wrapWidth;
    if (style.width) {
        if (*style.width <= sides) throw ToolError("the padding leaves no room within the width");
        wrapWidth = static_cast<float>(*style.width - sides);
    }
    const std::u16string& text = measurer_->text();
    const auto ranges = wrapText(text, wrapWidth, style.locale, measurer_->measures());
    int y = style.padding.top;
    int widest = 0;
    Box ink{0, y, 0, y};
    for (const TextLine& range : ranges) {
        const LineMetrics metrics = measurer_->measure(range);
        checkLine(metrics, lines_.size());
        lines_.push_back(stackLine(range, metrics, y));
        SceneLine& line = lines_.back();
        line.text = encodeUtf8(text.substr(range.start, range.end - range.start));
        y += toInt(
            std::round(static_cast<float>(line.box.bottom - line.box.top) * style.lineSpacing));
        if (y > kMaxViewHeight) throw ToolError("the text has too many lines");
        // Each box reaches to the next line's; the last one keeps its own height.
        if (lines_.size() < ranges.size()) line.box.bottom = y;
        widest = std::max(widest, toInt(std::ceil(metrics.advance)));
        ink.top = std::min(ink.top, line.ink.top);
        ink.bottom = std::max({ink.bottom, line.ink.bottom, line.box.bottom});
    }
    // Marks may rise above and fall below what the fonts reserve: make room, or the picture's edge
    // cuts them.
    const int raise = style.padding.top - ink.top;
    const int viewWidth = style.width.value_or(widest + sides);
    for (SceneLine& line : lines_) {
        const int x = leftOf(style, line, viewWidth);
        shift(line, x, raise);
    }
    setUpView(style, viewWidth, ink.bottom + raise + style.padding.bottom);
}

void Scene::setUpView(const Style& style, int viewWidth, int viewHeight) {
    const GxEffect& effect = *object_.GetEffect();
    margins_ = {effect.getLeftOffset(), effect.getTopOffset(), effect.getRightOffset(),
                effect.getBottomOffset()};
    imageWidth_ = viewWidth + margins_.left + margins_.right;
    imageHeight_ = viewHeight + margins_.top + margins_.bottom;
    if (viewWidth == 0) throw ToolError("there is nothing to draw: the text has no width");
    if (static_cast<uint64_t>(imageWidth_) * static_cast<uint64_t>(imageHeight_) > kMaxPixels) {
        throw ToolError("the picture would be " + std::to_string(imageWidth_) + " x " +
                        std::to_string(imageHeight_) + " pixels; at most " +
                        std::to_string(kMaxPixels) + " are possible");
    }
    GxView& view = *object_.GetView();
    view.SetPadding(style.padding.left, style.padding.top, style.padding.right,
                    style.padding.bottom);
    view.SetSize(viewWidth, viewHeight);
    view.gravity =
        GxView::kGravityTop | horizontalGravity(resolve(style.align, lines_[0].range.rightToLeft));
    view.SetBitmapWidth(imageWidth_);
    view.SetBitmapHeight(imageHeight_);
    for (SceneLine& line : lines_) shift(line, margins_.left, margins_.top);
}

// In view pixels, as a layout would give them: the object moves them by the margins itself.
void Scene::handOverLines() {
    List list;
    list.Construct();
    for (const SceneLine& line : lines_) {
        auto record = std::make_unique<GxLineInfo>();
        record->x = line.x - margins_.left;
        record->y = line.baseline - margins_.top;
        record->start = line.range.start;
        record->end = line.range.end;
        record->direction = line.range.rightToLeft ? -1 : 1;
        record->rect = {line.box.left - margins_.left, line.box.top - margins_.top,
                        line.box.right - margins_.left, line.box.bottom - margins_.top};
        list.Add(record.release());
    }
    if (!object_.SetLineInfo(&list)) throw ToolError("cannot hand over the lines");
}

const uint32_t* Scene::render() {
    handOverLines();
    const uint32_t* pixels = object_.RenderTextEffect(imageWidth_, imageHeight_);
    if (!pixels) throw ToolError("cannot render: out of memory");
    return pixels;
}

std::vector<std::vector<char32_t>> Scene::coverage() const {
    const auto& families = measurer_->families();
    std::vector<std::vector<char32_t>> result(fonts_.faces.size());
    for (const char32_t c : codePoints_) {
        for (size_t i = 0; i < std::min(families.size(), result.size()); i++) {
            if (!families[i]->hasGlyph(c, 0)) continue;
            result[i].push_back(c);
            break;
        }
    }
    return result;
}

}  // namespace gxtool
