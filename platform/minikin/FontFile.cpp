#include "minikin/FontFile.h"

#include <hb-ot.h>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <new>
#include <utility>
#include <vector>

#include "minikin/MinikinFont.h"

namespace minikin {
namespace {

HbFontUniquePtr makeBaseFont(const MinikinFont& font) {
    const void* data = font.GetFontData();
    const size_t size = data ? font.GetFontSize() : 0;
    const HbBlobUniquePtr blob(hb_blob_create(
        static_cast<const char*>(data), static_cast<unsigned>(std::min<size_t>(size, UINT_MAX)),
        HB_MEMORY_MODE_READONLY, nullptr, nullptr));
    const HbFaceUniquePtr face(
        hb_face_create(blob.get(), static_cast<unsigned>(font.GetFontIndex())));
    if (face.get() == hb_face_get_empty()) throw std::bad_alloc();
    hb_face_make_immutable(face.get());

    HbFontUniquePtr base(hb_font_create(face.get()));
    if (base.get() == hb_font_get_empty()) throw std::bad_alloc();
    std::vector<hb_variation_t> variations;
    for (const FontVariation& axis : font.GetAxes()) {
        variations.push_back({axis.axisTag, axis.value});
    }
    hb_font_set_variations(base.get(), variations.data(), static_cast<unsigned>(variations.size()));
    hb_font_make_immutable(base.get());
    return base;
}

std::unique_ptr<const SparseBitSet> collectCoverage(hb_font_t* font) {
    HbSetUniquePtr codepoints(hb_set_create());
    hb_face_collect_unicodes(hb_font_get_face(font), codepoints.get());
    if (!hb_set_allocation_successful(codepoints.get())) throw std::bad_alloc();
    return std::make_unique<const SparseBitSet>(std::move(codepoints));
}

uint16_t readU16(const char* bytes) {
    return static_cast<uint16_t>(static_cast<uint8_t>(bytes[0]) << 8 |
                                 static_cast<uint8_t>(bytes[1]));
}

}  // namespace

FontFile::FontFile(const MinikinFont& font) : mBaseFont(makeBaseFont(font)) {}

FontStyle FontFile::style() const {
    // Byte offsets of usWeightClass and fsSelection in the OS/2 table.
    constexpr unsigned kWeightClass = 4;
    constexpr unsigned kSelection = 62;
    constexpr uint16_t kItalicBit = 1;

    const HbBlobUniquePtr os2(
        hb_face_reference_table(hb_font_get_face(mBaseFont.get()), HB_TAG('O', 'S', '/', '2')));
    unsigned length = 0;
    const char* bytes = hb_blob_get_data(os2.get(), &length);
    if (length < kSelection + sizeof(uint16_t)) return FontStyle();
    const bool italic = readU16(bytes + kSelection) & kItalicBit;
    return FontStyle(readU16(bytes + kWeightClass), static_cast<FontStyle::Slant>(italic));
}

const SparseBitSet& FontFile::coverage() const {
    const std::lock_guard<std::mutex> guard(mCoverageLock);
    if (!mCoverage) mCoverage = collectCoverage(mBaseFont.get());
    return *mCoverage;
}

}  // namespace minikin
