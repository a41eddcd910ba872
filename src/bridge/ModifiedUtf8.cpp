#include "bridge/ModifiedUtf8.h"

#include <cstddef>
#include <cstdint>
#include <optional>

namespace GxFontEffect {

namespace {

constexpr uint32_t kReplacement = 0xFFFD;

constexpr bool IsLead(uint32_t c) {
    return c >= 0xD800 && c <= 0xDBFF;
}
constexpr bool IsTrail(uint32_t c) {
    return c >= 0xDC00 && c <= 0xDFFF;
}

// Bytes of the sequence that starts with this one; 0 for a byte that starts none.
constexpr size_t SequenceLength(uint8_t first) {
    if (first < 0x80) return 1;
    if (first < 0xC0 || first >= 0xF8) return 0;
    if (first < 0xE0) return 2;
    return first < 0xF0 ? 3 : 4;
}

// The value of a whole sequence at the start of `chars`, in its shortest form.
std::optional<uint32_t> ReadSequence(std::string_view chars, size_t length) {
    constexpr uint32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
    if (length == 0 || chars.size() < length) return std::nullopt;
    const int payloadBits = length == 1 ? 7 : 7 - static_cast<int>(length);
    uint32_t value = static_cast<uint8_t>(chars[0]) & ((1u << payloadBits) - 1);
    for (size_t i = 1; i < length; i++) {
        const auto byte = static_cast<uint8_t>(chars[i]);
        if ((byte & 0xC0) != 0x80) return std::nullopt;
        value = value << 6 | (byte & 0x3F);
    }
    const bool nul = length == 2 && value == 0;
    if ((value < kLeast[length] && !nul) || value > 0x10FFFF) return std::nullopt;
    return value;
}

// Takes one sequence off `chars`; pairs of surrogates are still apart.
uint32_t NextUnit(std::string_view& chars) {
    const size_t length = SequenceLength(static_cast<uint8_t>(chars[0]));
    const std::optional<uint32_t> value = ReadSequence(chars, length);
    chars.remove_prefix(value ? length : 1);
    return value.value_or(kReplacement);
}

uint32_t NextCodePoint(std::string_view& chars) {
    const uint32_t unit = NextUnit(chars);
    if (!IsLead(unit) || chars.empty()) return unit;
    std::string_view rest = chars;
    const uint32_t trail = NextUnit(rest);
    if (!IsTrail(trail)) return unit;
    chars = rest;
    return 0x10000 + ((unit - 0xD800) << 10) + (trail - 0xDC00);
}

void AppendUtf8(std::string& out, uint32_t c) {
    if (IsLead(c) || IsTrail(c)) c = kReplacement;
    const auto continuation = [&](int shift) {
        out += static_cast<char>(0x80 | (c >> shift & 0x3F));
    };
    if (c < 0x80) {
        out += static_cast<char>(c);
    } else if (c < 0x800) {
        out += static_cast<char>(0xC0 | c >> 6);
        continuation(0);
    } else if (c < 0x10000) {
        out += static_cast<char>(0xE0 | c >> 12);
        continuation(6);
        continuation(0);
    } else {
        out += static_cast<char>(0xF0 | c >> 18);
        continuation(12);
        continuation(6);
        continuation(0);
    }
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
