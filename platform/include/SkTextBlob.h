// Positioned glyphs, ready to be drawn.
#pragma once

#include <memory>
#include <vector>

#include "SkFont.h"
#include "SkRect.h"
#include "SkRefCnt.h"
#include "SkScalar.h"
#include "SkTypes.h"

// Immutable: runs of glyphs, each with its font.
class SkTextBlob : public SkRefCnt {
public:
    // Glyphs with a position each: x and y per glyph, relative to the blob's origin.
    struct Run {
        SkFont font;
        int count = 0;
        std::unique_ptr<SkGlyphID[]> glyphs;
        std::unique_ptr<SkScalar[]> positions;
    };

    // What the builder was told; everything when a run came without bounds.
    const SkRect& bounds() const { return fBounds; }
    const std::vector<Run>& runs() const { return fRuns; }

private:
    friend class SkTextBlobBuilder;
    SkTextBlob(std::vector<Run> runs, const SkRect& bounds);

    std::vector<Run> fRuns;
    SkRect fBounds;
};

// Collects runs and turns them into a blob.
class SkTextBlobBuilder {
public:
    // Arrays to fill in; valid until the next call on the builder.
    struct RunBuffer {
        SkGlyphID* glyphs;  // count entries
        SkScalar* pos;      // x and y for each glyph
    };

    SkTextBlobBuilder() = default;
    SkTextBlobBuilder(const SkTextBlobBuilder&) = delete;
    SkTextBlobBuilder& operator=(const SkTextBlobBuilder&) = delete;

    // Adds a run of count glyphs, all zero until they are filled in. bounds, if given, is trusted:
    // a blob outside the clip by its bounds is not drawn. A count below 1 adds nothing and gives
    // null arrays. Throws std::bad_alloc when memory runs out.
    const RunBuffer& allocRunPos(const SkFont& font, int count, const SkRect* bounds = nullptr);

    // The blob of all runs so far, null when there are none. The builder is empty afterwards.
    sk_sp<SkTextBlob> make();

private:
    std::vector<SkTextBlob::Run> fRuns;
    SkRect fBounds = SkRect::MakeEmpty();
    RunBuffer fCurrent = {nullptr, nullptr};
};
