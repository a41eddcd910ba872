#include "skia/FontFace.h"

#include FT_MODULE_H
#include FT_TRUETYPE_TABLES_H

#include <algorithm>
#include <cstring>
#include <iterator>
#include <limits>
#include <new>
#include <optional>
#include <utility>

namespace portable {

namespace {

struct Library {
    std::mutex mutex;  // FreeType: opening and closing faces must not overlap
    FT_Library ft = nullptr;
};

// Never destroyed: typefaces may outlive every static object.
Library& library() {
    static Library& instance = *new Library;
    return instance;
}

// The environment variable FREETYPE_PROPERTIES can change these; text must not depend on it.
void fixProperties(FT_Library ft) {
    FT_UInt interpreter = 40;
    FT_Property_Set(ft, "truetype", "interpreter-version", &interpreter);
    FT_Bool noDarkening = true;
    FT_Property_Set(ft, "cff", "no-stem-darkening", &noDarkening);
    FT_Property_Set(ft, "autofitter", "no-stem-darkening", &noDarkening);
}

// The caller holds the library's lock. Tried again on each call after a failure.
bool ensureStarted(Library& lib) {
    if (lib.ft) return true;
    if (FT_Init_FreeType(&lib.ft) != 0) {
        lib.ft = nullptr;
        return false;
    }
    fixProperties(lib.ft);
    return true;
}

// The signatures that layout knows as well: TrueType, OpenType and collections. Of what FreeType
// reads beyond them, compressed files can unpack to gigabytes, and others have no tables at all.
bool isSfnt(const FT_Byte* data, size_t length) {
    constexpr char kSignatures[][5] = {{0, 1, 0, 0}, "true", "typ1", "OTTO", "ttcf"};
    return length >= 4 &&
           std::any_of(std::begin(kSignatures), std::end(kSignatures),
                       [data](const char* s) { return std::memcmp(data, s, 4) == 0; });
}

}  // namespace

FontFace::FontFace(std::unique_ptr<SkStreamAsset> stream, int index)
    : fStream(std::move(stream)), fIndex(index) {}

FontFace::~FontFace() {
    if (!fFace) return;
    const std::lock_guard<std::mutex> lock(library().mutex);
    FT_Done_Face(fFace);
}

const void* FontFace::bytes() {
    if (const void* base = fStream->getMemoryBase()) return base;
    const size_t length = fStream->getLength();
    fCopy.reset(new (std::nothrow) unsigned char[length]);
    if (!fCopy || !fStream->rewind() || fStream->read(fCopy.get(), length) != length) {
        return nullptr;
    }
    return fCopy.get();
}

bool FontFace::load() {
    const size_t length = fStream->getLength();
    if (length == 0 || length > static_cast<size_t>(std::numeric_limits<FT_Long>::max())) {
        return false;
    }
    const auto* data = static_cast<const FT_Byte*>(this->bytes());
    if (!data || !isSfnt(data, length)) return false;

    Library& lib = library();
    const std::lock_guard<std::mutex> lock(lib.mutex);
    if (!ensureStarted(lib)) return false;
    if (FT_New_Memory_Face(lib.ft, data, static_cast<FT_Long>(length), fIndex, &fFace) != 0) {
        fFace = nullptr;
        return false;
    }
    if (!FT_IS_SFNT(fFace) || !(FT_IS_SCALABLE(fFace) || FT_HAS_FIXED_SIZES(fFace))) return false;
    const std::optional<GlyphData> found = GlyphData::find(fFace, {data, length});
    fGlyphData = found.value_or(GlyphData());
    return found.has_value();
}

std::unique_ptr<FontFace> FontFace::open(std::unique_ptr<SkStreamAsset> stream, int index) {
    if (!stream || index < 0) return nullptr;
    std::unique_ptr<FontFace> face(new FontFace(std::move(stream), index));
    // FT_Done_Face of a rejected face happens in the destructor, after load() gave the lock back.
    return face->load() ? std::move(face) : nullptr;
}

int unitsPerEm(FT_Face face) {
    if (face->units_per_EM > 0) return face->units_per_EM;
    const auto* head = static_cast<const TT_Header*>(FT_Get_Sfnt_Table(face, FT_SFNT_HEAD));
    return head ? head->Units_Per_EM : 0;
}

}  // namespace portable
