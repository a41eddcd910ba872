// What a glyph would make FreeType do, found without doing it.
#pragma once

#include <ft2build.h>
#include FT_FREETYPE_H

#include "skia/GlyphData.h"

namespace portable {

// FreeType follows composite glyphs wherever they lead, and their programs however long they run: a
// few kilobytes can keep it busy for minutes. Adds up glyphs of one face until a limit is reached.
class GlyphEffort {
public:
    // Outlines that one glyph is put together from; the richest of the 310 TrueType fonts of
    // Debian's font packages needs 29.
    static constexpr int kMaxParts = 256;
    // Of these when hinted: each has a program, of up to a million instructions.
    static constexpr int kMaxHintedParts = 64;
    // Points of hinted outlines, which an instruction may visit one by one; there at most 1,048.
    static constexpr int kMaxHintedPoints = 2048;
    // Points of programs' own; there at most 432.
    static constexpr int kMaxTwilightPoints = 4096;

    // Both must outlive the object.
    GlyphEffort(FT_Face face, const GlyphData& data) : fFace(face), fData(data) {}

    // Counts the glyph and its components. False when that is more than kMaxParts. May load glyphs
    // into the face's slot.
    bool add(FT_UInt glyph);

    // Whether what was added is little enough to run the font's programs over it.
    bool hintable() const {
        return fParts <= kMaxHintedParts && fPoints <= kMaxHintedPoints &&
               fData.twilightPoints() <= kMaxTwilightPoints;
    }

private:
    bool addComponents(FT_UInt glyph);

    FT_Face fFace;
    const GlyphData& fData;
    int fParts = 0;
    int fPoints = 0;
};

}  // namespace portable
