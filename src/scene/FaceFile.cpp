#include "scene/FaceFile.h"

#include <fcntl.h>
#include <hb-ot.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <new>
#include <span>
#include <string>
#include <utility>

#include "base/Descriptor.h"

namespace gxtext {

namespace {

constexpr uint32_t kCollection = HB_TAG('t', 't', 'c', 'f');
constexpr std::array kFontKinds{uint32_t{0x00010000}, uint32_t{HB_TAG('O', 'T', 'T', 'O')},
                                uint32_t{HB_TAG('t', 'r', 'u', 'e')}};
// Any of these has something to draw.
constexpr std::array kGlyphTables{HB_TAG('g', 'l', 'y', 'f'), HB_TAG('C', 'F', 'F', ' '),
                                  HB_TAG('C', 'F', 'F', '2'), HB_TAG('C', 'B', 'D', 'T'),
                                  HB_TAG('s', 'b', 'i', 'x')};
constexpr std::array kColorTables{HB_TAG('C', 'B', 'D', 'T'), HB_TAG('s', 'b', 'i', 'x'),
                                  HB_TAG('C', 'O', 'L', 'R'), HB_TAG('S', 'V', 'G', ' ')};
// The tables of installed fonts that are read here stay below 2 MiB.
constexpr uint32_t kMaxTableBytes = uint32_t{16} << 20;
constexpr uint32_t kMaxFaces = 65536;

uint32_t readU32(const unsigned char* bytes) {
    return static_cast<uint32_t>(bytes[0]) << 24 | static_cast<uint32_t>(bytes[1]) << 16 |
           static_cast<uint32_t>(bytes[2]) << 8 | bytes[3];
}
uint16_t readU16(const unsigned char* bytes) {
    return static_cast<uint16_t>(bytes[0] << 8 | bytes[1]);
}

struct ReleaseTable {
    void operator()(hb_face_t* face) const { hb_face_destroy(face); }
    void operator()(hb_blob_t* blob) const { hb_blob_destroy(blob); }
    void operator()(hb_set_t* set) const { hb_set_destroy(set); }
};
using FacePtr = std::unique_ptr<hb_face_t, ReleaseTable>;
using BlobPtr = std::unique_ptr<hb_blob_t, ReleaseTable>;
using SetPtr = std::unique_ptr<hb_set_t, ReleaseTable>;

// The table directory of one face of a file.
class TableReader {
public:
    // The file may be anything; what is no font has no tables. Reads rather than maps it: a file
    // that is cut short while mapped ends the process. A pipe is not waited for.
    TableReader(const std::filesystem::path& path, size_t index)
        : file_(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {
        struct stat status;
        if (!file_ || fstat(file_.get(), &status) != 0 || !S_ISREG(status.st_mode)) return;
        std::array<unsigned char, 12> header{};
        if (!readAt(0, header.data(), header.size())) return;
        uint64_t start = 0;
        if (readU32(header.data()) == kCollection) {
            const uint32_t faces = std::min(readU32(&header[8]), kMaxFaces);
            faceCount_ = faces;
            std::array<unsigned char, 4> offset{};
            if (index >= faces || !readAt(12 + 4 * uint64_t{index}, offset.data(), offset.size()))
                return;
            start = readU32(offset.data());
            if (!readAt(start, header.data(), header.size())) return;
        } else if (index > 0) {
            faceCount_ = isFont(header.data()) ? 1 : 0;
            return;
        }
        if (!isFont(header.data())) return;
        faceCount_ = std::max<size_t>(faceCount_, 1);
        const size_t tables = readU16(&header[4]);
        std::vector<unsigned char> directory(16 * tables);
        if (readAt(start + 12, directory.data(), directory.size())) directory_ = directory;
    }

    size_t faceCount() const { return faceCount_; }
    bool has(hb_tag_t tag) const { return find(tag) != nullptr; }

    // Empty when there is no such table, or it lies beyond the file's end.
    BlobPtr table(hb_tag_t tag) const {
        const unsigned char* entry = find(tag);
        const uint32_t length = entry ? readU32(entry + 12) : 0;
        if (length == 0 || length > kMaxTableBytes) return BlobPtr(hb_blob_get_empty());
        auto* bytes = static_cast<unsigned char*>(malloc(length));
        if (!bytes) throw std::bad_alloc();
        const bool isWhole = readAt(readU32(entry + 8), bytes, length);
        BlobPtr blob(hb_blob_create(reinterpret_cast<char*>(bytes), isWhole ? length : 0,
                                    HB_MEMORY_MODE_WRITABLE, bytes, free));
        if (isWhole && hb_blob_get_length(blob.get()) != length) throw std::bad_alloc();
        return blob;
    }

private:
    static bool isFont(const unsigned char* header) {
        return std::count(kFontKinds.begin(), kFontKinds.end(), readU32(header)) > 0;
    }

    bool readAt(uint64_t offset, unsigned char* out, size_t length) const {
        const ssize_t count = pread(file_.get(), out, length, static_cast<off_t>(offset));
        return count >= 0 && static_cast<size_t>(count) == length;
    }

    const unsigned char* find(hb_tag_t tag) const {
        for (size_t at = 0; at < directory_.size(); at += 16) {
            if (readU32(&directory_[at]) == tag) return &directory_[at];
        }
        return nullptr;
    }

    const GxFontEffect::Descriptor file_;
    size_t faceCount_ = 0;
    std::vector<unsigned char> directory_;  // 16 bytes a table: tag, checksum, offset, length
};

bool hasAny(const TableReader& tables, std::span<const hb_tag_t> tags) {
    return std::any_of(tags.begin(), tags.end(), [&](hb_tag_t tag) { return tables.has(tag); });
}

// A face over the tables; it reads them through `tables`, which outlives it.
FacePtr makeFace(TableReader& tables) {
    const auto reference = [](hb_face_t*, hb_tag_t tag, void* user) {
        try {
            return static_cast<TableReader*>(user)->table(tag).release();
        } catch (const std::bad_alloc&) {
            return hb_blob_get_empty();
        }
    };
    return FacePtr(hb_face_create_for_tables(reference, &tables, nullptr));
}

// In English first, then in every other language; the typographic family before the one that
// groups by four styles.
std::vector<std::string> familyNames(hb_face_t* face) {
    constexpr hb_ot_name_id_t kinds[] = {HB_OT_NAME_ID_TYPOGRAPHIC_FAMILY,
                                         HB_OT_NAME_ID_FONT_FAMILY};
    const hb_language_t english = hb_language_from_string("en", -1);
    std::vector<std::string> names;
    unsigned count = 0;
    const hb_ot_name_entry_t* entries = hb_ot_name_list_names(face, &count);
    for (const bool inEnglish : {true, false}) {
        for (const hb_ot_name_id_t kind : kinds) {
            for (unsigned i = 0; i < count; i++) {
                const hb_ot_name_entry_t& entry = entries[i];
                if (entry.name_id != kind || (entry.language == english) != inEnglish) continue;
                std::array<char, 256> text{};
                unsigned size = text.size();
                hb_ot_name_get_utf8(face, kind, entry.language, &size, text.data());
                if (size == 0) continue;
                std::string name(text.data(), size);
                if (std::find(names.begin(), names.end(), name) == names.end())
                    names.push_back(std::move(name));
            }
        }
    }
    return names;
}

// Weight and slant from the OS/2 table, or else from the style bits of the head table.
void readStyle(TableReader& tables, FontFace& face) {
    constexpr size_t kWeightClass = 4, kSelection = 62, kMacStyle = 44;
    constexpr uint16_t kSelectionItalic = 1, kSelectionOblique = 1u << 9;
    constexpr uint16_t kMacBold = 1, kMacItalic = 2;
    const auto bytesOf = [](const BlobPtr& blob) {
        unsigned length = 0;
        const auto* data =
            reinterpret_cast<const unsigned char*>(hb_blob_get_data(blob.get(), &length));
        return std::span<const unsigned char>(data, length);
    };
    const BlobPtr os2 = tables.table(HB_TAG('O', 'S', '/', '2'));
    if (const auto bytes = bytesOf(os2); bytes.size() >= kSelection + 2) {
        const uint16_t selection = readU16(&bytes[kSelection]);
        face.weight = std::clamp<int>(readU16(&bytes[kWeightClass]), 1, 1000);
        face.italic = (selection & (kSelectionItalic | kSelectionOblique)) != 0;
        return;
    }
    const BlobPtr head = tables.table(HB_TAG('h', 'e', 'a', 'd'));
    if (const auto bytes = bytesOf(head); bytes.size() >= kMacStyle + 2) {
        const uint16_t style = readU16(&bytes[kMacStyle]);
        face.weight = style & kMacBold ? 700 : 400;
        face.italic = (style & kMacItalic) != 0;
    }
}

std::vector<FontAxis> axesOf(TableReader& tables) {
    std::vector<FontAxis> axes;
    if (!tables.has(HB_TAG('f', 'v', 'a', 'r'))) return axes;
    const FacePtr face = makeFace(tables);
    std::vector<hb_ot_var_axis_info_t> infos(hb_ot_var_get_axis_count(face.get()));
    auto count = static_cast<unsigned>(infos.size());
    hb_ot_var_get_axis_infos(face.get(), 0, &count, infos.data());
    infos.resize(count);
    for (const hb_ot_var_axis_info_t& info : infos) {
        char tag[4];
        hb_tag_to_string(info.tag, tag);
        axes.push_back({std::string(tag, 4), info.min_value, info.default_value, info.max_value});
    }
    return axes;
}

SetPtr readCoverage(const std::filesystem::path& file, size_t index) {
    SetPtr set(hb_set_create());
    TableReader tables(file, index);
    hb_face_collect_unicodes(makeFace(tables).get(), set.get());
    if (!hb_set_allocation_successful(set.get())) throw std::bad_alloc();
    return set;
}

// Read when it is first asked for.
class LazyCoverage {
public:
    LazyCoverage(std::filesystem::path file, size_t index)
        : file_(std::move(file)), index_(index) {}

