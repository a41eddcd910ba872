// Where a TrueType font file keeps its glyph descriptions.
#pragma once

#include <ft2build.h>
#include FT_FREETYPE_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace portable {

// The 'glyf' and 'loca' tables of an open face, read past FreeType: its own way to them costs a
// search by name for every read. Borrows the file's bytes.
class GlyphData {
public:
    struct Outline {
        bool composite = false;
        int points = 0;  // of a simple outline
    };

    // A face without outlines of this kind has no glyph data. Nothing when FreeType finds the
    // tables elsewhere in the file.
    static std::optional<GlyphData> find(FT_Face face, std::span<const uint8_t> file);
    GlyphData() = default;

    // What the font says its programs use of points of their own.
    int twilightPoints() const { return fTwilightPoints; }
    // From the first bytes of the description. Nothing for a glyph that cannot be read: FreeType
    // cannot either.
    Outline outline(FT_UInt glyph) const;

private:
    // Big-endian; false when that is beyond the file.
    template <typename T>
    bool read(size_t offset, T* out) const;
    bool findTables(FT_Face face);
    std::optional<size_t> location(FT_UInt glyph) const;

    std::span<const uint8_t> fFile;
    size_t fLocations = 0;  // from the file's start, as the next
    size_t fDescriptions = 0;
    bool fLongLocations = false;
    int fTwilightPoints = 0;
};

}  // namespace portable
