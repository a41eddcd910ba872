#include "skia/GlyphData.h"

#include FT_TRUETYPE_TABLES_H
#include FT_TRUETYPE_TAGS_H

namespace portable {

namespace {

template <typename T>
T bigEndian(const uint8_t* bytes) {
    uint64_t value = 0;
    for (size_t i = 0; i < sizeof(T); ++i) value = value << 8 | bytes[i];
    return static_cast<T>(value);
}

// Whether the table of the face, when it has one, begins at the offset: then FreeType can read the
// file's last byte relative to it, and none behind.
bool beginsAt(FT_Face face, FT_ULong tag, size_t offset, size_t fileSize) {
    const auto distance = static_cast<FT_Long>(fileSize - offset);
    FT_Byte byte = 0;
    FT_ULong last = 1;
    FT_ULong behind = 1;
    return FT_Load_Sfnt_Table(face, tag, distance - 1, &byte, &last) == 0 &&
           FT_Load_Sfnt_Table(face, tag, distance, &byte, &behind) != 0;
}

bool hasTable(FT_Face face, FT_ULong tag) {
    FT_ULong length = 0;
    return FT_Load_Sfnt_Table(face, tag, 0, nullptr, &length) == 0;
}

}  // namespace

template <typename T>
bool GlyphData::read(size_t offset, T* out) const {
    if (offset > fFile.size() || fFile.size() - offset < sizeof(T)) return false;
    *out = bigEndian<T>(fFile.data() + offset);
    return true;
}

std::optional<GlyphData> GlyphData::find(FT_Face face, std::span<const uint8_t> file) {
    GlyphData data;
    if (const auto* maxp =
            static_cast<const TT_MaxProfile*>(FT_Get_Sfnt_Table(face, FT_SFNT_MAXP))) {
        data.fTwilightPoints = maxp->maxTwilightPoints;
    }
    if (!hasTable(face, TTAG_glyf) || !hasTable(face, TTAG_loca)) return data;
    data.fFile = file;
    if (!data.findTables(face) || !beginsAt(face, TTAG_loca, data.fLocations, file.size()) ||
        !beginsAt(face, TTAG_glyf, data.fDescriptions, file.size())) {
        return std::nullopt;
    }
    const auto* head = static_cast<const TT_Header*>(FT_Get_Sfnt_Table(face, FT_SFNT_HEAD));
    data.fLongLocations = head && head->Index_To_Loc_Format != 0;
    return data;
}

// By the face's directory: of several tables with one name the first that lies within the file.
bool GlyphData::findTables(FT_Face face) {
    constexpr size_t kCollectionHeader = 12;
    constexpr size_t kDirectoryHeader = 12;
    constexpr size_t kRecord = 16;  // tag, checksum, offset, length
    uint32_t signature = 0;
    uint32_t directory = 0;
    uint16_t records = 0;
    const auto index = static_cast<size_t>(face->face_index & 0xFFFF);
    if (!this->read(0, &signature) ||
        (signature == TTAG_ttcf && !this->read(kCollectionHeader + 4 * index, &directory)) ||
        !this->read(size_t{directory} + 4, &records)) {
        return false;
    }
    std::optional<size_t> locations;
    std::optional<size_t> descriptions;
    for (size_t i = 0; i < records && !(locations && descriptions); ++i) {
        const size_t record = directory + kDirectoryHeader + i * kRecord;
        uint32_t tag = 0;
        uint32_t offset = 0;
        uint32_t length = 0;
        if (!this->read(record, &tag) || !this->read(record + 8, &offset) ||
            !this->read(record + 12, &length)) {
            break;
        }
        if (offset > fFile.size() || length > fFile.size() - offset) continue;
        if (tag == TTAG_loca && !locations) locations = offset;
        if (tag == TTAG_glyf && !descriptions) descriptions = offset;
    }
    fLocations = locations.value_or(0);
    fDescriptions = descriptions.value_or(0);
    return locations && descriptions;
}

std::optional<size_t> GlyphData::location(FT_UInt glyph) const {
    uint32_t offset = 0;
    if (fLongLocations) {
        if (!this->read(fLocations + size_t{glyph} * 4, &offset)) return std::nullopt;
    } else {
        uint16_t half = 0;
        if (!this->read(fLocations + size_t{glyph} * 2, &half)) return std::nullopt;
        offset = uint32_t{half} * 2;
    }
    return fDescriptions + offset;
}

GlyphData::Outline GlyphData::outline(FT_UInt glyph) const {
    const std::optional<size_t> start = this->location(glyph);
    int16_t contours = 0;
    if (!start || !this->read(*start, &contours)) return {};
    if (contours < 0) return {true, 0};
    // The last contour's last point; before the contours the box.
    constexpr size_t kHeader = 10;
    uint16_t last = 0;
    const size_t end = kHeader + 2 * static_cast<size_t>(contours);
    if (contours == 0 || !this->read(*start + end - sizeof(last), &last)) return {};
    return {false, last + 1};
}

}  // namespace portable
