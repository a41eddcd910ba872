#include "base/Unicode.h"

#include <cstddef>

namespace GxFontEffect {

namespace {

// Bytes of the sequence that starts with this one; 0 for a byte that starts none.
constexpr int SequenceLength(uint8_t first) {
    if (first < 0x80) return 1;
    if (first < 0xC0 || first >= 0xF8) return 0;
    if (first < 0xE0) return 2;
    return first < 0xF0 ? 3 : 4;
}

}  // namespace

Utf8Sequence ReadUtf8(std::string_view bytes) {
    constexpr uint32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
    const auto first = static_cast<uint8_t>(bytes[0]);
    const int length = SequenceLength(first);
    if (length < 2) return {first, length};
    if (bytes.size() < static_cast<size_t>(length)) return {};
    uint32_t codePoint = first & (0x7Fu >> length);
    for (const char next : bytes.substr(1, static_cast<size_t>(length) - 1)) {
        const auto byte = static_cast<uint8_t>(next);
        if ((byte & 0xC0) != 0x80) return {};
        codePoint = codePoint << 6 | (byte & 0x3F);
    }
    if (codePoint < kLeast[length] || codePoint > kLastCodePoint) return {};
    return {codePoint, length};
}

int WriteUtf8(uint32_t codePoint, char* out) {
    if (codePoint < 0x80) {
        *out = static_cast<char>(codePoint);
        return 1;
    }
    const int length = codePoint < 0x800 ? 2 : codePoint < 0x10000 ? 3 : 4;
    for (int i = length - 1; i > 0; i--) {
        out[i] = static_cast<char>(0x80 | (codePoint & 0x3F));
        codePoint >>= 6;
    }
    *out = static_cast<char>((0xF00 >> length & 0xFF) | codePoint);
    return length;
}

}  // namespace GxFontEffect
