// A font file taken apart into its tables, so that tests can put lies into it.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace gxtest {

using Bytes = std::vector<uint8_t>;

inline uint32_t readBig(const Bytes& bytes, size_t at, int count) {
    uint32_t value = 0;
    for (int i = 0; i < count; ++i) value = value << 8 | bytes.at(at + i);
    return value;
}

inline void writeBig(Bytes& bytes, size_t at, int count, uint32_t value) {
    for (int i = count - 1; i >= 0; --i, value >>= 8) bytes.at(at + i) = value & 0xFF;
}

inline void appendBig(Bytes& bytes, int count, uint32_t value) {
    bytes.resize(bytes.size() + count);
    writeBig(bytes, bytes.size() - count, count, value);
}

class SfntFile {
public:
    // Without tables yet.
    SfntFile() = default;
    explicit SfntFile(const std::vector<char>& file) {
        const Bytes bytes(file.begin(), file.end());
        version_ = readBig(bytes, 0, 4);
        for (uint32_t i = 0; i < readBig(bytes, 4, 2); ++i) {
            const size_t record = 12 + 16 * static_cast<size_t>(i);
            const std::string tag(bytes.begin() + record, bytes.begin() + record + 4);
            const auto start = bytes.begin() + readBig(bytes, record + 8, 4);
            tables[tag] = Bytes(start, start + readBig(bytes, record + 12, 4));
        }
    }

    // The file again. Checksums are left 0: nothing reads them.
    Bytes build() const {
        Bytes out;
        appendBig(out, 4, version_);
        appendBig(out, 2, tables.size());
        out.resize(12 + 16 * tables.size());
        size_t record = 12;
        for (const auto& [tag, data] : tables) {
            std::copy(tag.begin(), tag.end(), out.begin() + record);
            writeBig(out, record + 8, 4, out.size());
            writeBig(out, record + 12, 4, data.size());
            out.insert(out.end(), data.begin(), data.end());
            out.resize((out.size() + 3) / 4 * 4);
            record += 16;
        }
        return out;
    }

    std::map<std::string, Bytes> tables;

private:
    uint32_t version_ = 0x00010000;
};

}  // namespace gxtest
