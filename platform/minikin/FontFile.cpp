#include "minikin/FontFile.h"

#include <hb-ot.h>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <new>
#include <utility>
#include <vector>

#include "AllocationWatch.h"
#include "minikin/MinikinFont.h"

namespace minikin {
namespace {

HbFontUniquePtr makeBaseFont(const MinikinFont& font) {
    const portable::AllocationWatch watch;
    const void* data = font.GetFontData();
    const size_t size = data ? font.GetFontSize() : 0;
    const HbBlobUniquePtr blob(hb_blob_create(
        static_cast<const char*>(data), static_cast<unsigned>(std::min<size_t>(size, UINT_MAX)),
        HB_MEMORY_MODE_READONLY, nullptr, nullptr));
    const HbFaceUniquePtr face(
        hb_face_create(blob.get(), static_cast<unsigned>(font.GetFontIndex())));
    hb_face_make_immutable(face.get());

    HbFontUniquePtr base(hb_font_create(face.get()));
    std::vector<hb_variation_t> variations;
    for (const FontVariation& axis : font.GetAxes()) {
        variations.push_back({axis.axisTag, axis.value});
    }
    hb_font_set_variations(base.get(), variations.data(), static_cast<unsigned>(variations.size()));
    hb_font_make_immutable(base.get());
    // Has HarfBuzz read the cmap now.
    hb_codepoint_t glyph = 0;
    hb_font_get_nominal_glyph(base.get(), ' ', &glyph);
    if (watch.failed() || (size != 0 && blob.get() == hb_blob_get_empty()) ||
        face.get() == hb_face_get_empty() || base.get() == hb_font_get_empty()) {
        throw std::bad_alloc();
    }
    return base;
}

HbBlobUniquePtr tableOf(hb_font_t* font, hb_tag_t tag) {
    const portable::AllocationWatch watch;
    HbBlobUniquePtr table(hb_face_reference_table(hb_font_get_face(font), tag));
    if (watch.failed()) throw std::bad_alloc();
    return table;
}

HbSetUniquePtr collectCodePoints(hb_font_t* font) {
    const portable::AllocationWatch watch;
    HbSetUniquePtr codePoints(hb_set_create());
    hb_face_collect_unicodes(hb_font_get_face(font), codePoints.get());
    if (watch.failed() || !hb_set_allocation_successful(codePoints.get())) throw std::bad_alloc();
    return codePoints;
}

// What is left when there was no memory for the cmap, or for the functions that look glyphs up. A
// file may be so by itself.
bool seemsDamaged(hb_font_t* font, const HbSetUniquePtr& codePoints) {
    hb_codepoint_t first = HB_SET_VALUE_INVALID;
    if (!hb_set_next(codePoints.get(), &first)) {
        return hb_blob_get_length(tableOf(font, HB_TAG('c', 'm', 'a', 'p')).get()) != 0;
    }
    hb_codepoint_t glyph = 0;
    return !hb_font_get_nominal_glyph(font, first, &glyph);
}

uint16_t readU16(const char* bytes) {
    return static_cast<uint16_t>(static_cast<uint8_t>(bytes[0]) << 8 |
                                 static_cast<uint8_t>(bytes[1]));
}

}  // namespace

FontFile::FontFile(const MinikinFont& font) : mFont(font), mBaseFont(makeBaseFont(font)) {}

// The caller holds the lock.
hb_font_t* FontFile::currentFont() const {
    if (!mBaseFont) mBaseFont = makeBaseFont(mFont);
    return mBaseFont.get();
}

HbFontUniquePtr FontFile::baseFont() const {
    const std::lock_guard<std::mutex> guard(mLock);
    return HbFontUniquePtr(hb_font_reference(currentFont()));
}

void FontFile::discardFace() const {
    const std::lock_guard<std::mutex> guard(mLock);
    mBaseFont.reset();
}

FontStyle FontFile::style() const {
    // Byte offsets of usWeightClass and fsSelection in the OS/2 table.
    constexpr unsigned kWeightClass = 4;
    constexpr unsigned kSelection = 62;
    constexpr uint16_t kItalicBit = 1;

    const HbBlobUniquePtr os2 = tableOf(baseFont().get(), HB_TAG('O', 'S', '/', '2'));
    unsigned length = 0;
    const char* bytes = hb_blob_get_data(os2.get(), &length);
    if (length < kSelection + sizeof(uint16_t)) return FontStyle();
    const bool italic = readU16(bytes + kSelection) & kItalicBit;
    return FontStyle(readU16(bytes + kWeightClass), static_cast<FontStyle::Slant>(italic));
}

const SparseBitSet& FontFile::coverage() const {
    const std::lock_guard<std::mutex> guard(mLock);
    if (mCoverage) return *mCoverage;
    HbSetUniquePtr codePoints = collectCodePoints(currentFont());
    if (seemsDamaged(currentFont(), codePoints)) {
        mBaseFont.reset();
        codePoints = collectCodePoints(currentFont());
    }
    mCoverage = std::make_unique<const SparseBitSet>(std::move(codePoints));
    return *mCoverage;
}

}  // namespace minikin
