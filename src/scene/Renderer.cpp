#include "scene/Renderer.h"

#include <hwui/Paint.h>
#include <minikin/FontFamily.h>
#include <minikin/LocaleList.h>

#include <algorithm>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "base/GxString.h"
#include "base/List.h"
#include "effect/GxEffect.h"
#include "raster/GxMath.h"
#include "raster/PlaneMemory.h"
#include "scene/FontLibrary.h"
#include "scene/Measurer.h"
#include "scene/Pattern.h"
#include "scene/Placement.h"
#include "scene/Png.h"
#include "scene/Wrap.h"
#include "style/EffectStack.h"
#include "text/GxLineInfo.h"
#include "text/GxTextObject.h"
#include "text/GxView.h"

namespace gxtext {

namespace {

using namespace GxFontEffect;

// Flags of android.graphics.Paint: what a text view's paint has, and fake bold.
constexpr uint32_t kPaintFlags = 0x001 | 0x100 | 0x400;  // anti-alias, dev-kern, embedded bitmaps
constexpr uint32_t kFakeBoldFlag = 0x020;

std::u16string readText(std::string_view utf8) {
    std::u16string text = decodeUtf8(utf8, "the text");
    if (text.empty()) throw TextError("the text", "empty");
    // Fonts have no glyph for a tab.
    std::replace(text.begin(), text.end(), u'\t', u' ');
    return text;
}

// Those that want a glyph, each once, in order of value.
std::vector<char32_t> visibleCharacters(const std::vector<char32_t>& text) {
    std::vector<char32_t> visible;
    std::copy_if(text.begin(), text.end(), std::back_inserter(visible), needsGlyph);
    std::sort(visible.begin(), visible.end());
    visible.erase(std::unique(visible.begin(), visible.end()), visible.end());
    return visible;
}

FontRequest fontRequest(const Style& style) {
    return {style.font,   style.folder(), style.fontIndex,     style.bold,
            style.italic, style.locale,   style.fontVariations};
}

android::Paint makePaint(const Style& style, bool fakeBold) {
    android::Paint paint;
    SkFont& font = paint.getSkFont();
    font.setColorGlyphs(style.emoji == Emoji::kColor);
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

// The text colour's alpha fades the whole picture, which is what opacity asks for: it has the
// stack's text opacity, which is the letters' own, for the composition only.
uint32_t fadedColor(const Style& style) {
    const auto alpha = static_cast<float>(style.color.argb >> 24);
    const auto faded = static_cast<uint32_t>(toInt(alpha * style.opacity + 0.5f));
    return faded << 24 | (style.color.argb & 0x00FFFFFFu);
}

// Bits of android.view.Gravity.
uint32_t horizontalGravity(Align align) {
    constexpr uint32_t kCenterHorizontal = 0x01;
    if (align == Align::kCenter) return kCenterHorizontal;
    return align == Align::kRight ? GxView::kGravityRight : GxView::kGravityLeft;
}

// Each character under the first font that has it, as layout chooses.
std::vector<UsedFont> usedFonts(const LoadedFonts& fonts, const std::vector<char32_t>& characters) {
    std::vector<UsedFont> used;
    for (const FontFace& face : fonts.faces) used.push_back({face, {}});
    for (const char32_t c : characters) {
        const auto has = [&](const auto& family) { return family->hasGlyph(c, 0); };
        const auto found = std::find_if(fonts.families.begin(), fonts.families.end(), has);
        if (found != fonts.families.end()) {
            used[static_cast<size_t>(found - fonts.families.begin())].characters.push_back(c);
        }
    }
    return used;
}

// A step of a text object that fails for want of memory only.
void require(bool done) {
    if (!done) throw std::bad_alloc();
}

}  // namespace

class Renderer::Impl {
public:
    explicit Impl(FontSource fonts) : fonts_(std::move(fonts)) {
        require(object_.Construct());
        object_.setKeepsWholeInk(true);
    }

    Arrangement arrange(const Style& style, std::string_view utf8);
    std::vector<uint32_t> draw(const Arrangement& arrangement);

private:
    void setLook(const Style& style, const android::Paint& paint);
    void setView(const Style& style, const Placement& placement);
    Box margins() const;

