// Unpremultiplied colours as 32-bit words 0xAARRGGBB.
#pragma once

#include "SkTypes.h"

typedef uint8_t SkAlpha;
typedef uint32_t SkColor;
typedef unsigned U8CPU;

constexpr SkColor SkColorSetARGB(U8CPU a, U8CPU r, U8CPU g, U8CPU b) {
    return (a << 24) | (r << 16) | (g << 8) | b;
}

constexpr U8CPU SkColorGetA(SkColor color) {
    return color >> 24;
}
constexpr U8CPU SkColorGetR(SkColor color) {
    return (color >> 16) & 0xFF;
}
constexpr U8CPU SkColorGetG(SkColor color) {
    return (color >> 8) & 0xFF;
}
constexpr U8CPU SkColorGetB(SkColor color) {
    return color & 0xFF;
}

constexpr SkColor SK_ColorTRANSPARENT = 0x00000000;
constexpr SkColor SK_ColorBLACK = 0xFF000000;
constexpr SkColor SK_ColorWHITE = 0xFFFFFFFF;
