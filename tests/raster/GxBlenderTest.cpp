#include "raster/GxBlender.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "support/LogCapture.h"
#include "support/Random.h"

namespace GxFontEffect {
namespace {

using gxtest::LogCapture;
using gxtest::Random;
using Pixel = std::array<int, 4>;  // R, G, B, A

// --- the formulas once more, as a table reads them: plain integers, one channel at a time ---

int scale(int c, int k) {
    return ((c + 1) * k) >> 8;
}
int clamp(int v) {
    return v > 255 ? 255 : v;
}

Pixel channels(uint32_t argb) {
    return {static_cast<int>(argb >> 16 & 255), static_cast<int>(argb >> 8 & 255),
            static_cast<int>(argb & 255), static_cast<int>(argb >> 24)};
}

Pixel modelSrcOver8(Pixel d, int m, Pixel c) {
    const int t = (c[3] + 1) * m;
    const int a = t >> 8;
    if (t <= 255) return d;
    if (a == 255) return {c[0], c[1], c[2], 255};
    const int inv = 255 - a;
    Pixel out;
    for (int i = 0; i < 3; ++i) out[i] = clamp(scale(d[i], inv) + scale(c[i], m));
    out[3] = clamp(a + scale(d[3], inv));
    return out;
}

Pixel modelDstOver8(Pixel d, int m, Pixel c) {
    if (d[3] == 255 || m == 0) return d;
    Pixel out;
    for (int i = 0; i < 4; ++i) {
        out[i] = d[3] == 0 ? scale(c[i], m) : clamp(d[i] + scale(scale(c[i], m), 255 - d[3]));
    }
    return out;
}

Pixel modelDstOverNsa8(Pixel d, int m, Pixel c) {
    if (d[3] == 255 || m == 0) return d;
    if (d[3] == 0) return c;
    Pixel out;
    for (int i = 0; i < 4; ++i) out[i] = clamp(d[i] + scale(c[i], 255 - d[3]));
    return out;
}

Pixel modelOther8(Pixel d, int m, Pixel c) {
    if (m == 0) return d;
    Pixel out;
    if (d[3] == 0) {
        for (int i = 0; i < 4; ++i) out[i] = scale(c[i], m);
        return out;
    }
    const int inv = 255 - d[3];
    const int s = d[3] + scale(scale(c[3], m), inv);
    for (int i = 0; i < 3; ++i) {
        if (m == 255) {
            out[i] = clamp(d[i] + scale(c[i], inv));
        } else if (d[3] < 255) {
            const int product = (d[i] + scale(scale(c[i], m), inv) + 1) * m;
            out[i] = product > 65535 ? 255 : product >> 8;
        } else {
            out[i] = scale(d[i], m);
        }
    }
    out[3] = m == 255 ? clamp(s) : d[3] < 255 ? scale(s, m) : m;
    return out;
}

Pixel modelSrcOver32(Pixel d, Pixel s) {
    if (s[3] == 255) return s;
    Pixel out;
    for (int i = 0; i < 4; ++i) out[i] = clamp(scale(d[i], 255 - s[3]) + s[i]);
    return out;
}

Pixel modelDstOver32(Pixel d, Pixel s) {
    if (d[3] == 255 || s[3] == 0) return d;
    if (d[3] == 0) return s;
    Pixel out;
    for (int i = 0; i < 4; ++i) out[i] = clamp(d[i] + scale(s[i], 255 - d[3]));
    return out;
}

// --- helpers ---

Pixel pixelAt(const GxBitmap& bitmap, int x, int y) {
    const uint8_t* p = bitmap.data + (size_t{bitmap.width} * y + x) * 4;
    return {p[0], p[1], p[2], p[3]};
}

GxBitmap randomLayer(Random& random, uint32_t width, uint32_t height) {
    GxBitmap layer(width, height, 4);
    const std::vector<uint8_t> bytes = random.edgeBytes(layer.pixelCount() * 4);
    std::memcpy(layer.data, bytes.data(), bytes.size());
    return layer;
}

struct MaskMode {
    const char* name;
    int mode;
    Pixel (*model)(Pixel, int, Pixel);
};

constexpr MaskMode kMaskModes[] = {
    {"source over", GXE_BLEND_SRC_OVER, modelSrcOver8},
    {"destination over", GXE_BLEND_DST_OVER, modelDstOver8},
    {"destination over, on or off", GXE_BLEND_DST_OVER_NSA, modelDstOverNsa8},
    {"other", GXE_BLEND_OTHER, modelOther8},
};

// Positions that cut a 5 x 4 source at each side of a 9 x 7 destination, at corners, and wholly.
constexpr std::array<int, 2> kPlaces[] = {
    {0, 0},        {2, 1}, {-3, 1}, {7, 2}, {2, -2}, {3, 5},         {-4, 6},
    {8, -3},       {9, 0}, {-5, 0}, {0, 7}, {0, -4}, {INT32_MAX, 0}, {INT32_MIN, INT32_MIN},
    {0, INT32_MAX}};

// Draws a 5 x 4 source with `draw` at every place and compares the whole destination with `model(d,
// sx, sy)`.
void checkPlaces(Random& random, const std::function<void(int, int, const GxBitmap*)>& draw,
                 const std::function<Pixel(Pixel, int, int)>& model) {
    for (const auto& [x, y] : kPlaces) {
        const GxBitmap before = randomLayer(random, 9, 7);
        GxBitmap after(before);
        draw(x, y, &after);
        for (int row = 0; row < 7; ++row) {
            for (int column = 0; column < 9; ++column) {
                const int64_t sx = int64_t{column} - x, sy = int64_t{row} - y;
                const bool inside = sx >= 0 && sx < 5 && sy >= 0 && sy < 4;
                const Pixel d = pixelAt(before, column, row);
                const Pixel expected =
                    inside ? model(d, static_cast<int>(sx), static_cast<int>(sy)) : d;
                ASSERT_EQ(pixelAt(after, column, row), expected)
                    << "drawn at " << x << "," << y << ", pixel " << column << "," << row;
            }
        }
    }
}

// --- 8-bit masks ---

TEST(GxBlender, MaskModesEqualTheirFormulasForEveryAlpha) {
    Random random(11);
    GX_TRACE_SEED(random);
    std::vector<uint8_t> masks(256);
    for (int m = 0; m < 256; ++m) masks[m] = static_cast<uint8_t>(m);
    for (const MaskMode& mode : kMaskModes) {
        SCOPED_TRACE(mode.name);
        for (int dA = 0; dA < 256; ++dA) {
            const uint32_t color = uint32_t{random.edgeByte()} << 24 | (random.word() & 0xFFFFFF);
            GxBitmap before = randomLayer(random, 256, 1);
            for (int m = 0; m < 256; ++m) before.data[m * 4 + 3] = static_cast<uint8_t>(dA);
            GxBitmap after(before);
            GxBlender().drawBitmapBlend8(0, 0, &after, masks.data(), 256, 1, 256, color, mode.mode);
            for (int m = 0; m < 256; ++m) {
                ASSERT_EQ(pixelAt(after, m, 0),
                          mode.model(pixelAt(before, m, 0), m, channels(color)))
                    << "mask " << m << " alpha " << dA << " colour " << std::hex << color;
            }
        }
    }
}

TEST(GxBlender, MasksAreCutAtEverySide) {
    Random random(12);
    GX_TRACE_SEED(random);
    constexpr int kStride = 8;
    for (const MaskMode& mode : kMaskModes) {
        SCOPED_TRACE(mode.name);
        const std::vector<uint8_t> mask =
            random.edgeBytes(kStride * 3 + 5);  // no bytes past the last row
        const uint32_t color = random.word();
        checkPlaces(
            random,
            [&](int x, int y, const GxBitmap* layer) {
                GxBlender().drawBitmapBlend8(x, y, layer, mask.data(), 5, 4, kStride, color,
                                             mode.mode);
            },
            [&](Pixel d, int sx, int sy) {
                return mode.model(d, mask[sy * kStride + sx], channels(color));
            });
    }
}

TEST(GxBlender, OtherModesDrawNothing) {
    Random random(13);
    const GxBitmap before = randomLayer(random, 4, 1);
    const uint8_t mask[4] = {255, 255, 255, 255};
    const uint32_t source[4] = {~0u, ~0u, ~0u, ~0u};
    for (int mode : {INT32_MIN, -1, 0, 3, 4, 5, 6, 7, 8, INT32_MAX}) {
        GxBitmap layer(before);
        GxBlender().drawBitmapBlend32(0, 0, &layer, source, 4, 1, 4, mode);
        if (mode != 3 && mode != 7) {
            GxBlender().drawBitmapBlend8(0, 0, &layer, mask, 4, 1, 4, 0xFFFFFFFFu, mode);
        }
        EXPECT_EQ(std::memcmp(layer.data, before.data, 16), 0) << mode;
    }
}

TEST(GxBlender, TwoModesLeaveALogLine) {
    GxBitmap layer(1, 1, 4);
    const uint8_t mask = 255;
    LogCapture log;
    for (int mode = 0; mode < 9; ++mode) {
        GxBlender().drawBitmapBlend8(0, 0, &layer, &mask, 1, 1, 1, 0xFFFFFFFFu, mode);
    }
    constexpr int kDebug = 3;
    EXPECT_THAT(
        log.lines(),
        testing::ElementsAre(gxtest::LogLine{kDebug, "Blender", "Blender - GXE_BLEND_DST_OVER_NSA"},
                             gxtest::LogLine{kDebug, "Blender", "Blender - GXE_BLEND_OTHER"}));
}

// --- 32-bit sources ---

TEST(GxBlender, WordsBlendByTheirFormulasAndAreCut) {
    Random random(14);
    GX_TRACE_SEED(random);
    constexpr int kStride = 6;
    for (int round = 0; round < 40; ++round) {
        std::vector<uint32_t> source(kStride * 3 + 5);
        for (uint32_t& word : source) {
            word = uint32_t{random.edgeByte()} << 24 | (random.word() & 0xFFFFFF);
        }
        for (int mode : {GXE_BLEND_SRC_OVER, GXE_BLEND_DST_OVER}) {
            checkPlaces(
                random,
                [&](int x, int y, const GxBitmap* layer) {
                    GxBlender().drawBitmapBlend32(x, y, layer, source.data(), 5, 4, kStride, mode);
                },
                [&](Pixel d, int sx, int sy) {
                    const Pixel s = channels(source[sy * kStride + sx]);
                    return mode == GXE_BLEND_SRC_OVER ? modelSrcOver32(d, s) : modelDstOver32(d, s);
                });
        }
    }
}

TEST(GxBlender, BytesBlendInEitherOrderWhateverTheMode) {
    Random random(15);
    GX_TRACE_SEED(random);
    constexpr int kStride = 23;  // need not be whole pixels
    for (int order : {GXE_BYTE_ORDER_ARGB, GXE_BYTE_ORDER_RGBA}) {
        const std::vector<uint8_t> source = random.edgeBytes(kStride * 3 + 20);
        checkPlaces(
            random,
            [&](int x, int y, const GxBitmap* layer) {
                GxBlender().drawBitmapBlend32(x, y, layer, source.data(), 5, 4, kStride, 1, order);
            },
            [&](Pixel d, int sx, int sy) {
                const uint8_t* p = &source[sy * kStride + sx * 4];
                return modelDstOver32(d, order == GXE_BYTE_ORDER_RGBA
                                             ? Pixel{p[0], p[1], p[2], p[3]}
                                             : Pixel{p[1], p[2], p[3], p[0]});
            });
        GxBitmap layer(5, 4, 4);
        GxBlender().drawBitmapBlend32(0, 0, &layer, source.data(), 5, 4, kStride, 2, 2);
        EXPECT_EQ(std::count(layer.data, layer.data + 80, 0), 80)
            << "an unknown order draws nothing";
    }
}

// --- overwriting, maximum, swap ---

TEST(GxBlender, MasksOverwriteLayers) {
    Random random(16);
    GX_TRACE_SEED(random);
    const std::vector<uint8_t> mask = random.edgeBytes(20);
    const uint32_t color = 0xC8102030;
    checkPlaces(
        random,
        [&](int x, int y, const GxBitmap* layer) {
            GxBlender().drawBitmap(x, y, layer, mask.data(), 5, 4, color);
        },
        [&](Pixel, int sx, int sy) {
            return Pixel{0x10, 0x20, 0x30, scale(0xC8, mask[sy * 5 + sx])};
        });
}

TEST(GxBlender, MasksUniteByTheirMaximum) {
    const uint8_t before[6] = {0, 10, 200, 255, 7, 7};
    const uint8_t mask[4] = {5, 5, 250, 1};
    GxBitmap united(3, 2, before, 1);
    const GxBitmap source(2, 2, mask, 1);
    GxBlender().drawBitmap(1, 0, &united, &source, 0xFF000000u);
    const std::vector<uint8_t> expected = {0, 10, 200, 255, 250, 7};
    EXPECT_EQ(std::vector<uint8_t>(united.data, united.data + 6), expected);

    // Each form draws on its own kind of destination only.
    GxBitmap layer(3, 2, 4);
    GxBlender().drawBitmap8To8(0, 0, &layer, mask, 2, 2);
    GxBlender().drawBitmap8To32(0, 0, &united, mask, 2, 2, 0xFFFFFFFFu);
    EXPECT_EQ(std::count(layer.data, layer.data + 24, 0), 24);
    EXPECT_EQ(std::vector<uint8_t>(united.data, united.data + 6), expected);
}

TEST(GxBlender, SwapExchangesRedAndBlue) {
    const uint8_t pixels[8] = {1, 2, 3, 4, 250, 251, 252, 253};
    GxBitmap bitmap(2, 1, pixels, 4);
    GxBlender::convertBGRAToARGB(&bitmap);
    const uint8_t swapped[8] = {3, 2, 1, 4, 252, 251, 250, 253};
    EXPECT_EQ(std::memcmp(bitmap.data, swapped, 8), 0);
    GxBlender::convertBGRAToARGB(&bitmap);
    EXPECT_EQ(std::memcmp(bitmap.data, pixels, 8), 0);

    GxBitmap mask(2, 2, pixels, 1);
    GxBlender::convertBGRAToARGB(&mask);
    GxBlender::convertBGRAToARGB(nullptr);
    const GxBitmap empty;
    GxBlender::convertBGRAToARGB(&empty);
    EXPECT_EQ(std::memcmp(mask.data, pixels, 4), 0);
}

TEST(GxBlender, UnusableArgumentsDrawNothing) {
    Random random(17);
    const GxBitmap before = randomLayer(random, 3, 3);
    const std::vector<uint8_t> bytes(36, 255);
    const std::vector<uint32_t> words(9, ~0u);
    const GxBitmap noData;
    GxBitmap layer(before), mask(3, 3, 1);
    const GxBlender blender;
    for (int mode = 1; mode <= 7; ++mode) {
        const uint8_t* const null8 = nullptr;
        const uint32_t* const null32 = nullptr;
        blender.drawBitmapBlend8(0, 0, nullptr, bytes.data(), 3, 3, 3, ~0u, mode);
        blender.drawBitmapBlend8(0, 0, &noData, bytes.data(), 3, 3, 3, ~0u, mode);
        blender.drawBitmapBlend8(0, 0, &mask, bytes.data(), 3, 3, 3, ~0u, mode);
        blender.drawBitmapBlend8(0, 0, &layer, nullptr, 3, 3, 3, ~0u, mode);
        blender.drawBitmapBlend8(0, 0, &layer, bytes.data(), -3, 3, 3, ~0u, mode);
        blender.drawBitmapBlend8(0, 0, &layer, bytes.data(), 3, 0, 3, ~0u, mode);
        blender.drawBitmapBlend32(0, 0, nullptr, words.data(), 3, 3, 3, mode);
        blender.drawBitmapBlend32(0, 0, &mask, words.data(), 3, 3, 3, mode);
        blender.drawBitmapBlend32(0, 0, &layer, null32, 3, 3, 3, mode);
        blender.drawBitmapBlend32(0, 0, &mask, bytes.data(), 3, 3, 12, mode, 1);
        blender.drawBitmapBlend32(0, 0, &layer, null8, 3, 3, 12, mode, 1);
    }
    blender.drawBitmap(0, 0, nullptr, bytes.data(), 3, 3, ~0u);
    blender.drawBitmap(0, 0, &layer, static_cast<const GxBitmap*>(nullptr), ~0u);
    blender.drawBitmap(0, 0, &layer, &noData, ~0u);
    blender.drawBitmap(0, 0, &noData, bytes.data(), 3, 3, ~0u);
    EXPECT_EQ(std::memcmp(layer.data, before.data, 36), 0);
    EXPECT_EQ(std::count(mask.data, mask.data + 9, 0), 9);
}

}  // namespace
}  // namespace GxFontEffect
