#include "support/GoldenImage.h"

#include <png.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace gxtest {

namespace {

// PNG_FORMAT_BGRA bytes are the words of an Image on a little-endian machine.
png_image header(const Image& image) {
    png_image png;
    std::memset(&png, 0, sizeof(png));
    png.version = PNG_IMAGE_VERSION;
    png.format = PNG_FORMAT_BGRA;
    png.width = static_cast<png_uint_32>(image.width);
    png.height = static_cast<png_uint_32>(image.height);
    return png;
}

Image sideBySide(const Image& expected, const Image& actual) {
    const int width = std::max(expected.width, actual.width);
    const int height = std::max(expected.height, actual.height);
    Image result{3 * width, height, std::vector<uint32_t>(size_t{3} * width * height, 0xFF808080u)};
    const auto at = [](const Image& image, int x, int y) {
        return x < image.width && y < image.height ? image.pixels[size_t(y) * image.width + x] : 0u;
    };
    for (int y = 0; y < height; ++y) {
        uint32_t* row = &result.pixels[size_t(y) * result.width];
        for (int x = 0; x < width; ++x) {
            row[x] = at(expected, x, y);
            row[width + x] = at(expected, x, y) == at(actual, x, y) ? 0xFF000000u : 0xFFFF0000u;
            row[2 * width + x] = at(actual, x, y);
        }
    }
    return result;
}

}  // namespace

bool readPng(const std::string& path, Image& image) {
    png_image png = header(image);
    if (!png_image_begin_read_from_file(&png, path.c_str())) return false;
    png.format = PNG_FORMAT_BGRA;
    image.width = static_cast<int>(png.width);
    image.height = static_cast<int>(png.height);
    image.pixels.resize(size_t{png.width} * png.height);
    return png_image_finish_read(&png, nullptr, image.pixels.data(), 0, nullptr) != 0;
}

bool writePng(const std::string& path, const Image& image) {
    png_image png = header(image);
    return png_image_write_to_file(&png, path.c_str(), 0, image.pixels.data(), 0, nullptr) != 0;
}

testing::AssertionResult matchesGolden(const Image& actual, const std::string& name) {
    const std::string path = GXTEXT_GOLDEN_DIR "/" + name + ".png";
    if (std::getenv("GXTEXT_UPDATE_GOLDEN")) {
        const bool written = writePng(path, actual);
        return testing::AssertionFailure()
               << (written ? "golden replaced, look at it: " : "cannot write ") << path;
    }
    Image expected;
    if (!readPng(path, expected)) return testing::AssertionFailure() << "cannot read " << path;
    if (expected == actual) return testing::AssertionSuccess();
    const std::string difference = name + "-difference.png";
    writePng(difference, sideBySide(expected, actual));
    return testing::AssertionFailure() << name << " differs from its golden: see " << difference
                                       << " (expected | difference | actual)";
}

}  // namespace gxtest
