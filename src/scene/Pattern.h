// Pictures that effects tile over the glyphs.
#pragma once

#include <filesystem>

#include "raster/GxBitmap.h"

namespace gxtext {

// A PNG file as the effects take it (a PatternLoader): four bytes per pixel in the order alpha,
// red, green, blue, straight. Throws FileError and PictureError.
GxFontEffect::GxBitmap loadPattern(const std::filesystem::path& file);

}  // namespace gxtext
