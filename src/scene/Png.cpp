#include "scene/Png.h"

#include <libdeflate.h>
#include <png.h>

#include <algorithm>
#include <array>
#include <bit>
#include <csetjmp>
#include <cstdio>
#include <cstring>
#include <memory>
#include <vector>

#include "raster/PlaneMemory.h"
#include "scene/RowDeflate.h"
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

using Bytes = std::unique_ptr<uint8_t[]>;

struct Sized {
    Bytes bytes;
    size_t size = 0;
};

// The filters of PNG that are used: a row as it is, or less the row above.
enum Filter : uint8_t { kNone = 0, kUp = 2 };

// The word's bytes in memory are R, G, B, A.
uint32_t swizzled(uint32_t argb) {
    if constexpr (std::endian::native == std::endian::big) return argb << 8 | argb >> 24;
    return (argb & 0xFF00FF00u) | (argb >> 16 & 0xFF) | (argb & 0xFF) << 16;
}

// Rows as they are compressed, the filter's number before each.
Sized filteredRows(const uint32_t* pixels, uint32_t width, uint32_t height, Filter filter) {
    const size_t rowBytes = size_t{width} * 4;
    const size_t size = (rowBytes + 1) * height;
    Sized rows{Bytes(new uint8_t[size]), size};
    uint8_t* to = rows.bytes.get();
    GxFontEffect::askForLargePages(to, size);
    for (size_t y = 0; y < height; y++, to += rowBytes + 1) {
        *to = filter;
        for (size_t x = 0; x < width; x++) {
            const uint32_t word = swizzled(pixels[y * width + x]);
            std::memcpy(to + 1 + 4 * x, &word, sizeof(word));
        }
    }
    if (filter == kUp) {
        // From below, so that the row above is still as it was.
        for (size_t y = height - 1; y > 0; y--) {
            uint8_t* row = rows.bytes.get() + y * (rowBytes + 1);
            const uint8_t* above = row - (rowBytes + 1);
            for (size_t i = 1; i <= rowBytes; i++) row[i] = static_cast<uint8_t>(row[i] - above[i]);
        }
    }
    return rows;
}

// The knee of the curve of time and size.
constexpr int kSmallLevel = 10;

std::vector<uint8_t> compress(const Sized& rows, int level) {
    struct Free {
        void operator()(libdeflate_compressor* c) const { libdeflate_free_compressor(c); }
    };
    const std::unique_ptr<libdeflate_compressor, Free> compressor(
        libdeflate_alloc_compressor(level));
    if (!compressor) throw PictureError("the picture", "out of memory");
    std::vector<uint8_t> out(libdeflate_zlib_compress_bound(compressor.get(), rows.size));
    out.resize(libdeflate_zlib_compress(compressor.get(), rows.bytes.get(), rows.size, out.data(),
                                        out.size()));
    return out;
}

// Rendered text is flat or smooth: without a filter its repetitions stay whole, but for textures
// that change from pixel to pixel. docs/gxtext.md has what each way costs and saves.
std::vector<uint8_t> imageData(const uint32_t* pixels, uint32_t width, uint32_t height,
                               PngCompression compression) {
    const Sized rows = filteredRows(pixels, width, height, kNone);
    if (compression != PngCompression::kSmall) {
        return deflateRows(
            rows.bytes.get(), rows.size, size_t{width} * 4 + 1,
            compression == PngCompression::kFast ? RowEffort::kLess : RowEffort::kMore);
    }
    std::vector<uint8_t> plain = compress(rows, kSmallLevel);
    std::vector<uint8_t> differences =
        compress(filteredRows(pixels, width, height, kUp), kSmallLevel);
    return differences.size() < plain.size() ? differences : plain;
}

// A file in memory that is written chunk by chunk.
struct PngFile {
    char* bytes = nullptr;
    size_t size = 0;
    size_t room = 0;
    std::array<char, 128> error{};
};

void append(png_structp png, png_bytep data, size_t size) {
    auto* file = static_cast<PngFile*>(png_get_io_ptr(png));
    if (size > file->room - file->size) png_error(png, "the file is longer than it may be");
    std::memcpy(file->bytes + file->size, data, size);
    file->size += size;
}

[[noreturn]] void leave(png_structp png, png_const_charp message) {
    auto* file = static_cast<PngFile*>(png_get_error_ptr(png));
    snprintf(file->error.data(), file->error.size(), "%s", message);
    png_longjmp(png, 1);
}

// False when libpng jumped out. No object here has a destructor that the jump would pass over.
bool writeChunks(png_structp png, png_infop info, uint32_t width, uint32_t height,
                 const std::vector<uint8_t>& data) {
    if (setjmp(png_jmpbuf(png)) != 0) return false;
    png_set_IHDR(png, info, width, height, 8, PNG_COLOR_TYPE_RGB_ALPHA, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_BASE, PNG_FILTER_TYPE_BASE);
    png_set_sRGB(png, info, PNG_sRGB_INTENT_PERCEPTUAL);
    png_write_info(png, info);
    png_write_chunk(png, reinterpret_cast<png_const_bytep>("IDAT"), data.data(), data.size());
    png_write_chunk(png, reinterpret_cast<png_const_bytep>("IEND"), nullptr, 0);
    return true;
}

}  // namespace

void checkPictureSize(const std::string& place, uint64_t width, uint64_t height) {
    checkPixels(place, width, height, kMaxPixels);
}

std::string encodePng(const uint32_t* pixels, uint32_t width, uint32_t height,
                      PngCompression compression) {
    if (!pixels || width == 0 || height == 0) throw PictureError("the picture", "no pixels");
    const std::vector<uint8_t> data = imageData(pixels, width, height, compression);
    // The signature, the header, the colour space and the ends of the chunks.
    constexpr size_t kFrame = 128;
    std::string bytes(data.size() + kFrame, '\0');
    PngFile file{bytes.data(), 0, bytes.size()};
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, &file, leave, nullptr);
    png_infop info = png ? png_create_info_struct(png) : nullptr;
    if (png) png_set_write_fn(png, &file, append, nullptr);
    const bool written = info && writeChunks(png, info, width, height, data);
    png_destroy_write_struct(&png, &info);
    if (!written) {
        throw PictureError("the picture", file.error[0] ? file.error.data() : "out of memory");
    }
    bytes.resize(file.size);
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
    checkPixels(name, image.width, image.height, kMaxReadPixels);
    source.record.format = kWordFormat;
    image.pixels.resize(size_t{image.width} * image.height);
    if (!png_image_finish_read(&source.record, nullptr, image.pixels.data(), 0, nullptr)) {
        source.fail(name);
    }
    return image;
}

}  // namespace gxtext
