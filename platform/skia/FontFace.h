// A font opened with FreeType, and the locking that FreeType asks for.
#pragma once

#include <ft2build.h>
#include FT_FREETYPE_H

#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

#include "AllocationWatch.h"
#include "SkStream.h"
#include "skia/ColorTable.h"
#include "skia/GlyphData.h"

namespace portable {

// Where a variable font is on one of its axes.
struct AxisValue {
    uint32_t tag;
    float value;
};

// One face of a font file. FreeType faces are not safe to share: every use goes through access(),
// which keeps other threads out.
class FontFace {
public:
    // The size and transform that the face is set to, so that setting the same again can be
    // skipped. TrueType fonts run a program on every change of size.
    struct Scaling {
        FT_F26Dot6 width = 0;
        FT_F26Dot6 height = 0;
        bool selected = false;
    };

    // Exclusive use of the face as long as it lives.
    class Access {
    public:
        // Throws std::bad_alloc.
        explicit Access(FontFace& face);
        ~Access();
        Access(const Access&) = delete;
        Access& operator=(const Access&) = delete;
        FT_Face ft() const { return fFace.fFace; }
        // FreeType keeps what it failed to prepare for want of memory: then the face is closed at
        // the end, and the next access opens it anew.
        bool outOfMemory() const { return fWatch.failed(); }
        Scaling& scaling() const { return fFace.fScaling; }
        const GlyphData& glyphData() const { return fFace.fGlyphData; }
        // Null when the font has none of version 1. Throws std::bad_alloc.
        const ColorTable* colorTable() const;
        bool isVaried() const { return !fFace.fVariations.empty(); }

    private:
        const std::lock_guard<std::mutex> fLock;
        FontFace& fFace;
        const AllocationWatch fWatch;
    };

    // Takes the stream over. Null for an empty stream, a negative or unknown index, a file that is
    // not a usable font. Throws std::bad_alloc.
    static std::unique_ptr<FontFace> open(std::unique_ptr<SkStreamAsset> stream, int index,
                                          std::vector<AxisValue> variations = {});
    ~FontFace();
    FontFace(const FontFace&) = delete;
    FontFace& operator=(const FontFace&) = delete;

    const SkStreamAsset& stream() const { return *fStream; }
    int index() const { return fIndex; }

private:
    FontFace(std::unique_ptr<SkStreamAsset> stream, int index, std::vector<AxisValue> variations);
    bool readBytes();
    bool vary(FT_Face face) const;
    FT_Face openFace() const;
    void closeFace();
    bool load();

    std::unique_ptr<SkStreamAsset> fStream;
    const unsigned char* fBytes = nullptr;   // the stream's, or the copy's
    std::unique_ptr<unsigned char[]> fCopy;  // when the stream does not hold them in memory
    int fIndex;
    std::vector<AxisValue> fVariations;
    std::mutex fMutex;
    FT_Face fFace = nullptr;  // null after memory ran out
    Scaling fScaling;
    GlyphData fGlyphData;
    bool fLookedForColors = false;
    std::unique_ptr<const ColorTable> fColorTable;
};

// Font units per em; 0 when the font does not say. Bitmap fonts have it only in their 'head' table.
int unitsPerEm(FT_Face face);

}  // namespace portable
