// A font opened with FreeType, and the locking that FreeType asks for.
#pragma once

#include <ft2build.h>
#include FT_FREETYPE_H

#include <memory>
#include <mutex>

#include "SkStream.h"
#include "skia/GlyphData.h"

namespace portable {

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
        explicit Access(FontFace& face) : fLock(face.fMutex), fFace(face) {}
        FT_Face ft() const { return fFace.fFace; }
        Scaling& scaling() const { return fFace.fScaling; }
        const GlyphData& glyphData() const { return fFace.fGlyphData; }

    private:
        std::unique_lock<std::mutex> fLock;
        FontFace& fFace;
    };

    // Takes the stream over. Null for an empty stream, a negative or unknown index, a file that is
    // not a usable font, or no memory.
    static std::unique_ptr<FontFace> open(std::unique_ptr<SkStreamAsset> stream, int index);
    ~FontFace();
    FontFace(const FontFace&) = delete;
    FontFace& operator=(const FontFace&) = delete;

    const SkStreamAsset& stream() const { return *fStream; }
    int index() const { return fIndex; }

private:
    FontFace(std::unique_ptr<SkStreamAsset> stream, int index);
    const void* bytes();
    bool load();

    std::unique_ptr<SkStreamAsset> fStream;
    std::unique_ptr<unsigned char[]>
        fCopy;  // the bytes, when the stream does not hold them in memory
    int fIndex;
    std::mutex fMutex;
    FT_Face fFace = nullptr;
    Scaling fScaling;
    GlyphData fGlyphData;
};

// Font units per em; 0 when the font does not say. Bitmap fonts have it only in their 'head' table.
int unitsPerEm(FT_Face face);

}  // namespace portable
