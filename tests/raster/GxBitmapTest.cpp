#include "raster/GxBitmap.h"

#include <gtest/gtest.h>

#include <numeric>
#include <string>
#include <vector>

#include "support/AllocationFailure.h"

namespace GxFontEffect {
namespace {

std::vector<uint8_t> counting(size_t count) {
    std::vector<uint8_t> bytes(count);
    std::iota(bytes.begin(), bytes.end(), uint8_t{1});
    return bytes;
}

std::vector<uint8_t> bytesOf(const GxBitmap& bitmap) {
    const size_t size = bitmap.pixelCount() * bitmap.bytesPerPixel;
    return {bitmap.data, bitmap.data + size};
}

TEST(GxBitmap, FormatFollowsBytesPerPixel) {
    EXPECT_EQ(GxBitmap(2, 2, 4).format, 1u);
    EXPECT_EQ(GxBitmap(2, 2, 1).format, 2u);
    EXPECT_EQ(GxBitmap(2, 2, 3).format, 2u);
    EXPECT_EQ(bytesOf(GxBitmap(3, 2, 4)), std::vector<uint8_t>(24, 0));
    EXPECT_NE(GxBitmap(0, 5, 4).data, nullptr) << "empty is not failed";
}

TEST(GxBitmap, CopiesAreDeep) {
    std::vector<uint8_t> pixels = counting(12);
    const GxBitmap original(3, 1, pixels.data(), 4);
    pixels[0] = 99;
    GxBitmap copy(original);
    EXPECT_EQ(bytesOf(copy), counting(12));
    EXPECT_NE(copy.data, original.data);

    GxBitmap assigned(7, 7, 1);
    assigned = copy;
    EXPECT_EQ(assigned.width, 3u);
    EXPECT_EQ(assigned.format, 1u);
    EXPECT_EQ(bytesOf(assigned), counting(12));
    const GxBitmap& same = assigned;
    assigned = same;
    EXPECT_EQ(bytesOf(assigned), counting(12));

    copy = GxBitmap();
    EXPECT_EQ(copy.data, nullptr);
    EXPECT_EQ(GxBitmap(copy).data, nullptr);
    EXPECT_EQ(GxBitmap(2, 2, nullptr, 1).data, nullptr);
}

TEST(GxBitmap, CropsMasks) {
    const std::vector<uint8_t> pixels = counting(12);  // 4 x 3: 1 2 3 4 / 5 6 7 8 / 9 10 11 12
    const GxBitmap source(4, 3, pixels.data(), 1);
    struct Case {
        GxRect rect;
        uint32_t width, height;
        std::vector<uint8_t> expected;
    };
    const Case cases[] = {
        {{1, 1, 3, 3}, 2, 2, {6, 7, 10, 11}},
        {{0, 0, 4, 3}, 4, 3, pixels},
        {{-1, -1, 1, 1}, 2, 2, {0, 0, 0, 1}},
        {{3, 2, 6, 4}, 3, 2, {12, 0, 0, 0, 0, 0}},
        {{3, 0, 1, 1}, 2, 1, {0, 0}},      // the wrong way round: a size, nothing copied
        {{10, 10, 11, 12}, 1, 2, {0, 0}},  // outside
        {{-2000000000, 0, -1999999999, 1}, 1, 1, {0}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::to_string(c.rect.left) + "," + std::to_string(c.rect.top));
        const GxBitmap crop(source, &c.rect);
        EXPECT_EQ(crop.width, c.width);
        EXPECT_EQ(crop.height, c.height);
        EXPECT_EQ(bytesOf(crop), c.expected);
    }
    EXPECT_EQ(GxBitmap(source, nullptr).data, nullptr);
}

// Other formats are cropped byte-wise with the pixel width as the stride; only the first quarter is
// filled.
TEST(GxBitmap, CropOfAColourBitmapIsByteWise) {
    const std::vector<uint8_t> pixels = counting(4 * 4 * 2);
    const GxBitmap source(4, 2, pixels.data(), 4);
    const GxRect rect(1, 0, 3, 2);
    const GxBitmap crop(source, &rect);
    ASSERT_EQ(crop.bytesPerPixel, 4u);
    EXPECT_EQ(std::vector<uint8_t>(crop.data, crop.data + 4), (std::vector<uint8_t>{2, 3, 6, 7}));
}

TEST(GxBitmap, SizesThatDoNotFitHaveNoData) {
    EXPECT_EQ(GxBitmap(0xFFFFFFFFu, 0xFFFFFFFFu, 4).data, nullptr);
    EXPECT_EQ(GxBitmap(0x80000000u, 0x80000000u, 4).data, nullptr);  // 2^64 bytes
    EXPECT_EQ(GxBitmap(0x80000000u, 0x80000000u, 1).data, nullptr);
    const GxRect everything(INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX);
    EXPECT_EQ(everything.width(), 0xFFFFFFFFu);
    EXPECT_EQ(GxBitmap(GxBitmap(2, 2, 4), &everything).data, nullptr);
}

TEST(GxBitmap, FailedAllocationLeavesNoData) {
    const std::vector<uint8_t> pixels = counting(4);
    const GxBitmap source(2, 2, pixels.data(), 1);
    const GxRect rect(0, 0, 1, 1);
    const auto make = [&] {
        const GxBitmap zeroed(2, 2, 1), copied(2, 2, pixels.data(), 1), crop(source, &rect);
        GxBitmap assigned;
        assigned = source;
        EXPECT_EQ(assigned.width, 2u);
        for (const GxBitmap* bitmap : {&zeroed, &copied, &crop}) {
            const GxBitmap again(*bitmap);
            EXPECT_EQ(again.width, bitmap->width);
        }
    };
    EXPECT_EQ(gxtest::failEachAllocation(make), 7);
}

}  // namespace
}  // namespace GxFontEffect
