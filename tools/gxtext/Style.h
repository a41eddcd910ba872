// Styles as the program gets them: the library's values, read from files and standard input.
#pragma once

#include <filesystem>
#include <string>

#include "raster/GxBitmap.h"
#include "style/Style.h"

namespace gxtool {

using gxtext::Align;
using gxtext::Color;
using gxtext::Style;

// Reads and parses a style file; "-" is standard input, whose relative paths start in the working
// folder. Throws ToolError when it cannot be read, gxtext::StyleError when it is no style.
Style loadStyle(const std::string& file);

// The picture of a pattern as effects take it, a gxtext::PatternLoader. Throws ToolError.
GxFontEffect::GxBitmap loadPattern(const std::filesystem::path& file);

}  // namespace gxtool
