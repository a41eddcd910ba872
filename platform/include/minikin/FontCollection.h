// An ordered list of families: the first one is the font asked for, the rest are fallbacks.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "minikin/FamilyVariant.h"
#include "minikin/Font.h"
#include "minikin/FontFamily.h"
#include "minikin/FontStyle.h"
#include "minikin/U16StringPiece.h"

namespace minikin {

// Immutable; safe from any thread.
class FontCollection {
public:
    // Null families and families without fonts are left out, and so is everything after the 254th.
    // Without any family there are no runs.
    explicit FontCollection(const std::vector<std::shared_ptr<FontFamily>>& typefaces);
    FontCollection(const FontCollection&) = delete;
    FontCollection& operator=(const FontCollection&) = delete;

    // Text in one font, [start, end) in UTF-16 units.
    struct Run {
        FakedFont fakedFont;
        int start;
        int end;
    };

    // Cuts the text into runs of one font each, in logical order, without gaps.
    std::vector<Run> itemize(U16StringPiece text, FontStyle style, uint32_t localeListId,
                             FamilyVariant familyVariant) const;

    // Whether any family has the code point or, with a selector, the sequence.
    bool hasVariationSelector(uint32_t baseCodepoint, uint32_t variationSelector) const;

    const std::vector<std::shared_ptr<FontFamily>>& getFamilies() const { return mFamilies; }
    // Never used again in this process.
    uint32_t getId() const { return mId; }

private:
    const std::shared_ptr<FontFamily>& getFamilyForChar(uint32_t ch, uint32_t vs,
                                                        uint32_t localeListId,
                                                        FamilyVariant variant) const;
    uint32_t calcFamilyScore(uint32_t ch, uint32_t vs, FamilyVariant variant, uint32_t localeListId,
                             const FontFamily& family) const;
    uint32_t calcCoverageScore(uint32_t ch, uint32_t vs, uint32_t localeListId,
                               const FontFamily& family) const;

    const uint32_t mId;
    std::vector<std::shared_ptr<FontFamily>> mFamilies;
    uint32_t mMaxChar = 0;
};

}  // namespace minikin
