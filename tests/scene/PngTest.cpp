#include "scene/Png.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <png.h>

#include <random>

#include "scene/PictureDifference.h"
#include "scene/PictureFile.h"
#include "scene/SceneError.h"

namespace gxtext {
namespace {

Image randomImage(uint32_t width, uint32_t height) {
    std::mt19937 random(width * 31 + height);
    Image image{width, height, {}};
    for (uint32_t i = 0; i < width * height; i++) image.pixels.push_back(random());
    // Colour under alpha 0 and both ends of the range.
    image.pixels[0] = 0x00FF8040u;
    return image;
}

TEST(Png, KeepsEveryPixel) {
    for (const auto& [width, height] :
         {std::pair(1u, 1u), std::pair(3u, 2u), std::pair(257u, 65u)}) {
        const Image image = randomImage(width, height);
        for (const auto how :
             {PngCompression::kFast, PngCompression::kDefault, PngCompression::kSmall}) {
            const std::string bytes = encodePng(image.pixels.data(), width, height, how);
            const Image back = decodePng(bytes, "test");
            EXPECT_EQ(back.width, width);
            EXPECT_EQ(back.height, height);
            EXPECT_EQ(back.pixels, image.pixels);
            EXPECT_EQ(encodePng(image.pixels.data(), width, height, how), bytes);
        }
    }
}

// Of rare and frequent bytes, runs, pairs seen before and rows like the one above: what our own
// ways look for, in blocks of many tokens, with codes longer than the format has.
TEST(Png, KeepsEveryPixelOfRunsAndRepetitions) {
    std::mt19937 random(7);
    std::geometric_distribution<uint32_t> skewed(0.382);
    for (const uint32_t width : {1u, 2u, 61u, 900u, 8191u, 8192u, 9001u}) {
        const uint32_t height = 200000 / width + 1;
        Image image{width, height, {}};
        std::vector<uint32_t>& pixels = image.pixels;
        while (pixels.size() < size_t{width} * height) {
            const size_t length = 1 + random() % (random() % 8 == 0 ? 3000 : 4);
            const size_t far = random() % 3 == 0 ? width : 1 + random() % 12000;
            const uint32_t kind = random() % 4;
            for (size_t i = 0; i < length; i++) {
                uint32_t pixel = 0;
                for (int byte = 0; byte < 4; byte++) pixel = pixel << 8 | (skewed(random) & 0xFF);
                if (kind == 1 && !pixels.empty()) pixel = pixels.back();
                if (kind == 2 && pixels.size() >= far) pixel = pixels[pixels.size() - far];
                pixels.push_back(kind == 3 ? 0 : pixel);
            }
        }
        pixels.resize(size_t{width} * height);
        for (const PngCompression how : {PngCompression::kFast, PngCompression::kDefault}) {
            const std::string bytes = encodePng(pixels.data(), width, height, how);
            EXPECT_EQ(decodePng(bytes, "test").pixels, pixels) << width;
        }
    }
}

TEST(PictureFile, WebpKeepsEveryPixelAndTellsDamage) {
    const Image image = randomImage(97, 41);
    for (const auto how :
         {PngCompression::kFast, PngCompression::kDefault, PngCompression::kSmall}) {
        const std::string bytes = encodeWebp(image.pixels.data(), 97, 41, how);
        const Image back = decodePicture(bytes, "test");
        EXPECT_EQ(back.width, 97u);
        EXPECT_EQ(back.pixels, image.pixels);
        EXPECT_EQ(encodeWebp(image.pixels.data(), 97, 41, how), bytes);
        for (const size_t size : {size_t{12}, size_t{30}, bytes.size() - 1}) {
            EXPECT_THROW(decodePicture(bytes.substr(0, size), "test"), PictureError) << size;
        }
    }
    const std::vector<uint32_t> wide(16384);
    EXPECT_THROW(encodeWebp(wide.data(), 16384, 1, PngCompression::kFast), PictureError);
}

TEST(PictureDifference, CountsPixelsBeyondTheTolerance) {
    const Image before{2, 1, {0xFF102030u, 0x00FFFFFFu}};
    Image after = before;
    EXPECT_EQ(comparePictures(before, after, 0).pixels, 0u);
    after.pixels[0] = 0xFF102A30u;
    EXPECT_EQ(comparePictures(before, after, 0).largest, 10);
    EXPECT_EQ(comparePictures(before, after, 9).pixels, 1u);
    EXPECT_EQ(comparePictures(before, after, 10).pixels, 0u);
    after.pixels[1] = 0;  // as clear as before, and another one
    EXPECT_EQ(comparePictures(before, after, 0).pixels, 2u);
    const Image taller{1, 2, {0xFF102030u, 0}};
    const PictureDifference difference = comparePictures(before, taller, 255);
    EXPECT_FALSE(difference.sameSize);
    EXPECT_EQ(comparePictures(before, taller, 0).pixels, 2u) << "neither has the lower right one";
    const Image drawn = drawDifference(before, taller, 0);
    EXPECT_EQ(drawn.width, 6u);
    EXPECT_EQ(drawn.pixels[0], 0xFF102030u);
    EXPECT_EQ(drawn.pixels[4], 0xFF000000u);
    EXPECT_EQ(drawn.pixels[5], 0xFFFF0000u);
}

// The two filters: rows that repeat, and rows that rise by one from row to row.
TEST(Png, TakesLongerToWriteLess) {
    for (const uint32_t step : {0u, 0x01010101u}) {
        Image image = randomImage(256, 1);
        const std::vector<uint32_t> row = image.pixels;
        for (uint32_t y = 1; y < 64; y++) {
            for (const uint32_t pixel : row) {
                image.pixels.push_back((pixel & 0x7F7F7F7Fu) + y * step);
            }
        }
        const auto sizeOf = [&](PngCompression how) {
            const std::string bytes = encodePng(image.pixels.data(), 256, 64, how);
            EXPECT_EQ(decodePng(bytes, "test").pixels, image.pixels);
            return bytes.size();
        };
        const size_t normal = sizeOf(PngCompression::kDefault);
        EXPECT_LE(normal, sizeOf(PngCompression::kFast) * 101 / 100);
        EXPECT_LE(sizeOf(PngCompression::kSmall), step ? normal / 4 : normal);
    }
}

TEST(Png, WritesNoTimeAndNoText) {
    const Image image = randomImage(4, 4);
    const std::string bytes = encodePng(image.pixels.data(), 4, 4);
    for (const char* chunk : {"tIME", "tEXt", "zTXt", "iTXt"}) {
        EXPECT_EQ(bytes.find(chunk), std::string::npos) << chunk;
    }
}

TEST(Png, SaysWhyAFileIsNoPicture) {
    const Image image = randomImage(16, 16);
    const std::string good = encodePng(image.pixels.data(), 16, 16);
    std::string huge = good;
    huge.replace(16, 8, std::string("\x7F\xFF\xFF\xFF\x7F\xFF\xFF\xFF", 8));
    std::string flipped = good;
    flipped[flipped.size() / 2] = static_cast<char>(flipped[flipped.size() / 2] ^ 0x55);
    for (const std::string& bad : {std::string(), std::string("GIF89a"), good.substr(0, 20),
                                   good.substr(0, good.size() / 2), huge, flipped}) {
        try {
            decodePng(bad, "pattern.png");
            ADD_FAILURE() << "accepted " << bad.size() << " bytes";
        } catch (const SceneError& error) {
            EXPECT_THAT(error.what(), testing::StartsWith("pattern.png: "));
        }
    }
    EXPECT_THROW(encodePng(image.pixels.data(), 0, 4), SceneError);
    EXPECT_THROW(encodePng(nullptr, 4, 4), SceneError);
}

TEST(Png, RefusesPicturesThatDecodeToMoreThanTheLimit) {
    png_image header{};
    header.version = PNG_IMAGE_VERSION;
    header.width = 4097;
    header.height = 4096;
    header.format = PNG_FORMAT_GRAY;
    const std::vector<uint8_t> blank(PNG_IMAGE_SIZE(header));
    png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(header);
    std::string bytes(size, '\0');
    ASSERT_TRUE(
        png_image_write_to_memory(&header, bytes.data(), &size, 0, blank.data(), 0, nullptr));
    bytes.resize(size);
    ASSERT_LT(size, 100000u);
    try {
        decodePng(bytes, "pattern.png");
        FAIL() << "accepted";
    } catch (const SceneError& error) {
        EXPECT_STREQ(error.what(),
                     "pattern.png: 4097 x 4096 pixels; allowed: up to 16777216 in all");
    }
}

}  // namespace
}  // namespace gxtext
