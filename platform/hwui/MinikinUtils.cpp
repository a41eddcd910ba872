#include "hwui/MinikinUtils.h"

#include <algorithm>
#include <cmath>

#include "minikin/MeasuredText.h"

namespace android {
namespace {

// Positions inside the engine are 32 bits wide with room for signs.
constexpr size_t kMaxTextLength = size_t{1} << 30;

}  // namespace

minikin::MinikinPaint MinikinUtils::prepareMinikinPaint(const Paint* paint,
                                                        const Typeface* typeface) {
    const Typeface* resolved = Typeface::resolveDefault(typeface);
    const SkFont& font = paint->getSkFont();

    minikin::MinikinPaint result(resolved->fFontCollection);
    result.size = font.isLinearMetrics() ? font.getSize() : std::trunc(font.getSize());
    result.scaleX = font.getScaleX();
    result.skewX = font.getSkewX();
    result.letterSpacing = paint->getLetterSpacing();
    result.wordSpacing = paint->getWordSpacing();
    result.fontFlags = MinikinFontSkia::packFontFlags(font);
    result.localeListId = paint->getMinikinLocaleListId();
    result.fontStyle = resolved->fStyle;
    result.familyVariant = paint->getFamilyVariant();
    result.fontFeatureSettings = paint->getFontFeatureSettings();
    return result;
}

minikin::Layout MinikinUtils::doLayout(const Paint* paint, minikin::Bidi bidiFlags,
                                       const Typeface* typeface, const uint16_t* buf,
                                       size_t bufSize, size_t start, size_t count,
                                       size_t contextStart, size_t contextCount,
                                       minikin::MeasuredText* mt) {
    if (!paint || !buf) return {{}, {0, 0}, bidiFlags, minikin::MinikinPaint(nullptr)};
    bufSize = std::min(bufSize, kMaxTextLength);
    contextStart = std::min(contextStart, bufSize);
    contextCount = std::min(contextCount, bufSize - contextStart);
    const size_t contextEnd = contextStart + contextCount;

    const size_t rangeStart = std::clamp(start, contextStart, contextEnd);
    const size_t rangeEnd = std::clamp(start + std::min(count, bufSize), rangeStart, contextEnd);

    const minikin::MinikinPaint minikinPaint = prepareMinikinPaint(paint, typeface);
    if (rangeEnd == contextEnd) {
        const auto context = minikin::shortContext(
            mt, {buf, bufSize}, static_cast<uint32_t>(contextStart),
            minikin::Range(static_cast<uint32_t>(rangeStart), static_cast<uint32_t>(rangeEnd)),
            bidiFlags);
        if (context) {
            const minikin::U16StringPiece text(context->text.data(), context->text.size());
            return minikin::Layout(text, context->range, bidiFlags, minikinPaint);
        }
    }
    const minikin::U16StringPiece context(buf + contextStart, contextCount);
    const minikin::Range range(static_cast<uint32_t>(rangeStart - contextStart),
                               static_cast<uint32_t>(rangeEnd - contextStart));
    return minikin::Layout(context, range, bidiFlags, minikinPaint);
}

float MinikinUtils::measureText(const Paint* paint, minikin::Bidi bidiFlags,
                                const Typeface* typeface, const uint16_t* buf, size_t start,
                                size_t count, size_t bufSize, float* advances) {
    const minikin::Layout layout =
        doLayout(paint, bidiFlags, typeface, buf, bufSize, start, count, 0, bufSize, nullptr);
    if (advances) {
        const std::vector<float>& units = layout.getAdvances();
        std::fill_n(std::copy(units.begin(), units.end(), advances), count - units.size(), 0.0f);
    }
    return layout.getAdvance();
}

}  // namespace android
