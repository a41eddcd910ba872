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
    ~FontCollection();
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

    const std::vector<std::shared_ptr<FontFamily>>& getFamilies() const { return mFamilies; }
    // Never used again in this process.
    uint32_t getId() const { return mId; }

private:
    struct Request;
    const FontFamily& familyFor(uint32_t codepoint, uint32_t selector,
                                const Request& request) const;
    const FontFamily* bestFamily(uint32_t codepoint, uint32_t selector,
                                 const Request& request) const;

    const uint32_t mId;
    std::vector<std::shared_ptr<FontFamily>> mFamilies;
    uint32_t mMaxChar = 0;
};

}  // namespace minikin
