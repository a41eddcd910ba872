#include "SkCanvas.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cfenv>
#include <cmath>
#include <cstdint>
#include <vector>

#include "PlainBlend.h"
#include "SkDrawing.h"
#include "support/NotFinite.h"
#include "support/Random.h"

namespace gxtest {
namespace {

void randomize(ColorCanvas* canvas, Random& random) {
    for (uint8_t& b : canvas->bytes) b = random.edgeByte();
}

TEST(SkBitmapTest, OnlyMemoryThatFitsIsInstalled) {
    uint8_t memory[64];
    SkBitmap bitmap;
    const auto rgba = [](int w, int h) {
        return SkImageInfo::Make(w, h, kRGBA_8888_SkColorType, kUnpremul_SkAlphaType);
    };
    EXPECT_TRUE(bitmap.installPixels(rgba(4, 4), memory, 16));
    EXPECT_FALSE(bitmap.drawsNothing());
    EXPECT_FALSE(bitmap.installPixels(rgba(4, 4), memory, 15));
    EXPECT_TRUE(bitmap.isNull());
    EXPECT_FALSE(bitmap.installPixels(rgba(-1, 4), memory, 16));
    EXPECT_FALSE(bitmap.installPixels(rgba(4, -1), memory, 16));
    EXPECT_FALSE(bitmap.installPixels(rgba(0x7FFFFFFF, 4), memory, 0x7FFFFFFF));
    EXPECT_TRUE(bitmap.installPixels(rgba(4, 4), memory, 0));
    EXPECT_EQ(bitmap.rowBytes(), 16u);
    EXPECT_TRUE(bitmap.installPixels(rgba(4, 4), nullptr, 16));
    EXPECT_TRUE(bitmap.drawsNothing());
    EXPECT_TRUE(bitmap.installPixels(rgba(4, 0), memory, 16));
    EXPECT_TRUE(bitmap.drawsNothing());
}

TEST(SkCanvasTest, BitmapsThatCannotBeDrawnIntoStayAsTheyAre) {
    ColorCanvas source(4, 4);
    std::vector<uint8_t> memory(256, 9);
    const auto rgba = [](int w, int h, SkAlphaType alphaType = kUnpremul_SkAlphaType) {
        return SkImageInfo::Make(w, h, kRGBA_8888_SkColorType, alphaType);
    };
    const std::pair<SkImageInfo, void*> cases[] = {
        {rgba(0, 4), memory.data()},
        {rgba(4, 0), memory.data()},
        {rgba(-4, 4), memory.data()},
        {rgba(4, -4), memory.data()},
        {rgba(100, 100), memory.data()},
        {SkImageInfo::Make(4, 4, kRGB_565_SkColorType, kOpaque_SkAlphaType), memory.data()},
        {rgba(4, 4, kUnknown_SkAlphaType), memory.data()},
        {SkImageInfo(), memory.data()},
        {rgba(4, 4), nullptr},
    };
    for (const auto& [info, pixels] : cases) {
        SkBitmap bitmap;
        bitmap.installPixels(info, pixels, 16);
        SkCanvas canvas(bitmap);
        canvas.drawColor(SK_ColorWHITE, SkBlendMode::kSrc);
        canvas.drawRect(SkRect::MakeWH(4, 4), SkPaint());
        canvas.drawBitmap(source.bitmap, 0, 0);
        ColorCanvas target(4, 4);
        SkCanvas(target.bitmap).drawBitmap(bitmap, 0, 0);
        EXPECT_EQ(target.at(0, 0), Pixel());
    }
    EXPECT_EQ(memory, std::vector<uint8_t>(256, 9));
    SkCanvas(SkBitmap()).drawColor(0, SkBlendMode::kSrc);
}

// Draws `source` over `target` and holds each pixel against the slow model.
void expectSourceOver(const ColorCanvas& source, const ColorCanvas& target) {
    std::vector<Pixel> expected;
    for (int y = 0; y < target.height; ++y) {
        for (int x = 0; x < target.width; ++x) {
            const Pixel from = source.at(x, y), to = target.at(x, y);
            expected.push_back(sourceOver(from, to));
            const bool copies = from[3] == 255 || (from[3] != 0 && to[3] == 0);
            ASSERT_TRUE(!copies || expected.back() == from);
            ASSERT_TRUE(from[3] != 0 || expected.back() == (to[3] == 0 ? Pixel() : to));
        }
    }
    SkCanvas(target.bitmap).drawBitmap(source.bitmap, 0, 0);
    size_t i = 0;
    for (int y = 0; y < target.height; ++y) {
        for (int x = 0; x < target.width; ++x) {
            ASSERT_EQ(target.at(x, y), expected[i++]) << x << ", " << y;
        }
    }
}

TEST(SkCanvasTest, DrawBitmapBlendsEveryPairOfAlphasLikeTheSlowModel) {
    // Column: source alpha; row: destination alpha; colours in several pairs. Then every colour of
    // every alpha over a clear pixel.
    ColorCanvas source(256, 256), target(256, 256);
    const auto fill = [](ColorCanvas* canvas, const auto& pixelAt) {
        for (int i = 0; i < 256 * 256; ++i) {
            const Pixel pixel = pixelAt(static_cast<uint8_t>(i), static_cast<uint8_t>(i / 256));
            std::copy(pixel.begin(), pixel.end(), &canvas->bytes[4 * static_cast<size_t>(i)]);
        }
    };
    for (const auto& [s, d] :
         {std::pair<uint8_t, uint8_t>{200, 31}, {0, 255}, {255, 0}, {1, 127}}) {
        fill(&source, [s = s](uint8_t x, uint8_t) { return Pixel{s, 100, 3, x}; });
        fill(&target, [d = d](uint8_t, uint8_t y) { return Pixel{d, 2, 250, y}; });
        expectSourceOver(source, target);
    }
    fill(&source, [](uint8_t x, uint8_t y) { return Pixel{x, x, x, y}; });
    fill(&target, [](uint8_t, uint8_t) { return Pixel{7, 7, 7, 0}; });
    expectSourceOver(source, target);
}

TEST(SkCanvasTest, DrawRectBlendsLikeTheSlowModel) {
    Random random(21);
    GX_TRACE_SEED(random);
    for (int round = 0; round < 60; ++round) {
        ColorCanvas image(17, 13);
        randomize(&image, random);
        ColorCanvas expected(17, 13);
        expected.bytes = image.bytes;
        const Pixel color = {random.byte(), random.byte(), random.byte(), random.edgeByte()};
        for (size_t i = 0; color[3] != 0 && i < expected.bytes.size(); i += 4) {
            Pixel was;
            std::copy_n(&expected.bytes[i], 4, was.begin());
            const Pixel now = sourceOver(color, was);
            std::copy(now.begin(), now.end(), &expected.bytes[i]);
        }
        SkPaint paint;
        paint.setColor(SkColorSetARGB(color[3], color[0], color[1], color[2]));
        SkCanvas(image.bitmap).drawRect(SkRect::MakeWH(17, 13), paint);
        ASSERT_EQ(image.bytes, expected.bytes);
    }
}

// The rectangle of pixels that a call changed.
template <typename Draw>
SkIRect touched(Draw draw, SkRect clip = SkRect::MakeWH(40, 40)) {
    ColorCanvas image(40, 40);
    SkCanvas canvas(image.bitmap);
    canvas.clipRect(clip, SkClipOp::kIntersect, false);
    draw(canvas);
    SkIRect box = SkIRect::MakeLTRB(99, 99, -1, -1);
    int count = 0;
    for (int y = 0; y < 40; ++y) {
        for (int x = 0; x < 40; ++x) {
            if (image.at(x, y)[3] == 0) continue;
            ++count;
            box = {std::min(box.fLeft, x), std::min(box.fTop, y), std::max(box.fRight, x + 1),
                   std::max(box.fBottom, y + 1)};
        }
    }
    if (count == 0) return SkIRect::MakeEmpty();
    EXPECT_EQ(count, (box.fRight - box.fLeft) * (box.fBottom - box.fTop)) << "not a rectangle";
    return box;
}

TEST(SkCanvasTest, EdgesAreSortedAndRoundedToNearest) {
    const struct {
        SkRect rect;
        SkIRect pixels;
    } cases[] = {
        {SkRect::MakeLTRB(3, 4, 10, 12), SkIRect::MakeLTRB(3, 4, 10, 12)},
        {SkRect::MakeLTRB(10, 12, 3, 4), SkIRect::MakeLTRB(3, 4, 10, 12)},
        {SkRect::MakeLTRB(3.49f, 3.5f, 9.5f, 11.49f), SkIRect::MakeLTRB(3, 4, 10, 11)},
        {SkRect::MakeLTRB(-5, -1e30f, 2, 1e30f), SkIRect::MakeLTRB(0, 0, 2, 40)},
        {SkRect::MakeLTRB(35, 35, 1e9f, 50), SkIRect::MakeLTRB(35, 35, 40, 40)},
        {SkRect::MakeLTRB(5.1f, 5, 5.4f, 9), SkIRect::MakeEmpty()},
        {SkRect::MakeLTRB(40, 0, 50, 9), SkIRect::MakeEmpty()},
        {SkRect::MakeLTRB(-9, 0, 0, 9), SkIRect::MakeEmpty()},
        {SkRect::MakeLTRB(kNaN, 0, 5, 5), SkIRect::MakeEmpty()},
        {SkRect::MakeLTRB(0, 0, kInfinity, 5), SkIRect::MakeEmpty()},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(touched([&](SkCanvas& canvas) { canvas.drawRect(c.rect, SkPaint()); }), c.pixels);
        const auto color = [](SkCanvas& canvas) { canvas.drawColor(SK_ColorBLACK); };
        // As a clip the same pixels; what is not finite leaves the clip alone.
        EXPECT_EQ(touched(color, c.rect), c.rect.isFinite() ? c.pixels : SkIRect::MakeWH(40, 40));
    }
    SkPaint stroke;
    stroke.setStyle(SkPaint::kStroke_Style);
    EXPECT_TRUE(touched([&](SkCanvas& c) { c.drawRect(SkRect::MakeWH(9, 9), stroke); }).isEmpty());
}

TEST(SkCanvasTest, ClipsOnlyShrink) {
    const auto draw = [](SkCanvas& canvas) {
        canvas.clipRect(SkRect::MakeLTRB(0, 10, 20, 60), SkClipOp::kIntersect, true);
        canvas.clipRect(SkRect::MakeLTRB(0, 0, 40, 40), SkClipOp::kDifference, false);
        canvas.drawColor(SK_ColorBLACK);
    };
    EXPECT_EQ(touched(draw, SkRect::MakeLTRB(5, 0, 60, 30)), SkIRect::MakeLTRB(5, 10, 20, 30));
    EXPECT_TRUE(touched(draw, SkRect::MakeLTRB(5, 0, 60, 9)).isEmpty());
}

TEST(SkCanvasTest, DrawBitmapPlacesAndClips) {
    Random random(22);
    GX_TRACE_SEED(random);
    ColorCanvas source(11, 9);
    randomize(&source, random);
    for (size_t i = 3; i < source.bytes.size(); i += 4) source.bytes[i] = 255;
    for (const float x : {-7.0f, 0.0f, 0.4f, 0.5f, 16.2f, 19.0f}) {
        for (const float y : {-5.0f, 0.0f, 2.5f, 17.7f}) {
            ColorCanvas image(20, 20);
            SkCanvas canvas(image.bitmap);
            canvas.clipRect(SkRect::MakeLTRB(1, 0, 19, 18), SkClipOp::kIntersect, false);
            canvas.drawBitmap(source.bitmap, x, y);
            const int left = static_cast<int>(std::floor(x + 0.5f));
            const int top = static_cast<int>(std::floor(y + 0.5f));
            for (int j = 0; j < 20; ++j) {
                for (int i = 0; i < 20; ++i) {
                    const bool clipped = i < 1 || i >= 19 || j >= 18;
                    const bool covered =
                        i >= left && j >= top && i < left + 11 && j < top + 9 && !clipped;
                    // Pixels are taken at their centres; at a tie from the later one.
                    const int sx = std::min(static_cast<int>(std::floor(i + 0.5 - x)), 10);
                    const int sy = std::min(static_cast<int>(std::floor(j + 0.5 - y)), 8);
                    ASSERT_EQ(image.at(i, j), covered ? source.at(sx, sy) : Pixel())
                        << x << " " << y << " at " << i << ", " << j;
                }
            }
        }
    }
    for (const float bad : {kNaN, kInfinity, -kInfinity, 1e30f, -1e30f}) {
        ColorCanvas image(20, 20);
        SkCanvas canvas(image.bitmap);
        canvas.drawBitmap(source.bitmap, bad, 0);
        canvas.drawBitmap(source.bitmap, 0, bad);
        EXPECT_EQ(image.bytes, std::vector<uint8_t>(size_t{20} * 20 * 4));
    }
}

TEST(SkCanvasTest, PaintAlphaScalesABitmapAndColoursAMask) {
    ColorCanvas source(2, 1);
    source.bytes = {200, 100, 50, 255, 10, 20, 30, 128};
    SkPaint paint;
    paint.setColor(SkColorSetARGB(51, 255, 0, 0));
    ColorCanvas image(2, 1);
    SkCanvas(image.bitmap).drawBitmap(source.bitmap, 0, 0, &paint);
    EXPECT_EQ(image.at(0, 0), (Pixel{200, 100, 50, 51}));
    EXPECT_EQ(image.at(1, 0)[3], 26);

    uint8_t coverage[] = {255, 128};
    SkBitmap mask;
    ASSERT_TRUE(mask.installPixels(SkImageInfo::MakeA8(2, 1), coverage, 2));
    ColorCanvas colored(2, 1);
    paint.setColor(SkColorSetARGB(255, 1, 2, 3));
    SkCanvas(colored.bitmap).drawBitmap(mask, 0, 0, &paint);
    EXPECT_EQ(colored.at(0, 0), (Pixel{1, 2, 3, 255}));
    EXPECT_EQ(colored.at(1, 0), (Pixel{1, 2, 3, 128}));
}

TEST(SkCanvasTest, DrawColorBlendModes) {
    const SkColor color = SkColorSetARGB(128, 200, 100, 50);
    const Pixel old = {10, 20, 30, 64}, drawn = {200, 100, 50, 128};
    const struct {
        SkBlendMode mode;
        SkColor color;
        Pixel expected;
    } cases[] = {
        {SkBlendMode::kClear, color, {0, 0, 0, 0}},
        {SkBlendMode::kSrc, color, drawn},
        {SkBlendMode::kSrc, 0, {0, 0, 0, 0}},
        {SkBlendMode::kDst, color, old},
        {SkBlendMode::kSrcOver, color, sourceOver(drawn, old)},
        {SkBlendMode::kDstOver, color, sourceOver(old, drawn)},
    };
    for (const auto& c : cases) {
        ColorCanvas image(3, 1);
        for (size_t i = 0; i < image.bytes.size(); ++i) image.bytes[i] = old[i % 4];
        SkCanvas(image.bitmap).drawColor(c.color, c.mode);
        for (int x = 0; x < 3; ++x) EXPECT_EQ(image.at(x, 0), c.expected);
    }
}

TEST(SkCanvasTest, AColourOfAlpha0LeavesEveryByte) {
    ColorCanvas source(1, 1), image(1, 1);
    source.bytes = {1, 2, 3, 4};
    image.bytes = {200, 100, 50, 0};
    SkPaint paint;
    paint.setColor(SkColorSetARGB(0, 9, 9, 9));
    SkCanvas canvas(image.bitmap);
    canvas.drawRect(SkRect::MakeWH(1, 1), paint);
    canvas.drawBitmap(source.bitmap, 0, 0, &paint);
    canvas.drawColor(paint.getColor());
    EXPECT_EQ(image.at(0, 0), (Pixel{200, 100, 50, 0}));
}

TEST(SkCanvasTest, PremultipliedOpaqueAndAlphaOnlyTargets) {
    SkPaint paint;
    paint.setColor(SkColorSetARGB(128, 255, 0, 100));
    const auto rect = SkRect::MakeWH(1, 1);
    ColorCanvas premul(1, 1, kPremul_SkAlphaType);
    SkCanvas(premul.bitmap).drawRect(rect, paint);
    EXPECT_EQ(premul.at(0, 0), (Pixel{128, 0, 50, 128}));
    ColorCanvas opaque(1, 1, kOpaque_SkAlphaType);
    opaque.bytes = {0, 0, 200, 3};
    SkCanvas(opaque.bitmap).drawRect(rect, paint);
    EXPECT_EQ(opaque.at(0, 0), (Pixel{128, 0, 150, 255}));
    uint8_t alpha = 100;
    SkBitmap mask;
    ASSERT_TRUE(mask.installPixels(SkImageInfo::MakeA8(1, 1), &alpha, 1));
    SkCanvas(mask).drawRect(rect, paint);
    EXPECT_EQ(alpha, 178);  // 128 + 100 * 127 / 255, rounded
}

}  // namespace
}  // namespace gxtest
