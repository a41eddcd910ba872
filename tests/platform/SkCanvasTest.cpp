#include "SkCanvas.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
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

TEST(SkBitmapTest, OnlyMemoryThatFitsIsInstalledAndDrawn) {
    const auto rgba = [](int w, int h, SkAlphaType alphaType = kUnpremul_SkAlphaType) {
        return SkImageInfo::Make(w, h, kRGBA_8888_SkColorType, alphaType);
    };
    std::vector<uint8_t> memory(64);
    uint8_t* pixels = memory.data();
    const struct {
        SkImageInfo info;
        uint8_t* pixels;
        size_t rowBytes;
        bool isInstalled, isDrawn;
    } cases[] = {
        {rgba(4, 4), pixels, 16, true, true},
        {rgba(4, 4), pixels, 0, true, true},  // packed
        {rgba(4, 4), pixels, 15, false, false},
        {rgba(-4, 4), pixels, 16, false, false},
        {rgba(4, -4), pixels, 16, false, false},
        {rgba(100, 100), pixels, 16, false, false},
        {rgba(0x7FFFFFFF, 4), pixels, 0x7FFFFFFF, false, false},
        {rgba(4, 4), nullptr, 16, true, false},
        {rgba(0, 4), pixels, 16, true, false},
        {rgba(4, 0), pixels, 16, true, false},
        {rgba(4, 4, kUnknown_SkAlphaType), pixels, 16, true, false},
        {SkImageInfo::Make(4, 4, kRGB_565_SkColorType, kOpaque_SkAlphaType), pixels, 8, true,
         false},
        {SkImageInfo(), pixels, 16, true, false},
    };
    ColorCanvas source(4, 4);
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << &c - cases);
        memory.assign(memory.size(), 9);
        SkBitmap bitmap;
        EXPECT_EQ(bitmap.installPixels(c.info, c.pixels, c.rowBytes), c.isInstalled);
        SkCanvas canvas(bitmap);
        canvas.drawRect(SkRect::MakeWH(4, 4), SkPaint());
        canvas.drawBitmap(source.bitmap, 0, 0);
        canvas.drawColor(SK_ColorWHITE, SkBlendMode::kSrc);
        EXPECT_EQ(memory, std::vector<uint8_t>(memory.size(), c.isDrawn ? 255 : 9));
        ColorCanvas target(4, 4);
        SkCanvas(target.bitmap).drawBitmap(bitmap, 0, 0);
        EXPECT_EQ(target.at(0, 0)[3], c.isDrawn ? 255 : 0);
    }
}