    FontSource fonts_;
    GxTextObject object_;
};

Arrangement Renderer::Impl::arrange(const Style& style, std::string_view utf8) {
    const std::u16string text = readText(utf8);
    const std::vector<char32_t> characters = codePoints(text);
    FontLibrary& library = *fonts_.library_;
    const auto readFile = [&library](const std::filesystem::path& file, size_t index) {
        return library.readFile(file, index);
    };
    const FontChoice choice =
        chooseFonts(library.catalog(), readFile, fontRequest(style), characters);
    const LoadedFonts fonts = library.load(choice);
    const android::Paint paint = makePaint(style, choice.fakeBold);

    require(object_.SetFontFamilies(fonts.families, fonts.weight));
    const std::wstring wide(characters.begin(), characters.end());
    require(object_.SetText(wide.c_str()));
    setLook(style, paint);

    const Measurer measurer(paint, fonts.families, fonts.weight, style.italic, text);
    const std::vector<TextLine> ranges =
        wrapText(text, wrapWidth(style), style.locale, measurer.measures());
    std::vector<LineMetrics> metrics;
    metrics.reserve(ranges.size());
    for (const TextLine& range : ranges) metrics.push_back(measurer.measure(range));
    Placement placement = placeLines(style, text, ranges, metrics);
    setView(style, placement);

    Arrangement arrangement;
    const GxView& view = *object_.GetView();
    arrangement.width = view.GetBitmapWidth();
    arrangement.height = view.GetBitmapHeight();
    arrangement.margins = margins();
    arrangement.lines = std::move(placement.lines);
    for (Line& line : arrangement.lines) {
        line.shift(arrangement.margins.left, arrangement.margins.top);
    }
    const std::vector<char32_t> visible = visibleCharacters(characters);
    std::copy_if(visible.begin(), visible.end(), std::back_inserter(arrangement.missing),
                 [&](char32_t c) { return !measurer.covers(c); });
    arrangement.fonts = usedFonts(fonts, visible);
    return arrangement;
}

void Renderer::Impl::setLook(const Style& style, const android::Paint& paint) {
    android::Paint own(paint);
    object_.SetPaint(own);
    object_.SetTextStyle(style.bold, style.italic);
    object_.SetTextColor(fadedColor(style));
    const Background box = style.background.value_or(Color{0});
    object_.SetBackgroundColor(box.color.argb, style.background.has_value());
    object_.SetBackgroundShape({box.radius, box.padding, box.span == BackgroundSpan::kBlock});
    object_.SetCanvasColor(style.canvas.value_or(Color{0}).argb);
    GxEffect& effect = *object_.GetEffect();
    effect.cleanAllEffect();
    object_.setKeepsColorGlyphs(style.emoji == Emoji::kColor);
    object_.setFadesFill(style.fillOpacity < 1);
    effect.setTextOpacity(style.fillOpacity < 1 ? style.fillOpacity : style.opacity);
    dress(effect, style, loadPattern);
}

void Renderer::Impl::setView(const Style& style, const Placement& placement) {
    if (placement.viewWidth == 0) throw TextError("the text", "no width, so nothing to draw");
    GxView& view = *object_.GetView();
    view.SetPadding(style.padding.left, style.padding.top, style.padding.right,
                    style.padding.bottom);
    view.SetSize(placement.viewWidth, placement.viewHeight);
    // The view holds all ink of the lines to come; those of the text before do not count.
    List none;
    require(none.Construct() && object_.SetLineInfo(&none));
    view.gravity = GxView::kGravityTop | horizontalGravity(resolveAlign(
                                             style.align, placement.lines.front().rightToLeft));
    require(object_.FitBitmapToView());
    checkPictureSize("the picture", static_cast<uint64_t>(view.GetBitmapWidth()),
                     static_cast<uint64_t>(view.GetBitmapHeight()));
}

Box Renderer::Impl::margins() const {
    const GxEffect& effect = *object_.GetEffect();
    return {effect.getLeftOffset(), effect.getTopOffset(), effect.getRightOffset(),
            effect.getBottomOffset()};
}

// Lines are handed over in view pixels, as a layout would give them: the object moves them by the
// margins itself.
std::vector<uint32_t> Renderer::Impl::draw(const Arrangement& arrangement) {
    const int left = arrangement.margins.left, top = arrangement.margins.top;
    std::vector<std::unique_ptr<GxLineInfo>> records;
    List list;
    require(list.Construct());
    for (const Line& line : arrangement.lines) {
        GxLineInfo& record = *records.emplace_back(std::make_unique<GxLineInfo>());
        record.x = line.x - left;
        record.y = line.baseline - top;
        record.start = line.start;
        record.end = line.end;
        record.direction = line.rightToLeft ? -1 : 1;
        record.rect = {line.box.left - left, line.box.top - top, line.box.right - left,
                       line.box.bottom - top};
        require(list.Add(&record));
    }
    require(object_.SetLineInfo(&list));
    for (auto& record : records) static_cast<void>(record.release());  // the object's from here on
    std::vector<uint32_t> pixels;
    const size_t count = size_t(arrangement.width) * size_t(arrangement.height);
    pixels.reserve(count);
    askForLargePages(pixels.data(), count * sizeof(uint32_t));
    pixels.resize(count);
    require(object_.RenderTextEffectInto(pixels.data(), arrangement.width, arrangement.height));
    return pixels;
}

Renderer::Renderer(FontSource fonts) : impl_(std::make_unique<Impl>(std::move(fonts))) {}
Renderer::Renderer(Renderer&&) noexcept = default;
Renderer& Renderer::operator=(Renderer&&) noexcept = default;
Renderer::~Renderer() = default;

Picture Renderer::render(const Style& style, std::string_view text) {
    Arrangement arrangement = impl_->arrange(style, text);
    std::vector<uint32_t> pixels = impl_->draw(arrangement);
    return {std::move(arrangement), std::move(pixels)};
}

Picture Renderer::render(const Style& style, std::u8string_view text) {
    return render(style, std::string_view(reinterpret_cast<const char*>(text.data()), text.size()));
}

Picture Renderer::render(const Style& style) {
    if (!style.text) throw TextError("the text", "none given, and none in the style");
    return render(style, *style.text);
}

Arrangement Renderer::arrange(const Style& style, std::string_view text) {
    return impl_->arrange(style, text);
}

Arrangement Renderer::arrange(const Style& style) {
    if (!style.text) throw TextError("the text", "none given, and none in the style");
    return arrange(style, *style.text);
}

}  // namespace gxtext
