// Writes the key text of effects, see effect/GxProperty.h for its forms.
#pragma once

#include <cstdint>

#include "effect/GxProperty.h"
#include "raster/GxMath.h"

namespace GxFontEffect {

// Writes key bytes at a cursor. Each write leaves a zero after it, which the next one overwrites,
// so the key is terminated wherever writing stops.
class KeyWriter {
public:
    explicit KeyWriter(char** cursor) : cursor_(cursor) {}

    KeyWriter& letter(char c) {
        put(static_cast<uint8_t>(c));
        return *this;
    }

    // `count` hexadecimal digits of the value's low bits, most significant first.
    KeyWriter& digits(uint32_t value, int count) {
        for (int shift = 4 * (count - 1); shift >= 0; shift -= 4) {
            put(0x80u | ((value >> shift) & 0xFu));
        }
        return *this;
    }
    KeyWriter& hex(uint32_t value) { return digits(value, 8); }

    KeyWriter& shortForm(int32_t value) {
        put(0x80u | (static_cast<uint32_t>(value) & 0x7Fu));
        return *this;
    }
    KeyWriter& shortForm(float value) { return shortForm(toInt(value)); }

    KeyWriter& angle(float degrees) {
        int32_t a = toInt(degrees) % 360;
        if (a < 0) a += 360;
        put(0x80u | static_cast<uint32_t>(a >> 7));
        return shortForm(a);
    }

    KeyWriter& stops(int32_t count, const GxGradient* stops) {
        for (int32_t i = 0; stops && i < count; ++i) {
            hex(stops[i].color).shortForm(stops[i].position * 100.0f);
        }
        return *this;
    }

private:
    void put(uint32_t byte) {
        *(*cursor_)++ = static_cast<char>(byte);
        **cursor_ = 0;
    }

    char** cursor_;
};

}  // namespace GxFontEffect
