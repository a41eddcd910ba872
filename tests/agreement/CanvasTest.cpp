// Blending, and the placing of letters, against CanvasKit, which is the device's canvas built for
// WebAssembly.
#include <gtest/gtest.h>

#include <sys/wait.h>

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <map>
#include <string>

#include "Figure.h"
#include "SkCanvas.h"
#include "platform/FreeTypeReference.h"
#include "platform/PlainBlend.h"
#include "platform/SkDrawing.h"
#include "support/Fonts.h"
#include "support/Random.h"
#include "support/TempFolder.h"

namespace gxtest {
namespace {

constexpr int kSize = 256;
constexpr int kTile = 8;
constexpr int kPlaces = 81;
constexpr float kPictures[][3] = {{6, 1, 0},   {24, 1, 0},  {40, 1, 0},     {64, 0.5f, 0},
                                  {109, 1, 0}, {150, 1, 0}, {90, 1, -0.25f}};
constexpr size_t kBytes = size_t{4} * kSize * kSize;

std::string readFile(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

// Every pair of alphas, colours and edges at random.
std::string makeJob(Random& random) {
    std::string bytes;
    const auto add = [&](int alpha) {
        for (int c = 0; c < 3; ++c) bytes += static_cast<char>(random.edgeByte());
        bytes += static_cast<char>(alpha);
    };
    for (int i = 0; i < kSize * kSize; ++i) add(i % kSize);
    for (int i = 0; i < kSize * kSize; ++i) add(i / kSize);
    return bytes;
}

SkBitmap overPixels(char* pixels) {
    SkBitmap bitmap;
    EXPECT_TRUE(
        bitmap.installPixels(SkImageInfo::Make(kSize, kSize, kRGBA_8888_SkColorType,
                                               kUnpremul_SkAlphaType, SkColorSpace::MakeSRGB()),
                             pixels, size_t{4} * kSize));
    return bitmap;
}

Pixel pixelAt(const char* picture, int x, int y) {
    Pixel pixel;
    std::copy_n(picture + 4 * (static_cast<size_t>(y) * kSize + x), 4, pixel.begin());
    return pixel;
}

// As blend.cjs says.
void drawRectangles(const char* source, const SkBitmap& target) {
    for (int y = 0; y < kSize; y += kTile) {
        for (int x = 0; x < kSize; x += kTile) {
            const Pixel color = pixelAt(source, x, y);
            const Pixel edges = pixelAt(source, x + 1, y);
            const auto edge = [&](int i) { return static_cast<int8_t>(edges[i]) / 16.0f; };
            const auto left = static_cast<float>(x);
            const auto top = static_cast<float>(y);
            SkPaint paint;
            paint.setColor(SkColorSetARGB(color[3], color[0], color[1], color[2]));
            SkCanvas canvas(target);
            canvas.clipRect(SkRect::MakeLTRB(left, top, left + kTile, top + kTile),
                            SkClipOp::kIntersect, false);
            canvas.drawRect(
                SkRect::MakeLTRB(left + edge(0), top + edge(1), left + edge(2), top + edge(3)),
                paint);
        }
    }
}

// WebAssembly rounds by adding a half and cutting off, the processors of devices to the nearest and
// to even, as is done here; all else has to be the same.
void compare(const std::string& job, const std::string& ours, const char* theirs, bool rectangles,
             Figure* figure) {
    for (int y = 0; y < kSize; ++y) {
        for (int x = 0; x < kSize; ++x) {
            const Pixel got = pixelAt(ours.data(), x, y);
            const Pixel expected = pixelAt(theirs, x, y);
            if (figure->add(got == expected)) continue;
            const Pixel source = rectangles
                                     ? pixelAt(job.data(), x / kTile * kTile, y / kTile * kTile)
                                     : pixelAt(job.data(), x, y);
            const auto exact = sourceOverExactly(source, pixelAt(job.data() + kBytes, x, y));
            for (int c = 0; c < 4; ++c) {
                ASSERT_EQ(got[c], std::nearbyint(exact[c])) << exact[c];
                ASSERT_EQ(expected[c], std::floor(exact[c] + 0.5f)) << exact[c];
            }
        }
    }
}

// What CanvasKit draws; the reason where it cannot be had.
struct Peer {
    std::string pictures;
    std::string missing;
};

Peer drawByCanvasKit(const std::string& jobs) {
    const TempFolder folder;
    const std::string errors = folder.path("errors");
    const std::string command =
        std::string("'" GXTEXT_CANVASKIT_RUN "' '" GXTEXT_CANVASKIT_BUILD "' '") +
        fontPath(kDejaVuSans) + "' '" + fontPath(kNotoColorEmoji) + "' < '" +
        folder.write("jobs", jobs) + "' > '" + folder.path("pictures") + "' 2> '" + errors + "'";
    const int status = std::system(command.c_str());
    if (WIFEXITED(status) && WEXITSTATUS(status) == 77) return {"", readFile(errors)};
    EXPECT_EQ(status, 0) << readFile(errors);
    return {readFile(folder.path("pictures")), ""};
}

void comparePictures(const std::string& jobs, const std::string& pictures) {
    Figure bitmaps("bitmap over bitmap against CanvasKit, pixels");
    Figure rectangles("rectangles over bitmap against CanvasKit, pixels");
    bitmaps.note = rectangles.note = "; all of them halves, rounded up there and to even here";
    for (size_t at = 0; at < jobs.size(); at += 2 * kBytes) {
        const std::string job = jobs.substr(at, 2 * kBytes);
        std::string source = job.substr(0, kBytes);
        std::string target = job.substr(kBytes);
        SkCanvas(overPixels(target.data())).drawBitmap(overPixels(source.data()), 0, 0);
        compare(job, target, &pictures[at], false, &bitmaps);
        target = job.substr(kBytes);
        drawRectangles(source.data(), overPixels(target.data()));
        compare(job, target, &pictures[at + kBytes], true, &rectangles);
    }
}

// Its letters are hinted otherwise: their own coverage is taken and its blending done by hand, as
// it is for the letters drawn here in the tests of the text stack. Opaque text only: with other
// alphas the releases of the canvas differ.
void compareMasks(const std::string& dest, const std::string& coverage,
                  const std::string& blended) {
    Figure figure("text over masks against CanvasKit, pixels");
    for (size_t i = 0; i < blended.size(); ++i) {
        const uint8_t expected =
            overMask(static_cast<uint8_t>(dest[i]), static_cast<uint8_t>(coverage[i]), 255);
        EXPECT_TRUE(figure.add(static_cast<uint8_t>(blended[i]) == expected));
    }
}

void comparePictureGlyphs(const std::string& masks) {
    Figure figure("emoji against CanvasKit, pixels");
    const sk_sp<SkTypeface> typeface = loadTypeface(kNotoColorEmoji);
    const SkGlyphID glyph = FreeTypeReference(fontBytes(kNotoColorEmoji)).glyph(0x1F600);
    int widest = 0;
    size_t at = 0;
    for (const auto& [size, scaleX, skewX] : kPictures) {
        MaskCanvas ours(kSize, kSize);
        ours.draw(SkFont(typeface, size, scaleX, skewX), {{glyph, 20, 190}});
        for (const uint8_t pixel : ours.pixels) {
            const int difference = std::abs(pixel - static_cast<uint8_t>(masks[at++]));
            figure.add(difference == 0);
            widest = std::max(widest, difference);
        }
    }
    figure.note = ", by " + std::to_string(widest) + " of 255 at most";
    EXPECT_LE(widest, 1);
}

// Which positions give the same picture says how they are rounded, whatever the letter looks like.
void comparePositions(const std::string& firsts) {
    Figure figure("rounding of positions against CanvasKit, positions");
    const SkGlyphID glyph = FreeTypeReference(fontBytes(kDejaVuSans)).glyph('g');
    SkFont font(loadTypeface(kDejaVuSans), 20);
    size_t at = 0;
    for (const bool subpixel : {false, true}) {
        font.setSubpixel(subpixel);
        std::map<std::string, int> known;
        for (int i = 0; i < kPlaces * kPlaces; ++i, at += 2) {
            MaskCanvas mask(64, 64);
            mask.draw(font, {{glyph, 20 + static_cast<float>(i % kPlaces) / 64,
                              30 + static_cast<float>(i / kPlaces) / 64}});
            const int first =
                known.emplace(std::string(mask.pixels.begin(), mask.pixels.end()), i).first->second;
            const int expected =
                static_cast<uint8_t>(firsts[at]) | static_cast<uint8_t>(firsts[at + 1]) << 8;
            EXPECT_TRUE(figure.add(first == expected)) << i << (subpixel ? " subpixel" : "");
        }
    }
}

TEST(CanvasTest, PixelsAreCanvasKits) {
    constexpr int kJobs = 16;
    Random random(41);
    GX_TRACE_SEED(random);
    std::string jobs;
    for (int i = 0; i < kJobs; ++i) jobs += makeJob(random);
    const Peer peer = drawByCanvasKit(jobs);
    if (!peer.missing.empty()) GTEST_SKIP() << peer.missing;
    constexpr size_t kPixels = size_t{kSize} * kSize;
    ASSERT_EQ(peer.pictures.size(),
              jobs.size() + (2 + std::size(kPictures)) * kPixels + size_t{4} * kPlaces * kPlaces);
    comparePictures(jobs, peer.pictures);
    compareMasks(jobs, peer.pictures.substr(jobs.size(), kPixels),
                 peer.pictures.substr(jobs.size() + kPixels, kPixels));
    comparePictureGlyphs(
        peer.pictures.substr(jobs.size() + 2 * kPixels, std::size(kPictures) * kPixels));
    comparePositions(peer.pictures.substr(jobs.size() + (2 + std::size(kPictures)) * kPixels));
}

}  // namespace
}  // namespace gxtest
