// A font file put together from tables, so that tests can put lies into it.
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
    // The file. Checksums are left 0: nothing reads them.
    Bytes build() const {
        Bytes out;
        appendBig(out, 4, 0x00010000);
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
};

}  // namespace gxtest
