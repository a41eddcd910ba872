// Pictures in and out: PNG, 8 bits per channel, straight alpha.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "scene/Picture.h"

namespace gxtext {

// 0xAARRGGBB words, straight alpha, rows packed, width x height of them.
struct Image {
    uint32_t width = 0;
    uint32_t height = 0;
    std::vector<uint32_t> pixels;
};

// Largest picture that is rendered: 64 Mi pixels, 256 MiB.
constexpr uint64_t kMaxPixels = uint64_t{1} << 26;

// Largest picture that is read: 16 Mi pixels (4,096 x 4,096, say), 64 MiB decoded. A file of a few
// kilobytes can hold as many.
constexpr uint64_t kMaxReadPixels = uint64_t{1} << 24;
// Longest file of one.
constexpr size_t kMaxImageBytes = size_t{64} << 20;

// Throws PictureError for more than kMaxPixels. Sides are below 2^32.
void checkPictureSize(const std::string& place, uint64_t width, uint64_t height);

// The file's bytes: RGBA, no timestamp or text, the same for the same pixels and release of the
// compressor. `pixels` holds width x height words. Throws PictureError when the encoder runs out of
// memory and for an empty picture.
std::string encodePng(const uint32_t* pixels, uint32_t width, uint32_t height,
                      PngCompression compression = PngCompression::kDefault);

// Any PNG, converted to 8-bit RGBA row by row: no more memory than the answer and a few rows.
// `name` is for messages. Throws PictureError for bytes that are no PNG, truncated or damaged
// files, and more than kMaxReadPixels.
Image decodePng(std::string_view bytes, const std::string& name);

}  // namespace gxtext
