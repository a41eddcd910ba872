// The blend formulas, one pixel at a time: the plain form that every faster one must equal.
//
// scale(c, k) = ((c + 1) x k) >> 8 stands in for c x k / 255: exact at both ends (0 for k = 0, c
// for k = 255) and free of division. Sums are clamped to 255.
#pragma once

#include <cstdint>

namespace GxFontEffect::kernels {

// The bytes of a 32-bit pixel in memory order. Also a colour's channels.
struct Rgba {
    uint8_t r = 0;
    uint8_t g = 0;
    uint8_t b = 0;
    uint8_t a = 0;
};

constexpr Rgba fromWord(uint32_t argb) {
    return {static_cast<uint8_t>(argb >> 16), static_cast<uint8_t>(argb >> 8),
            static_cast<uint8_t>(argb), static_cast<uint8_t>(argb >> 24)};
}

constexpr uint32_t scale(uint32_t c, uint32_t k) {
    return ((c + 1) * k) >> 8;
}

// A word 0xAARRGGBB with its colour channels scaled by its alpha.
constexpr uint32_t premultiplied(uint32_t argb) {
    const uint32_t a = argb >> 24;
    return a << 24 | scale((argb >> 16) & 0xFFu, a) << 16 | scale((argb >> 8) & 0xFFu, a) << 8 |
           scale(argb & 0xFFu, a);
}

constexpr uint8_t clamp255(uint32_t v) {
    return static_cast<uint8_t>(v < 255 ? v : 255);
}

// Each channel of `p` scaled by k.
constexpr Rgba scaled(Rgba p, uint32_t k) {
    return {static_cast<uint8_t>(scale(p.r, k)), static_cast<uint8_t>(scale(p.g, k)),
            static_cast<uint8_t>(scale(p.b, k)), static_cast<uint8_t>(scale(p.a, k))};
}

constexpr Rgba saturatingAdd(Rgba p, Rgba q) {
    return {clamp255(uint32_t{p.r} + q.r), clamp255(uint32_t{p.g} + q.g),
            clamp255(uint32_t{p.b} + q.b), clamp255(uint32_t{p.a} + q.a)};
}

// --- 8-bit mask m tinted with `color` ---

// The colour channels are scaled by the mask only: the colour is expected premultiplied. Coverage
// too weak for one step of alpha leaves the pixel alone.
constexpr Rgba srcOver8(Rgba d, uint32_t m, Rgba color) {
    const uint32_t t = (uint32_t{color.a} + 1) * m;
    if (t <= 255) return d;
    const uint32_t a = t >> 8;
    if (a == 255) return color;
    Rgba s = scaled(color, m);
    s.a = static_cast<uint8_t>(a);
    return saturatingAdd(scaled(d, 255 - a), s);
}

constexpr Rgba dstOver8(Rgba d, uint32_t m, Rgba color) {
    if (d.a == 255 || m == 0) return d;
    const Rgba s = scaled(color, m);
    return d.a == 0 ? s : saturatingAdd(d, scaled(s, 255u - d.a));
}

constexpr Rgba dstOverNsa8(Rgba d, uint32_t m, Rgba color) {
    if (d.a == 255 || m == 0) return d;
    return d.a == 0 ? color : saturatingAdd(d, scaled(color, 255u - d.a));
}

// Partial coverage weakens what the layer held as well as the new colour. The sum is scaled before
// it is clamped, so a product may pass 65,535: that is 255, not a wrap.
constexpr Rgba dstOverSa8(Rgba d, uint32_t m, Rgba color) {
    if (m == 0) return d;
    const Rgba s = scaled(color, m);
    if (d.a == 0) return s;
    const uint32_t inv = 255u - d.a;
    if (m == 255) return saturatingAdd(d, scaled(color, inv));
    if (d.a == 255) {
        Rgba out = scaled(d, m);
        out.a = static_cast<uint8_t>(m);
        return out;
    }
    const Rgba under = scaled(s, inv);
    return {
        clamp255(scale(uint32_t{d.r} + under.r, m)), clamp255(scale(uint32_t{d.g} + under.g, m)),
        clamp255(scale(uint32_t{d.b} + under.b, m)), clamp255(scale(uint32_t{d.a} + under.a, m))};
}

// --- 32-bit source s, premultiplied ---

constexpr Rgba srcOver32(Rgba d, Rgba s) {
    return s.a == 255 ? s : saturatingAdd(scaled(d, 255u - s.a), s);
}

constexpr Rgba dstOver32(Rgba d, Rgba s) {
    if (d.a == 255 || s.a == 0) return d;
    return d.a == 0 ? s : saturatingAdd(d, scaled(s, 255u - d.a));
}

// A glyph's own colours s over d, with opacity t (0-255): what is beneath ends where they are,
// however faded they are.
constexpr Rgba coverFaded(Rgba d, Rgba s, uint32_t t) {
    return saturatingAdd(scaled(d, 255u - s.a), scaled(s, t));
}

// The same into the output of mixLayers() with coverage m, which is not below the alpha of s: there
// the sum of what is left of `out` and of s is to come out.
constexpr Rgba coverForMix(Rgba out, Rgba s, uint32_t t, uint32_t m) {
    const uint32_t covered = scale(s.a, t);
    if (covered == 0 || m == 0) return out;
    const uint32_t left = covered < m ? m - covered : 0;
    const auto channel = [&](uint32_t o, uint32_t c) {
        return clamp255(((scale(o, left) + scale(c, t)) * 255 + m / 2) / m);
    };
    return {channel(out.r, s.r), channel(out.g, s.g), channel(out.b, s.b), channel(out.a, s.a)};
}

// --- overwriting ---

constexpr Rgba overwrite8(uint32_t m, Rgba color) {
    color.a = static_cast<uint8_t>(scale(color.a, m));
    return color;
}

// --- whole image ---

// Output over back layer, weighted by coverage.
constexpr Rgba mixLayers(Rgba back, Rgba out, uint32_t m) {
    return saturatingAdd(scaled(back, 255 - m), scaled(out, m));
}

// Applies alpha t (0-255) to a premultiplied pixel and turns it into straight alpha.
constexpr Rgba fadeAndUnpremultiply(Rgba p, uint32_t t) {
    const Rgba faded = scaled(p, t);
    if (faded.a == 0) return {};
    if (faded.a == 255) return faded;  // c * 256 / 255 is c, and 255 after the clamp for c = 255
    const auto straight = [&](uint32_t c) { return clamp255(c * 256 / faded.a); };
    return {straight(faded.r), straight(faded.g), straight(faded.b), faded.a};
}

}  // namespace GxFontEffect::kernels