    const hb_set_t* get() {
        std::call_once(once_, [this] { set_ = readCoverage(file_, index_); });
        return set_.get();
    }

private:
    const std::filesystem::path file_;
    const size_t index_;
    std::once_flag once_;
    SetPtr set_;
};

void addRanges(const hb_set_t* set, CodePointSet& all) {
    hb_codepoint_t first = HB_SET_VALUE_INVALID, last = HB_SET_VALUE_INVALID;
    while (hb_set_next_range(set, &first, &last)) {
        for (hb_codepoint_t c = first; c <= last && c < kCodePoints; c++) all.set(c);
    }
}

}  // namespace

size_t countFaces(const std::filesystem::path& file) {
    return TableReader(file, 0).faceCount();
}

std::vector<FontAxis> readAxes(const std::filesystem::path& file, size_t index) {
    TableReader tables(file, index);
    return axesOf(tables);
}

FaceInfoPtr readFace(const std::filesystem::path& file, size_t index) {
    TableReader tables(file, index);
    if (!tables.has(HB_TAG('c', 'm', 'a', 'p')) || !hasAny(tables, kGlyphTables)) return nullptr;
    auto info = std::make_shared<FaceInfo>();
    info->face.file = file.string();
    info->face.index = static_cast<int>(index);
    readStyle(tables, info->face);
    info->names = familyNames(makeFace(tables).get());
    if (info->names.empty()) info->names.push_back(file.stem().string());
    info->face.family = info->names.front();
    info->color = hasAny(tables, kColorTables);
    info->axes = axesOf(tables);
    const auto coverage = std::make_shared<LazyCoverage>(file, index);
    info->covers = [coverage](char32_t c) { return hb_set_has(coverage->get(), c) != 0; };
    info->addCoverage = [coverage](CodePointSet& all) { addRanges(coverage->get(), all); };
    return info;
}

}  // namespace gxtext
