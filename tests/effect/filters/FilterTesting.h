// Masks, layers and comparisons for the tests of the filters.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "effect/GxECore.h"
#include "effect/GxEffect.h"
#include "raster/GxBitmap.h"
#include "raster/GxBlender.h"
#include "raster/GxMath.h"
#include "support/NotFinite.h"
#include "support/Random.h"

namespace gxtest {

// Everything a filter paints with: a mask, two layers and the box of the text.
struct Scene {
    Scene(int width, int height, const GxFontEffect::GxRect& textBox)
        : mask(width, height, 1), layer(width, height, 4), other(width, height, 4), box(textBox) {}
    Scene(int width, int height)
        : Scene(width, height, GxFontEffect::GxRect(0, 0, width, height)) {}
    // One character per pixel: ' ' 0, '#' 255, digits in steps of 28. The box is the whole picture.
    explicit Scene(const std::vector<std::string>& rows, int margin = 0)
        : Scene(static_cast<int>(rows[0].size()) + 2 * margin,
                static_cast<int>(rows.size()) + 2 * margin,
                GxFontEffect::GxRect(margin, margin, margin + static_cast<int>(rows[0].size()),
                                     margin + static_cast<int>(rows.size()))) {
        for (size_t y = 0; y < rows.size(); ++y) {
            for (size_t x = 0; x < rows[y].size(); ++x) {
                const char c = rows[y][x];
                const int m = c == '#' ? 255 : c == ' ' ? 0 : (c - '0') * 28;
                mask.data[(y + margin) * mask.width + x + margin] = static_cast<uint8_t>(m);
            }
        }
    }

    GxFontEffect::GxECore::ParamPostProcessing param(uint32_t mode = 0, bool both = false) {
        GxFontEffect::GxECore::ParamPostProcessing block;
        block.dst = &layer;
        block.src = &mask;
        block.textRect = &box;
        block.mode = mode;
        block.other = both ? &other : nullptr;
        return block;
    }
    // Coverage at box coordinates; 0 outside the bitmap, which the box may leave.
    int coverage(int64_t x, int64_t y) const {
        x += box.left;
        y += box.top;
        if (x < 0 || y < 0 || x >= mask.width || y >= mask.height) return 0;
        return mask.data[y * mask.width + x];
    }
    // Coverage at box coordinates; 0 outside the box too.
    int coverageInBox(int64_t x, int64_t y) const {
        const bool inside =
            x >= 0 && y >= 0 && x < box.right - box.left && y < box.bottom - box.top;
        return inside ? coverage(x, y) : 0;
    }
    // A layer pixel as 0xAARRGGBB.
    uint32_t pixel(int64_t x, int64_t y) const {
        const uint8_t* p = layer.data + (y * layer.width + x) * 4;
        return uint32_t{p[3]} << 24 | uint32_t{p[0]} << 16 | uint32_t{p[1]} << 8 | p[2];
    }

