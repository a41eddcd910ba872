#include "bridge/ModifiedUtf8.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "base/Unicode.h"

namespace GxFontEffect {

namespace {

constexpr uint32_t kReplacement = 0xFFFD;

// Takes one sequence off `chars`; pairs of surrogates are still apart.
uint32_t NextUnit(std::string_view& chars) {
    if (chars.starts_with("\xC0\x80")) {
        chars.remove_prefix(2);
        return 0;
    }
    const Utf8Sequence sequence = ReadUtf8(chars);
    chars.remove_prefix(static_cast<size_t>(std::max(sequence.length, 1)));
    return sequence.length > 0 ? sequence.codePoint : kReplacement;
}

uint32_t NextCodePoint(std::string_view& chars) {
    const uint32_t unit = NextUnit(chars);
    if (!IsLeadSurrogate(unit) || chars.empty()) return unit;
    std::string_view rest = chars;
    const uint32_t trail = NextUnit(rest);
    if (!IsTrailSurrogate(trail)) return unit;
    chars = rest;
    return 0x10000 + ((unit - 0xD800) << 10) + (trail - 0xDC00);
}

void AppendUtf8(std::string& out, uint32_t c) {
    char bytes[kMaxUtf8Length];
    out.append(bytes, static_cast<size_t>(WriteUtf8(IsSurrogate(c) ? kReplacement : c, bytes)));
}

}  // namespace

std::wstring WideFromModifiedUtf8(std::string_view chars) {
    std::wstring wide;
    wide.reserve(chars.size());
    while (!chars.empty()) wide += static_cast<wchar_t>(NextCodePoint(chars));
    return wide;
}

std::string Utf8FromModifiedUtf8(std::string_view chars) {
    std::string utf8;
    utf8.reserve(chars.size());
    while (!chars.empty()) AppendUtf8(utf8, NextCodePoint(chars));
    return utf8;
}

}  // namespace GxFontEffect
