#include "scene/PictureDifference.h"

#include <algorithm>
#include <cstdlib>

namespace gxtext {

namespace {

bool holds(const Image& image, uint32_t x, uint32_t y) {
    return x < image.width && y < image.height;
}

uint32_t pixelAt(const Image& image, uint32_t x, uint32_t y) {
    return holds(image, x, y) ? image.pixels[size_t{y} * image.width + x] : 0;
}

int channel(uint32_t argb, int shift) {
    return static_cast<int>(argb >> shift & 0xFF);
}

// Of the channel that differs most.
int distanceAt(const Image& before, const Image& after, uint32_t x, uint32_t y) {
    if (holds(before, x, y) != holds(after, x, y)) return 255;
    const uint32_t a = pixelAt(before, x, y), b = pixelAt(after, x, y);
    int largest = 0;
    for (const int shift : {24, 16, 8, 0}) {
        largest = std::max(largest, std::abs(channel(a, shift) - channel(b, shift)));
    }
    return largest;
}

uint32_t grayOf(int value) {
    return 0xFF000000u | static_cast<uint32_t>(value) * 0x010101u;
}

uint32_t onCheckerboard(const Image& image, uint32_t x, uint32_t y) {
    if (!holds(image, x, y)) return grayOf(0x60);
    constexpr uint32_t kSquare = 8;
    const int ground = (x / kSquare + y / kSquare) % 2 == 0 ? 0xFF : 0xD0;
    const uint32_t pixel = pixelAt(image, x, y);
    const int alpha = channel(pixel, 24);
    uint32_t result = 0xFF;
    for (const int shift : {16, 8, 0}) {
        const int mixed = (channel(pixel, shift) * alpha + ground * (255 - alpha) + 127) / 255;
        result = result << 8 | static_cast<uint32_t>(mixed);
    }
    return result;
}

}  // namespace

PictureDifference comparePictures(const Image& before, const Image& after, int tolerance) {
    PictureDifference result;
    result.sameSize = before.width == after.width && before.height == after.height;
    const uint32_t width = std::max(before.width, after.width);
    const uint32_t height = std::max(before.height, after.height);
    for (uint32_t y = 0; y < height; y++) {
        for (uint32_t x = 0; x < width; x++) {
            const bool isInNone = !holds(before, x, y) && !holds(after, x, y);
            const int distance = isInNone ? 0 : distanceAt(before, after, x, y);
            result.pixels += distance > tolerance;
            result.largest = std::max(result.largest, distance);
        }
    }
    return result;
}

Image drawDifference(const Image& before, const Image& after, int tolerance) {
    const uint32_t width = std::max(before.width, after.width);
    const uint32_t height = std::max(before.height, after.height);
    checkPictureSize("the difference", uint64_t{3} * width, height);
    Image result{3 * width, height, {}};
    result.pixels.resize(size_t{result.width} * height);
    for (uint32_t y = 0; y < height; y++) {
        uint32_t* row = &result.pixels[size_t{y} * result.width];
        for (uint32_t x = 0; x < width; x++) {
            row[x] = onCheckerboard(before, x, y);
            row[width + x] = onCheckerboard(after, x, y);
            const int distance = distanceAt(before, after, x, y);
            // Visible even where it is 1.
            const auto red = static_cast<uint32_t>(std::min(255, 96 + distance));
            row[2 * width + x] = distance > tolerance ? 0xFF000000u | red << 16 : grayOf(0);
        }
    }
    return result;
}

}  // namespace gxtext