// What `draw` does to the target, held pixel by pixel against the slow model of a source over it.
template <typename Source, typename Draw>
void expectSourceOver(const ColorCanvas& target, Source sourceAt, Draw draw) {
    std::vector<Pixel> expected;
    for (int i = 0; i < target.width * target.height; ++i) {
        const Pixel from = sourceAt(i % target.width, i / target.width);
        const Pixel to = target.at(i % target.width, i / target.width);
        expected.push_back(sourceOver(from, to));
        const bool copies = from[3] == 255 || (from[3] != 0 && to[3] == 0);
        ASSERT_TRUE(!copies || expected.back() == from);
        ASSERT_TRUE(from[3] != 0 || expected.back() == (to[3] == 0 ? Pixel() : to));
    }
    SkCanvas canvas(target.bitmap);
    draw(canvas);
    for (int i = 0; i < target.width * target.height; ++i) {
        ASSERT_EQ(target.at(i % target.width, i / target.width), expected[static_cast<size_t>(i)])
            << i;
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
    const auto expectBlending = [&] {
        expectSourceOver(
            target, [&](int x, int y) { return source.at(x, y); },
            [&](SkCanvas& canvas) { canvas.drawBitmap(source.bitmap, 0, 0); });
    };
    for (const auto& [s, d] :
         {std::pair<uint8_t, uint8_t>{200, 31}, {0, 255}, {255, 0}, {1, 127}}) {
        fill(&source, [s = s](uint8_t x, uint8_t) { return Pixel{s, 100, 3, x}; });
        fill(&target, [d = d](uint8_t, uint8_t y) { return Pixel{d, 2, 250, y}; });
        expectBlending();
    }
    fill(&source, [](uint8_t x, uint8_t y) { return Pixel{x, x, x, y}; });
    fill(&target, [](uint8_t, uint8_t) { return Pixel{7, 7, 7, 0}; });
    expectBlending();
}

TEST(SkCanvasTest, DrawRectBlendsLikeTheSlowModel) {
    Random random(21);
    GX_TRACE_SEED(random);
    for (int round = 0; round < 60; ++round) {
        ColorCanvas image(17, 13);
        randomize(&image, random);
        const SkColor color = random.word() | 0x01000000;
        SkPaint paint;
        paint.setColor(color);
        const auto byte = [color](int shift) { return static_cast<uint8_t>(color >> shift); };
        expectSourceOver(
            image,
            [&](int, int) {
                return Pixel{byte(16), byte(8), byte(0), byte(24)};
            },
            [&](SkCanvas& canvas) { canvas.drawRect(SkRect::MakeWH(17, 13), paint); });
    }
}

// The call draws the pixels of the rectangle and no others.
template <typename Draw>
void expectTouched(const SkIRect& pixels, Draw draw, SkRect clip = SkRect::MakeWH(40, 40)) {
    ColorCanvas image(40, 40);
    SkCanvas canvas(image.bitmap);
    canvas.clipRect(clip, SkClipOp::kIntersect, false);
    draw(canvas);
    for (int y = 0; y < 40; ++y) {
        for (int x = 0; x < 40; ++x) {
            const bool inside =
                x >= pixels.fLeft && x < pixels.fRight && y >= pixels.fTop && y < pixels.fBottom;
            ASSERT_EQ(image.at(x, y)[3], inside ? 255 : 0) << x << ", " << y;
        }
    }
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
        SCOPED_TRACE(testing::Message() << &c - cases);
        expectTouched(c.pixels, [&](SkCanvas& canvas) { canvas.drawRect(c.rect, SkPaint()); });
        const auto color = [](SkCanvas& canvas) { canvas.drawColor(SK_ColorBLACK); };
        // As a clip the same pixels; what is not finite leaves the clip alone.
        expectTouched(c.rect.isFinite() ? c.pixels : SkIRect::MakeWH(40, 40), color, c.rect);
    }
    // Clips only shrink.
    const auto clipTwice = [](SkCanvas& canvas) {
        canvas.clipRect(SkRect::MakeLTRB(0, 10, 20, 60), SkClipOp::kIntersect, true);
        canvas.clipRect(SkRect::MakeLTRB(0, 0, 40, 40), SkClipOp::kDifference, false);
        canvas.drawColor(SK_ColorBLACK);
    };
    expectTouched(SkIRect::MakeLTRB(5, 10, 20, 30), clipTwice, SkRect::MakeLTRB(5, 0, 60, 30));
    expectTouched(SkIRect::MakeEmpty(), clipTwice, SkRect::MakeLTRB(5, 0, 60, 9));
    SkPaint stroke;
    stroke.setStyle(SkPaint::kStroke_Style);
    expectTouched(SkIRect::MakeEmpty(),
                  [&](SkCanvas& canvas) { canvas.drawRect(SkRect::MakeWH(9, 9), stroke); });
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

SkPaint paintOf(const Pixel& color) {
    SkPaint paint;
    paint.setColor(SkColorSetARGB(color[3], color[0], color[1], color[2]));
    return paint;
}

TEST(SkCanvasTest, DrawColorBlendModes) {
    const Pixel old = {10, 20, 30, 64}, half = {200, 100, 50, 128};
    const struct {
        SkBlendMode mode;
        Pixel color, after;
    } cases[] = {
        {SkBlendMode::kClear, half, {}},
        {SkBlendMode::kSrc, half, half},
        {SkBlendMode::kSrc, {}, {}},
        {SkBlendMode::kDst, half, old},
        {SkBlendMode::kSrcOver, half, sourceOver(half, old)},
        {SkBlendMode::kDstOver, half, sourceOver(old, half)},
    };
    for (const auto& c : cases) {
        ColorCanvas image(1, 1);
        image.bytes.assign(old.begin(), old.end());
        SkCanvas(image.bitmap).drawColor(paintOf(c.color).getColor(), c.mode);
        EXPECT_EQ(image.at(0, 0), c.after);
    }
}

TEST(SkCanvasTest, PaintsOnEveryKindOfPixel) {
    ColorCanvas picture(1, 1);
    picture.bytes = {200, 100, 50, 255};
    uint8_t coverage = 128;
    SkBitmap mask;
    ASSERT_TRUE(mask.installPixels(SkImageInfo::MakeA8(1, 1), &coverage, 1));
    const auto drawRect = [](SkCanvas& c, const SkPaint& p) {
        c.drawRect(SkRect::MakeWH(1, 1), p);
    };
    const auto drawPicture = [&](SkCanvas& c, const SkPaint& p) {
        c.drawBitmap(picture.bitmap, 0, 0, &p);
    };
    const auto drawMask = [&](SkCanvas& c, const SkPaint& p) { c.drawBitmap(mask, 0, 0, &p); };
    const Pixel clear = {200, 100, 50, 0};
    const struct {
        SkAlphaType alphaType;
        Pixel before;
        std::function<void(SkCanvas&, const SkPaint&)> draw;
        Pixel color, after;
    } cases[] = {
        // A colour of alpha 0 leaves every byte.
        {kUnpremul_SkAlphaType, clear, drawRect, {9, 9, 9, 0}, clear},
        {kUnpremul_SkAlphaType, clear, drawPicture, {9, 9, 9, 0}, clear},
        // Alpha scales a bitmap; a mask takes the colour.
        {kUnpremul_SkAlphaType, {}, drawPicture, {255, 0, 0, 51}, {200, 100, 50, 51}},
        {kUnpremul_SkAlphaType, {}, drawMask, {1, 2, 3, 255}, {1, 2, 3, 128}},
        {kPremul_SkAlphaType, {}, drawRect, {255, 0, 100, 128}, {128, 0, 50, 128}},
        {kOpaque_SkAlphaType, {0, 0, 200, 3}, drawRect, {255, 0, 100, 128}, {128, 0, 150, 255}},
    };
    for (const auto& c : cases) {
        ColorCanvas image(1, 1, c.alphaType);
        image.bytes.assign(c.before.begin(), c.before.end());
        SkCanvas canvas(image.bitmap);
        c.draw(canvas, paintOf(c.color));
        EXPECT_EQ(image.at(0, 0), c.after);
    }
    SkCanvas(mask).drawColor(SkColorSetARGB(100, 0, 0, 0));
    EXPECT_EQ(coverage, 178);  // 100 + 128 * 155 / 255, rounded
}

}  // namespace
}  // namespace gxtest
