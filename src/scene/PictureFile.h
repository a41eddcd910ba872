// Pictures as the bytes of a file.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "scene/Picture.h"

namespace gxtext {

enum class PictureFormat { kPng, kWebp };

// By the name's extension, in whatever case; nothing for any other.
std::optional<PictureFormat> pictureFormatOf(const std::filesystem::path& file);

// The same for the same pixels and release of the compressor. Throws PictureError for a picture
// without pixels, for one that the format cannot hold (WebP: 16,383 pixels a side) and when memory
// runs out.
std::string encode(const Picture& picture, PictureFormat format, PngCompression compression);

// Lossless, the colours of clear pixels included.
std::string encodeWebp(const uint32_t* pixels, uint32_t width, uint32_t height,
                       PngCompression compression);

}  // namespace gxtext
