#include "PngCurve.h"

#include <libdeflate.h>
#include <png.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <vector>

#include "scene/FontSource.h"
#include "scene/Renderer.h"
#include "style/Style.h"

namespace gxbench {

namespace {

using gxtext::Picture;

constexpr int kBytesPerPixel = 4;

// Rows as libdeflate gets them, a byte for the filter before each.
struct Rows {
    std::vector<uint8_t> bytes;
    size_t rowBytes;  // that byte included
};

Rows rowsOf(const Picture& picture) {
    const auto width = static_cast<size_t>(picture.width());
    const auto height = static_cast<size_t>(picture.height());
    Rows rows{{}, 1 + kBytesPerPixel * width};
    rows.bytes.reserve(rows.rowBytes * height);
    for (size_t i = 0; i < width * height; ++i) {
        if (i % width == 0) rows.bytes.push_back(0);
        const uint32_t argb = picture.pixels()[i];
        for (const int shift : {16, 8, 0, 24}) {
            rows.bytes.push_back(static_cast<uint8_t>(argb >> shift));
        }
    }
    return rows;
}

Rows differences(Rows rows) {
    constexpr uint8_t kUp = 2;
    uint8_t* bytes = rows.bytes.data();
    for (size_t i = rows.bytes.size() - 1; i >= rows.rowBytes; --i) {
        if (i % rows.rowBytes != 0) {
            bytes[i] = static_cast<uint8_t>(bytes[i] - bytes[i - rows.rowBytes]);
        }
    }
    for (size_t i = 0; i < rows.bytes.size(); i += rows.rowBytes) bytes[i] = kUp;
    return rows;
}

size_t deflated(const Rows& rows, int level) {
    libdeflate_compressor* compressor = libdeflate_alloc_compressor(level);
    std::vector<uint8_t> out(libdeflate_zlib_compress_bound(compressor, rows.bytes.size()));
    const size_t size = libdeflate_zlib_compress(compressor, rows.bytes.data(), rows.bytes.size(),
                                                 out.data(), out.size());
    libdeflate_free_compressor(compressor);
    return size;
}

size_t byLibpng(const Picture& picture) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(picture.width());
    image.height = static_cast<png_uint_32>(picture.height());
    image.format = PNG_FORMAT_BGRA;
    png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
    std::vector<uint8_t> out(size);
    png_image_write_to_memory(&image, out.data(), &size, 0, picture.pixels().data(), 0, nullptr);
    return size;
}

// How long it took, and the size.
struct Packed {
    double seconds = 0;
    double size = 0;
};

Packed timed(const std::function<size_t()>& pack) {
    Packed best{1e9, 0};
    constexpr int kRuns = 3;
    constexpr double kLong = 0.05;  // needs no repetition
    for (int i = 0; i < kRuns && (i == 0 || best.seconds < kLong); ++i) {
        const auto start = std::chrono::steady_clock::now();
        best.size = static_cast<double>(pack());
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
        best.seconds = std::min(best.seconds, taken.count());
    }
    return best;
}

std::vector<Picture> galleryPictures() {
    std::vector<std::filesystem::path> styles;
    for (const auto& entry : std::filesystem::directory_iterator(GXBENCH_GALLERY)) {
        if (entry.path().extension() == ".json") styles.push_back(entry.path());
    }
    std::sort(styles.begin(), styles.end());
    gxtext::Renderer renderer(gxtext::FontSource::installed());
    std::vector<Picture> pictures;
    for (const auto& file : styles) {
        pictures.push_back(renderer.render(gxtext::Style::fromFile(file)));
    }
    return pictures;
}

// One line over all pictures; `sizes` are libpng's.
void printPacker(const std::string& name, int level, const std::vector<double>& sizes,
                 const std::function<size_t(size_t picture)>& pack) {
    double seconds = 0, logarithms = 0;
    for (size_t i = 0; i < sizes.size(); ++i) {
        const Packed packed = timed([&] { return pack(i); });
        seconds += packed.seconds;
        logarithms += std::log(packed.size / sizes[i]);
    }
    std::printf("%s,%d,%.2f,%.2f\n", name.c_str(), level, seconds * 1e3,
                100 * std::exp(logarithms / static_cast<double>(sizes.size())));
    std::fflush(stdout);
}

}  // namespace

void printPngCurve(const std::string& /*filter*/) {
    const std::vector<Picture> pictures = galleryPictures();
    std::vector<double> sizes;
    std::vector<Rows> plain, up;
    for (const Picture& picture : pictures) {
        sizes.push_back(static_cast<double>(byLibpng(picture)));
        plain.push_back(rowsOf(picture));
        up.push_back(differences(plain.back()));
    }
    std::printf("packer,level,milliseconds,percent\n");
    printPacker("libpng", 6, sizes, [&](size_t i) { return byLibpng(pictures[i]); });
    constexpr int kMostLevel = 12;
    for (int level = 1; level <= kMostLevel; ++level) {
        printPacker("none", level, sizes, [&](size_t i) { return deflated(plain[i], level); });
        printPacker("up", level, sizes, [&](size_t i) { return deflated(up[i], level); });
    }
    for (const auto how : {gxtext::PngCompression::kFast, gxtext::PngCompression::kDefault,
                           gxtext::PngCompression::kSmall}) {
        printPacker("PNG", static_cast<int>(how), sizes,
                    [&](size_t i) { return pictures[i].toPng(how).size(); });
    }
}

}  // namespace gxbench
