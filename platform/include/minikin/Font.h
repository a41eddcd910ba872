// A font of a family: a face and the style it stands for.
#pragma once

#include <cutils/compiler.h>

#include <cstdint>
#include <memory>

#include "minikin/FontStyle.h"
#include "minikin/HbUtils.h"
#include "minikin/MinikinFont.h"

namespace minikin {

class FontFile;
class SparseBitSet;

// What drawing has to imitate because the font lacks it.
class FontFakery {
public:
    FontFakery() : mFakeBold(false), mFakeItalic(false) {}
    FontFakery(bool fakeBold, bool fakeItalic) : mFakeBold(fakeBold), mFakeItalic(fakeItalic) {}

    bool isFakeBold() { return mFakeBold; }
    bool isFakeItalic() { return mFakeItalic; }

    bool operator==(const FontFakery& other) const {
        return mFakeBold == other.mFakeBold && mFakeItalic == other.mFakeItalic;
    }
    bool operator!=(const FontFakery& other) const { return !(*this == other); }

private:
    bool mFakeBold;
    bool mFakeItalic;
};

// Built by Font::Builder only. Copies share the face.
class Font {
public:
    class ANDROID_API Builder {
    public:
        explicit Builder(const std::shared_ptr<MinikinFont>& typeface) : mTypeface(typeface) {}

        Builder& setStyle(FontStyle style) {
            return setWeight(style.weight()).setSlant(style.slant());
        }
        Builder& setWeight(uint16_t weight) {
            mWeight = weight;
            mIsWeightSet = true;
            return *this;
        }
        Builder& setSlant(FontStyle::Slant slant) {
            mSlant = slant;
            mIsSlantSet = true;
            return *this;
        }

        // Weight and slant that were not set come from the font's OS/2 table; 400 and upright
        // without one.
        Font build();

    private:
        std::shared_ptr<MinikinFont> mTypeface;
        uint16_t mWeight = static_cast<uint16_t>(FontStyle::Weight::NORMAL);
        FontStyle::Slant mSlant = FontStyle::Slant::UPRIGHT;
        bool mIsWeightSet = false;
        bool mIsSlantSet = false;
    };

    Font(const Font& other);
    Font(Font&& other) noexcept = default;
    Font& operator=(const Font& other);
    Font& operator=(Font&& other) noexcept = default;

    const std::shared_ptr<MinikinFont>& typeface() const { return mTypeface; }
    FontStyle style() const { return mStyle; }
    // Immutable, in font units; never null. For shaping make a sub-font of it.
    const HbFontUniquePtr& baseFont() const { return mBaseFont; }

private:
    friend class FontFamily;
    friend class PieceShaper;
    friend struct ScaledFont;
    Font(std::shared_ptr<MinikinFont> typeface, FontStyle style, HbFontUniquePtr baseFont);
    // Null without a typeface.
    const FontFile* file() const;
    // Code points the face has glyphs for.
    const SparseBitSet& coverage() const;

    std::shared_ptr<MinikinFont> mTypeface;
    FontStyle mStyle;
    HbFontUniquePtr mBaseFont;
};

// A font as chosen for a piece of text. The pointer is borrowed from the collection.
struct FakedFont {
    bool operator==(const FakedFont& other) const {
        return font == other.font && fakery == other.fakery;
    }

    const Font* font;
    FontFakery fakery;
};

}  // namespace minikin