    GxFontEffect::GxBitmap mask;
    GxFontEffect::GxBitmap layer;
    GxFontEffect::GxBitmap other;
    GxFontEffect::GxRect box;
};

// A scene with one of the contents that text and hostile input have: noise, soft-edged bars, empty,
// full, one pixel. The box may reach past the mask; the layers hold premultiplied noise.
inline Scene randomScene(Random& random, int maxExtent) {
    const int width = random.between(1, maxExtent);
    const int height = random.between(1, maxExtent);
    GxFontEffect::GxRect box(0, 0, width, height);
    if (random.oneIn(3)) {
        box.left = random.between(-3, width);
        box.top = random.between(-3, height);
        box.right = random.between(std::max(box.left, 0), width + 3);
        box.bottom = random.between(std::max(box.top, 0), height + 3);
    }
    Scene scene(width, height, box);
    uint8_t* mask = scene.mask.data;
    const size_t count = size_t{scene.mask.width} * scene.mask.height;
    switch (random.between(0, 5)) {
        case 0:
            for (size_t i = 0; i < count; ++i) mask[i] = random.edgeByte();
            break;
        case 1:
            std::memset(mask, 255, count);
            break;
        case 2:
            mask[random.between(0, static_cast<int>(count) - 1)] = random.edgeByte();
            break;
        case 3:
            break;
        default:
            for (size_t i = 0; i < count; ++i) {
                const double wave = std::sin(static_cast<double>(i % scene.mask.width) * 0.7) +
                                    std::cos(static_cast<double>(i / scene.mask.width) * 0.4);
                mask[i] = static_cast<uint8_t>(std::clamp(wave * 200.0, 0.0, 255.0));
            }
    }
    for (GxFontEffect::GxBitmap* layer : {&scene.layer, &scene.other}) {
        if (random.oneIn(3)) continue;  // transparent
        for (size_t i = 0; i < count; ++i) {
            const int alpha = random.edgeByte();
            for (int c = 0; c < 3; ++c) {
                layer->data[i * 4 + c] = static_cast<uint8_t>(random.between(0, alpha));
            }
            layer->data[i * 4 + 3] = static_cast<uint8_t>(alpha);
        }
    }
    return scene;
}

// Runs a fresh core with the record over the scene; `both` hands it the other layer, too.
template <typename Core, typename Record>
void paintWith(Scene& scene, const Record& record, uint32_t mode = 0, bool both = false) {
    Core core;
    core.setProperty(&record);
    auto param = scene.param(mode, both);
    core.doPostProcessing(&param);
}

// Calls `check(random, scene)` with this many random scenes, until one fails.
template <typename Check>
void forRandomScenes(uint32_t seed, int count, int maxExtent, const Check& check) {
    Random random(seed);
    GX_TRACE_SEED(random);
    for (int i = 0; i < count && !testing::Test::HasFatalFailure(); ++i) {
        SCOPED_TRACE("scene " + std::to_string(i));
        Scene scene = randomScene(random, maxExtent);
        check(random, scene);
    }
}

// What the effect needs beyond the text: left, top, right, bottom.
template <typename Core, typename Record>
std::array<int, 4> marginsOf(const Record& record) {
    Core core;
    core.setProperty(&record);
    return {core.getLeftOffset(), core.getTopOffset(), core.getRightOffset(),
            core.getBottomOffset()};
}

inline std::string keyOf(GxFontEffect::GxEffect& stack) {
    const std::unique_ptr<char[]> key(stack.getMapKey());
    return key.get();
}

// A mask as glyphs come; it borrows the pixels.
inline GxFontEffect::GxGlyph glyphOf(const GxFontEffect::GxBitmap& mask) {
    GxFontEffect::GxGlyph glyph;
    glyph.pixels = mask.data;
    glyph.width = static_cast<uint16_t>(mask.width);
    glyph.height = static_cast<uint16_t>(mask.height);
    return glyph;
}

// All steps of one render of `mask` at (x, y).
inline GxFontEffect::GxBitmap renderStack(GxFontEffect::GxEffect& stack, uint32_t width,
                                          uint32_t height, int x, int y,
                                          const GxFontEffect::GxBitmap& mask) {
    GxFontEffect::GxBitmap output(width, height, 4);
    const GxFontEffect::GxGlyph glyph = glyphOf(mask);
    stack.initEffect(width, height);
    stack.setTextBox(GxFontEffect::GxRect(x, y, GxFontEffect::saturateInt(int64_t{x} + glyph.width),
                                          GxFontEffect::saturateInt(int64_t{y} + glyph.height)));
    stack.setDstBitmap(&output);
    stack.renderEffectLayer(x, y, &glyph);
    stack.doEffectPostProcessing();
    stack.compositeLayers(&output);
    return output;
}

// The first differing byte of two bitmaps of one size, or "".
inline std::string difference(const GxFontEffect::GxBitmap& expected,
                              const GxFontEffect::GxBitmap& actual) {
    const size_t count = size_t{expected.width} * expected.height * expected.bytesPerPixel;
    for (size_t i = 0; i < count; ++i) {
        if (expected.data[i] == actual.data[i]) continue;
        const size_t pixel = i / expected.bytesPerPixel;
        return "at (" + std::to_string(pixel % expected.width) + ", " +
               std::to_string(pixel / expected.width) + ") channel " +
               std::to_string(i % expected.bytesPerPixel) + ": expected " +
               std::to_string(expected.data[i]) + ", is " + std::to_string(actual.data[i]);
    }
    return "";
}

// A colour word with its colour channels scaled by its alpha.
inline uint32_t premultiplied(uint32_t argb) {
    const uint32_t a = argb >> 24;
    const auto channel = [&](int shift) {
        return ((((argb >> shift) & 255u) + 1) * a >> 8) << shift;
    };
    return a << 24 | channel(16) | channel(8) | channel(0);
}

}  // namespace gxtest
