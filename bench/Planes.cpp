#include "Planes.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <random>

#ifdef GXBENCH_FREETYPE
#include <ft2build.h>
#include FT_FREETYPE_H
#endif

namespace gxbench {

namespace {

#ifdef GXBENCH_FREETYPE

void drawGlyph(Mask& mask, const FT_GlyphSlot glyph, int x, int y) {
    const FT_Bitmap& bitmap = glyph->bitmap;
    for (int row = 0; row < static_cast<int>(bitmap.rows); ++row) {
        for (int column = 0; column < static_cast<int>(bitmap.width); ++column) {
            const int toX = x + column, toY = y + row;
            if (toX < 0 || toX >= kWidth || toY < 0 || toY >= kHeight) continue;
            uint8_t& out = mask[static_cast<size_t>(toY) * kWidth + static_cast<size_t>(toX)];
            out = std::max(out, bitmap.buffer[row * bitmap.pitch + column]);
        }
    }
}

Mask drawText() {
    Mask mask(kPixels);
    FT_Library library = nullptr;
    FT_Face face = nullptr;
    if (FT_Init_FreeType(&library) || FT_New_Face(library, GXBENCH_FONT, 0, &face)) return {};
    constexpr int kSize = 255, kBaseline = 232;
    FT_Set_Pixel_Sizes(face, 0, kSize);
    FT_Pos pen = 4 * 64;
    for (const char c : std::string("Agfx&S")) {
        constexpr FT_Int32 kFlags = FT_LOAD_RENDER | FT_LOAD_NO_HINTING | FT_LOAD_NO_BITMAP;
        if (FT_Load_Char(face, static_cast<FT_ULong>(c), kFlags)) return {};
        drawGlyph(mask, face->glyph, static_cast<int>(pen >> 6) + face->glyph->bitmap_left,
                  kBaseline - face->glyph->bitmap_top);
        pen += face->glyph->advance.x;
    }
    FT_Done_Face(face);
    FT_Done_FreeType(library);
    return mask;
}

#else

Mask drawText() {
    return {};
}

#endif

// Six letters' worth of rings and stems with soft edges.
Mask drawRings() {
    Mask mask(kPixels);
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) {
            const float dx = static_cast<float>(x % 180 - 80), dy = static_cast<float>(y - 160);
            const float ring = 24.0f - std::abs(std::hypot(dx, dy) - 60.0f);
            const float stem = std::min(20.0f - std::abs(dx + 60.0f), 124.0f - std::abs(dy));
            const float inside = std::max(ring, stem) * 255.0f;
            mask[static_cast<size_t>(y) * kWidth + static_cast<size_t>(x)] =
                static_cast<uint8_t>(std::clamp(inside, 0.0f, 255.0f));
        }
    }
    return mask;
}

const Mask& drawnText() {
    static const Mask mask = drawText();
    return mask;
}

std::mt19937& engine() {
    static std::mt19937 instance(7);
    return instance;
}

uint32_t scaled(uint32_t channel, uint32_t by) {
    return (channel + 1) * by >> 8;
}

}  // namespace

const Mask& textMask() {
    static const Mask mask = drawnText().empty() ? drawRings() : drawnText();
    return mask;
}

std::string textMaskSource() {
    return drawnText().empty() ? "rings and bars" : "Agfx&S, bold, 255 px";
}

Mask filledMask(uint8_t value) {
    return Mask(kPixels, value);
}

Mask noiseMask() {
    Mask mask(kPixels);
    for (uint8_t& m : mask) m = static_cast<uint8_t>(engine()());
    return mask;
}

Mask patchyMask() {
    Mask mask(kPixels);
    for (size_t i = 0; i < mask.size();) {
        const uint32_t kind = engine()() % 3;
        const size_t end = std::min(mask.size(), i + 16 + engine()() % 100);
        for (; i < end; ++i) {
            mask[i] = kind == 0 ? 0 : kind == 1 ? 255 : static_cast<uint8_t>(engine()());
        }
    }
    return mask;
}

Layer randomLayer() {
    Layer layer(kPixels);
    for (uint32_t& pixel : layer) {
        const uint32_t word = engine()(), a = word >> 24;
        pixel = a << 24 | scaled(word >> 16 & 255, a) << 16 | scaled(word >> 8 & 255, a) << 8 |
                scaled(word & 255, a);
    }
    return layer;
}

Layer filledLayer(uint32_t pixel) {
    return Layer(kPixels, pixel);
}

Layer tintedLayer(const Mask& mask, uint32_t color) {
    Layer layer(kPixels);
    for (size_t i = 0; i < layer.size(); ++i) {
        const uint32_t m = mask[i];
        layer[i] = scaled(color >> 24, m) << 24 | scaled(color >> 16 & 255, m) << 16 |
                   scaled(color >> 8 & 255, m) << 8 | scaled(color & 255, m);
    }
    return layer;
}

}  // namespace gxbench
