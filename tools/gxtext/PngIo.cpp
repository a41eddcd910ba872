#include "PngIo.h"

#include <png.h>

#include <cstring>
#include <memory>

#include "ToolError.h"

namespace gxtool {

namespace {

// The simplified API reports errors in the record instead of jumping over destructors.
struct PngImage {
    png_image record{};

    PngImage() { record.version = PNG_IMAGE_VERSION; }
    PngImage(const PngImage&) = delete;
    PngImage& operator=(const PngImage&) = delete;
    ~PngImage() { png_image_free(&record); }

    [[noreturn]] void fail(const std::string& task) const {
        throw ToolError(task + ": " + record.message);
    }
};

std::vector<uint8_t> toRgba(const uint32_t* pixels, size_t count) {
    std::vector<uint8_t> bytes(count * 4);
    for (size_t i = 0; i < count; i++) {
        bytes[4 * i] = static_cast<uint8_t>(pixels[i] >> 16);
        bytes[4 * i + 1] = static_cast<uint8_t>(pixels[i] >> 8);
        bytes[4 * i + 2] = static_cast<uint8_t>(pixels[i]);
        bytes[4 * i + 3] = static_cast<uint8_t>(pixels[i] >> 24);
    }
    return bytes;
}

}  // namespace

std::string encodePng(const uint32_t* pixels, uint32_t width, uint32_t height) {
    if (!pixels || width == 0 || height == 0) throw ToolError("the picture has no pixels");
    PngImage image;
    image.record.width = width;
    image.record.height = height;
    image.record.format = PNG_FORMAT_RGBA;
    const std::vector<uint8_t> rgba = toRgba(pixels, size_t{width} * height);
    // An upper bound: deflate may grow what it cannot compress.
    png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image.record);
    std::string bytes(size, '\0');
    if (!png_image_write_to_memory(&image.record, bytes.data(), &size, 0, rgba.data(), 0,
                                   nullptr)) {
        image.fail("cannot encode the picture");
    }
    bytes.resize(size);
    return bytes;
}

Image decodePng(std::string_view bytes, const std::string& name) {
    PngImage source;
    if (!png_image_begin_read_from_memory(&source.record, bytes.data(), bytes.size())) {
        source.fail(name);
    }
    Image image;
    image.width = source.record.width;
    image.height = source.record.height;
    if (uint64_t{image.width} * image.height > kMaxPixels) {
        throw ToolError(name + ": " + std::to_string(image.width) + " x " +
                        std::to_string(image.height) + " pixels are too many");
    }
    source.record.format = PNG_FORMAT_RGBA;
    std::vector<uint8_t> rgba(PNG_IMAGE_SIZE(source.record));
    if (!png_image_finish_read(&source.record, nullptr, rgba.data(), 0, nullptr)) source.fail(name);
    image.pixels.resize(size_t{image.width} * image.height);
    for (size_t i = 0; i < image.pixels.size(); i++) {
        const uint8_t* p = rgba.data() + 4 * i;
        image.pixels[i] = uint32_t{p[3]} << 24 | uint32_t{p[0]} << 16 | uint32_t{p[1]} << 8 | p[2];
    }
    return image;
}

}  // namespace gxtool
