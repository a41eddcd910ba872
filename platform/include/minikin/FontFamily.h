// Fonts of one design in several styles, serving one set of locales.
#pragma once

#include <cutils/compiler.h>

#include <cstddef>
#include <cstdint>
#include <vector>

#include "minikin/FamilyVariant.h"
#include "minikin/Font.h"
#include "minikin/FontStyle.h"
#include "minikin/SparseBitSet.h"

namespace minikin {

class LocaleList;

// Immutable; safe from any thread. A family without fonts covers nothing and matches nothing.
class ANDROID_API FontFamily {
public:
    explicit FontFamily(std::vector<Font>&& fonts);
    FontFamily(FamilyVariant variant, std::vector<Font>&& fonts);
    FontFamily(uint32_t localeListId, FamilyVariant variant, std::vector<Font>&& fonts,
               bool isCustomFallback);
    FontFamily(const FontFamily&) = delete;
    FontFamily& operator=(const FontFamily&) = delete;

    // The font nearest in weight and slant, earlier fonts first, and what is to be faked. The font
    // is null when there is none.
    FakedFont getClosestMatch(FontStyle style) const;

    uint32_t localeListId() const { return mLocaleListId; }
    FamilyVariant variant() const { return mVariant; }
    size_t getNumFonts() const { return mFonts.size(); }
    // Null beyond the last font.
    const Font* getFont(size_t index) const {
        return index < mFonts.size() ? &mFonts[index] : nullptr;
    }
    bool isColorEmojiFamily() const { return mIsColorEmoji; }
    bool isCustomFallback() const { return mIsCustomFallback; }

    // Whether the code point has a glyph; with a selector, whether the font's own table lists the
    // sequence.
    bool hasGlyph(uint32_t codepoint, uint32_t variationSelector) const;
    // Code points of the font closest to regular upright; taken to hold for all fonts of the
    // family.
    const SparseBitSet& getCoverage() const { return *mCoverage; }

private:
    friend class FontCollection;
    const LocaleList& locales() const { return mLocales; }

    const uint32_t mLocaleListId;
    const LocaleList& mLocales;
    const FamilyVariant mVariant;
    const std::vector<Font> mFonts;
    const bool mIsColorEmoji;
    const bool mIsCustomFallback;
    const Font* mCoverageFont;
    const SparseBitSet* mCoverage;
};

}  // namespace minikin
