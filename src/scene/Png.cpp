#include "scene/Png.h"

#include <png.h>

#include <bit>
#include <memory>

#include "scene/SceneError.h"

namespace gxtext {

namespace {

// The simplified API reports errors in the record instead of jumping over destructors.
struct PngImage {
    png_image record{};

    PngImage() { record.version = PNG_IMAGE_VERSION; }
    PngImage(const PngImage&) = delete;
    PngImage& operator=(const PngImage&) = delete;
    ~PngImage() { png_image_free(&record); }

    [[noreturn]] void fail(const std::string& place) const {
        throw PictureError(place, record.message);
    }
};

// The bytes of a word 0xAARRGGBB as they lie in memory.
constexpr png_uint_32 kWordFormat =
    std::endian::native == std::endian::little ? PNG_FORMAT_BGRA : PNG_FORMAT_ARGB;

void checkPixels(const std::string& place, uint64_t width, uint64_t height, uint64_t limit) {
    if (width * height <= limit) return;
    throw PictureError(place, std::to_string(width) + " x " + std::to_string(height) + " pixels",
                       "up to " + std::to_string(limit) + " in all");
}

}  // namespace

void checkPictureSize(const std::string& place, uint64_t width, uint64_t height) {
    checkPixels(place, width, height, kMaxPixels);
}

std::string encodePng(const uint32_t* pixels, uint32_t width, uint32_t height) {
    if (!pixels || width == 0 || height == 0) throw PictureError("the picture", "no pixels");
    PngImage image;
    image.record.width = width;
    image.record.height = height;
    image.record.format = kWordFormat;
    // An upper bound: deflate may grow what it cannot compress. Only what is used of it is touched.
    png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image.record);
    const std::unique_ptr<char[]> bytes(new char[size]);
    if (!png_image_write_to_memory(&image.record, bytes.get(), &size, 0, pixels, 0, nullptr)) {
        image.fail("the picture");
    }
    return std::string(bytes.get(), size);
}

Image decodePng(std::string_view bytes, const std::string& name) {
    PngImage source;
    if (!png_image_begin_read_from_memory(&source.record, bytes.data(), bytes.size())) {
        source.fail(name);
    }
    Image image;
    image.width = source.record.width;
    image.height = source.record.height;
    checkPixels(name, image.width, image.height, kMaxReadPixels);
    source.record.format = kWordFormat;
    image.pixels.resize(size_t{image.width} * image.height);
    if (!png_image_finish_read(&source.record, nullptr, image.pixels.data(), 0, nullptr)) {
        source.fail(name);
    }
    return image;
}

}  // namespace gxtext
