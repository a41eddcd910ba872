// Code points, and their bytes in UTF-8. Internal to the library.
//
// The C library's conversions are not used: they depend on the locale, and C libraries disagree
// about surrogates, noncharacters and values beyond Unicode.
#pragma once

#include <cstdint>
#include <string_view>

namespace GxFontEffect {

constexpr uint32_t kLastCodePoint = 0x10FFFF;

constexpr bool IsLeadSurrogate(uint32_t c) {
    return c >= 0xD800 && c <= 0xDBFF;
}
constexpr bool IsTrailSurrogate(uint32_t c) {
    return c >= 0xDC00 && c <= 0xDFFF;
}
constexpr bool IsSurrogate(uint32_t c) {
    return c >= 0xD800 && c <= 0xDFFF;
}

// What UTF-8 can hold, noncharacters such as U+FFFE and U+FFFF among it.
constexpr bool IsScalarValue(uint32_t c) {
    return c <= kLastCodePoint && !IsSurrogate(c);
}

struct Utf8Sequence {
    uint32_t codePoint = 0;
    int length = 0;  // bytes; 0 when they are malformed
};

// The sequence at the start of `bytes`, which are not empty. Malformed is a stray or missing
// continuation, an overlong form and a value beyond U+10FFFF. Surrogates are read like any other
// code point: UTF-8 has none, but formats of the same pattern have.
Utf8Sequence ReadUtf8(std::string_view bytes);

constexpr int kMaxUtf8Length = 4;

// Writes a code point up to U+10FFFF; returns its bytes, at most kMaxUtf8Length.
int WriteUtf8(uint32_t codePoint, char* out);

}  // namespace GxFontEffect
