// Pictures as the bytes of a file.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "scene/Picture.h"
#include "scene/Png.h"

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

// What encode() gives and other files of the two formats, told by their first bytes. Throws as
// decodePng() does.
Image decodePicture(std::string_view bytes, const std::string& name);

}  // namespace gxtext
