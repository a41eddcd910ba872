#include "skia/FontFace.h"

#include FT_DRIVER_H
#include FT_MODULE_H
#include FT_MULTIPLE_MASTERS_H
#include FT_TRUETYPE_TABLES_H

#include <algorithm>
#include <cmath>
#include <cstring>
#include <iterator>
#include <limits>
#include <new>
#include <optional>
#include <utility>

#include "NeverDestroyed.h"
#include "skia/FontMemory.h"

namespace portable {

namespace {

struct Library {
    std::mutex mutex;  // FreeType: opening and closing faces must not overlap
    FT_Library ft = nullptr;
};

Library& library() {
    return neverDestroyed<Library>();
}

// The same whatever FreeType was built with.
void fixProperties(FT_Library ft) {
    FT_UInt interpreter = 40;
    FT_Property_Set(ft, "truetype", "interpreter-version", &interpreter);
    FT_UInt engine = FT_HINTING_ADOBE;
    FT_Property_Set(ft, "cff", "hinting-engine", &engine);
    FT_Bool noDarkening = true;
    FT_Property_Set(ft, "cff", "no-stem-darkening", &noDarkening);
    FT_Property_Set(ft, "autofitter", "no-stem-darkening", &noDarkening);
}

// The caller holds the library's lock. Tried again on each call after a failure.
void ensureStarted(Library& lib) {
    if (lib.ft) return;
    const AllocationWatch watch;
    FT_Library ft = nullptr;
    // Unlike FT_Init_FreeType this does not look at the environment.
    if (FT_New_Library(fontMemory(), &ft) != 0) throw std::bad_alloc();
    FT_Add_Default_Modules(ft);
    // Modules that there was no memory for are left out without an error.
    if (watch.failed()) {
        FT_Done_Library(ft);
        throw std::bad_alloc();
    }
    fixProperties(ft);
    lib.ft = ft;
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

FontFace::FontFace(std::unique_ptr<SkStreamAsset> stream, int index,
                   std::vector<AxisValue> variations)
    : fStream(std::move(stream)), fIndex(index), fVariations(std::move(variations)) {}

FontFace::~FontFace() {
    this->closeFace();
}

FontFace::Access::Access(FontFace& face) : fLock(face.fMutex), fFace(face) {
    if (face.fFace) return;
    const std::lock_guard<std::mutex> lock(library().mutex);
    face.fFace = face.openFace();
    if (!face.fFace) throw std::bad_alloc();  // it was opened before
}

FontFace::Access::~Access() {
    if (this->outOfMemory()) fFace.closeFace();
}

const ColorTable* FontFace::Access::colorTable() const {
    if (fFace.fLookedForColors) return fFace.fColorTable.get();
    constexpr FT_ULong kTable = FT_MAKE_TAG('C', 'O', 'L', 'R');
    FT_ULong length = 0;
    FT_Byte version[2] = {};
    FT_ULong versionLength = sizeof(version);
    const bool isNew = FT_Load_Sfnt_Table(fFace.fFace, kTable, 0, version, &versionLength) == 0 &&
                       (version[0] != 0 || version[1] != 0) &&
                       FT_Load_Sfnt_Table(fFace.fFace, kTable, 0, nullptr, &length) == 0;
    if (isNew) {
        std::vector<uint8_t> bytes(length);
        if (FT_Load_Sfnt_Table(fFace.fFace, kTable, 0, bytes.data(), &length) == 0) {
            fFace.fColorTable = std::make_unique<const ColorTable>(std::move(bytes));
        }
    }
    fFace.fLookedForColors = true;
    return fFace.fColorTable.get();
}

void FontFace::closeFace() {
    if (!fFace) return;
    const std::lock_guard<std::mutex> lock(library().mutex);
    FT_Done_Face(fFace);
    fFace = nullptr;
    fScaling = Scaling();
}

bool FontFace::readBytes() {
    const size_t length = fStream->getLength();
    fBytes = static_cast<const unsigned char*>(fStream->getMemoryBase());
    if (fBytes) return true;
    fCopy = std::make_unique<unsigned char[]>(length);
    fBytes = fCopy.get();
    return fStream->rewind() && fStream->read(fCopy.get(), length) == length;
}

// Whether the font has moved in its design space; one without axes has none to move in.
bool FontFace::vary(FT_Face face) const {
    FT_MM_Var* space = nullptr;
    if (fVariations.empty() || FT_Get_MM_Var(face, &space) != 0) return false;
    std::vector<FT_Fixed> position;
    for (FT_UInt i = 0; i < space->num_axis; ++i) {
        const FT_Var_Axis& axis = space->axis[i];
        FT_Fixed place = axis.def;
        for (const AxisValue& wanted : fVariations) {
            if (wanted.tag != axis.tag || !(wanted.value == wanted.value)) continue;
            const double fixed = std::floor(static_cast<double>(wanted.value) * 65536.0 + 0.5);
            place = static_cast<FT_Fixed>(std::clamp(
                fixed, static_cast<double>(axis.minimum),
                std::max(static_cast<double>(axis.minimum), static_cast<double>(axis.maximum))));
        }
        position.push_back(place);
    }
    FT_Done_MM_Var(face->glyph->library, space);
    return FT_Set_Var_Design_Coordinates(face, static_cast<FT_UInt>(position.size()),
                                         position.data()) == 0;
}

// Null for a font that FreeType refuses. The caller holds the library's lock.
FT_Face FontFace::openFace() const {
    const AllocationWatch watch;
    const auto length = static_cast<FT_Long>(fStream->getLength());
    FT_Face face = nullptr;
    const FT_Error error = FT_New_Memory_Face(library().ft, fBytes, length, fIndex, &face);
    if (error == 0) this->vary(face);
    // Tables that there was no memory for are taken for missing.
    if (watch.failed() || FT_ERROR_BASE(error) == FT_Err_Out_Of_Memory) {
        if (error == 0) FT_Done_Face(face);
        throw std::bad_alloc();
    }
    return error == 0 ? face : nullptr;
}

bool FontFace::load() {
    const size_t length = fStream->getLength();
    if (length == 0 || length > static_cast<size_t>(std::numeric_limits<FT_Long>::max())) {
        return false;
    }
    if (!this->readBytes() || !isSfnt(fBytes, length)) return false;

    Library& lib = library();
    const std::lock_guard<std::mutex> lock(lib.mutex);
    ensureStarted(lib);
    fFace = this->openFace();
    if (!fFace || !FT_IS_SFNT(fFace) || !(FT_IS_SCALABLE(fFace) || FT_HAS_FIXED_SIZES(fFace)))
        return false;
    const AllocationWatch watch;
    const std::optional<GlyphData> found = GlyphData::find(fFace, {fBytes, length});
    if (watch.failed()) throw std::bad_alloc();
    fGlyphData = found.value_or(GlyphData());
    return found.has_value();
}

std::unique_ptr<FontFace> FontFace::open(std::unique_ptr<SkStreamAsset> stream, int index,
                                         std::vector<AxisValue> variations) {
    if (!stream || index < 0) return nullptr;
    std::unique_ptr<FontFace> face(new FontFace(std::move(stream), index, std::move(variations)));
    // FT_Done_Face of a rejected face happens in the destructor, after load() gave the lock back.
    return face->load() ? std::move(face) : nullptr;
}

int unitsPerEm(FT_Face face) {
    if (face->units_per_EM > 0) return face->units_per_EM;
    const auto* head = static_cast<const TT_Header*>(FT_Get_Sfnt_Table(face, FT_SFNT_HEAD));
    return head ? head->Units_Per_EM : 0;
}

}  // namespace portable
