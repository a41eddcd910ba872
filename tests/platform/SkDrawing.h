// Short words for drawing text into 8-bit masks and pictures.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "PlainBlend.h"
#include "SkCanvas.h"
#include "SkFont.h"
#include "SkTextBlob.h"
#include "support/Fonts.h"

namespace gxtest {

template <typename Container>
sk_sp<SkTypeface> makeTypeface(const Container& bytes, int index = 0) {
    return SkTypeface::MakeFromStream(std::make_unique<SkMemoryStream>(bytes.data(), bytes.size()),
                                      index);
}

inline sk_sp<SkTypeface> loadTypeface(const std::string& name, int index = 0) {
    return makeTypeface(fontBytes(name), index);
}

struct PlacedGlyph {
    SkGlyphID glyph;
    float x;
    float y;
};

inline sk_sp<SkTextBlob> makeBlob(const SkFont& font, const std::vector<PlacedGlyph>& glyphs) {
    SkTextBlobBuilder builder;
    const auto& run = builder.allocRunPos(font, static_cast<int>(glyphs.size()));
    for (size_t i = 0; i < glyphs.size(); ++i) {
        run.glyphs[i] = glyphs[i].glyph;
        run.pos[2 * i] = glyphs[i].x;
        run.pos[2 * i + 1] = glyphs[i].y;
    }
    return builder.make();
}

// An 8-bit mask with a canvas on it, cleared.
struct MaskCanvas {
    MaskCanvas(int w, int h) : width(w), height(h), pixels(static_cast<size_t>(w) * h, 0) {
        SkBitmap bitmap;
        EXPECT_TRUE(bitmap.installPixels(SkImageInfo::MakeA8(w, h), pixels.data(), w));
        canvas = std::make_unique<SkCanvas>(bitmap);
    }
    void draw(const SkFont& font, const std::vector<PlacedGlyph>& glyphs,
              SkColor color = SK_ColorBLACK) {
        SkPaint paint;
        paint.setColor(color);
        canvas->drawTextBlob(makeBlob(font, glyphs), 0, 0, paint);
    }
    uint8_t at(int x, int y) const { return pixels[static_cast<size_t>(y) * width + x]; }

    int width;
    int height;
    std::vector<uint8_t> pixels;
    std::unique_ptr<SkCanvas> canvas;
};

// A picture of red, green, blue and alpha, cleared.
struct ColorCanvas {
    ColorCanvas(int w, int h, SkAlphaType alphaType = kUnpremul_SkAlphaType)
        : width(w), height(h), bytes(static_cast<size_t>(w) * h * 4) {
        EXPECT_TRUE(bitmap.installPixels(
            SkImageInfo::Make(w, h, kRGBA_8888_SkColorType, alphaType, SkColorSpace::MakeSRGB()),
            bytes.data(), size_t{4} * w));
    }
    ColorCanvas(ColorCanvas&&) = default;

    Pixel at(int x, int y) const {
        const uint8_t* p = &bytes[4 * (static_cast<size_t>(y) * width + x)];
        return {p[0], p[1], p[2], p[3]};
    }

    int width;
    int height;
    std::vector<uint8_t> bytes;
    SkBitmap bitmap;
};

}  // namespace gxtest
