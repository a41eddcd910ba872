#include "minikin/Font.h"

#include <utility>

#include "minikin/FontFile.h"
#include "minikin/SparseBitSet.h"

namespace minikin {

Font Font::Builder::build() {
    uint16_t weight = mWeight;
    FontStyle::Slant slant = mSlant;
    if (mTypeface && !(mIsWeightSet && mIsSlantSet)) {
        const FontStyle declared = mTypeface->file().style();
        if (!mIsWeightSet) weight = declared.weight();
        if (!mIsSlantSet) slant = declared.slant();
    }
    HbFontUniquePtr base = mTypeface ? mTypeface->file().baseFont()
                                     : HbFontUniquePtr(hb_font_reference(hb_font_get_empty()));
    return Font(mTypeface, FontStyle(weight, slant), std::move(base));
}

Font::Font(std::shared_ptr<MinikinFont> typeface, FontStyle style, HbFontUniquePtr baseFont)
    : mTypeface(std::move(typeface)), mStyle(style), mBaseFont(std::move(baseFont)) {}

Font::Font(const Font& other)
    : mTypeface(other.mTypeface),
      mStyle(other.mStyle),
      mBaseFont(hb_font_reference(other.mBaseFont.get())) {}

Font& Font::operator=(const Font& other) {
    Font copy(other);
    return *this = std::move(copy);
}

const FontFile* Font::file() const {
    return mTypeface ? &mTypeface->file() : nullptr;
}

const SparseBitSet& Font::coverage() const {
    static const SparseBitSet nothing;
    return mTypeface ? file()->coverage() : nothing;
}

}  // namespace minikin
