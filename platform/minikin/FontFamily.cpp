#include "minikin/FontFamily.h"

#include <cstdlib>
#include <utility>

#include "minikin/FontFile.h"
#include "minikin/Locale.h"

namespace minikin {
namespace {

// Hundreds of weight apart, plus a penalty for the wrong slant that outweighs one of them.
int distance(FontStyle a, FontStyle b) {
    constexpr int kSlantPenalty = 2;
    const int weight = std::abs(a.weight() / 100 - b.weight() / 100);
    return weight + (a.slant() == b.slant() ? 0 : kSlantPenalty);
}

FontFakery fakeryFor(FontStyle wanted, FontStyle actual) {
    constexpr int kBoldFrom = 600;
    constexpr int kBoldStep = 200;
    const bool fakeBold =
        wanted.weight() >= kBoldFrom && wanted.weight() - actual.weight() >= kBoldStep;
    const bool fakeItalic =
        wanted.slant() == FontStyle::Slant::ITALIC && actual.slant() == FontStyle::Slant::UPRIGHT;
    return FontFakery(fakeBold, fakeItalic);
}

}  // namespace

FontFamily::FontFamily(std::vector<Font>&& fonts)
    : FontFamily(FamilyVariant::DEFAULT, std::move(fonts)) {}

FontFamily::FontFamily(FamilyVariant variant, std::vector<Font>&& fonts)
    : FontFamily(0, variant, std::move(fonts), false) {}

FontFamily::FontFamily(uint32_t localeListId, FamilyVariant variant, std::vector<Font>&& fonts,
                       bool isCustomFallback)
    : mLocaleListId(localeListId),
      mLocales(localeListById(localeListId)),
      mVariant(variant),
      mFonts(std::move(fonts)),
      mIsColorEmoji(mLocales.emojiStyle() == EmojiStyle::EMOJI),
      mIsCustomFallback(isCustomFallback),
      mCoverageFont(getClosestMatch(FontStyle()).font) {
    static const SparseBitSet nothing;
    mCoverage = mCoverageFont ? &mCoverageFont->coverage() : &nothing;
}

FakedFont FontFamily::getClosestMatch(FontStyle style) const {
    const Font* best = nullptr;
    int bestDistance = 0;
    for (const Font& font : mFonts) {
        const int fontDistance = distance(font.style(), style);
        if (!best || fontDistance < bestDistance) {
            best = &font;
            bestDistance = fontDistance;
        }
    }
    return {best, best ? fakeryFor(style, best->style()) : FontFakery()};
}

bool FontFamily::hasGlyph(uint32_t codepoint, uint32_t variationSelector) const {
    if (variationSelector == 0) return mCoverage->get(codepoint);
    const FontFile* file = mCoverageFont ? mCoverageFont->file() : nullptr;
    hb_codepoint_t glyph = 0;
    return file && hb_font_get_variation_glyph(file->baseFont().get(), codepoint, variationSelector,
                                               &glyph);
}

}  // namespace minikin
