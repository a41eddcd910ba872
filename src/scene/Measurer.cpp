#include "scene/Measurer.h"

#include <hwui/MinikinUtils.h>
#include <minikin/FontFamily.h>
#include <unicode/unorm2.h>

#include <algorithm>
#include <iterator>
#include <new>

#include "font/FontManager.h"

namespace gxtext {

namespace {

// char16_t and uint16_t are distinct types of the same representation.
const uint16_t* unitsOf(const std::u16string& text) {
    return reinterpret_cast<const uint16_t*>(text.data());
}

}  // namespace

Measurer::Measurer(const android::Paint& paint,
                   std::vector<std::shared_ptr<minikin::FontFamily>> families, int weight,
                   bool italic, std::u16string text)
    : paint_(paint),
      families_(std::move(families)),
      text_(std::move(text)),
      measured_(std::make_unique<minikin::MeasuredText>(
          minikin::U16StringPiece(unitsOf(text_), text_.size()))) {
    // The one that the text object draws with: what is measured here is not shaped again there, nor
    // for the next picture.
    typeface_ = GxFontEffect::FontManager::GetInstance().GetTypeface(families_, weight, italic);
    if (!typeface_) throw std::bad_alloc();
    for (size_t i = 0; i < text_.size(); i++) {
        if (text_[i] == u'\n' || text_[i] == u'\r') lineBreaks_.push_back(static_cast<int32_t>(i));
    }
}

// The context of a line begins with the last LF or CR before it, or where the text does.
minikin::Layout Measurer::layOut(const TextLine& line) const {
    const auto next = std::upper_bound(lineBreaks_.begin(), lineBreaks_.end(), line.start);
    const size_t contextStart =
        next == lineBreaks_.begin() ? 0 : static_cast<size_t>(*std::prev(next));
    const auto start = static_cast<size_t>(line.start);
    const auto end = static_cast<size_t>(line.end);
    return android::MinikinUtils::doLayout(
        &paint_, line.rightToLeft ? minikin::Bidi::DEFAULT_RTL : minikin::Bidi::DEFAULT_LTR,
        typeface_.get(), unitsOf(text_), text_.size(), start, end - start, contextStart,
        end - contextStart, measured_.get());
}

TextMeasures Measurer::measures() const {
    return {[this](const TextLine& line) { return layOut(line).getAdvance(); },
            [this](const TextLine& paragraph) { return layOut(paragraph).getAdvances(); }};
}

LineMetrics Measurer::measure(const TextLine& line) const {
    const minikin::Layout layout = layOut(line);
    const minikin::MinikinPaint paint =
        android::MinikinUtils::prepareMinikinPaint(&paint_, typeface_.get());
    LineMetrics metrics;
    const auto include = [&](const minikin::MinikinFont* font, minikin::FontFakery fakery) {
        minikin::MinikinExtent extent;
        font->GetFontExtent(&extent, paint, fakery);
        metrics.ascent = std::min(metrics.ascent, extent.ascent);
        metrics.descent = std::max(metrics.descent, extent.descent);
    };
    // The first family's font always counts, so that empty lines have a height and others do not
    // jump.
    const minikin::FakedFont first = families_.front()->getClosestMatch(typeface_->fStyle);
    include(first.font->typeface().get(), first.fakery);
    const minikin::MinikinFont* previous = nullptr;
    for (int i = 0; i < static_cast<int>(layout.nGlyphs()); i++) {
        if (layout.getFont(i) != previous) include(layout.getFont(i), layout.getFakery(i));
        previous = layout.getFont(i);
    }
    metrics.advance = layout.getAdvance();
    const minikin::MinikinRect& ink = layout.getBounds();
    metrics.inkLeft = ink.mLeft;
    metrics.inkTop = ink.mTop;
    metrics.inkRight = ink.mRight;
    metrics.inkBottom = ink.mBottom;
    return metrics;
}

bool Measurer::covers(char32_t codePoint) const {
    const auto has = [&](UChar32 c) {
        return std::any_of(families_.begin(), families_.end(), [&](const auto& family) {
            return family->hasGlyph(static_cast<uint32_t>(c), 0);
        });
    };
    if (has(static_cast<UChar32>(codePoint))) return true;
    UErrorCode status = U_ZERO_ERROR;
    const UNormalizer2* normalizer = unorm2_getNFDInstance(&status);
    if (U_FAILURE(status)) return false;
    UChar parts[32];
    const int32_t length =
        unorm2_getDecomposition(normalizer, static_cast<UChar32>(codePoint), parts, 32, &status);
    if (U_FAILURE(status) || length < 0) return false;
    const auto pieces = codePoints({parts, static_cast<size_t>(length)});
    return std::all_of(pieces.begin(), pieces.end(),
                       [&](char32_t c) { return has(static_cast<UChar32>(c)); });
}

}  // namespace gxtext
