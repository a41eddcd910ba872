// One font of a font file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "SkFontStyle.h"
#include "SkRefCnt.h"
#include "SkStream.h"
#include "SkTypes.h"

typedef uint32_t SkFontID;

namespace portable {
class FontFace;
}
class SkFontArguments;

// Immutable and shared between threads freely.
class SkTypeface : public SkRefCnt {
public:
    // Reads font number index of the stream. Takes the stream over; bytes that the stream borrows
    // must outlive the typeface. Null for a null or empty stream, an index out of range and a font
    // that cannot be read. Throws std::bad_alloc when memory runs out.
    static sk_sp<SkTypeface> MakeFromStream(std::unique_ptr<SkStreamAsset> stream, int index = 0);
    ~SkTypeface() override;

    // The same font at another place in its design space; axes that are not named are at their
    // defaults, values beyond an axis's end at its end, axes that the font does not have are
    // ignored. The bytes are borrowed like this one's. Throws std::bad_alloc.
    sk_sp<SkTypeface> makeClone(const SkFontArguments& arguments) const;

    SkFontStyle fontStyle() const { return fStyle; }
    bool isBold() const { return fStyle.weight() >= SkFontStyle::kSemiBold_Weight; }
    bool isItalic() const { return fStyle.slant() != SkFontStyle::kUpright_Slant; }

    // Never 0 and never used twice in a process.
    SkFontID uniqueID() const { return fUniqueID; }

    // The face behind the typeface, for the glyph code alone.
    portable::FontFace& face() const { return *fFace; }

private:
    SkTypeface(std::unique_ptr<portable::FontFace> face, SkFontStyle style);

    std::unique_ptr<portable::FontFace> fFace;
    SkFontStyle fStyle;
    SkFontID fUniqueID;
};
