#include "support/GoldenImage.h"

#include <png.h>

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
    const char* const given = std::getenv("GXTEXT_GOLDEN_OUT");
    const std::string folder = given ? given : ".";
    if (given && !writePng(folder + "/" + name + ".png", actual)) {
        return testing::AssertionFailure() << "cannot write into " << folder;
    }
    Image expected;
    if (readPng(path, expected) && expected == actual) return testing::AssertionSuccess();
    const std::string written = folder + "/" + name + ".png";
    if (!given) writePng(written, actual);
    return testing::AssertionFailure()
           << name << " differs from its golden: gxtext compare --diff difference.png " << path
           << " " << written << " shows how, make goldens replaces it";
}

}  // namespace gxtest
