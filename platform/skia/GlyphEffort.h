// What a glyph would make FreeType do, found without doing it.
#pragma once

#include <ft2build.h>
#include FT_FREETYPE_H

namespace portable {

// FreeType follows composite glyphs wherever they lead, and their programs however long they run: a
// few kilobytes can keep it busy for minutes. Adds up glyphs of one face until a limit is reached.
class GlyphEffort {
public:
    // Outlines that one glyph is put together from; the richest of the 310 TrueType fonts of
    // Debian's font packages needs 29.
    static constexpr int kMaxParts = 256;
    // Points of hinted outlines, which an instruction may visit one by one; there at most 1,048.
    static constexpr int kMaxHintedPoints = 2048;
    // Points of programs' own; there at most 432.
    static constexpr int kMaxTwilightPoints = 4096;

    explicit GlyphEffort(FT_Face face);

    // Counts the glyph and its components. False when that is more than kMaxParts. May load glyphs
    // into the face's slot.
    bool add(FT_UInt glyph);

    // Whether what was added is little enough to run the font's programs over it.
    bool hintable() const { return fHintable && fPoints <= kMaxHintedPoints; }

private:
    struct Outline {
        bool composite = false;
        int points = 0;
    };
    Outline outlineOf(FT_UInt glyph) const;
    bool read(FT_ULong table, FT_ULong offset, FT_ULong length, FT_Byte* out) const;
    bool addComponents(FT_UInt glyph);

    FT_Face fFace;
    bool fLongOffsets = false;
    bool fHintable = true;
    int fParts = 0;
    int fPoints = 0;
};

}  // namespace portable
